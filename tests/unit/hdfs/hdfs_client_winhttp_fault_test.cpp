// Every operation over WinHTTP with the N-th call of a port failing, for every N and each port.
// Sessions and connections stay open in this form, always; requests and files do not.
#include "tests/support/fault_winhttp.h"
#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"
#include "tests/unit/hdfs/hdfs_fault_fixture.h"

namespace velandoc::testing {
namespace {

class HdfsClientWinHttpFaultTest : public HdfsFaultTest<HdfsClientWinHttpTest, HttpAnswer> {
 protected:
  int OpenHandles() const override { return m_platform.OpenRequests(); }
  /// VerifyServer asks for what the operation before it has left in Op.
  void Prepare() override { m_client->put_Op(Bstr(OLESTR("OPEN")).Get()); }
};

TEST_F(HdfsClientWinHttpFaultTest, WhateverCallFailsNothingIsLeftOpenOrBehind) {
  for (const HdfsOperation& operation : HdfsOperations()) {
    FailEachCall<WinHttp>(
        operation,
        [&](int failAt) {
          return FaultWinHttp(m_platform, failAt, ERROR_WINHTTP_CONNECTION_ERROR);
        },
        [&](HRESULT result, const std::string& where, bool hasFailed) {
          EXPECT_TRUE(result == S_OK || (result == E_FAIL && hasFailed)) << where;
          EXPECT_NE(Error(), "none") << where;
        });
  }
}

TEST_F(HdfsClientWinHttpFaultTest, WhateverCallOfTheFilesFailsNothingIsLeftOpenOrBehind) {
  // As over WinINet, less the empty write at a download's end: the end is known without a read.
  EXPECT_EQ(FailEachCallOfTheFiles(), 4 + 5 + 6 + 6 + 1);
}

TEST_F(HdfsClientWinHttpFaultTest, WhateverFailsInTellingOfAFailureTheResultStands) {
  FailEachCallOfTelling({{.status = OLESTR("500"), .chunks = {"no"}}});
  // The request of an operation fails, and with it all that follow.
  m_platform.failing = {"WinHttpReceiveResponse"};
  FailEachCallOfTelling({{}});
}

}  // namespace
}  // namespace velandoc::testing
