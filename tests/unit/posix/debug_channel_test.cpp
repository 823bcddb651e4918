#include "platform/posix/debug_channel.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

#include "hdfs/automation_funnel.h"
#include "platform/posix/last_error.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/temporary_folder.h"

namespace velandoc {
namespace {

class DebugChannelTest : public ::testing::Test {
 protected:
  std::string Written() const {
    std::ifstream file(m_path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
  }

  testing::TemporaryFolder m_folder;
  std::string m_path = (m_folder.Path() / "debug.log").string();
};

TEST_F(DebugChannelTest, IsShutUnlessItIsAskedFor) {
  for (const char* value : {static_cast<const char*>(nullptr), ""}) {
    const test::EnvironmentScope closed("VELANDOC_DEBUG", value);
    ::testing::internal::CaptureStderr();
    WriteToDebugChannel(u"secret");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  }
}

TEST_F(DebugChannelTest, WritesALineOfUtf8ToStandardError) {
  const test::EnvironmentScope open("VELANDOC_DEBUG", "stderr");
  ::testing::internal::CaptureStderr();
  WriteToDebugChannel(u"caf\u00e9");
  WriteToDebugChannel(u"");
  WriteToDebugChannel(nullptr);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "caf\xC3\xA9\n\n");
}

TEST_F(DebugChannelTest, AppendsToAFileOfItsOwnersAlone) {
  const test::EnvironmentScope open("VELANDOC_DEBUG", m_path.c_str());
  WriteToDebugChannel(u"one");
  WriteToDebugChannel(u"two");
  EXPECT_EQ(Written(), "one\ntwo\n");
  struct stat status {};
  ASSERT_EQ(stat(m_path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(DebugChannelTest, AServersControlCharactersGoOutAsBlanks) {
  const test::EnvironmentScope open("VELANDOC_DEBUG", m_path.c_str());
  WriteToDebugChannel(u"a\r\nException in\x1b[2J\tb\x7f");
  EXPECT_EQ(Written(), "a  Exception in [2J b \n");
}

TEST_F(DebugChannelTest, WhatCannotBeWrittenIsDropped) {
  const test::EnvironmentScope open("VELANDOC_DEBUG", "/nowhere/at/all");
  ThreadLastError() = 77;
  WriteToDebugChannel(u"lost");
  EXPECT_EQ(ThreadLastError(), 77U);
}

TEST_F(DebugChannelTest, HoldsOneLineForAFailedMethod) {
  const test::EnvironmentScope open("VELANDOC_DEBUG", m_path.c_str());
  EXPECT_EQ(AutomationFunnel("CHdfsClient::Upload",
                             []() -> FunnelResult { throw _com_error(E_POINTER); }),
            E_POINTER);
  AutomationFunnel("CHdfsClient::Upload", []() -> FunnelResult { return E_FAIL; });
  EXPECT_EQ(Written(), "Exception in automation method [CHdfsClient::Upload]: Invalid pointer\n");
}

}  // namespace
}  // namespace velandoc
