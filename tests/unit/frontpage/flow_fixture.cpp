#include "tests/unit/frontpage/flow_fixture.h"

#include <algorithm>

#include "platform/code_page.h"
#include "tests/support/fault_code_page.h"
#include "tests/support/fault_wininet.h"

namespace velandoc::testing {
namespace {

class OutcomeList {
 public:
  void Add(const std::string& outcome) {
    if (m_entries.empty() || m_entries.back().first != outcome) m_entries.emplace_back(outcome, 0);
    ++m_entries.back().second;
  }
  std::string Text() const {
    std::string text;
    for (const auto& [outcome, count] : m_entries) {
      if (!text.empty()) text += ", ";
      text += std::to_string(count) + " " + outcome;
    }
    return text;
  }

 private:
  std::vector<std::pair<std::string, int>> m_entries;
};

std::string OutcomeOf(const std::function<std::string()>& operation) {
  try {
    return operation();
  } catch (const _com_error& error) {
    EXPECT_TRUE(error.Error() == E_UNEXPECTED || error.Error() == E_POINTER) << error.Error();
    return "raised";
  }
}

// `run` gets the number of the call that fails, 0 for none, and gives the number of calls.
std::string EachFault(const std::function<int(int failAt, OutcomeList& outcomes)>& run) {
  OutcomeList clean;
  const int calls = run(0, clean);
  OutcomeList outcomes;
  for (int failAt = 1; failAt <= calls; ++failAt) {
    SCOPED_TRACE(failAt);
    run(failAt, outcomes);
  }
  return clean.Text() + "; " + outcomes.Text();
}

}  // namespace

BOOL AnsweringSite::HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength,
                                     LPVOID optional, DWORD optionalLength) {
  const std::string_view body(static_cast<const char*>(optional), optionalLength);
  const auto reply = std::find_if(replies.begin(), replies.end(), [&](const auto& entry) {
    return body.find(entry.first) != std::string_view::npos;
  });
  if (reply != replies.end()) answers = {reply->second};
  return ScriptedWinInet::HttpSendRequestW(request, headers, headersLength, optional,
                                           optionalLength);
}

std::string Shown(const Bstr& text) {
  return text.Get() != nullptr ? Printable(text.Text().c_str()) : "null";
}

Answer FlowTest::Page(std::string_view page) {
  constexpr std::size_t largest = 8192;
  Answer answer;
  for (; !page.empty(); page.remove_prefix(std::min(largest, page.size()))) {
    answer.chunks.emplace_back(page.substr(0, largest));
  }
  return answer;
}

std::vector<std::pair<Answer, const char*>> FlowTest::FailedRequests() {
  return {
      {Answer{.error = 12029}, "refused"},
      {Answer{.error = 12031}, "reset"},
      {Answer{.error = 12002}, "timed out"},
      {Answer{.status = OLESTR("401"), .chunks = {"<a/>"}}, "401"},
      {Answer{.status = OLESTR("404"), .chunks = {"<a/>"}}, "404"},
      {Answer{.status = OLESTR("500"), .chunks = {"<a/>"}}, "500"},
      {Answer{.status = OLESTR("204")}, "204"},
      {Answer{.chunks = {AnswerPage("").substr(0, 40)}, .readError = 12030}, "broken off"},
  };
}

std::vector<std::string> FlowTest::UnreadablePages() {
  return {"", "plain text", "<html><br>Sign in</html>", AnswerPage("<p>a & b\n"),
          AnswerPage("").substr(0, 40)};
}

std::string FlowTest::NetworkFaults(const std::function<std::string()>& operation) {
  return EachFault([&](int failAt, OutcomeList& outcomes) {
    FaultWinInet fault(m_site, failAt, 12030);
    PortScope<WinInet> scope(fault);
    outcomes.Add(OutcomeOf(operation));
    EXPECT_EQ(m_site.OpenHandles(), 0);
    return fault.Count();
  });
}

std::string FlowTest::ConversionFaults(const std::function<std::string()>& operation) {
  return EachFault([&](int failAt, OutcomeList& outcomes) {
    FaultCodePage fault(SystemPort<CodePage>(), failAt);
    PortScope<CodePage> scope(fault);
    outcomes.Add(OutcomeOf(operation));
    EXPECT_EQ(m_site.OpenHandles(), 0);
    m_site.answers.clear();
    return fault.Count();
  });
}

std::string FlowTest::DomFaults(const std::function<std::string()>& operation) {
  return EachFault([&](int failAt, OutcomeList& outcomes) {
    FaultDom dom(failAt, E_UNEXPECTED);
    outcomes.Add(OutcomeOf(operation));
    EXPECT_EQ(dom.alive, 0);
    EXPECT_EQ(m_site.OpenHandles(), 0);
    m_site.answers.clear();
    return dom.Count();
  });
}

}  // namespace velandoc::testing
