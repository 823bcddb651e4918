// A CHdfsClient over a scripted WinInet.
#pragma once

#include "tests/support/scripted_wininet.h"
#include "tests/unit/hdfs/hdfs_host_test.h"

namespace velandoc::testing {

/// Security flags that can be read and written, and uploads that break.
class HdfsWinInet final : public ScriptedWinInet {
 public:
  DWORD securityFlags = 1;
  bool writeFails = false;
  bool endFails = false;

  BOOL InternetQueryOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD* size) override;
  BOOL InternetSetOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD size) override;
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* count) override;
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* out, DWORD flags,
                       DWORD_PTR context) override;
  DWORD GetLastError() override;

 private:
  bool m_ended = false;
};

class HdfsClientTest : public HdfsHostTest {
 protected:
  HdfsClientTest();
  ~HdfsClientTest() override;

  static ComPtr<IHdfsClient> NewClient();
  /// "VERB target flags" of every request that was opened.
  std::vector<std::string> Requests() const;

  HdfsWinInet m_platform;
  PortScope<WinInet> m_platformScope{m_platform};
};

}  // namespace velandoc::testing
