// Drive letters by Wine's links, and what the Shell port makes of them.
#include "platform/posix/shell/dos_devices.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/posix/shell/local_path.h"
#include "platform/shell.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/temporary_folder.h"

namespace velandoc {
namespace {

using test::EnvironmentScope;
using testing::TemporaryFolder;

constexpr DWORD kErrorNotConnected = 2250;

class DosDevicesTest : public ::testing::Test {
 protected:
  DosDevicesTest() {
    const std::filesystem::path devices = folder.Path() / "prefix" / "dosdevices";
    std::filesystem::create_directories(devices);
    std::filesystem::create_symlink("/mnt/dav/share", devices / "z:");
    std::filesystem::create_symlink("../drive_c", devices / "c:");
    std::filesystem::create_directory(devices / "d:");
  }
  std::string Prefix() const { return (folder.Path() / "prefix").native(); }

  TemporaryFolder folder;
};

TEST_F(DosDevicesTest, ADriveIsALinkInEitherCase) {
  const EnvironmentScope prefix("WINEPREFIX", Prefix().c_str());
  EXPECT_EQ(FindDriveFolder('z'), "/mnt/dav/share");
  EXPECT_EQ(FindDriveFolder('Z'), "/mnt/dav/share");
  EXPECT_EQ(FindDriveFolder('c'), Prefix() + "/drive_c") << "a relative link";
  EXPECT_EQ(FindDriveFolder('d'), std::nullopt) << "a folder is no link";
  EXPECT_EQ(FindDriveFolder('q'), std::nullopt);
}

TEST_F(DosDevicesTest, ThePrefixIsTheUsersByDefault) {
  std::filesystem::rename(folder.Path() / "prefix", folder.Path() / ".wine");
  const EnvironmentScope home("HOME", folder.Path().c_str());
  {
    const EnvironmentScope prefix("WINEPREFIX", nullptr);
    EXPECT_EQ(FindDriveFolder('z'), "/mnt/dav/share");
  }
  {
    const EnvironmentScope prefix("WINEPREFIX", "");
    EXPECT_EQ(FindDriveFolder('z'), "/mnt/dav/share");
  }
  const EnvironmentScope prefix("WINEPREFIX", ".wine");
  EXPECT_EQ(FindDriveFolder('z'), std::nullopt) << "a relative prefix is none";
}

TEST_F(DosDevicesTest, WithoutAHomeThereAreNoDrives) {
  const EnvironmentScope home("HOME", nullptr);
  const EnvironmentScope prefix("WINEPREFIX", nullptr);
  EXPECT_EQ(FindDriveFolder('z'), std::nullopt);
}

// No test mounts a share, so the drives of this one lead to ordinary folders.
TEST_F(DosDevicesTest, ADriveOnNoWebDavMountIsNotConnected) {
  const EnvironmentScope prefix("WINEPREFIX", Prefix().c_str());
  for (const LPCWSTR drive : {u"z:", u"Z:", u"c:", u"q:"}) {
    OLECHAR remote[10] = u"k";
    DWORD size = 10;
    EXPECT_EQ(CurrentPort<Shell>().WNetGetConnectionW(drive, remote, &size), kErrorNotConnected);
    EXPECT_STREQ(reinterpret_cast<const char*>(remote), "k");
  }
}

TEST_F(DosDevicesTest, AFileOnNoWebDavMountHasNoPlace) {
  EXPECT_FALSE(PlaceOfLocalPath((folder.Path() / "a.xlsx").native()));
  EXPECT_FALSE(PlaceOfLocalPath("a.xlsx"));
  EXPECT_FALSE(PlaceOfLocalPath(""));
  EXPECT_FALSE(PlaceOfLocalPath(std::string(5000, 'a')));
}

}  // namespace
}  // namespace velandoc
