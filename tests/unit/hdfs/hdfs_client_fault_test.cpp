// Every operation with the N-th call of a port failing, for every N and each port: what was opened
// is closed (the scripted ports count), and no local file is left.
#include "tests/support/fault_wininet.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"
#include "tests/unit/hdfs/hdfs_fault_fixture.h"

namespace velandoc::testing {
namespace {

class HdfsClientFaultTest : public HdfsFaultTest<HdfsClientTest, Answer> {
 protected:
  int OpenHandles() const override { return m_platform.OpenHandles(); }
  void Prepare() override { m_platform.dialogResults = {ERROR_CANCELLED}; }
};

TEST_F(HdfsClientFaultTest, WhateverCallFailsNothingIsLeftOpenOrBehind) {
  for (const HdfsOperation& operation : HdfsOperations()) {
    int failures = 0;
    FailEachCall<WinInet>(
        operation,
        [&](int failAt) {
          return FaultWinInet(m_platform, failAt, ERROR_INTERNET_CONNECTION_RESET);
        },
        [&](HRESULT result, const std::string& where, bool hasFailed) {
          if (FAILED(result)) {
            ++failures;
            EXPECT_EQ(result, E_FAIL) << where;
            EXPECT_NE(Error(), "none") << where;
          }
          if (!hasFailed) {
            EXPECT_EQ(result, S_OK) << where;
          }
        });
    EXPECT_GE(failures, 5) << operation.name;
  }
}

TEST_F(HdfsClientFaultTest, WhateverCallOfTheFilesFailsNothingIsLeftOpenOrBehind) {
  // A named download: made, two writes and the empty one at the end, closed. The folder, and the
  // random name, for the two others. The preview writes its mark and one line. A file to upload is
  // opened.
  EXPECT_EQ(FailEachCallOfTheFiles(), 5 + 6 + 7 + 6 + 1);
}

TEST_F(HdfsClientFaultTest, WhateverFailsInTellingOfAFailureTheResultStands) {
  FailEachCallOfTelling({{.status = OLESTR("500"), .chunks = {"no"}}});
  FailEachCallOfTelling({{.status = OLESTR("")}});
}

TEST_F(HdfsClientFaultTest, APreviewsReadThatFailsWithoutAnErrorHasATextOfItsOwn) {
  m_platform.answers = {{.chunks = {"one\n"}}};
  // Open, connect, request, send, status, and then the first read.
  FaultWinInet fault(m_platform, 6, ERROR_SUCCESS);
  const PortScope<WinInet> scope(fault);
  Bstr saved;
  EXPECT_EQ(m_client->DownloadPreview(1, saved.Receive()), E_FAIL);
  EXPECT_EQ(Error(), "200 Error reading HDFS file from network.");
  EXPECT_EQ(OnTheThread(), "none");
}

}  // namespace
}  // namespace velandoc::testing
