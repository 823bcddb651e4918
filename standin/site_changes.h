// Checking documents out and in, and writing their columns.
#pragma once

#include <cstdint>
#include <string>

#include "standin/site.h"

namespace velandoc::standin {

enum class ChangeResult {
  kDone,
  kUnchanged,     // to be checked out: the user has it already; else: nobody has it
  kHeldByOther,   // somebody else has checked it out
  kNotInLibrary,  // only what lies in a library can be checked out
};

enum class CheckInType : std::uint8_t { kMinor = 0, kMajor = 1, kOverwrite = 2 };

// Each counts the document's revision up when it changes something. None changes when the document
// was modified: that tells about its content.
ChangeResult CheckOutDocument(const Site& site, const DocumentPlace& place, const User& user);
// A library without minor versions makes a major one of every check-in but an overwriting one.
ChangeResult CheckInDocument(const Site& site, const DocumentPlace& place, const User& user,
                             CheckInType type, const std::string& comment);
// Brings back the columns. A document that was never checked in is gone afterwards.
ChangeResult UndoCheckOutOfDocument(const Site& site, const DocumentPlace& place, const User& user);

// Columns of a document that nobody else has checked out. Without a check-out it makes a version.
void WriteValues(const Site& site, const DocumentPlace& place, const User& user,
                 const Texts& values);

// True if somebody but `user` has checked the document out.
bool IsHeldByOther(const Site& site, const Document& document, const User& user);

}  // namespace velandoc::standin
