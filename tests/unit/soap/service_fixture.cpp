#include "tests/unit/soap/service_fixture.h"

#include "connection/utf8.h"
#include "platform/code_page.h"
#include "tests/support/dom_tree.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_wininet.h"

namespace velandoc::testing {
namespace {

constexpr char kEnvelopeNamespace[] = "http://schemas.xmlsoap.org/soap/envelope/";

// What the connection asks for at a time.
constexpr std::size_t kReadSize = 8192;

// Equal neighbours become one entry with their count.
class OutcomeList {
 public:
  void Add(const std::string& outcome) {
    if (outcome != m_last) Flush();
    m_last = outcome;
    ++m_count;
  }
  std::string Text() {
    Flush();
    return m_text;
  }

 private:
  void Flush() {
    if (m_count != 0) {
      if (!m_text.empty()) m_text += ", ";
      m_text += std::to_string(m_count) + " " + m_last;
    }
    m_count = 0;
  }

  std::string m_text;
  std::string m_last;
  int m_count = 0;
};

}  // namespace

Answer ServiceTest::Xml(const std::string& text) {
  Answer answer;
  for (std::size_t at = 0; at < text.size(); at += kReadSize) {
    answer.chunks.push_back(text.substr(at, kReadSize));
  }
  return answer;
}

std::string ServiceTest::Envelope(const std::string& content) {
  return std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>") +
         "<soap:Envelope xmlns:soap=\"" + kEnvelopeNamespace +
         "\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"><soap:Body>" +
         content + "</soap:Body></soap:Envelope>";
}

std::vector<std::string> ServiceTest::Envelopes(const std::string& content) {
  const std::string uri = std::string("=\"") + kEnvelopeNamespace + "\"";
  return {
      Envelope(content),
      "<env:Envelope xmlns:env" + uri +
          "><env:Header><a:Action xmlns:a='urn:a'>x</a:Action></env:Header><env:Body>" + content +
          "</env:Body></env:Envelope>",
      "<Envelope xmlns" + uri + "><Body>" + content + "</Body></Envelope>",
      "<?xml version='1.0'?>\r\n<s:Envelope xmlns:s" + uri + ">\r\n  <s:Body>\r\n    " + content +
          "\r\n  </s:Body>\r\n</s:Envelope>\r\n",
      "\xEF\xBB\xBF" + Envelope(content),
  };
}

std::vector<ServiceTest::Refusal> ServiceTest::Refusals() {
  const std::string fault = Envelope(
      "<soap:Fault><faultcode>soap:Server</faultcode><faultstring>Value does not fall within the "
      "expected range.</faultstring><detail><errorstring xmlns=\"" +
      std::string(kService) + "\">x</errorstring></detail></soap:Fault>");
  return {
      {Answer{.error = 12029}, "refused"},
      {Answer{.error = 12031}, "reset"},
      {Answer{.error = 12002}, "timed out"},
      {Answer{.status = OLESTR("401"), .chunks = {"<a/>"}}, "401 for ever"},
      {Answer{.status = OLESTR("404"), .chunks = {"<a/>"}}, "no such service"},
      {Answer{.status = OLESTR("500"), .chunks = {fault}}, "a fault"},
      {Xml(fault), "a fault that a gateway turned into 200"},
      {Xml(Envelope("")), "an empty body in the envelope"},
      {Xml("<html><body>Sign in</body></html>"), "a login page that is XML"},
      {Xml("<html><br>Sign in</html>"), "a login page that is none"},
      {Xml("plain text"), "garbage"},
      {Xml(""), "an empty body"},
      {Answer{.chunks = {fault.substr(0, 100)}}, "truncated"},
      {Answer{.chunks = {fault.substr(0, 100)}, .readError = 12030}, "broken off"},
  };
}

std::string ServiceTest::Method(std::size_t index) const {
  const std::string tree = TreeOfText(FromUtf8(m_platform.bodies.at(index).c_str()));
  const std::string braced = std::string("{") + kEnvelopeNamespace + "}";
  const std::string before = "soap:Envelope" + braced + " ( soap:Body" + braced + " ( ";
  const std::string behind = " ) )";
  if (tree.rfind(before, 0) != 0) {
    ADD_FAILURE() << tree;
    return tree;
  }
  std::string method = tree.substr(before.size(), tree.size() - before.size() - behind.size());
  // The service's namespace is on every element of its own: "*" stands for it.
  for (const std::string& service : {std::string(kDirectory), std::string(kService)}) {
    const std::string long_form = "{" + service + "}";
    const std::string short_form = service == kService ? "*" : "**";
    for (std::size_t at = 0; (at = method.find(long_form, at)) != std::string::npos;) {
      method.replace(at, long_form.size(), short_form);
    }
  }
  return method;
}

std::vector<std::string> ServiceTest::Objects() const {
  std::vector<std::string> objects;
  std::string host;
  for (const std::string& call : m_platform.calls) {
    if (call.rfind("InternetConnectW(", 0) == 0) {
      const std::size_t begin = call.find(", ") + 2;
      const std::size_t port = call.find(", ", begin);
      host = call.substr(begin, port - begin) + ":" +
             call.substr(port + 2, call.find(',', port + 2) - port - 2);
    }
    if (call.rfind("HttpOpenRequestW(", 0) == 0) {
      const std::size_t verb = call.find(", ") + 2;
      const std::size_t object = call.find(", ", verb) + 2;
      objects.push_back(host + call.substr(object, call.find(',', object) - object));
    }
  }
  return objects;
}

std::string ServiceTest::Action(std::size_t index) const {
  const std::string& block = m_platform.headerBlocks.at(index);
  const std::string before = "Content-Type: text/xml; charset=utf-8\\u000aSOAPAction: ";
  EXPECT_EQ(block.substr(0, before.size()), before);
  return block.substr(before.size());
}

std::string ServiceTest::DomFaults(const std::vector<Answer>& answers,
                                   const std::function<std::string()>& operation) {
  OutcomeList outcomes;
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("operation of the DOM " + std::to_string(failAt));
    m_platform.answers.assign(answers.begin(), answers.end());
    FaultDom dom(failAt, E_UNEXPECTED);
    const std::string outcome = OutcomeOf(operation);
    EXPECT_EQ(dom.alive, 0);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) {
      EXPECT_EQ(outcome, "ok");
      operations = dom.Count();
    } else {
      outcomes.Add(outcome);
    }
  }
  m_platform.answers.clear();
  return outcomes.Text();
}

std::string ServiceTest::NetworkFaults(const std::vector<Answer>& answers,
                                       const std::function<std::string()>& operation) {
  OutcomeList outcomes;
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("operation of the network " + std::to_string(failAt));
    m_platform.answers.assign(answers.begin(), answers.end());
    FaultWinInet fault(m_platform, failAt, 12030);
    PortScope<WinInet> scope(fault);
    const std::string outcome = OutcomeOf(operation);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) {
      EXPECT_EQ(outcome, "ok");
      operations = fault.Count();
    } else {
      outcomes.Add(outcome);
    }
  }
  m_platform.answers.clear();
  return outcomes.Text();
}

std::string ServiceTest::ConversionFaults(const std::vector<Answer>& answers,
                                          const std::function<std::string()>& operation) {
  OutcomeList outcomes;
  int operations = 0;
  for (int failAt = 0; failAt <= operations; ++failAt) {
    SCOPED_TRACE("conversion " + std::to_string(failAt));
    m_platform.answers.assign(answers.begin(), answers.end());
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    const std::string outcome = OutcomeOf(operation);
    EXPECT_EQ(m_platform.OpenHandles(), 0);
    if (failAt == 0) {
      EXPECT_EQ(outcome, "ok");
      operations = fault.Count();
    } else {
      outcomes.Add(outcome);
    }
  }
  m_platform.answers.clear();
  return outcomes.Text();
}

std::string OutcomeOf(const std::function<std::string()>& operation) {
  try {
    return operation();
  } catch (const _com_error& error) {
    switch (error.Error()) {
      case E_POINTER:
        return "raised E_POINTER";
      case E_UNEXPECTED:
        return "raised";
      case E_OUTOFMEMORY:
        return "raised E_OUTOFMEMORY";
      default:
        return "raised " + std::to_string(error.Error());
    }
  }
}

}  // namespace velandoc::testing
