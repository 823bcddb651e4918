// What a host of either HDFS client sees, with files in memory and a debugger that is listened to.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/velandoc_module.h"
#include "platform/owners.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/scripted_error_services.h"
#include "tests/support/thread_error.h"
#include "velandoc_idl.h"

namespace velandoc::testing {

class HdfsHostTest : public ::testing::Test {
 protected:
  /// `clsid`: the class that the client's error objects speak for.
  HdfsHostTest(ComPtr<IHdfsClient> (*make)(), REFCLSID clsid) : m_clsid(clsid) {
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
    m_client = make();
    m_client->put_ServerName(Bstr(OLESTR("h")).Get());
    m_client->put_HdfsPath(Bstr(OLESTR("/d/f.txt")).Get());
  }
  void TearDown() override {
    m_client.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
  }

  /// "code message" of ConnectionError; "none".
  std::string Error() {
    ComPtr<IConnectionError> error;
    EXPECT_EQ(m_client->get_ConnectionError(error.Receive()), S_OK);
    if (!error) return "none";
    LONG code = -1;
    Bstr message;
    error->get_HttpCode(&code);
    error->get_Message(message.Receive());
    return std::to_string(code) + " " + DescribeText(message.View());
  }
  /// "source: description" of the thread's error object, which is taken; "none".
  std::string OnTheThread() const {
    const ThreadError error = TakeThreadError();
    if (!error.isThere) return "none";
    EXPECT_EQ(error.guid, m_clsid);
    return error.source + ": " + error.description;
  }
  std::string Op() {
    Bstr op;
    EXPECT_EQ(m_client->get_Op(op.Receive()), S_OK);
    return DescribeText(op.View());
  }
  const std::string* File(LPCOLESTR name) const {
    const auto found = m_files.files.find(name);
    return found != m_files.files.end() ? &found->second : nullptr;
  }

  /// "VERB target flags" of the calls that open a request, of either port.
  static std::vector<std::string> RequestsOf(const std::vector<std::string>& calls) {
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

  MemoryFileSystem m_files;
  ScriptedErrorServices m_services;
  PortScope<FileSystem> m_filesScope{m_files};
  PortScope<ErrorServices> m_servicesScope{m_services};
  ComPtr<IHdfsClient> m_client;
  const CLSID m_clsid;
};

}  // namespace velandoc::testing
