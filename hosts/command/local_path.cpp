#include "hosts/command/local_path.h"

namespace velandoc {

std::filesystem::path PathOf(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}

std::string ReasonText(const std::error_code& problem) { return problem.message(); }

std::string FindWriteProblem(const std::filesystem::path& file) {
  std::error_code problem;
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : PathOf(".");
  if (!std::filesystem::exists(folder, problem)) return "its folder does not exist";
  if (!std::filesystem::is_directory(folder, problem)) return "its folder is a file";
  const std::filesystem::space_info space = std::filesystem::space(folder, problem);
  if (!problem && space.available == 0) return "the disk is full";
  return "it may not be written, or another program has it open";
}

}  // namespace velandoc
