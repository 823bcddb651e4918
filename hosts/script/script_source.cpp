#include "hosts/script/script_source.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "hosts/text_encoding.h"
#include "platform/text.h"

namespace velandoc {
namespace {

constexpr std::uintmax_t kMaxBytes = 64U << 20;

std::string Utf8FromUtf16(std::string_view bytes, bool bigEndian) {
  WideString text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<std::uint8_t>(bytes[i]);
    const auto second = static_cast<std::uint8_t>(bytes[i + 1]);
    text.push_back(static_cast<OLECHAR>(bigEndian ? first << 8 | second : second << 8 | first));
  }
  return Utf8FromWide(text);
}

bool ReadBytes(const std::string& path, std::string& bytes, std::string& problem) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    problem = "is a folder";
    return false;
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    problem = errno != 0 ? std::strerror(errno) : "cannot be opened";
    return false;
  }
  // Not the size that the file system tells: a pipe has none.
  constexpr std::size_t kStep = 1U << 16;
  std::string step(kStep, '\0');
  while (file.read(step.data(), static_cast<std::streamsize>(kStep)), file.gcount() > 0) {
    bytes.append(step, 0, static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > kMaxBytes) {
      problem = "is longer than 64 MiB";
      return false;
    }
  }
  return true;
}

}  // namespace

bool ReadScript(const std::string& path, ScriptSource& source, std::string& problem) {
  std::string bytes;
  if (!ReadBytes(path, bytes, problem)) return false;
  const std::string_view view = bytes;
  if (view.starts_with("\xFF\xFE") || view.starts_with("\xFE\xFF")) {
    source.text = Utf8FromUtf16(view.substr(2), view.starts_with('\xFE'));
  } else {
    source.text = view.substr(view.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    if (!IsUtf8(source.text)) {
      problem = "is neither UTF-8 nor UTF-16 with a byte order mark";
      return false;
    }
  }
  std::error_code error;
  source.path = path;
  source.name = std::filesystem::path(path).filename().string();
  source.fullPath = std::filesystem::absolute(path, error).lexically_normal().string();
  return true;
}

}  // namespace velandoc
