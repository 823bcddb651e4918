#include "hosts/command/doc_options.h"

#include <algorithm>
#include <charconv>

#include "hosts/command/document_target.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/text.h"

namespace velandoc {
namespace {

std::string Quoted(std::string_view text) { return "'" + VisibleText(text) + "'"; }

struct NamedType {
  std::string_view word;
  int type;
};
constexpr NamedType kTypes[] = {{"minor", 0}, {"major", 1}, {"overwrite", 2}};

std::optional<std::string> ReadType(const std::string& word, int& type) {
  for (const NamedType& named : kTypes) {
    if (word == named.word) {
      type = named.type;
      return std::nullopt;
    }
  }
  const auto [end, problem] = std::from_chars(word.data(), word.data() + word.size(), type);
  if (problem == std::errc() && end == word.data() + word.size()) return std::nullopt;
  return Quoted(word) + " is no kind of check-in: type minor, major, overwrite or a whole number";
}

std::optional<std::string> ReadAssignment(const std::string& word, bool escape,
                                          std::vector<Assignment>& assignments) {
  const std::size_t equals = word.find('=');
  if (equals == word.npos) return Quoted(word) + " is no assignment: type NAME=VALUE";
  Assignment made{word.substr(0, equals), word.substr(equals + 1)};
  if (made.name.empty()) return Quoted(word) + " names no column: type NAME=VALUE";
  if (!IsUtf8(word)) return "the assignment to " + Quoted(made.name) + " must be UTF-8 text";
  const bool again =
      std::any_of(assignments.begin(), assignments.end(),
                  [&](const Assignment& earlier) { return earlier.name == made.name; });
  if (again) return "column " + Quoted(made.name) + " is given two values";
  if (const auto problem = FindUncarriedByUpdate(made.value, escape)) {
    return "the value of " + Quoted(made.name) + " cannot be written: " + *problem;
  }
  assignments.push_back(std::move(made));
  return std::nullopt;
}

}  // namespace

std::optional<std::string> FindUncarried(std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == '\r') return "it holds a carriage return, which would arrive as a line feed";
    if (byte < 0x20 && byte != '\t' && byte != '\n') {
      return "it holds the control character 0x" + HexText(byte, 2) + ", which XML cannot carry";
    }
  }
  for (const OLECHAR unit : WideFromUtf8(text)) {
    const auto number = static_cast<char16_t>(unit);
    if (number == 0xFFFE || number == 0xFFFF) {
      return "it holds the character U+" + HexText(number, 4) + ", which XML cannot carry";
    }
  }
  return std::nullopt;
}

std::optional<std::string> FindUncarriedByUpdate(std::string_view value, bool escape) {
  if (const auto problem = FindUncarried(value)) return problem;
  if (!value.empty() && value.find_first_not_of(" \t\n") == value.npos) {
    return "it holds nothing but blanks, which would not arrive";
  }
  if (escape) return std::nullopt;
  for (const std::string_view lost : {"&", "<", "]]>"}) {
    if (value.find(lost) == value.npos) continue;
    return "it holds '" + std::string(lost) +
           "', with which the whole update would be lost: with --escape it is sent as a reference";
  }
  return std::nullopt;
}

std::string EscapedForUpdate(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else if (c == '>') {
      escaped += "&gt;";
    } else {
      escaped.push_back(c);
    }
  }
  return escaped;
}

std::optional<std::string> FinishDocOptions(DocOptions& options) {
  if (auto problem = FindTargetProblem(options.target)) return problem;
  switch (options.action) {
    case DocAction::kSet:
      for (const std::string& word : options.words) {
        if (auto problem = ReadAssignment(word, options.escape, options.assignments)) {
          return problem;
        }
      }
      break;
    case DocAction::kEdit:
      if (options.escape && !options.terminal) {
        return "--escape goes with --terminal: the dialog sends what is typed as it stands";
      }
      break;
    case DocAction::kMeta:
      for (const std::string& word : options.words) {
        if (!IsUtf8(word)) return "the key " + Quoted(word) + " must be UTF-8 text";
      }
      break;
    case DocAction::kCheckIn:
      if (!IsUtf8(options.comment)) return "the comment must be UTF-8 text";
      if (const auto problem = FindUncarried(options.comment)) {
        return "the comment cannot be sent: " + *problem;
      }
      return ReadType(options.typeWord, options.type);
    default:
      break;
  }
  return std::nullopt;
}

}  // namespace velandoc
