// Files below WebDAV mounts, by given mount tables.
#include "platform/posix/shell/mount_table.h"

#include <gtest/gtest.h>

namespace velandoc {
namespace {

std::string Find(std::string_view path, std::string_view mounts) {
  const auto place = FindWebDavPlace(path, mounts);
  return place ? place->Url() : "";
}

// As a machine with both kinds has it.
constexpr const char* kMounts =
    "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
    "30 22 0:26 / /proc rw,nosuid - proc proc rw\n"
    "41 22 0:40 / /mnt/dav rw,nosuid,nodev shared:20 - fuse https://server:8443/sites/a "
    "rw,user_id=0,group_id=0\n"
    "42 22 0:41 / /mnt/my\\040files rw - davfs http://server/Shared%20Documents rw\n"
    "43 41 0:42 / /mnt/dav/scratch rw - tmpfs tmpfs rw\n"
    "44 22 0:40 /reports/2009 /srv/reports rw shared:20 - fuse https://server:8443/sites/a rw\n"
    "45 22 0:43 / /run/user/1000/gvfs rw master:2 propagate_from:1 - fuse.gvfsd-fuse gvfsd-fuse "
    "rw,user_id=1000\n"
    "46 22 0:44 / /mnt/remote rw - fuse.sshfs jane@server:/home rw\n"
    "47 22 0:45 / /mnt/web rw - cifs //server/share rw\n"
    "a line that is none\n";

struct PathCase {
  const char* path;
  const char* url;  // empty: on no WebDAV server
};

constexpr PathCase kPathCases[] = {
    {"/mnt/dav/b.xlsx", "https://server:8443/sites/a/b.xlsx"},
    {"/mnt/dav/Shared Documents/b.xlsx", "https://server:8443/sites/a/Shared Documents/b.xlsx"},
    {"/mnt/dav", "https://server:8443/sites/a"},
    {"/mnt/dav/", "https://server:8443/sites/a"},
    {"/mnt/my files/c.xlsx", "http://server/Shared Documents/c.xlsx"},
    {"/mnt/dav/50%/d#.xlsx", "https://server:8443/sites/a/50%25/d%23.xlsx"},
    // A file system within the mount is its own; the name of a mount as a beginning is no mount.
    {"/mnt/dav/scratch/b.xlsx", ""},
    {"/mnt/davros/b.xlsx", ""},
    // A bind mount of a folder inside.
    {"/srv/reports/q1.xlsx", "https://server:8443/sites/a/reports/2009/q1.xlsx"},
    {"/run/user/1000/gvfs/dav:host=server,ssl=true,port=8443,prefix=%2Fsites%2Fa/b c.xlsx",
     "https://server:8443/sites/a/b c.xlsx"},
    {"/run/user/1000/gvfs/dav:host=server", "http://server"},
    {"/run/user/1000/gvfs/sftp:host=server/b.xlsx", ""},
    {"/run/user/1000/gvfs", ""},
    {"/mnt/remote/b.xlsx", ""},
    {"/mnt/web/b.xlsx", ""},
    {"/home/jane/b.xlsx", ""},
    {"/", ""},
};

TEST(MountTableTest, FilesBelowWebDavMountsHaveUrls) {
  for (const PathCase& test : kPathCases) {
    EXPECT_EQ(Find(test.path, kMounts), test.url) << test.path;
  }
}

TEST(MountTableTest, OfTwoMountsAtOneFolderTheLastCounts) {
  const std::string first = "41 22 0:40 / /mnt/dav rw - fuse http://first/ rw\n";
  const std::string second = "42 22 0:41 / /mnt/dav rw - fuse http://second/ rw\n";
  EXPECT_EQ(Find("/mnt/dav/a", first + second), "http://second/a");
  EXPECT_EQ(Find("/mnt/dav/a", second + first), "http://first/a");
}

TEST(MountTableTest, AMountAtTheRootTakesAll) {
  EXPECT_EQ(Find("/a/b", "22 1 0:1 / / rw - fuse http://server/x rw\n"), "http://server/x/a/b");
}

TEST(MountTableTest, BrokenTablesHaveNoMounts) {
  for (const char* mounts :
       {"", "\n\n", "41 22 0:40 / /mnt/dav rw", "41 22 0:40 / /mnt/dav rw - fuse",
        "41 22 0:40 / /mnt/dav rw fuse http://server/ rw", "- - - - - - - - -"}) {
    EXPECT_EQ(Find("/mnt/dav/a", mounts), "") << mounts;
  }
}

}  // namespace
}  // namespace velandoc
