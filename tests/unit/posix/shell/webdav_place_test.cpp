// The names of places on WebDAV servers.
#include "platform/posix/shell/webdav_place.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

struct NameCase {
  const char* name;
  const char* url;  // empty: no place
};

std::string UrlOf(const std::optional<WebDavPlace>& place) { return place ? place->Url() : ""; }

constexpr NameCase kUncCases[] = {
    {R"(\\server\share\a.xlsx)", "http://server/share/a.xlsx"},
    {R"(\\server@8080\share\a.xlsx)", "http://server:8080/share/a.xlsx"},
    {R"(\\server@SSL\share\a)", "https://server/share/a"},
    {R"(\\server@ssl\share\a)", "https://server/share/a"},
    {R"(\\server@SSL@8443\share\a)", "https://server:8443/share/a"},
    {R"(\\server\DavWWWRoot\sites\a)", "http://server/sites/a"},
    {R"(\\server@8080\davwwwroot\sites\a)", "http://server:8080/sites/a"},
    {R"(\\server@SSL@8443\DavWWWRoot\x y\a)", "https://server:8443/x y/a"},
    {R"(\\server\DavWWWRoot)", "http://server"},
    {R"(\\server\DavWWWRoot\)", "http://server"},
    {R"(\\server\DavWWWRootX\a)", "http://server/DavWWWRootX/a"},
    {R"(\\server\share\DavWWWRoot\a)", "http://server/share/DavWWWRoot/a"},
    {R"(\\server)", "http://server"},
    {R"(\\server\share\)", "http://server/share"},
    {R"(\\server/share/a)", "http://server/share/a"},
    {R"(\\server@80\s)", "http://server/s"},
    {R"(\\server@443\s)", "http://server:443/s"},
    {R"(\\server@SSL@443\s)", "https://server/s"},
    {R"(\\server@SSL@80\s)", "https://server:80/s"},
    {R"(\\server\50%20\a)", "http://server/50%20/a"},
    {R"(\\)", ""},
    {R"(\\\share)", ""},
    {R"(\\@SSL\s)", ""},
    {R"(\a.xlsx)", ""},
    {R"(\/server\share)", ""},
    {"//server/share", ""},
    {R"(\\server@\s)", ""},
    {R"(\\server@abc\s)", ""},
    {R"(\\server@SSLx\s)", ""},
    {R"(\\server@SSL@\s)", ""},
    {R"(\\server@SSL@x\s)", ""},
    {R"(\\server@8080x\s)", ""},
    {R"(\\server@8080@SSL\s)", ""},
    {R"(\\server@SSL@8443@9\s)", ""},
    {R"(\\server@0\s)", ""},
    {R"(\\server@-1\s)", ""},
    {R"(\\server@65536\s)", ""},
    {R"(\\?\UNC\server\share\a)", ""},
    {R"(\\.\pipe\x)", ""},
    {"", ""},
};

TEST(WebDavPlaceTest, UncNamesInAllForms) {
  for (const NameCase& test : kUncCases) {
    EXPECT_EQ(UrlOf(PlaceOfUncName(test.name)), test.url) << test.name;
  }
}

constexpr NameCase kShareUrlCases[] = {
    {"https://server/dav", "https://server/dav"},
    {"HTTP://server:8080/dav/", "http://server:8080/dav"},
    {"https://server", "https://server"},
    {"https://server:/", "https://server"},
    {"https://jane@server:8443/sites/a//b", "https://server:8443/sites/a/b"},
    {"https://server/Shared%20Documents/50%25", "https://server/Shared Documents/50%25"},
    {"http://[::1]:8080/x", "http://[::1]:8080/x"},
    {"http://[::1]/x", "http://[::1]/x"},
    {"http://server:0/", ""},
    {"http://server:x/", ""},
    {"http:///x", ""},
    {"ftp://server/x", ""},
    {"server:/export", ""},
    {"https://server/x?y", ""},
    {"https://server/x#y", ""},
    {"", ""},
};

TEST(WebDavPlaceTest, SharesOfDavfs) {
  for (const NameCase& test : kShareUrlCases) {
    EXPECT_EQ(UrlOf(PlaceOfShareUrl(test.name)), test.url) << test.name;
  }
}

constexpr NameCase kGvfsCases[] = {
    {"dav:host=server", "http://server"},
    {"dav:host=server,ssl=true", "https://server"},
    {"dav:host=server,ssl=false,port=8080", "http://server:8080"},
    {"dav:host=server,ssl=true,user=jane,port=8443,prefix=%2Fsites%2Fa",
     "https://server:8443/sites/a"},
    {"dav:prefix=%2FShared%20Documents%2F50%25,host=server",
     "http://server/Shared Documents/50%25"},
    {"dav:host=%5B::1%5D,port=8080", "http://[::1]:8080"},
    {"dav:ssl=true", ""},
    {"dav:host=server,port=no", ""},
    {"dav+sd:host=Files._webdav._tcp.local", ""},
    {"sftp:host=server", ""},
    {"smb-share:server=server,share=s", ""},
    {"", ""},
};

TEST(WebDavPlaceTest, FoldersOfGvfs) {
  for (const NameCase& test : kGvfsCases) {
    EXPECT_EQ(UrlOf(PlaceOfGvfsFolder(test.name)), test.url) << test.name;
  }
}

// A drive's UNC name goes back through the conversion of UNC names, with a file's path behind it.
TEST(WebDavPlaceTest, AUncNameLeadsBackToItsUrl) {
  for (const char* url : {"http://server", "https://server/a b", "http://server:8080/sites/a",
                          "https://server:8443/DavWWWRoot/50%25", "https://[::1]:8443/x"}) {
    const auto place = PlaceOfShareUrl(url);
    ASSERT_TRUE(place) << url;
    EXPECT_EQ(UrlOf(PlaceOfUncName(place->UncName())), url);
    EXPECT_EQ(UrlOf(PlaceOfUncName(place->UncName() + "\\b\\c.xlsx")),
              std::string(url) + "/b/c.xlsx");
  }
  EXPECT_EQ(PlaceOfShareUrl("https://server:8443/a b")->UncName(),
            R"(\\server@SSL@8443\DavWWWRoot\a b)");
}

// A name on a mount is the file's own, so what a URL would take for more than a name is escaped.
TEST(WebDavPlaceTest, NamesOfFilesAreEscapedWhereAUrlWouldReadThem) {
  WebDavPlace place;
  place.host = "server";
  place.Append("/50% off#1/what?.xlsx");
  EXPECT_EQ(place.Url(), "http://server/50%25 off%231/what%3f.xlsx");
}

}  // namespace
}  // namespace velandoc
