// What each home knows of an interface's members, in one form: on Windows read back from the
// compiled type library, on Linux from the dispatch table.
#pragma once

#include <string>
#include <vector>

#include "platform/com.h"

namespace velandoc::testing {

struct MemberText {
  /// "4 method Download(BOOL RandomName = 0, BSTR LocalPath = '')": number, kind (method, get,
  /// put), name, arguments. An argument that may be left out without a default ends in "?"; the new
  /// value of a put has no name.
  std::string member;
  /// "BSTR SavedPath"; the type alone where names of results are not kept; empty for none.
  std::string result;
  /// Empty where there are none.
  std::string help;

  bool operator==(const MemberText&) const = default;
};

/// In the order of the virtual table. Fails the test for an interface that it does not find.
std::vector<MemberText> DescribeMembers(REFIID iid);

/// Whether this home keeps help texts and the names of results.
bool KeepsHelpAndResultNames();

}  // namespace velandoc::testing
