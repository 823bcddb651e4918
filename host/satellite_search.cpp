#include "host/satellite_search.h"

#include <array>

#include "platform/ascii_case.h"
#include "platform/file_system.h"
#include "platform/module_services.h"
#include "platform/shell.h"

namespace velandoc {
namespace {

constexpr std::size_t kPathRoom = 260;
constexpr ULONG kLanguagesRoom = 121;

using PathBuffer = std::array<OLECHAR, kPathRoom>;

bool IsEnglish(WideView language) {
  // Two letters decide: "en", "en-US", and also the three-letter "enm".
  return EqualsIgnoringAsciiCase(language.substr(0, 2), OLESTR("en"));
}

}  // namespace

bool SatelliteSearch::FindSatelliteDll(HINSTANCE module, WideString& path) {
  path.clear();
  PathBuffer file{};
  ModuleServices& services = CurrentPort<ModuleServices>();
  services.GetModuleFileNameW(module, file.data(), static_cast<DWORD>(file.size()));
  PathBuffer drive{};
  PathBuffer folder{};
  PathBuffer name{};
  PathBuffer extension{};
  CurrentPort<Shell>()._wsplitpath_s(file.data(), drive.data(), drive.size(), folder.data(),
                                     folder.size(), name.data(), name.size(), extension.data(),
                                     extension.size());
  if (m_languages.empty()) FillLanguages();
  for (const WideString& language : m_languages) {
    if (IsEnglish(language)) return false;
    WideString candidate = drive.data();
    candidate.append(folder.data()).append(language) += kPathSeparator;
    candidate.append(name.data()).append(OLESTR(".res.dll"));
    if (services.PathFileExistsW(candidate.c_str())) {
      path = std::move(candidate);
      return true;
    }
  }
  return false;
}

void SatelliteSearch::FillLanguages() {
  std::array<OLECHAR, kLanguagesRoom> names{};
  ULONG count = 0;
  ULONG size = kLanguagesRoom;
  const BOOL asked = CurrentPort<ModuleServices>().GetThreadPreferredUILanguages(
      MUI_LANGUAGE_NAME | MUI_MERGE_SYSTEM_FALLBACK | MUI_MERGE_USER_FALLBACK, &count, names.data(),
      &size);
  if (!asked) return;
  for (LPCWSTR name = names.data(); *name != 0; name += m_languages.back().size() + 1) {
    m_languages.emplace_back(name);
  }
}

SatelliteSearch& ProcessSatelliteSearch() {
  static SatelliteSearch search;
  return search;
}

}  // namespace velandoc
