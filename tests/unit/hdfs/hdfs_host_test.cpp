#include "tests/unit/hdfs/hdfs_host_test.h"

#include "host/velandoc_module.h"
#include "tests/support/thread_error.h"
#include "tests/support/variant_text.h"

namespace velandoc::testing {

HdfsHostTest::HdfsHostTest(ComPtr<IHdfsClient> (*make)(), REFCLSID clsid) : m_clsid(clsid) {
  EXPECT_EQ(Module().GetLockCount(), 0);
  SetErrorInfo(0, nullptr);
  m_client = make();
  m_client->put_ServerName(Bstr(OLESTR("h")).Get());
  m_client->put_HdfsPath(Bstr(OLESTR("/d/f.txt")).Get());
}

HdfsHostTest::~HdfsHostTest() = default;

void HdfsHostTest::TearDown() {
  m_client.Reset();
  EXPECT_EQ(Module().GetLockCount(), 0);
  SetErrorInfo(0, nullptr);
}

std::string HdfsHostTest::Error() {
  ComPtr<IConnectionError> error;
  EXPECT_EQ(m_client->get_ConnectionError(error.Receive()), S_OK);
  if (!error) return "none";
  LONG code = -1;
  Bstr message;
  error->get_HttpCode(&code);
  error->get_Message(message.Receive());
  return std::to_string(code) + " " + DescribeText(message.View());
}

std::string HdfsHostTest::OnTheThread() const {
  const ThreadError error = TakeThreadError();
  if (!error.isThere) return "none";
  EXPECT_EQ(error.guid, m_clsid);
  return error.source + ": " + error.description;
}

std::string HdfsHostTest::Op() {
  Bstr op;
  EXPECT_EQ(m_client->get_Op(op.Receive()), S_OK);
  return DescribeText(op.View());
}

const std::string* HdfsHostTest::File(LPCOLESTR name) const {
  const auto found = m_files.files.find(name);
  return found != m_files.files.end() ? &found->second : nullptr;
}

std::vector<std::string> HdfsHostTest::RequestsOf(const std::vector<std::string>& calls) {
  std::vector<std::string> found;
  for (const std::string& call : calls) {
    const std::size_t verb = call.find(", ") + 2;
    const std::size_t end = call.find(", null, null, ");
    std::string request = call.substr(verb, end - verb);
    request.replace(request.find(", "), 2, " ");
    const std::string types = "text/* application/json, ";
    const std::size_t flags = call.find(types);
    EXPECT_NE(flags, std::string::npos) << call;
    const std::size_t from = flags + types.size();
    found.push_back(request + " " + call.substr(from, call.find_first_of(",)", from) - from));
  }
  return found;
}

}  // namespace velandoc::testing
