#include "soap/soap_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/code_page.h"
#include "platform/dom.h"
#include "soap/soap_namespaces.h"
#include "tests/support/dom_tree.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_dom.h"
#include "tests/support/fault_wininet.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::ComScope;
using ::testing::ElementsAre;
using testing::ExhaustedCodePage;
using testing::FaultCodePage;
using testing::FaultDom;
using testing::FaultWinInet;
using testing::ScriptedWinInet;

constexpr char kAnswer[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>"
    "<s:Envelope xmlns:s=\"http://schemas.xmlsoap.org/soap/envelope/\"><s:Body>"
    "<R xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">\xC3\xA9</R>"
    "<R xmlns=\"http://schemas.microsoft.com/sharepoint/soap/directory/\">directory</R>"
    "</s:Body></s:Envelope>";

class SoapConnection : public ::testing::Test {
 protected:
  // One call of the method "M" on a connection of its own, answered by `answer`.
  HRESULT Call(Answer answer) {
    m_platform.answers = {std::move(answer)};
    CSoapEnvelope envelope(OLESTR("M"));
    envelope.AddParameter(OLESTR("p"), OLESTR("\u00e9"));
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    m_response.Reset();
    const HRESULT result = connection.Call(envelope, m_response);
    m_status = connection.m_statusCode;
    m_error = connection.m_lastError;
    return result;
  }
  std::string Select(LPCWSTR xpath) {
    const ComPtr<IXMLDOMNode> node = SelectSingleNode(m_response.Get(), xpath);
    return node ? testing::Printable(GetNodeText(node.Get()).c_str()) : "none";
  }

  ComScope m_com;
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
  ComPtr<IXMLDOMDocument2> m_response;
  DWORD m_status = 0;
  DWORD m_error = 0;
};

TEST_F(SoapConnection, PostsTheEnvelopeWithItsAction) {
  EXPECT_EQ(Call(Answer{.chunks = {kAnswer}}), S_OK);
  EXPECT_EQ(m_platform.calls[0], "InternetOpenW(CWinInetConnection, 0, null, null, 0x0)");
  EXPECT_EQ(m_platform.calls[1], "InternetConnectW(1, h, 80, null, null, 3, 0x200, 0)");
  EXPECT_EQ(m_platform.calls[2],
            "HttpOpenRequestW(2, POST, /_vti_bin/lists.asmx, null, null, text/*, 0x400200, 0)");
  EXPECT_THAT(m_platform.headerBlocks,
              ElementsAre("Content-Type: text/xml; charset=utf-8\\u000aSOAPAction: "
                          "http://schemas.microsoft.com/sharepoint/soap/M"));
  ASSERT_EQ(m_platform.bodies.size(), 1U);
  EXPECT_EQ(m_platform.bodies[0].find("<?xml"), std::string::npos) << "no declaration";
  EXPECT_NE(m_platform.bodies[0].find("\xC3\xA9"), std::string::npos) << "UTF-8";
  EXPECT_EQ(testing::TreeOfText(FromUtf8(m_platform.bodies[0].c_str())),
            "soap:Envelope{http://schemas.xmlsoap.org/soap/envelope/} ( "
            "soap:Body{http://schemas.xmlsoap.org/soap/envelope/} ( "
            "M{http://schemas.microsoft.com/sharepoint/soap/} ( "
            "p{http://schemas.microsoft.com/sharepoint/soap/} ( '\\u00e9' ) ) ) )");
}

TEST_F(SoapConnection, AnHttpsEndpointIsSecureAndEscaped) {
  m_platform.answers = {Answer{.chunks = {kAnswer}}};
  CSoapConnection connection(OLESTR("https://h:8443/a b//_vti_bin/lists.asmx"));
  EXPECT_EQ(connection.Call(CSoapEnvelope(OLESTR("M")), m_response), S_OK);
  EXPECT_EQ(
      m_platform.calls[2],
      "HttpOpenRequestW(2, POST, /a%20b//_vti_bin/lists.asmx, null, null, text/*, 0xc00200, 0)");
}

TEST_F(SoapConnection, TheAnswersPrefixesAreBound) {
  EXPECT_EQ(Call(Answer{.chunks = {kAnswer}}), S_OK);
  EXPECT_EQ(Select(OLESTR("//resp:R")), "\\u00e9");
  EXPECT_EQ(Select(OLESTR("/soap:Envelope/soap:Body/resp:R")), "\\u00e9");
  EXPECT_EQ(Select(OLESTR("//R")), "none");
}

TEST_F(SoapConnection, TheResponsePrefixIsThatOfTheCall) {
  m_platform.answers = {Answer{.chunks = {kAnswer}}};
  CSoapEnvelope envelope;
  envelope.SetMethod(OLESTR("GetUserInfo"), kSoapDirectoryNamespace);
  CSoapConnection connection(OLESTR("http://h/_vti_bin/usergroup.asmx"));
  ASSERT_EQ(connection.Call(envelope, m_response), S_OK);
  EXPECT_EQ(Select(OLESTR("//resp:R")), "directory");
  EXPECT_THAT(m_platform.headerBlocks,
              ElementsAre("Content-Type: text/xml; charset=utf-8\\u000aSOAPAction: "
                          "http://schemas.microsoft.com/sharepoint/soap/directory/GetUserInfo"));
}

TEST_F(SoapConnection, TheAnswerMayComeInPieces) {
  Answer answer;
  for (const char byte : std::string(kAnswer)) answer.chunks.emplace_back(1, byte);
  EXPECT_EQ(Call(std::move(answer)), S_OK);
  EXPECT_EQ(Select(OLESTR("//resp:R")), "\\u00e9");
}

TEST_F(SoapConnection, ANulEndsAChunkOfTheAnswerOnly) {
  using namespace std::string_literals;
  EXPECT_EQ(Call(Answer{.chunks = {"<a>\0junk"s, "x</a>"s}}), S_OK);
  EXPECT_EQ(Select(OLESTR("/a")), "x");
}

struct FailureCase {
  Answer answer;
  DWORD status;
  const char* why;
};

TEST_F(SoapConnection, WhateverIsNotA200WithXmlFails) {
  const FailureCase cases[] = {
      {Answer{.status = OLESTR("500"), .chunks = {kAnswer}}, 500, "a fault"},
      {Answer{.status = OLESTR("404"), .chunks = {kAnswer}}, 404, "no such service"},
      {Answer{.status = OLESTR("202"), .chunks = {kAnswer}}, 202, "only 200 counts"},
      {Answer{.error = 12029}, 0, "no server"},
      {Answer{}, 200, "an empty body"},
      {Answer{.chunks = {"plain text"}}, 200, "no XML"},
      {Answer{.chunks = {"<html><br></html>"}}, 200, "not well-formed"},
      {Answer{.chunks = {kAnswer, "<more/>"}}, 200, "two roots"},
      {Answer{.chunks = {"<a>", "</a>"}, .readError = 12030}, 200, "the body breaks off"},
  };
  for (const FailureCase& test : cases) {
    EXPECT_EQ(Call(test.answer), E_FAIL) << test.why;
    EXPECT_FALSE(m_response) << test.why;
    EXPECT_EQ(m_status, test.status) << test.why;
    EXPECT_EQ(m_error, test.answer.error) << test.why;
  }
}

TEST_F(SoapConnection, AFaultIsNotRead) {
  EXPECT_EQ(Call(Answer{.status = OLESTR("500"), .chunks = {kAnswer}}), E_FAIL);
  EXPECT_TRUE(m_platform.CallsOf("InternetReadFile").empty());
}

class ProcessingConnection : public CSoapConnection {
 public:
  using CSoapConnection::CSoapConnection;
  void ProcessResponse() override { processed.push_back(GetResponseText()); }
  std::vector<NarrowString> processed;
};

TEST_F(SoapConnection, AnAnswerIsProcessedOnceItIsReadWhole) {
  ProcessingConnection whole(OLESTR("http://h/a"));
  m_platform.answers = {Answer{.chunks = {"<a>", "</a>"}}};
  EXPECT_EQ(whole.Call(CSoapEnvelope(OLESTR("M")), m_response), S_OK);
  EXPECT_THAT(whole.processed, ElementsAre("<a></a>"));

  ProcessingConnection broken(OLESTR("http://h/a"));
  m_platform.answers = {Answer{.chunks = {"<a>", "</a>"}, .readError = 12030}};
  m_response.Reset();
  EXPECT_EQ(broken.Call(CSoapEnvelope(OLESTR("M")), m_response), E_FAIL);
  EXPECT_TRUE(broken.processed.empty());
}

TEST_F(SoapConnection, AskingForCredentialsGoesThroughTheLoop) {
  m_platform.answers = {Answer{.status = OLESTR("401")}, Answer{.chunks = {kAnswer}}};
  m_platform.dialogResults = {12032};
  CSoapConnection connection(OLESTR("http://h/a"));
  EXPECT_EQ(connection.Call(CSoapEnvelope(OLESTR("M")), m_response), S_OK);
  ASSERT_EQ(m_platform.bodies.size(), 2U);
  EXPECT_EQ(m_platform.bodies[0], m_platform.bodies[1]);
}

TEST_F(SoapConnection, ASecondCallKeepsTheConnectionAndLosesTheFirstRequest) {
  m_platform.expectedLeaks = 1;
  m_platform.answers = {Answer{.chunks = {kAnswer}}, Answer{.chunks = {"<b>x</b>"}}};
  CSoapConnection connection(OLESTR("http://h/a"));
  ComPtr<IXMLDOMDocument2> first;
  EXPECT_EQ(connection.Call(CSoapEnvelope(OLESTR("M")), first), S_OK);
  EXPECT_EQ(connection.Call(CSoapEnvelope(OLESTR("N")), m_response), S_OK);
  EXPECT_EQ(m_platform.CallsOf("InternetOpenW").size(), 1U);
  EXPECT_EQ(m_platform.CallsOf("HttpOpenRequestW").size(), 2U);
  EXPECT_TRUE(m_platform.CallsOf("InternetCloseHandle").empty());
  EXPECT_EQ(Select(OLESTR("/b")), "x");
}

TEST_F(SoapConnection, AnEnvelopeWithoutADocumentRaisesEPointer) {
  FaultDom dom(1, E_FAIL);
  const CSoapEnvelope envelope(OLESTR("M"));
  CSoapConnection connection(OLESTR("http://h/a"));
  try {
    connection.Call(envelope, m_response);
    ADD_FAILURE() << "nothing was raised";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_POINTER);
  }
  EXPECT_TRUE(m_platform.calls.empty()) << "nothing was sent";
}

// What each operation of the DOM in a call does when it fails.
TEST_F(SoapConnection, AFailureOfTheDomIsReturnedOrRaised) {
  const struct {
    const char* operation;
    bool raised;
  } steps[] = {
      {"get_xml", true},          {"CreateInstance", false}, {"QueryInterface", false},
      {"put_async(false)", true}, {"loadXML", false},        {"setProperty", true},
  };
  constexpr int before = 8;  // of an envelope with its method
  for (int step = 0; step <= static_cast<int>(std::size(steps)); ++step) {
    SCOPED_TRACE(step);
    m_platform.answers = {Answer{.chunks = {kAnswer}}};
    FaultDom dom(step == 0 ? 0 : before + step, E_ACCESSDENIED);
    const CSoapEnvelope envelope(OLESTR("M"));
    CSoapConnection connection(OLESTR("http://h/a"));
    HRESULT result = S_OK;
    bool raised = false;
    try {
      result = connection.Call(envelope, m_response);
    } catch (const _com_error& error) {
      raised = true;
      result = error.Error();
    }
    EXPECT_EQ(result, step == 0 ? S_OK : E_ACCESSDENIED);
    EXPECT_EQ(static_cast<bool>(m_response), step == 0);
    if (step != 0) {
      EXPECT_EQ(raised, steps[step - 1].raised);
      EXPECT_EQ(dom.operations.back(), steps[step - 1].operation);
    }
    m_response.Reset();
    m_platform.answers.clear();  // the first step ends before anything is sent
  }
}

TEST_F(SoapConnection, EachOperationOfTheNetworkMayFail) {
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE(failAt);
    m_platform.answers = {Answer{.chunks = {kAnswer}}};
    FaultWinInet fault(m_platform, failAt, 12030);
    PortScope<WinInet> scope(fault);
    m_response.Reset();
    HRESULT result = S_OK;
    {
      CSoapConnection connection(OLESTR("http://h/a"));
      result = connection.Call(CSoapEnvelope(OLESTR("M")), m_response);
    }
    m_platform.answers.clear();
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) operations = fault.Count();
    // The status is looked at again behind the dialog, and after a 200 the dialog's word counts for
    // nothing.
    const bool harmless = failAt == 0 || failAt == 5 || failAt == 6;
    EXPECT_EQ(result, harmless ? S_OK : E_FAIL);
    EXPECT_EQ(static_cast<bool>(m_response), harmless);
  }
  EXPECT_EQ(operations, 9);
}

TEST_F(SoapConnection, TextThatFindsNoMemoryIsRaised) {
  CSoapConnection connection(OLESTR("http://h/a"));
  ExhaustedCodePage exhausted;
  PortScope<CodePage> scope(exhausted);
  try {
    connection.Call(CSoapEnvelope(OLESTR("M")), m_response);
    ADD_FAILURE() << "nothing was raised";
  } catch (const _com_error& error) {
    EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
  }
}

TEST_F(SoapConnection, AConversionThatFailsIsAnEmptyText) {
  // In order: the endpoint, the body, the answer. Without an endpoint there is no host; an empty
  // body goes out.
  for (int failAt = 1; failAt <= 3; ++failAt) {
    SCOPED_TRACE(failAt);
    m_platform.bodies.clear();
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    EXPECT_EQ(Call(Answer{.chunks = {kAnswer}}), failAt == 2 ? S_OK : E_FAIL);
    EXPECT_EQ(m_platform.bodies.size(), failAt == 1 ? 0U : 1U);
    if (failAt == 2) {
      EXPECT_EQ(m_platform.bodies[0], "");
    }
    m_platform.answers.clear();
  }
}

}  // namespace
}  // namespace velandoc
