#include "hosts/command/registered_classes.h"

#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include "hosts/text_encoding.h"
#include "platform/registry_key.h"
#include "resources/prog_ids.h"

namespace velandoc {
namespace {

constexpr LONG kNotFound = static_cast<LONG>(ERROR_FILE_NOT_FOUND);

WideString GuidText(REFGUID guid) {
  OLECHAR text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

/// Of the two names of a class, "X.1" and "X", the one that stays when the class changes.
bool IsVersioned(WideView progId) { return progId.ends_with(OLESTR(".1")); }

}  // namespace

LONG FindRegisteredClasses(std::vector<RegisteredClass>& classes, bool& brokenForUser) {
  std::vector<RegisteredClass> found;
  classes.clear();
  for (const ComponentProgId& entry : kComponentProgIds) {
    if (IsVersioned(entry.progId)) continue;
    const WideString classId = GuidText(entry.clsid);
    RegisteredClass& one = found.emplace_back();
    one.progId = Utf8FromWide(entry.progId);
    one.classId = Utf8FromWide(classId);
    for (const bool forUser : {true, false}) {
      WideString library;
      const LONG error =
          ReadKeyText(forUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE,
                      OLESTR("Software\\Classes\\CLSID\\") + classId + OLESTR("\\InprocServer32"),
                      nullptr, library);
      if (error == kNotFound) continue;
      if (error != 0) {
        brokenForUser = forUser;
        return error;
      }
      std::error_code ignored;
      one.registrations.push_back(
          {forUser, Utf8FromWide(library),
           std::filesystem::exists(std::filesystem::path(library), ignored)});
    }
  }
  classes = std::move(found);
  return 0;
}

}  // namespace velandoc
