// A user at a terminal who gives these answers and then no more.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/terminal.h"

namespace velandoc::test {

class ScriptedTerminal final : public Terminal {
 public:
  explicit ScriptedTerminal(std::vector<std::string> answers) : m_answers(std::move(answers)) {}

  bool IsAvailable() override { return true; }
  std::optional<std::string> Ask(std::string_view text) override { return Answer(text, false); }
  std::optional<std::string> AskSecret(std::string_view text) override {
    return Answer(text, true);
  }

  std::vector<std::string> shown;
  std::vector<bool> wasSecret;

 private:
  std::optional<std::string> Answer(std::string_view text, bool secret) {
    shown.emplace_back(text);
    wasSecret.push_back(secret);
    if (m_next == m_answers.size()) return std::nullopt;
    return m_answers[m_next++];
  }

  std::vector<std::string> m_answers;
  std::size_t m_next = 0;
};

}  // namespace velandoc::test
