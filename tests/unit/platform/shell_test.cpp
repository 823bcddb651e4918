// The Shell port: the same tables against the system's functions and ours.
#include "platform/shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "platform/text.h"

namespace velandoc {
namespace {

#ifdef _WIN32
constexpr bool kIsWindows = true;
#else
constexpr bool kIsWindows = false;
#endif

struct Parts {
  WideString drive;
  WideString folder;
  WideString name;
  WideString extension;
  bool operator==(const Parts&) const = default;
};

struct Split {
  int result = 0;
  Parts parts;
};

Split SplitWithRoom(WideView path, std::size_t drive, std::size_t folder, std::size_t name,
                    std::size_t extension) {
  OLECHAR buffers[4][300];
  for (auto& buffer : buffers) std::fill(std::begin(buffer), std::end(buffer), OLECHAR{'k'});
  Split split;
  split.result =
      CurrentPort<Shell>()._wsplitpath_s(WideString(path).c_str(), buffers[0], drive, buffers[1],
                                         folder, buffers[2], name, buffers[3], extension);
  split.parts = {buffers[0], buffers[1], buffers[2], buffers[3]};
  return split;
}

struct SplitCase {
  LPCWSTR path;
  Parts parts;
};

const SplitCase kSplitCases[] = {
    {OLESTR("\\\\server\\share\\a.xlsx"),
     {{}, OLESTR("\\\\server\\share\\"), OLESTR("a"), OLESTR(".xlsx")}},
    {OLESTR("Z:\\a.xlsx"), {OLESTR("Z:"), OLESTR("\\"), OLESTR("a"), OLESTR(".xlsx")}},
    {OLESTR("Z:\\b c\\a.xlsx"), {OLESTR("Z:"), OLESTR("\\b c\\"), OLESTR("a"), OLESTR(".xlsx")}},
    {OLESTR("Z:a"), {OLESTR("Z:"), {}, OLESTR("a"), {}}},
    {OLESTR("Z:"), {OLESTR("Z:"), {}, {}, {}}},
    {OLESTR("1:\\x"), {OLESTR("1:"), OLESTR("\\"), OLESTR("x"), {}}},
    {OLESTR("::\\x"), {OLESTR("::"), OLESTR("\\"), OLESTR("x"), {}}},
    {OLESTR(":x"), {{}, {}, OLESTR(":x"), {}}},
    {OLESTR("ab:\\c"), {{}, OLESTR("ab:\\"), OLESTR("c"), {}}},
    {OLESTR("C:/a\\b/c.d"), {OLESTR("C:"), OLESTR("/a\\b/"), OLESTR("c"), OLESTR(".d")}},
    {OLESTR("/mnt/x.tar.gz"), {{}, OLESTR("/mnt/"), OLESTR("x.tar"), OLESTR(".gz")}},
    {OLESTR(".profile"), {{}, {}, {}, OLESTR(".profile")}},
    {OLESTR("dir\\.x"), {{}, OLESTR("dir\\"), {}, OLESTR(".x")}},
    {OLESTR("a.b\\c"), {{}, OLESTR("a.b\\"), OLESTR("c"), {}}},
    {OLESTR("x."), {{}, {}, OLESTR("x"), OLESTR(".")}},
    {OLESTR(".."), {{}, {}, OLESTR("."), OLESTR(".")}},
    {OLESTR("a\\.."), {{}, OLESTR("a\\"), OLESTR("."), OLESTR(".")}},
    {OLESTR(""), {}},
};

TEST(ShellTest, PathsAreSplit) {
  for (const SplitCase& test : kSplitCases) {
    const Split split = SplitWithRoom(test.path, 260, 260, 260, 260);
    EXPECT_EQ(split.result, 0);
    EXPECT_EQ(split.parts, test.parts)
        << std::string(test.parts.folder.begin(), test.parts.folder.end());
  }
}

TEST(ShellTest, APartThatDoesNotFitEmptiesAll) {
  struct {
    std::size_t drive;
    std::size_t folder;
    std::size_t name;
    std::size_t extension;
    bool fits;
  } const rows[] = {
      {3, 6, 3, 3, true},        {2, 260, 260, 260, false}, {260, 5, 260, 260, false},
      {260, 260, 2, 260, false}, {260, 260, 260, 2, false},
  };
  for (const auto& row : rows) {
    const Split split =
        SplitWithRoom(OLESTR("Z:\\abc\\de.f"), row.drive, row.folder, row.name, row.extension);
    EXPECT_EQ(split.result, row.fits ? 0 : ERANGE);
    const Parts whole = {OLESTR("Z:"), OLESTR("\\abc\\"), OLESTR("de"), OLESTR(".f")};
    EXPECT_EQ(split.parts, row.fits ? whole : Parts{});
  }
}

struct NameCase {
  LPCWSTR name;
  LPCWSTR url;                // empty: no WebDAV share
  LPCWSTR windows = nullptr;  // where Wine answers otherwise
};

constexpr NameCase kNameCases[] = {
    {OLESTR("\\\\server\\share\\a.xlsx"), OLESTR("http://server/share/a.xlsx")},
    {OLESTR("\\\\server@8080\\share\\a.xlsx"), OLESTR("http://server:8080/share/a.xlsx")},
    {OLESTR("\\\\server@SSL\\share\\a"), OLESTR("https://server/share/a")},
    {OLESTR("\\\\server@ssl\\share\\a"), OLESTR("https://server/share/a")},
    {OLESTR("\\\\server@SSL@8443\\x y\\\u00e9"), OLESTR("https://server:8443/x y/\u00e9")},
    {OLESTR("\\\\server@80\\s"), OLESTR("http://server/s")},
    {OLESTR("\\\\server@SSL@443\\s"), OLESTR("https://server/s")},
    {OLESTR("\\\\server@SSL@80\\s"), OLESTR("https://server:80/s")},
    {OLESTR("\\\\server"), OLESTR("http://server")},
    {OLESTR("\\\\server\\share\\"), OLESTR("http://server/share")},
    {OLESTR("\\\\server/share/a"), OLESTR("http://server/share/a")},
    {OLESTR("\\\\server\\100%\\a"), OLESTR("http://server/100%/a")},
    {OLESTR(""), OLESTR("")},
    {OLESTR("\\a.xlsx"), OLESTR("")},
    {OLESTR("\\\\"), OLESTR("")},
    {OLESTR("\\/server\\share"), OLESTR("")},
    {OLESTR("\\\\server@\\s"), OLESTR("")},
    {OLESTR("\\\\server@abc\\s"), OLESTR("")},
    {OLESTR("\\\\server@SSLx\\s"), OLESTR("")},
    {OLESTR("\\\\server@SSL@\\s"), OLESTR("")},
    {OLESTR("\\\\server@0\\s"), OLESTR("")},
    // The pseudo share is no folder of the server. Wine does not know it.
    {OLESTR("\\\\server\\DavWWWRoot\\sites\\a"), OLESTR("http://server/sites/a"),
     OLESTR("http://server/DavWWWRoot/sites/a")},
    // Wine reads a number's beginning, whatever follows it and however large it is.
    {OLESTR("\\\\server@8080x\\s"), OLESTR(""), OLESTR("http://server:8080/x/s")},
    {OLESTR("\\\\server@65536\\s"), OLESTR(""), OLESTR("http://server:65536/s")},
    {OLESTR("\\\\\\share"), OLESTR(""), OLESTR("http:///share")},
};

TEST(ShellTest, UncNamesOfWebDavSharesHaveUrls) {
  for (const NameCase& test : kNameCases) {
    const WideView expected = kIsWindows && test.windows != nullptr ? test.windows : test.url;
    SCOPED_TRACE(std::string(expected.begin(), expected.end()));
    OLECHAR url[100] = {OLESTR('k')};
    DWORD size = 100;
    const DWORD result = CurrentPort<Shell>().DavGetHTTPFromUNCPath(test.name, url, &size);
    if (expected.empty()) {
      EXPECT_EQ(result, DWORD{ERROR_INVALID_PARAMETER});
      EXPECT_EQ(WideView(url), OLESTR("k"));
    } else {
      EXPECT_EQ(result, DWORD{ERROR_SUCCESS});
      EXPECT_EQ(WideView(url), expected);
      EXPECT_EQ(size, expected.size() + 1);
    }
  }
}

TEST(ShellTest, AUrlThatDoesNotFitTellsItsSize) {
  OLECHAR url[30] = {OLESTR('k')};
  DWORD size = 26;
  Shell& shell = CurrentPort<Shell>();
  EXPECT_EQ(shell.DavGetHTTPFromUNCPath(OLESTR("\\\\server\\share\\a.xlsx"), url, &size),
            DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(size, 27U);
  EXPECT_EQ(WideView(url), OLESTR("k"));
  EXPECT_EQ(shell.DavGetHTTPFromUNCPath(OLESTR("\\\\server\\share\\a.xlsx"), url, &size),
            DWORD{ERROR_SUCCESS});
}

TEST(ShellTest, ADriveWithoutAShareHasNoRemoteName) {
  for (const LPCWSTR name : {OLESTR("Q"), OLESTR(""), OLESTR("Q:\\"), OLESTR("\\\\s")}) {
    OLECHAR remote[10] = {OLESTR('k')};
    DWORD size = 10;
    const DWORD result = CurrentPort<Shell>().WNetGetConnectionW(name, remote, &size);
    EXPECT_EQ(result, DWORD{1200}) << "ERROR_BAD_DEVICE";
    EXPECT_EQ(WideView(remote), OLESTR("k"));
  }
  OLECHAR remote[10] = {OLESTR('k')};
  DWORD size = 10;
  EXPECT_NE(CurrentPort<Shell>().WNetGetConnectionW(OLESTR("Z:"), remote, &size),
            DWORD{ERROR_SUCCESS});
  EXPECT_EQ(WideView(remote), OLESTR("k"));
}

TEST(ShellTest, TheBrowsersCacheIsAFolder) {
  OLECHAR path[260] = {};
  ASSERT_TRUE(
      SystemPort<Shell>().SHGetSpecialFolderPathW(nullptr, path, CSIDL_INTERNET_CACHE, FALSE));
  EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::path(path)));
}

}  // namespace
}  // namespace velandoc
