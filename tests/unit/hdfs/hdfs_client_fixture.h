// A CHdfsClient over a scripted WinInet, files in memory, and a debugger that is listened to.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "hdfs/hdfs_client.h"
#include "host/velandoc_module.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/scripted_error_services.h"
#include "tests/support/scripted_wininet.h"
#include "tests/support/thread_error.h"

namespace velandoc::testing {

/// Security flags that can be read and written, and uploads that break.
class HdfsWinInet final : public ScriptedWinInet {
 public:
  DWORD securityFlags = 1;
  bool writeFails = false;
  bool endFails = false;

  BOOL InternetQueryOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD* size) override {
    EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
    EXPECT_EQ(*size, 4U);
    *static_cast<DWORD*>(buffer) = securityFlags;
    return TRUE;
  }
  BOOL InternetSetOptionW(HINTERNET, DWORD option, LPVOID buffer, DWORD size) override {
    EXPECT_EQ(option, INTERNET_OPTION_SECURITY_FLAGS);
    EXPECT_EQ(size, 4U);
    securityFlags = *static_cast<DWORD*>(buffer);
    return TRUE;
  }
  BOOL InternetWriteFile(HINTERNET request, LPCVOID buffer, DWORD size, DWORD* count) override {
    const BOOL result = ScriptedWinInet::InternetWriteFile(request, buffer, size, count);
    return writeFails ? FALSE : result;
  }
  BOOL HttpEndRequestW(HINTERNET request, INTERNET_BUFFERSW* out, DWORD flags,
                       DWORD_PTR context) override {
    const BOOL result = ScriptedWinInet::HttpEndRequestW(request, out, flags, context);
    m_ended = endFails;
    return endFails ? FALSE : result;
  }
  DWORD GetLastError() override {
    const DWORD error = ScriptedWinInet::GetLastError();
    return m_ended ? ERROR_INTERNET_CONNECTION_RESET : error;
  }

 private:
  bool m_ended = false;
};

class HdfsClientTest : public ::testing::Test {
 protected:
  HdfsClientTest() {
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
    m_client = NewClient();
    m_client->put_ServerName(Bstr(OLESTR("h")).Get());
    m_client->put_HdfsPath(Bstr(OLESTR("/d/f.txt")).Get());
    m_services.texts[12029] = OLESTR("cannot connect\r\n");
    m_services.texts[12030] = OLESTR("broke off\r\n");
    m_services.texts[12031] = OLESTR("reset\r\n");
  }
  void TearDown() override {
    m_client.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
    SetErrorInfo(0, nullptr);
  }

  static ComPtr<IHdfsClient> NewClient() {
    ComPtr<IHdfsClient> client;
    EXPECT_EQ(CHdfsClient::CreateObject(nullptr, IID_IHdfsClient, client.ReceiveVoid()), S_OK);
    return client;
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
  static std::string OnTheThread() {
    const ThreadError error = TakeThreadError();
    if (!error.isThere) return "none";
    EXPECT_EQ(error.guid, CLSID_HdfsClient);
    return error.source + ": " + error.description;
  }
  std::string Op() {
    Bstr op;
    EXPECT_EQ(m_client->get_Op(op.Receive()), S_OK);
    return DescribeText(op.View());
  }
  /// "VERB target flags" of every request that was opened.
  std::vector<std::string> Requests() const {
    std::vector<std::string> found;
    for (const std::string& call : m_platform.CallsOf("HttpOpenRequestW")) {
      const std::size_t verb = call.find(", ") + 2;
      const std::size_t end = call.find(", null, null, ");
      std::string request = call.substr(verb, end - verb);
      request.replace(request.find(", "), 2, " ");
      const std::string types = "text/* application/json, ";
      const std::size_t flags = call.find(types);
      EXPECT_NE(flags, std::string::npos) << call;
      const std::size_t from = flags + types.size();
      found.push_back(request + " " + call.substr(from, call.find(',', from) - from));
    }
    return found;
  }
  const std::string* File(LPCOLESTR name) const {
    const auto found = m_files.files.find(name);
    return found != m_files.files.end() ? &found->second : nullptr;
  }

  HdfsWinInet m_platform;
  MemoryFileSystem m_files;
  ScriptedErrorServices m_services;
  PortScope<WinInet> m_platformScope{m_platform};
  PortScope<FileSystem> m_filesScope{m_files};
  PortScope<ErrorServices> m_servicesScope{m_services};
  ComPtr<IHdfsClient> m_client;
};

}  // namespace velandoc::testing
