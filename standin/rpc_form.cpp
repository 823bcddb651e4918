#include "standin/rpc_form.h"

#include "standin/utf8.h"

namespace velandoc::standin {
namespace {

bool IsPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
         c == '.' || c == '_' || c == '~';
}

// -1 for what is no lower-case digit.
int DigitOf(std::string_view text, std::size_t at) {
  if (at >= text.size()) return -1;
  const char c = text[at];
  if (c >= '0' && c <= '9') return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

bool Decode(std::string_view text, std::string& value) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      const int first = DigitOf(text, i + 1);
      const int second = DigitOf(text, i + 2);
      if (first < 0) return false;
      bytes += static_cast<char>(second < 0 ? first : first * 16 + second);
      i += second < 0 ? 1 : 2;
    } else if (text[i] == '+') {
      bytes += ' ';
    } else if (IsPlain(text[i])) {
      bytes += text[i];
    } else {
      return false;
    }
  }
  value = IsUtf8(bytes) ? bytes : Utf8OfLatin1(bytes);
  return true;
}

}  // namespace

std::optional<std::vector<RpcParameter>> ParseRpcForm(std::string_view body, std::string& problem) {
  constexpr std::size_t kMostParameters = 100;
  std::vector<RpcParameter> parameters;
  for (;;) {
    const std::size_t end = body.find('&');
    const std::string_view pair = body.substr(0, end);
    const std::size_t equals = pair.find('=');
    RpcParameter parameter;
    if (equals == std::string_view::npos || !Decode(pair.substr(0, equals), parameter.name) ||
        !Decode(pair.substr(equals + 1), parameter.value)) {
      problem = "The form of the request is malformed at " + std::string(pair.substr(0, 100));
      return std::nullopt;
    }
    parameters.push_back(std::move(parameter));
    if (parameters.size() > kMostParameters) {
      problem = "The request has too many parameters.";
      return std::nullopt;
    }
    if (end == std::string_view::npos) return parameters;
    body.remove_prefix(end + 1);
  }
}

}  // namespace velandoc::standin
