// A CHdfsClientWinHttp over a scripted WinHttp.
//
// Reading ConnectionError clears the thread's error object in this class, so OnTheThread is asked
// before Error.
#pragma once

#include "tests/support/scripted_winhttp.h"
#include "tests/unit/hdfs/hdfs_host_test.h"

namespace velandoc::testing {

inline constexpr char kUnknownError[] = "Unknown connection error with server.";

class HdfsClientWinHttpTest : public HdfsHostTest {
 protected:
  HdfsClientWinHttpTest();
  ~HdfsClientWinHttpTest() override;

  static ComPtr<IHdfsClient> NewClient();
  /// "VERB target flags" of every request that was opened.
  std::vector<std::string> Requests() const;
  /// The text, whose result must be S_OK.
  std::string GetText();

  ScriptedWinHttp m_platform;
  PortScope<WinHttp> m_platformScope{m_platform};
};

}  // namespace velandoc::testing
