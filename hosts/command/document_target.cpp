#include "hosts/command/document_target.h"

#include <filesystem>

#include "hosts/command/probe_url.h"
#include "hosts/text_encoding.h"
#include "platform/ascii_case.h"

namespace velandoc {
namespace {

bool BeginsWith(std::string_view text, std::string_view scheme) {
  return EqualsIgnoringAsciiCase(WideFromUtf8(text.substr(0, scheme.size())), WideFromUtf8(scheme));
}

}  // namespace

bool IsUrlTarget(std::string_view target) {
  const std::size_t separator = target.find("://");
  return (separator != target.npos && target.find_first_of("/\\?#") > separator) ||
         BeginsWith(target, "http:") || BeginsWith(target, "https:");
}

std::optional<std::string> FindTargetProblem(std::string_view target) {
  if (target.empty()) return "'' is no document: type its URL or its path on a WebDAV share";
  if (!IsUtf8(target)) return "a document's URL or path must be UTF-8 text";
  return IsUrlTarget(target) ? FindUrlProblem(target, "opened") : std::nullopt;
}

std::string AbsolutePath(std::string_view path) {
  const bool drive = path.size() > 1 && path[1] == ':';
  if (path.starts_with('\\') || path.starts_with("//") || drive) return std::string(path);
  std::error_code problem;
  const std::u8string typed(path.begin(), path.end());
  const std::u8string whole =
      std::filesystem::absolute(std::filesystem::path(typed), problem).u8string();
  return problem ? std::string(path) : std::string(whole.begin(), whole.end());
}

}  // namespace velandoc
