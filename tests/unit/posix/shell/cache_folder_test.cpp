// Where the browser's cache is on Linux.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/posix/path_text.h"
#include "platform/shell.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/temporary_folder.h"

namespace velandoc {
namespace {

using test::EnvironmentScope;

class CacheFolder : public ::testing::Test {
 protected:
  // "none" if there is none, and then the buffer must be as it was.
  static std::string Ask(int folder = CSIDL_INTERNET_CACHE) {
    OLECHAR path[260] = {u'k'};
    const BOOL found = SystemPort<Shell>().SHGetSpecialFolderPathW(nullptr, path, folder, FALSE);
    EXPECT_TRUE(found || WideView(path) == u"k");
    return found ? PathToUtf8(path) : "none";
  }

  const testing::TemporaryFolder m_folder;
  const std::string m_home = m_folder.Path().string();
};

TEST_F(CacheFolder, IsTheEnvironmentsOrBelowHome) {
  const EnvironmentScope home("HOME", m_home.c_str());
  {
    const EnvironmentScope cache("XDG_CACHE_HOME", (m_home + "/own").c_str());
    EXPECT_EQ(Ask(), m_home + "/own/velandoc");
  }
  for (const char* useless : {static_cast<const char*>(nullptr), "", "relative"}) {
    const EnvironmentScope cache("XDG_CACHE_HOME", useless);
    EXPECT_EQ(Ask(), m_home + "/.cache/velandoc");
  }
  EXPECT_EQ(Ask(CSIDL_INTERNET_CACHE + 1), "none");
}

TEST_F(CacheFolder, IsMadeForTheUserAloneIfItIsNotThere) {
  const EnvironmentScope home("HOME", m_home.c_str());
  const EnvironmentScope cache("XDG_CACHE_HOME", nullptr);
  ASSERT_EQ(Ask(), m_home + "/.cache/velandoc");
  for (const char* folder : {"/.cache", "/.cache/velandoc"}) {
    struct stat status;
    ASSERT_EQ(stat((m_home + folder).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U) << folder;
  }
  EXPECT_EQ(Ask(), m_home + "/.cache/velandoc") << "the second time it is there";
}

TEST_F(CacheFolder, IsNoneWithoutAHomeOrWhereItCannotBe) {
  const EnvironmentScope cache("XDG_CACHE_HOME", nullptr);
  {
    const EnvironmentScope home("HOME", nullptr);
    EXPECT_EQ(Ask(), "none");
  }
  {
    const EnvironmentScope home("HOME", (m_home + "/none/home").c_str());
    EXPECT_EQ(Ask(), "none");
  }
  const EnvironmentScope home("HOME", (m_home + "/" + std::string(240, 'x')).c_str());
  EXPECT_EQ(Ask(), "none") << "the path passes the buffer";
}

}  // namespace
}  // namespace velandoc
