// What the tests of the flows share: a site that answers each request by what it asks for, and runs
// in which each call of a port fails once.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/owners.h"
#include "tests/support/answer_page.h"
#include "tests/support/fault_dom.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc::testing {

class AnsweringSite final : public ScriptedWinInet {
 public:
  /// The first entry of which a request's body holds the first half answers it.
  std::vector<std::pair<std::string, Answer>> replies;

  BOOL HttpSendRequestW(HINTERNET request, LPCWSTR headers, DWORD headersLength, LPVOID optional,
                        DWORD optionalLength) override;
};

/// "null", or the text.
std::string Shown(const Bstr& text);

class FlowTest : public ::testing::Test {
 protected:
  /// An answer of status 200, in reads of the size that the component asks for.
  static Answer Page(std::string_view page);
  /// An answer of each kind that hands nothing over.
  static std::vector<std::pair<Answer, const char*>> FailedRequests();
  /// Pages with status 200 that are no answer.
  static std::vector<std::string> UnreadablePages();

  /// Runs `operation` with no fault, and then with each call of the port failing in turn. The
  /// outcomes of the latter in words, in order, equal neighbours counted: "2 a, 1 b". No handle and
  /// no object of the DOM may be left at the end of any run.
  std::string NetworkFaults(const std::function<std::string()>& operation);
  std::string ConversionFaults(const std::function<std::string()>& operation);
  std::string DomFaults(const std::function<std::string()>& operation);

  ComScope m_com;
  AnsweringSite m_site;
  PortScope<WinInet> m_scope{m_site};
};

}  // namespace velandoc::testing
