// Paths to URLs: the calls in their order, with the buffers that they get, and what becomes of
// their failures.
#include "document/unc_path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/shell.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Printable;

/// Splits as the system does, plays the two others from tables and writes down their calls, with
/// the size and the state of the buffers.
class ScriptedShell final : public Shell {
 public:
  int _wsplitpath_s(LPCWSTR path, LPWSTR drive, std::size_t driveSize, LPWSTR folder,
                    std::size_t folderSize, LPWSTR name, std::size_t nameSize, LPWSTR extension,
                    std::size_t extensionSize) override {
    calls.push_back("_wsplitpath_s " + std::to_string(driveSize) + " " +
                    std::to_string(folderSize) + " " + std::to_string(nameSize) + " " +
                    std::to_string(extensionSize));
    return SystemPort<Shell>()._wsplitpath_s(path, drive, driveSize, folder, folderSize, name,
                                             nameSize, extension, extensionSize);
  }
  DWORD WNetGetConnectionW(LPCWSTR localName, LPWSTR remoteName, DWORD* size) override {
    Note("WNetGetConnectionW", localName, remoteName, *size);
    return Play(drives, localName, remoteName, size);
  }
  DWORD DavGetHTTPFromUNCPath(LPCWSTR uncPath, LPWSTR url, DWORD* size) override {
    Note("DavGetHTTPFromUNCPath", uncPath, url, *size);
    return Play(urls, uncPath, url, size);
  }
  BOOL SHGetSpecialFolderPathW(HWND, LPWSTR, int, BOOL) override { return FALSE; }

  std::map<WideString, WideString> drives;
  std::map<WideString, WideString> urls;
  std::vector<std::string> calls;

 private:
  void Note(const std::string& name, LPCWSTR text, LPCWSTR buffer, DWORD size) {
    const bool isZero = std::all_of(buffer, buffer + size, [](OLECHAR c) { return c == 0; });
    calls.push_back(name + " " + Printable(text) + " " + std::to_string(size) +
                    (isZero ? "" : " not zeroed"));
  }
  static DWORD Play(const std::map<WideString, WideString>& table, LPCWSTR text, LPWSTR buffer,
                    DWORD* size) {
    const auto found = table.find(text);
    if (found == table.end()) return ERROR_INVALID_PARAMETER;
    const WideString& answer = found->second;
    if (answer.size() >= *size) return ERROR_INSUFFICIENT_BUFFER;
    std::copy_n(answer.c_str(), answer.size() + 1, buffer);
    return ERROR_SUCCESS;
  }
};

class UncPathTest : public ::testing::Test {
 protected:
  using Calls = std::vector<std::string>;

  ScriptedShell shell;
  PortScope<Shell> scope{shell};
};

TEST_F(UncPathTest, AUncPathHasNoDriveAndIsConvertedAsItIs) {
  shell.urls[OLESTR("\\\\server\\share\\a.xlsx")] = OLESTR("http://server/share/a.xlsx");
  EXPECT_EQ(UncToHttpUrl(OLESTR("\\\\server\\share\\a.xlsx")),
            OLESTR("http://server/share/a.xlsx"));
  EXPECT_EQ(shell.calls, Calls({"_wsplitpath_s 260 260 260 260",
                                "DavGetHTTPFromUNCPath \\\\server\\share\\a.xlsx 1024"}));
}

TEST_F(UncPathTest, AMappedDriveIsItsRemoteNameAndTheRestOfThePath) {
  shell.drives[OLESTR("Z:")] = OLESTR("\\\\server\\share");
  shell.urls[OLESTR("\\\\server\\share")] = OLESTR("http://never.used/");
  shell.urls[OLESTR("\\\\server\\share\\b c\\a.xlsx")] = OLESTR("http://server/share/b c/a.xlsx");
  EXPECT_EQ(UncToHttpUrl(OLESTR("Z:\\b c\\a.xlsx")), OLESTR("http://server/share/b c/a.xlsx"));
  // The share's root is converted for nothing, before the file, and with the larger buffer.
  EXPECT_EQ(shell.calls, Calls({"_wsplitpath_s 260 260 260 260", "WNetGetConnectionW Z: 1024",
                                "DavGetHTTPFromUNCPath \\\\server\\share 2024",
                                "DavGetHTTPFromUNCPath \\\\server\\share\\b c\\a.xlsx 1024"}));
}

TEST_F(UncPathTest, AnUnmappedDriveLeavesAPathThatConvertsToNothing) {
  EXPECT_EQ(UncToHttpUrl(OLESTR("Z:\\a.xlsx")), OLESTR(""));
  EXPECT_EQ(shell.calls,
            Calls({"_wsplitpath_s 260 260 260 260", "WNetGetConnectionW Z: 1024",
                   "DavGetHTTPFromUNCPath  2024", "DavGetHTTPFromUNCPath \\a.xlsx 1024"}));
}

TEST_F(UncPathTest, AShareThatIsNotWebDavGivesNothing) {
  shell.drives[OLESTR("Z:")] = OLESTR("\\\\files\\share");
  EXPECT_EQ(UncToHttpUrl(OLESTR("Z:\\a.xlsx")), OLESTR(""));
  EXPECT_EQ(shell.calls.size(), 4U);
}

TEST_F(UncPathTest, APathWithAPartOf260CharactersCountsAsOneWithoutADrive) {
  shell.drives[OLESTR("Z:")] = OLESTR("\\\\server\\share");
  for (const std::size_t length : {259U, 260U}) {
    shell.calls.clear();
    const WideString path = OLESTR("Z:\\") + WideString(length, OLESTR('n'));
    shell.urls[path] = OLESTR("http://whole/");
    shell.urls[OLESTR("\\\\server\\share\\") + WideString(length, OLESTR('n'))] =
        OLESTR("http://drive/");
    EXPECT_EQ(UncToHttpUrl(path.c_str()),
              length == 260 ? OLESTR("http://whole/") : OLESTR("http://drive/"));
    EXPECT_EQ(shell.calls.size(), length == 260 ? 2U : 4U);
  }
}

TEST_F(UncPathTest, AUrlOf1023CharactersIsTheLongest) {
  const WideString longest(1023, OLESTR('u'));
  shell.urls[OLESTR("\\\\s\\a")] = longest;
  shell.urls[OLESTR("\\\\s\\b")] = longest + OLESTR('u');
  EXPECT_EQ(UncToHttpUrl(OLESTR("\\\\s\\a")), longest);
  EXPECT_EQ(UncToHttpUrl(OLESTR("\\\\s\\b")), OLESTR(""));
}

TEST_F(UncPathTest, ARemoteNameOf1024CharactersIsNone) {
  shell.drives[OLESTR("Z:")] = WideString(1024, OLESTR('r'));
  shell.urls[OLESTR("\\a")] = OLESTR("http://without/");
  EXPECT_EQ(UncToHttpUrl(OLESTR("Z:\\a")), OLESTR("http://without/"));
}

TEST(UncPathOfTheSystem, NamesOfSharesAreUrlsAndOtherPathsNothing) {
  EXPECT_EQ(UncToHttpUrl(OLESTR("\\\\server@SSL@8443\\share\\a.xlsx")),
            OLESTR("https://server:8443/share/a.xlsx"));
  EXPECT_EQ(UncToHttpUrl(OLESTR("")), OLESTR(""));
  EXPECT_EQ(UncToHttpUrl(OLESTR("Q:\\a.xlsx")), OLESTR(""));
  EXPECT_EQ(UncToHttpUrl(OLESTR("\\a.xlsx")), OLESTR(""));
}

}  // namespace
}  // namespace velandoc
