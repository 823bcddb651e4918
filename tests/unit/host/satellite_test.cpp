// The search for a language's satellite and what the application object does with it, with scripted
// languages, files and libraries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "host/satellite_search.h"
#include "host/velandoc_app.h"
#include "platform/file_system.h"
#include "platform/mfc/extension_library.h"
#include "platform/module_path.h"
#include "tests/support/scripted_modules.h"

namespace velandoc {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Separators of the home in the places of "/", for both spellings of a path.
WideString Home(WideString path) {
  for (OLECHAR& c : path) {
    if (c == '/') c = kPathSeparator;
  }
  return path;
}
std::string Home(std::string path) {
  for (char& c : path) {
    if (c == '/') c = static_cast<char>(kPathSeparator);
  }
  return path;
}

class SatelliteTest : public testing::Test {
 protected:
  SatelliteTest() { modules.modules[GetModuleInstance()] = Home(OLESTR("C:/A/X.dll")); }

  /// What the search finds for `module`, "none" for nothing.
  WideString Find(HINSTANCE module = GetModuleInstance()) {
    WideString path = OLESTR("stale");
    if (search.FindSatelliteDll(module, path)) return path;
    EXPECT_TRUE(path.empty());
    return OLESTR("none");
  }
  static HINSTANCE Handle(int& place) { return reinterpret_cast<HINSTANCE>(&place); }
  /// A German user, and a German satellite beside the library; its handle.
  HINSTANCE GiveGermanSatellite() {
    const WideString file = Home(OLESTR("C:/A/de-DE/X.res.dll"));
    modules.languages = {OLESTR("de-DE")};
    modules.files = {file};
    modules.libraries[file] = Handle(german);
    return Handle(german);
  }

  int german = 0;
  ScriptedModules modules;
  PortScope<ModuleServices> scope{modules};
  SatelliteSearch search;
};

TEST_F(SatelliteTest, ASatelliteLiesInAFolderNamedAfterItsLanguage) {
  modules.languages = {OLESTR("de-DE")};
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), Home(OLESTR("C:/A/de-DE/X.res.dll")));
  EXPECT_THAT(modules.calls, ElementsAre("languages 56 121", Home("exists C:/A/de-DE/X.res.dll")));
}

TEST_F(SatelliteTest, EnglishFirstIsEnglishEvenWhereGermanIsThere) {
  modules.languages = {OLESTR("en-US"), OLESTR("de-DE")};
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll")), Home(OLESTR("C:/A/en-US/X.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none"));
  EXPECT_THAT(modules.calls, ElementsAre("languages 56 121")) << "no file is looked for";
}

TEST_F(SatelliteTest, FrenchIsTriedAndThenGermanIsFound) {
  modules.languages = {OLESTR("fr-FR"), OLESTR("de-DE")};
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), Home(OLESTR("C:/A/de-DE/X.res.dll")));
  EXPECT_THAT(modules.calls, ElementsAre("languages 56 121", Home("exists C:/A/fr-FR/X.res.dll"),
                                         Home("exists C:/A/de-DE/X.res.dll")));
}

TEST_F(SatelliteTest, EnglishInTheMiddleHidesWhatIsBehindIt) {
  modules.languages = {OLESTR("fr-FR"), OLESTR("EN"), OLESTR("de-DE")};
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none"));
  EXPECT_THAT(modules.calls, ElementsAre("languages 56 121", Home("exists C:/A/fr-FR/X.res.dll")));
}

TEST_F(SatelliteTest, TwoLettersDecideWhatIsEnglish) {
  struct {
    const OLECHAR* language;
    bool english;
  } const rows[] = {{OLESTR("en"), true},    {OLESTR("EN-gb"), true}, {OLESTR("eN-US"), true},
                    {OLESTR("enm"), true},   {OLESTR("e"), false},    {OLESTR("es-ES"), false},
                    {OLESTR("de-en"), false}};
  for (const auto& row : rows) {
    SatelliteSearch fresh;
    modules.languages = {row.language, OLESTR("it")};
    modules.files = {Home(OLESTR("C:/A/it/X.res.dll"))};
    WideString path;
    EXPECT_EQ(fresh.FindSatelliteDll(GetModuleInstance(), path), !row.english);
  }
}

TEST_F(SatelliteTest, ASpecificLanguageDoesNotBecomeTheNeutralOne) {
  modules.languages = {OLESTR("de-AT")};
  modules.files = {Home(OLESTR("C:/A/de/X.res.dll")), Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none"));
}

TEST_F(SatelliteTest, TheLanguagesAreAskedForOnce) {
  modules.languages = {OLESTR("de-DE")};
  EXPECT_EQ(Find(), OLESTR("none"));
  modules.languages = {OLESTR("fr-FR")};
  modules.files = {Home(OLESTR("C:/A/fr-FR/X.res.dll")), Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), Home(OLESTR("C:/A/de-DE/X.res.dll")));
  EXPECT_THAT(modules.calls, ElementsAre("languages 56 121", Home("exists C:/A/de-DE/X.res.dll"),
                                         Home("exists C:/A/de-DE/X.res.dll")));
}

TEST_F(SatelliteTest, NoLanguagesAreAskedForAgain) {
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none")) << "an empty list";
  modules.languages = {OLESTR("de-DE")};
  modules.languagesFail = true;
  EXPECT_EQ(Find(), OLESTR("none")) << "a failed query";
  modules.languagesFail = false;
  EXPECT_EQ(Find(), Home(OLESTR("C:/A/de-DE/X.res.dll")));
}

TEST_F(SatelliteTest, LanguagesThatDoNotFitAreNone) {
  // Thirty names of three letters and their nulls are 120 characters, and one for the end.
  modules.languages.assign(30, OLESTR("abc"));
  modules.languages.back() = OLESTR("xyz");
  modules.files = {Home(OLESTR("C:/A/xyz/X.res.dll"))};
  EXPECT_EQ(Find(), Home(OLESTR("C:/A/xyz/X.res.dll")));
  search = SatelliteSearch();
  modules.languages.back() = OLESTR("wxyz");
  modules.files = {Home(OLESTR("C:/A/wxyz/X.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none"));
}

TEST_F(SatelliteTest, TheNameIsTheModulesWithoutItsLastExtension) {
  modules.languages = {OLESTR("de")};
  struct {
    const OLECHAR* module;
    const OLECHAR* satellite;
  } const rows[] = {
      {OLESTR("C:/A/X.Y.dll"), OLESTR("C:/A/de/X.Y.res.dll")},
      {OLESTR("C:/A/X"), OLESTR("C:/A/de/X.res.dll")},
      {OLESTR("/usr/lib/libx.so"), OLESTR("/usr/lib/de/libx.res.dll")},
      {OLESTR("/x.so"), OLESTR("/de/x.res.dll")},
  };
  for (const auto& row : rows) {
    modules.modules[GetModuleInstance()] = Home(row.module);
    modules.files = {Home(row.satellite)};
    EXPECT_EQ(Find(), Home(row.satellite));
  }
}

TEST_F(SatelliteTest, AModuleTooDeepForTheBufferHasNoSatellite) {
  modules.languages = {OLESTR("de")};
  const WideString folder = Home(OLESTR("C:/") + WideString(250, OLECHAR{'a'}) + OLESTR("/"));
  // 259 characters and the terminator fit.
  modules.modules[GetModuleInstance()] = folder + OLESTR("X.dll");
  modules.files = {folder + Home(OLESTR("de/X.res.dll"))};
  EXPECT_EQ(Find(), folder + Home(OLESTR("de/X.res.dll")));
  modules.modules[GetModuleInstance()] = folder + OLESTR("ABCDEFG.dll");
  modules.files = {folder + Home(OLESTR("de/ABCDEFG.res.dll"))};
  EXPECT_EQ(Find(), OLESTR("none"));
  const std::string folderText = Home(std::string("C:/") + std::string(250, 'a') + "/");
  EXPECT_EQ(modules.calls.back(), "exists " + folderText + Home(std::string("de/ABCDE.res.dll")))
      << "what fits of the path is taken for the path";
}

TEST_F(SatelliteTest, TheProcessHasOneSearch) {
  std::array<SatelliteSearch*, 8> seen{};
  std::vector<std::thread> threads;
  for (SatelliteSearch*& search_of_thread : seen) {
    threads.emplace_back([&search_of_thread] { search_of_thread = &ProcessSatelliteSearch(); });
  }
  for (std::thread& thread : threads) thread.join();
  for (SatelliteSearch* found : seen) EXPECT_EQ(found, &ProcessSatelliteSearch());
}

TEST_F(SatelliteTest, TheApplicationOpensItsSatelliteForItsResourcesAlone) {
  const HINSTANCE satellite = GiveGermanSatellite();
  CVelandocApp app(search);
  EXPECT_EQ(app.LoadAppLangResourceDLL(), satellite);
  EXPECT_EQ(modules.calls.back(), Home("load C:/A/de-DE/X.res.dll 96"));
}

TEST_F(SatelliteTest, WhatCannotBeFoundOrOpenedIsNull) {
  CVelandocApp app(search);
  modules.languagesFail = true;
  EXPECT_EQ(app.LoadAppLangResourceDLL(), nullptr);
  modules.languagesFail = false;
  modules.languages = {OLESTR("de-DE")};
  EXPECT_EQ(app.LoadAppLangResourceDLL(), nullptr);
  modules.files = {Home(OLESTR("C:/A/de-DE/X.res.dll"))};
  EXPECT_EQ(app.LoadAppLangResourceDLL(), nullptr);
  EXPECT_EQ(modules.calls.back(), Home("load C:/A/de-DE/X.res.dll 96"));
}

TEST_F(SatelliteTest, ExtensionLibrariesThatHaveTheirOwnResourcesGetTheirs) {
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  std::array<int, 7> places{};
  CDynLinkLibrary translated(Handle(places[0]));
  CDynLinkLibrary without(Handle(places[1]));
  CDynLinkLibrary chosen(Handle(places[2]));
  CDynLinkLibrary broken(Handle(places[3]));
  chosen.m_hResource = Handle(places[4]);
  modules.modules[Handle(places[0])] = Home(OLESTR("C:/E/One.dll"));
  modules.modules[Handle(places[1])] = Home(OLESTR("C:/E/Two.dll"));
  modules.modules[Handle(places[2])] = Home(OLESTR("C:/E/Three.dll"));
  modules.modules[Handle(places[3])] = Home(OLESTR("C:/E/Four.dll"));
  modules.languages = {OLESTR("de-DE")};
  const WideString one = Home(OLESTR("C:/E/de-DE/One.res.dll"));
  const WideString three = Home(OLESTR("C:/E/de-DE/Three.res.dll"));
  modules.files = {one, three, Home(OLESTR("C:/E/de-DE/Four.res.dll"))};
  modules.libraries = {{one, Handle(places[5])}, {three, Handle(places[6])}};
  CVelandocApp app(search);
  EXPECT_EQ(app.LoadAppLangResourceDLL(), nullptr) << "the library itself has none";
  EXPECT_EQ(translated.m_hResource, Handle(places[5]));
  EXPECT_EQ(without.m_hResource, Handle(places[1]));
  EXPECT_EQ(chosen.m_hResource, Handle(places[4]));
  EXPECT_EQ(broken.m_hResource, Handle(places[3])) << "a failed load changes nothing";
  EXPECT_THAT(
      modules.calls,
      ElementsAre("languages 56 121", Home("exists C:/A/de-DE/X.res.dll"),
                  Home("exists C:/E/de-DE/One.res.dll"), Home("load C:/E/de-DE/One.res.dll 96"),
                  Home("exists C:/E/de-DE/Two.res.dll"), Home("exists C:/E/de-DE/Four.res.dll"),
                  Home("load C:/E/de-DE/Four.res.dll 96")));
}

TEST_F(SatelliteTest, TheListIsWalkedUnderItsLock) {
  class LockProbe final : public ScriptedModules {
   public:
    bool probing = false;
    bool locked = false;
    BOOL PathFileExistsW(LPCWSTR path) override {
      if (probing) {
        // Held by this thread, it keeps another one from changing the list.
        m_entered = false;
        m_others.emplace_back([this] {
          AfxLockGlobals(CRIT_DYNLINKLIST);
          m_entered = true;
          AfxUnlockGlobals(CRIT_DYNLINKLIST);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        locked = !m_entered;
      }
      return ScriptedModules::PathFileExistsW(path);
    }
    ~LockProbe() override {
      for (std::thread& other : m_others) other.join();
    }

   private:
    // Outlives the call: the other thread goes on when the lock is free again.
    std::atomic<bool> m_entered{false};
    std::vector<std::thread> m_others;
  };
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  LockProbe probe;
  probe.languages = {OLESTR("de-DE")};
  int place = 0;
  probe.modules[Handle(place)] = Home(OLESTR("C:/E/One.dll"));
  const PortScope<ModuleServices> probeScope(probe);
  CDynLinkLibrary extension(Handle(place));
  CVelandocApp app(search);
  probe.probing = true;
  app.LoadAppLangResourceDLL();
  EXPECT_TRUE(probe.locked);
}

TEST_F(SatelliteTest, ExtensionLibrariesComeAndGo) {
  const std::vector<CDynLinkLibrary*>& list = AfxGetStaticModuleState()->m_libraryList;
  EXPECT_THAT(list, IsEmpty());
  int place = 0;
  {
    CDynLinkLibrary extension(Handle(place));
    EXPECT_EQ(extension.m_hResource, Handle(place));
    EXPECT_THAT(list, ElementsAre(&extension));
  }
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(SatelliteTest, TheApplicationLetsItsSatelliteGoAtItsEnd) {
  const HINSTANCE satellite = GiveGermanSatellite();
  {
    CVelandocApp app(search);
    EXPECT_EQ(app.CWinApp::InitInstance(), TRUE);
    EXPECT_EQ(app.m_hLangResourceDLL, satellite);
    EXPECT_EQ(AfxGetStaticModuleState()->m_hCurrentResourceHandle, satellite);
    EXPECT_THAT(modules.freed, IsEmpty());
  }
  EXPECT_THAT(modules.freed, ElementsAre(satellite));
  EXPECT_EQ(AfxGetStaticModuleState()->m_hCurrentResourceHandle, GetModuleInstance());
}

}  // namespace
}  // namespace velandoc
