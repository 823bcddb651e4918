// Local paths between the command line, which speaks UTF-8, and the file system.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace velandoc {

std::filesystem::path PathOf(std::string_view utf8);
std::string Utf8Of(const std::filesystem::path& path);

/// "No such file or directory", as the system words it.
std::string ReasonText(const std::error_code& problem);

/// Why a file there could not be made or written, as far as that is to be found out afterwards.
std::string FindWriteProblem(const std::filesystem::path& file);

}  // namespace velandoc
