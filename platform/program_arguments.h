// A program's own command line.
#pragma once

#include <string>
#include <vector>

namespace velandoc {

/// The arguments behind the program's name, in UTF-8 in both homes. Windows hands main() its
/// arguments in the ANSI code page, which loses text, so there the wide command line is read and
/// `argv` left alone. On Linux the bytes are passed on as they are, UTF-8 or not.
std::vector<std::string> ProgramArguments(int argc, char** argv);

}  // namespace velandoc
