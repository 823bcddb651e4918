// Every operation with its N-th call of WinINet failing, for every N: what was opened is closed
// (the scripted port counts), and no local file is left.
#include <functional>

#include "tests/support/fault_wininet.h"
#include "tests/support/text_stream.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"

namespace velandoc::testing {
namespace {

struct Operation {
  const char* name;
  std::vector<Answer> answers;
  std::function<HRESULT(IHdfsClient&)> run;
};

std::vector<Operation> Operations() {
  const Answer yes = {.chunks = {R"({"boolean":true})"}};
  const Answer text = {.chunks = {"one\n", "two\n"}};
  const Answer moved = {.status = OLESTR("307"),
                        .chunks = {"moved"},
                        .headers = {{HTTP_QUERY_LOCATION, OLESTR("http://dn:1/x")}}};
  return {
      {"Download",
       {text},
       [](IHdfsClient& client) {
         Bstr saved;
         return client.Download(VARIANT_TRUE, nullptr, saved.Receive());
       }},
      {"DownloadPreview",
       {text},
       [](IHdfsClient& client) {
         Bstr saved;
         return client.DownloadPreview(1, saved.Receive());
       }},
      {"Stream",
       {text},
       [](IHdfsClient& client) {
         ComPtr<IStream> stream;
         return client.Stream(stream.Receive());
       }},
      {"GetText",
       {text},
       [](IHdfsClient& client) {
         Bstr found;
         return client.GetText(found.Receive());
       }},
      {"VerifyServer",
       {{.chunks = {R"({"Path":"/"})"}}},
       [](IHdfsClient& client) {
         VARIANT_BOOL isServer = VARIANT_FALSE;
         const HRESULT result =
             client.VerifyServer(Bstr(OLESTR("http://h")).Get(), Variant().Get(), &isServer);
         return result == S_OK && isServer == VARIANT_FALSE ? E_FAIL : result;
       }},
      {"Delete", {yes}, [](IHdfsClient& client) { return client.Delete(VARIANT_TRUE, nullptr); }},
      {"Rename", {yes}, [](IHdfsClient& client) { return client.Rename(nullptr, nullptr); }},
      {"CreateFolder",
       {yes},
       [](IHdfsClient& client) { return client.CreateFolder(nullptr, nullptr); }},
      {"Upload",
       {moved, {.status = OLESTR("201")}},
       [](IHdfsClient& client) {
         TextStream source("abc");
         VARIANT variant;
         VariantInit(&variant);
         variant.vt = VT_UNKNOWN;
         variant.punkVal = &source;
         return client.Upload(variant, VARIANT_TRUE, nullptr);
       }},
  };
}

using HdfsClientFaultTest = HdfsClientTest;

TEST_F(HdfsClientFaultTest, WhateverCallFailsNothingIsLeftOpenOrBehind) {
  for (const Operation& operation : Operations()) {
    int failures = 0;
    for (int failAt = 1;; ++failAt) {
      ASSERT_LT(failAt, 40) << operation.name;
      m_files.files.clear();
      m_platform.answers.assign(operation.answers.begin(), operation.answers.end());
      m_platform.dialogResults = {ERROR_CANCELLED};
      FaultWinInet fault(m_platform, failAt, ERROR_INTERNET_CONNECTION_RESET);
      HRESULT result = S_OK;
      {
        const PortScope<WinInet> scope(fault);
        result = operation.run(*m_client.Get());
      }
      m_platform.answers.clear();
      m_platform.dialogResults.clear();
      EXPECT_EQ(m_platform.OpenHandles(), 0) << operation.name << " " << failAt;
      if (FAILED(result)) {
        ++failures;
        EXPECT_EQ(result, E_FAIL) << operation.name << " " << failAt;
        EXPECT_EQ(m_files.files.size(), 0U) << operation.name << " " << failAt;
        EXPECT_NE(Error(), "none") << operation.name << " " << failAt;
      }
      if (!fault.Failed()) {
        EXPECT_EQ(result, S_OK) << operation.name;
        break;
      }
    }
    EXPECT_GE(failures, 5) << operation.name;
  }
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
