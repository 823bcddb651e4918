// What the tests of CClient against the stand-in server share: the server as the proxy of every
// host, since the client asks on the default port, and an object.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "document/client.h"
#include "host/velandoc_module.h"
#include "platform/atl/com_object.h"
#include "platform/owners.h"
#include "platform/posix/http/connection_pool.h"
#include "tests/support/fault_dom.h"
#include "tests/support/posix/environment_scope.h"
#include "tests/support/standin_client.h"

namespace velandoc::test {

inline constexpr LPCWSTR kBook = OLESTR("http://docs.example.test/sites/a/Shared Documents/b.xlsx");

class StandInClientTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN names no server";
    m_server.emplace();
    m_scope.emplace(*m_server);
    m_proxy.emplace("http_proxy",
                    ("http://127.0.0.1:" + std::to_string(m_server->HttpPort())).c_str());
    http::ConnectionPool::ForgetThread();
    Module();
    Renew();
  }
  void TearDown() override { http::ConnectionPool::ForgetThread(); }

  void Renew() {
    CComObject<CClient>* client = nullptr;
    ASSERT_EQ(CComObject<CClient>::CreateInstance(&client), S_OK);
    m_client = client;
  }
  bool Open(LPCWSTR url = kBook) {
    VARIANT_BOOL success = 7;
    EXPECT_EQ(m_client->InitFromURL(Bstr(WideView(url)).Get(), &success), S_OK);
    return success == VARIANT_TRUE;
  }
  std::string TextOf(HRESULT (STDMETHODCALLTYPE IClient::*get)(BSTR*)) {
    Bstr text;
    EXPECT_EQ((m_client.Get()->*get)(text.Receive()), S_OK);
    std::string narrow;
    for (const OLECHAR c : text.View()) narrow += static_cast<char>(c);
    return narrow;
  }

  testing::ComScope m_com;
  std::optional<StandIn> m_server;
  std::optional<StandInScope> m_scope;
  std::optional<EnvironmentScope> m_proxy;
  EnvironmentScope m_noProxy{"no_proxy", nullptr};
  EnvironmentScope m_noProxyUpper{"NO_PROXY", nullptr};
  EnvironmentScope m_noFile{"NETRC", "/nonexistent"};
  EnvironmentScope m_noTicket{"KRB5CCNAME", "/nonexistent"};
  ComPtr<CClient> m_client;
};

}  // namespace velandoc::test
