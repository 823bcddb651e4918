// Registration on Linux: the registry's files, whole, before and after; and activation out of them.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/exports.h"
#include "host/velandoc_module.h"
#include "platform/module_path.h"
#include "platform/owners.h"
#include "platform/registry_key.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

std::string ReplaceAll(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

class PosixRegistrationTest : public testing::Test {
 protected:
  PosixRegistrationTest() {
    char pattern[] = "/tmp/velandoc-registry-XXXXXX";
    m_folder = mkdtemp(pattern);
    setenv("VELANDOC_REGISTRY_DIR", m_folder.c_str(), 1);
  }
  ~PosixRegistrationTest() override {
    unsetenv("VELANDOC_REGISTRY_DIR");
    std::filesystem::remove_all(m_folder);
    AtlSetPerUserRegistration(false);
  }

  /// The file's text with this program's path as "MODULE" and its folder as "FOLDER/".
  std::string File(const char* name) const {
    std::string path;
    for (const OLECHAR c : GetModulePath()) path += static_cast<char>(c);
    const std::string folder = path.substr(0, path.find_last_of('/') + 1);
    return ReplaceAll(ReplaceAll(ReadFile(m_folder / name), path, "MODULE"), folder, "FOLDER/");
  }

  std::filesystem::path m_folder;
};

/// A registry file's beginning: the keys down to the classes of `root`.
std::string Head(const std::string& root) {
  return "Windows Registry Editor Version 5.00\n\n[" + root + "]\n\n[" + root + "\\Software]\n\n[" +
         root + "\\Software\\Classes]\n\n";
}

/// The registry file of a registration in the classes of `root`.
std::string Expected(const std::string& root) {
  const std::string text = R"([ROOT\AppID]

[ROOT\AppID\Velandoc.DLL]
"AppID"="{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}"

[ROOT\AppID\{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}]
@="Velandoc"

[ROOT\CLSID]

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}]
@="ServerCheck Class"

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}\InprocServer32]
@="MODULE"
"ThreadingModel"="Apartment"

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}\ProgID]
@="Velandoc.ServerCheck.1"

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}\Programmable]

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"

[ROOT\CLSID\{1D477FCE-048A-4657-BFDF-6DD165043E36}\VersionIndependentProgID]
@="Velandoc.ServerCheck"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}]
@="HdfsWinHttpClient class"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\InprocServer32]
@="MODULE"
"ThreadingModel"="Apartment"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\ProgID]
@="Velantrica.HdfsWinHttpClient.1"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\Programmable]

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\TypeLib]
@="{779c54aa-fcc0-42ad-84d1-708bb472ea26}"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\Version]
@="1.0"

[ROOT\CLSID\{4A45908C-EF4C-4D12-951B-9595D9CC208B}\VersionIndependentProgID]
@="Velantrica.HdfsWinHttpClient"

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}]
@="HdfsClient Class"

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}\InprocServer32]
@="MODULE"
"ThreadingModel"="Apartment"

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}\ProgID]
@="Velantrica.HdfsClient.1"

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}\Programmable]

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"

[ROOT\CLSID\{5EBD1685-DEAC-437B-A090-846F578C2F99}\VersionIndependentProgID]
@="Velantrica.HdfsClient"

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}]
@="Client Class"

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}\InprocServer32]
@="MODULE"
"ThreadingModel"="Apartment"

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}\ProgID]
@="Velandoc.Client.1"

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}\Programmable]

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"

[ROOT\CLSID\{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}\VersionIndependentProgID]
@="Velandoc.Client"

[ROOT\Interface]

[ROOT\Interface\{0A21C224-5BA3-4FA0-B699-42A0CABD6FFA}]
@="IHdfsClient"

[ROOT\Interface\{0A21C224-5BA3-4FA0-B699-42A0CABD6FFA}\ProxyStubClsid]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{0A21C224-5BA3-4FA0-B699-42A0CABD6FFA}\ProxyStubClsid32]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{0A21C224-5BA3-4FA0-B699-42A0CABD6FFA}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"
"Version"="1.0"

[ROOT\Interface\{18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1}]
@="IConnectionError"

[ROOT\Interface\{18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1}\ProxyStubClsid]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1}\ProxyStubClsid32]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{18A8FF43-EA0F-4EDD-B760-9F1DD0C54BF1}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"
"Version"="1.0"

[ROOT\Interface\{3BA03214-9530-4099-99D4-5FD7962D2088}]
@="IClient"

[ROOT\Interface\{3BA03214-9530-4099-99D4-5FD7962D2088}\ProxyStubClsid]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{3BA03214-9530-4099-99D4-5FD7962D2088}\ProxyStubClsid32]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{3BA03214-9530-4099-99D4-5FD7962D2088}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"
"Version"="1.0"

[ROOT\Interface\{9989FD0D-43C5-4FA7-B6D7-020A323FEF2D}]
@="IServerCheck"

[ROOT\Interface\{9989FD0D-43C5-4FA7-B6D7-020A323FEF2D}\ProxyStubClsid]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{9989FD0D-43C5-4FA7-B6D7-020A323FEF2D}\ProxyStubClsid32]
@="{00020424-0000-0000-C000-000000000046}"

[ROOT\Interface\{9989FD0D-43C5-4FA7-B6D7-020A323FEF2D}\TypeLib]
@="{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}"
"Version"="1.0"

[ROOT\TypeLib]

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}]

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}\1.0]
@="Velandoc 1.0 Type Library"

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}\1.0\409]

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}\1.0\409\win64]
@="MODULE"

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}\1.0\FLAGS]
@="0"

[ROOT\TypeLib\{6EF447E8-DEC4-47C3-B65D-7B776C644F1D}\1.0\HELPDIR]
@="FOLDER/"

[ROOT\Velandoc.Client]
@="Client Class"

[ROOT\Velandoc.Client\CLSID]
@="{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}"

[ROOT\Velandoc.Client\CurVer]
@="Velandoc.Client.1"

[ROOT\Velandoc.Client.1]
@="Client Class"

[ROOT\Velandoc.Client.1\CLSID]
@="{6884BC45-2A7D-4747-AF48-A5EECC5BF9A9}"

[ROOT\Velandoc.ServerCheck]
@="ServerCheck Class"

[ROOT\Velandoc.ServerCheck\CLSID]
@="{1D477FCE-048A-4657-BFDF-6DD165043E36}"

[ROOT\Velandoc.ServerCheck\CurVer]
@="Velandoc.ServerCheck.1"

[ROOT\Velandoc.ServerCheck.1]
@="ServerCheck Class"

[ROOT\Velandoc.ServerCheck.1\CLSID]
@="{1D477FCE-048A-4657-BFDF-6DD165043E36}"

[ROOT\Velantrica.HdfsClient]
@="HdfsClient Class"

[ROOT\Velantrica.HdfsClient\CLSID]
@="{5EBD1685-DEAC-437B-A090-846F578C2F99}"

[ROOT\Velantrica.HdfsClient\CurVer]
@="Velantrica.HdfsClient.1"

[ROOT\Velantrica.HdfsClient.1]
@="HdfsClient Class"

[ROOT\Velantrica.HdfsClient.1\CLSID]
@="{5EBD1685-DEAC-437B-A090-846F578C2F99}"

[ROOT\Velantrica.HdfsWinHttpClient]
@="HdfsWinHttpClient class"

[ROOT\Velantrica.HdfsWinHttpClient\CurVer]
@="Velantrica.HdfsWinHttpClient.1"

[ROOT\Velantrica.HdfsWinHttpClient.1]
@="HdfsWinHttpClient class"

[ROOT\Velantrica.HdfsWinHttpClient.1\CLSID]
@="{4a45908c-ef4c-4d12-951b-9595d9cc208b}"
)";
  return Head(root) + ReplaceAll(text, "ROOT", root + "\\Software\\Classes");
}

TEST_F(PosixRegistrationTest, TheMachinesFileHoldsTheKeysAndLosesThemAgain) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(File("machine.reg"), Expected("HKEY_LOCAL_MACHINE"));
  EXPECT_FALSE(std::filesystem::exists(m_folder / "user.reg"));
  const std::string once = File("machine.reg");
  ASSERT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(File("machine.reg"), once) << "registering twice is registering once";

  ASSERT_EQ(DllUnregisterServer(), S_OK);
  // The keys that registries have anyway stay.
  EXPECT_EQ(File("machine.reg"), Head("HKEY_LOCAL_MACHINE") +
                                     "[HKEY_LOCAL_MACHINE\\Software\\Classes\\AppID]\n\n"
                                     "[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID]\n\n"
                                     "[HKEY_LOCAL_MACHINE\\Software\\Classes\\Interface]\n\n"
                                     "[HKEY_LOCAL_MACHINE\\Software\\Classes\\TypeLib]\n");
}

TEST_F(PosixRegistrationTest, TheUsersFileHoldsThemPerUser) {
  ASSERT_EQ(DllInstall(TRUE, u"user"), S_OK);
  EXPECT_EQ(File("user.reg"), Expected("HKEY_CURRENT_USER"));
  EXPECT_FALSE(std::filesystem::exists(m_folder / "machine.reg"));
  ASSERT_EQ(DllInstall(FALSE, u"user"), S_OK);
  EXPECT_EQ(File("user.reg").find("Velandoc"), std::string::npos);
}

// Below HKEY_CLASSES_ROOT the user's keys show, but what is changed there is the machine's file.
TEST_F(PosixRegistrationTest, TheMachinesUnregistrationLeavesTheUsersFileAlone) {
  ASSERT_EQ(DllInstall(TRUE, u"user"), S_OK);
  AtlSetPerUserRegistration(false);
  EXPECT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(File("user.reg"), Expected("HKEY_CURRENT_USER"));
  EXPECT_EQ(File("machine.reg").find("Velandoc"), std::string::npos);

  // A key that is missing in the machine's file does not keep its siblings there.
  OpenKey key;
  ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, u"Software\\Classes\\Velandoc.ServerCheck\\CurVer"), 0);
  EXPECT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(File("machine.reg").find("CurVer"), std::string::npos);
}

// The user's keys show below HKEY_CLASSES_ROOT too, and must not look like what keeps the
// machine's.
TEST_F(PosixRegistrationTest, TheMachinesKeysGoWhereTheUserHasTheSame) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  ASSERT_EQ(DllUnregisterServer(), S_OK);
  const std::string empty = File("machine.reg");
  ASSERT_EQ(DllRegisterServer(), S_OK);
  ASSERT_EQ(DllInstall(TRUE, u"user"), S_OK);
  AtlSetPerUserRegistration(false);
  EXPECT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(File("machine.reg"), empty);
  EXPECT_EQ(File("user.reg"), Expected("HKEY_CURRENT_USER"));
}

TEST_F(PosixRegistrationTest, ARegistrationIsOneChange) {
  const std::filesystem::path file = m_folder / "machine.reg";
  ASSERT_EQ(DllRegisterServer(), S_OK);
  const std::string before = ReadFile(file);
  std::filesystem::create_directory(m_folder / "machine.reg.new");
  EXPECT_EQ(DllUnregisterServer(), HRESULT_FROM_WIN32(ERROR_CANTWRITE));
  EXPECT_EQ(ReadFile(file), before);
}

TEST_F(PosixRegistrationTest, ALibraryThatIsNotRegisteredCannotBeUnregistered) {
  EXPECT_EQ(DllUnregisterServer(), MakeResult(0x8002801C));  // TYPE_E_REGISTRYACCESS
}

TEST_F(PosixRegistrationTest, ABrokenFileIsReportedAndKept) {
  std::ofstream(m_folder / "machine.reg") << "not a registry file\n";
  EXPECT_TRUE(FAILED(DllRegisterServer()));
  EXPECT_EQ(File("machine.reg"), "not a registry file\n");
}

TEST_F(PosixRegistrationTest, ProgIdsWorkFromTheFiles) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  for (const auto& [progId, expected] :
       {std::pair(u"Velandoc.ServerCheck", CLSID_ServerCheck),
        std::pair(u"Velandoc.ServerCheck.1", CLSID_ServerCheck),
        std::pair(u"Velandoc.Client", CLSID_Client), std::pair(u"Velandoc.Client.1", CLSID_Client),
        std::pair(u"Velantrica.HdfsClient", CLSID_HdfsClient),
        std::pair(u"Velantrica.HdfsClient.1", CLSID_HdfsClient),
        // Its other name has no class of its own, and says which version's it is.
        std::pair(u"Velantrica.HdfsWinHttpClient", CLSID_HdfsClientWinHttp),
        std::pair(u"Velantrica.HdfsWinHttpClient.1", CLSID_HdfsClientWinHttp)}) {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(progId, &clsid), S_OK);
    EXPECT_EQ(clsid, expected);
  }
}

}  // namespace
}  // namespace velandoc
