#include "hdfs/hdfs_connection.h"

#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HdfsConnectionTest : public HdfsClientTest {
 protected:
  HdfsConnectionTest() { EXPECT_EQ(m_connection.Open(nullptr, nullptr), S_OK); }
  std::size_t Sends() const { return m_platform.CallsOf("HttpSendRequestW").size(); }
  CHdfsConnection m_connection{OLESTR("http://h/a%20b c?q")};
};

TEST_F(HdfsConnectionTest, TheUrlGoesOutAsItStands) {
  EXPECT_THAT(Requests(), ElementsAre("GET /a%20b c?q 0x400200"));
}

TEST_F(HdfsConnectionTest, WithoutARequestNothingIsSent) {
  CHdfsConnection closed(OLESTR("http://h/"));
  EXPECT_EQ(closed.SendWithRetry(), E_FAIL);
  EXPECT_EQ(Sends(), 0U);
}

TEST_F(HdfsConnectionTest, AnAnswerIsNeverAskedAbout) {
  for (const LPCOLESTR status :
       {OLESTR("201"), OLESTR("307"), OLESTR("401"), OLESTR("407"), OLESTR("404"), OLESTR("500")}) {
    m_platform.answers = {{.status = status}};
    m_connection.m_lastError = 5;
    EXPECT_EQ(m_connection.SendWithRetry(), E_FAIL);
    EXPECT_EQ(std::to_string(m_connection.m_statusCode), Printable(status));
    EXPECT_EQ(m_connection.m_lastError, 0U);
  }
  m_platform.answers = {{}};
  EXPECT_EQ(m_connection.SendWithRetry(), S_OK);
  EXPECT_THAT(m_platform.CallsOf("InternetErrorDlg"), IsEmpty());
}

TEST_F(HdfsConnectionTest, EachErrorHasItsOwnAnswersThatSendAgain) {
  const struct {
    DWORD error;
    DWORD answer;
    bool again;
  } rows[] = {
      {12014, 0, true},     {12014, 12032, true},  {12014, 1223, false},  {12039, 0, true},
      {12039, 12032, true}, {12039, 1223, false},  {12043, 0, true},      {12043, 12032, true},
      {12043, 1223, false}, {12037, 0, true},      {12037, 12032, false}, {12037, 1223, false},
      {12038, 0, true},     {12038, 12032, false}, {12045, 0, true},      {12045, 12032, false},
      {12045, 1223, false}, {12029, 0, false},     {12029, 12032, true},  {12029, 1223, false},
      {12007, 0, false},    {12007, 12032, true},
  };
  for (const auto& row : rows) {
    m_platform.calls.clear();
    m_platform.answers = {{.error = row.error}};
    if (row.again) m_platform.answers.push_back({});
    m_platform.dialogResults = {row.answer};
    EXPECT_EQ(m_connection.SendWithRetry(), row.again ? S_OK : E_FAIL)
        << row.error << " " << row.answer;
    EXPECT_EQ(m_connection.m_lastError, row.again ? 0 : row.error);
    EXPECT_EQ(Sends(), row.again ? 2U : 1U);
    EXPECT_THAT(m_platform.CallsOf("InternetErrorDlg"),
                ElementsAre("InternetErrorDlg(active, 3, " + std::to_string(row.error) + ", 7)"));
  }
}

TEST_F(HdfsConnectionTest, CertificateErrorsThatAreNotReportedAreLetPassWithoutADialog) {
  m_connection.m_reportCertificateErrors = false;
  for (const DWORD error : {12037U, 12038U, 12045U}) {
    m_platform.securityFlags = 1;
    m_platform.answers = {{.error = error}, {}};
    EXPECT_EQ(m_connection.SendWithRetry(), S_OK);
    EXPECT_EQ(m_platform.securityFlags, 0x3381U) << "what was set stays";
  }
  EXPECT_THAT(m_platform.CallsOf("InternetErrorDlg"), IsEmpty());
  m_platform.answers = {{.error = 12014}};
  m_platform.dialogResults = {1223};
  EXPECT_EQ(m_connection.SendWithRetry(), E_FAIL) << "others are still asked about";
  EXPECT_EQ(m_platform.CallsOf("InternetErrorDlg").size(), 1U);
}

TEST_F(HdfsConnectionTest, TheBodyGoesToTheSinkChunkByChunk) {
  class Sink final : public CFile {
   public:
    void Write(const void*, UINT count) override { counts.push_back(count); }
    std::vector<UINT> counts;
  } sink;
  m_connection.m_sink = &sink;
  m_platform.answers = {{.chunks = {std::string(8191, 'a'), std::string(8192, 'b'), "c"}}};
  EXPECT_EQ(m_connection.SendWithRetry(), S_OK);
  EXPECT_TRUE(m_connection.ReadResponse());
  EXPECT_THAT(sink.counts, ElementsAre(8191, 8192, 1, 0)) << "also when there are none";
  m_platform.answers = {{.chunks = {"x"}, .readError = 12030}};
  EXPECT_EQ(m_connection.SendWithRetry(), S_OK);
  EXPECT_FALSE(m_connection.ReadResponse());
}

}  // namespace
}  // namespace velandoc::testing
