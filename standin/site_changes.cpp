#include "standin/site_changes.h"

namespace velandoc::standin {
namespace {

// kDone if `user` holds the document.
ChangeResult HolderResult(const Site& site, const DocumentPlace& place, const User& user) {
  if (!place.library) return ChangeResult::kNotInLibrary;
  if (!place.document->checkOut) return ChangeResult::kUnchanged;
  if (IsHeldByOther(site, *place.document, user)) return ChangeResult::kHeldByOther;
  return ChangeResult::kDone;
}

Version CheckedInVersion(const DocumentPlace& place, CheckInType type) {
  const Version old = place.document->version;
  const Version next = place.library->ShownVersion(*place.document);
  switch (type) {
    case CheckInType::kMinor:
      return next;
    case CheckInType::kMajor:
      return {old.major + 1, 0};
    case CheckInType::kOverwrite:
      break;
  }
  return old.IsUnborn() ? next : old;
}

}  // namespace

bool IsHeldByOther(const Site& site, const Document& document, const User& user) {
  return document.checkOut && site.FindUser(document.checkOut->login) != &user;
}

ChangeResult CheckOutDocument(const Site& site, const DocumentPlace& place, const User& user) {
  switch (HolderResult(site, place, user)) {
    case ChangeResult::kNotInLibrary:
      return ChangeResult::kNotInLibrary;
    case ChangeResult::kHeldByOther:
      return ChangeResult::kHeldByOther;
    case ChangeResult::kDone:
      return ChangeResult::kUnchanged;
    case ChangeResult::kUnchanged:
      break;
  }
  Document& document = *place.document;
  document.checkOut = CheckOut{user.login, site.Now(), document.content};
  ++document.revision;
  return ChangeResult::kDone;
}

ChangeResult CheckInDocument(const Site& site, const DocumentPlace& place, const User& user,
                             CheckInType type, const std::string& comment) {
  const ChangeResult result = HolderResult(site, place, user);
  if (result != ChangeResult::kDone) return result;
  Document& document = *place.document;
  document.version = CheckedInVersion(place, type);
  document.comment = comment;
  document.checkOut.reset();
  ++document.revision;
  return result;
}

ChangeResult UndoCheckOutOfDocument(const Site& site, const DocumentPlace& place,
                                    const User& user) {
  const ChangeResult result = HolderResult(site, place, user);
  if (result != ChangeResult::kDone) return result;
  Document& document = *place.document;
  if (document.version.IsUnborn()) {
    auto& documents = place.library->documents;
    documents.erase(documents.begin() + (&document - documents.data()));
    return result;
  }
  document.content = document.checkOut->before;
  document.checkOut.reset();
  ++document.revision;
  return result;
}

void WriteValues(const Site& site, const DocumentPlace& place, const User& user,
                 const Texts& values) {
  Document& document = *place.document;
  for (const auto& [name, value] : values) document.content.values[name] = value;
  document.content.modified = site.Now();
  document.content.editor = user.login;
  if (!document.checkOut) {
    if (place.library->hasMinorVersions) {
      ++document.version.minor;
    } else {
      ++document.version.major;
    }
  }
  ++document.revision;
}

}  // namespace velandoc::standin
