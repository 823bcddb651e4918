// A real satellite in both homes: the same file, whose texts take the place of the library's.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/velandoc_app.h"
#include "platform/atl/base_module.h"
#include "platform/module_path.h"
#include "platform/resources.h"
#include "tests/support/fault_wininet.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/thread_error.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc {
namespace {

/// The library stands in a folder of the test's, a satellite beside it; the rest is the system's.
class GermanBesideTheLibrary final : public ModuleServices {
 public:
  explicit GermanBesideTheLibrary(std::filesystem::path library) : m_library(std::move(library)) {}

  DWORD GetModuleFileNameW(HINSTANCE, LPWSTR path, DWORD size) override {
    WideString name;
    for (const char c : m_library.string()) name += static_cast<OLECHAR>(c);
    const std::size_t length = name.copy(path, size - 1);
    path[length] = 0;
    return static_cast<DWORD>(length);
  }
  BOOL GetThreadPreferredUILanguages(DWORD, ULONG* count, LPWSTR names, ULONG* size) override {
    const WideString list(OLESTR("fr-FR\0de-DE\0"), 13);
    *count = 2;
    *size = 13;
    list.copy(names, list.size());
    return TRUE;
  }
  BOOL PathFileExistsW(LPCWSTR path) override { return m_system.PathFileExistsW(path); }
  HINSTANCE LoadLibraryExW(LPCWSTR path, HANDLE reserved, DWORD flags) override {
    return m_system.LoadLibraryExW(path, reserved, flags);
  }
  BOOL FreeLibrary(HINSTANCE module) override { return m_system.FreeLibrary(module); }
  int LoadStringW(HINSTANCE module, UINT id, LPWSTR text, int size) override {
    return m_system.LoadStringW(module, id, text, size);
  }

 private:
  std::filesystem::path m_library;
  ModuleServices& m_system = SystemPort<ModuleServices>();
};

/// A library with its satellite in a folder of the test's.
struct GermanFolder {
  GermanFolder() {
    std::filesystem::create_directory(folder.Path() / "de-DE");
    std::filesystem::copy_file(VELANDOC_GERMAN_SATELLITE, Satellite());
  }
  ~GermanFolder() { AtlBaseModule().SetResourceInstance(GetModuleInstance()); }
  GermanFolder(const GermanFolder&) = delete;
  GermanFolder& operator=(const GermanFolder&) = delete;

  std::filesystem::path Satellite() const { return folder.Path() / "de-DE" / "velandoc.res.dll"; }

  testing::TemporaryFolder folder;
  GermanBesideTheLibrary services{folder.Path() / "velandoc.dll"};
  PortScope<ModuleServices> scope{services};
  SatelliteSearch search;
};

class GermanTextsTest : public ::testing::Test, protected GermanFolder {};

TEST_F(GermanTextsTest, TheStringTableIsTheSatellites) {
  struct {
    WORD id;
    const OLECHAR* text;
  } const rows[] = {
      {100, OLESTR("Velandoc")},
      {101, OLESTR("Unbekannter Verbindungsfehler beim Server.")},
      {102, OLESTR("HDFS-Client: Verbinden")},
      {103, OLESTR("Fehler beim Lesen der HDFS-Datei aus dem Netz.")},
      {104, OLESTR("HDFS-Client: Hochladen")},
      {105, OLESTR("HDFS-Client: Ordner f\u00FCr Dateien anlegen")},
      {106, OLESTR("")},
      {0, OLESTR("")},
      {0xFFFF, OLESTR("")},
  };
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  EXPECT_EQ(LoadModuleString(101), OLESTR("Unknown connection error with server."));
  {
    CVelandocApp app(search);
    ASSERT_EQ(app.InitInstance(), TRUE);
    ASSERT_NE(app.m_hLangResourceDLL, nullptr);
    EXPECT_EQ(AtlBaseModule().GetResourceInstance(), app.m_hLangResourceDLL);
    for (const auto& row : rows) EXPECT_EQ(LoadModuleString(row.id), row.text) << row.id;
  }
  EXPECT_EQ(LoadModuleString(101), OLESTR("Unknown connection error with server."));
}

TEST_F(GermanTextsTest, TheScriptsAreAlwaysTheLibrarysOwn) {
  const auto form = FindModuleResource(OLESTR("JAVASCRIPT"), 1);
  const auto registry = FindModuleResource(OLESTR("REGISTRY"), 103);
  ASSERT_TRUE(form);
  ASSERT_TRUE(registry);
  CVelandocApp app(search);
  ASSERT_EQ(app.InitInstance(), TRUE);
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  ASSERT_EQ(LoadModuleString(104), OLESTR("HDFS-Client: Hochladen"));
  EXPECT_EQ(FindModuleResource(OLESTR("REGISTRY"), 103), registry);
  EXPECT_EQ(FindModuleResource(OLESTR("JAVASCRIPT"), 1), form);
}

TEST_F(GermanTextsTest, ABrokenSatelliteIsEnglish) {
  std::filesystem::resize_file(Satellite(), 300);
  CVelandocApp app(search);
  EXPECT_EQ(app.InitInstance(), TRUE);
  EXPECT_EQ(app.m_hLangResourceDLL, nullptr);
  AFX_MANAGE_STATE(AfxGetStaticModuleState());
  EXPECT_EQ(LoadModuleString(104), OLESTR("HDFS Client Upload"));
}

TEST_F(GermanTextsTest, AFolderOfTheSatellitesNameIsEnglish) {
  std::filesystem::remove(Satellite());
  std::filesystem::create_directory(Satellite());
  CVelandocApp app(search);
  EXPECT_EQ(app.InitInstance(), TRUE);
  EXPECT_EQ(app.m_hLangResourceDLL, nullptr);
}

class GermanErrorsTest : public testing::HdfsClientTest, protected GermanFolder {
 protected:
  GermanErrorsTest() { EXPECT_EQ(m_app.InitInstance(), TRUE); }

 private:
  CVelandocApp m_app{search};
};

TEST_F(GermanErrorsTest, AnErrorThatNobodyKnows) {
  m_platform.answers = {{.status = OLESTR("")}};
  Bstr text;
  EXPECT_EQ(m_client->GetText(text.Receive()), E_FAIL);
  EXPECT_EQ(Error(), "0 Unbekannter Verbindungsfehler beim Server.");
  EXPECT_EQ(OnTheThread(), "HDFS-Client: Verbinden: Unbekannter Verbindungsfehler beim Server.");
}

TEST_F(GermanErrorsTest, AReadThatFailed) {
  m_platform.answers = {{.chunks = {"one\n"}}};
  testing::FaultWinInet fault(m_platform, 6, ERROR_SUCCESS);
  const PortScope<WinInet> faultScope(fault);
  Bstr saved;
  EXPECT_EQ(m_client->DownloadPreview(1, saved.Receive()), E_FAIL);
  EXPECT_EQ(Error(), "200 Fehler beim Lesen der HDFS-Datei aus dem Netz.");
}

TEST_F(GermanErrorsTest, AnUploadWithoutASource) {
  EXPECT_TRUE(FAILED(m_client->Upload(Variant(1, VT_I4).Get(), VARIANT_TRUE, nullptr)));
  EXPECT_EQ(testing::TakeThreadError().source, "HDFS-Client: Hochladen");
}

TEST_F(GermanErrorsTest, AFolderWithImpossiblePermissions) {
  VARIANT_BOOL made = VARIANT_TRUE;
  EXPECT_EQ(m_client->CreateFolder(Bstr(OLESTR("888")).Get(), &made), E_INVALIDARG);
  EXPECT_EQ(testing::TakeThreadError().source, "HDFS-Client: Ordner f\\u00FCr Dateien anlegen");
}

}  // namespace
}  // namespace velandoc
