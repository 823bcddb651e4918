// What the tests of the web-service operations share: a scripted network, answers in the shapes
// that servers send, and runs in which each call fails once.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/fault_dom.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc::testing {

inline constexpr char kService[] = "http://schemas.microsoft.com/sharepoint/soap/";
inline constexpr char kDirectory[] = "http://schemas.microsoft.com/sharepoint/soap/directory/";

class ServiceTest : public ::testing::Test {
 protected:
  /// One answer of status 200, in reads of the usual size.
  static Answer Xml(const std::string& text);
  /// The answer of a server that writes one line with a declaration. `content` stands in the body.
  static std::string Envelope(const std::string& content);
  /// The same content as other servers wrap it: with other prefixes, a header, no declaration, and
  /// indented.
  static std::vector<std::string> Envelopes(const std::string& content);

  /// An answer of each kind that tells nothing: refused, reset, cut short, no XML, faults.
  struct Refusal {
    Answer answer;
    const char* why;
  };
  static std::vector<Refusal> Refusals();

  /// The request `index` (from 0) in the form of TreeOfText: the method's element alone, without
  /// the namespace of the envelope around it.
  std::string Method(std::size_t index) const;
  /// The object names of the requests, in order.
  std::vector<std::string> Objects() const;
  /// The text behind "SOAPAction: " of a request.
  std::string Action(std::size_t index) const;

  /// Plays `answers` for each run of `operation`. First with no fault, which must give "ok"; then
  /// with each call of the DOM failing in turn. The outcomes in words, in order, equal ones
  /// counted: "9 raised, 3 false". No object and no handle may be left at the end of any run.
  std::string DomFaults(const std::vector<Answer>& answers,
                        const std::function<std::string()>& operation);
  /// The same with the calls of the network, and with those of the code page.
  std::string NetworkFaults(const std::vector<Answer>& answers,
                            const std::function<std::string()>& operation);
  std::string ConversionFaults(const std::vector<Answer>& answers,
                               const std::function<std::string()>& operation);

  ComScope m_com;
  ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
};

/// "raised" and its HRESULT's name if `operation` raises, else what it returns.
std::string OutcomeOf(const std::function<std::string()>& operation);

}  // namespace velandoc::testing
