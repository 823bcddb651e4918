// A program's standard streams: data goes to the output, talk to the error stream.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace velandoc {

/// Call first in main(): from then on a reader that has gone away shows as a write that fails, and
/// does not end the process unasked.
void PrepareStandardStreams();

/// Writes UTF-8, a Windows console included. Buffered while the output is no terminal. False if the
/// stream refused (a closed pipe, a full disk); what was written of `text` is then unknown.
bool WriteOutput(std::string_view text);
/// Hands over what WriteOutput keeps.
bool FlushOutput();
/// Writes bytes as they are, behind what WriteOutput keeps and without keeping any. False if the
/// stream refused.
bool WriteBytes(std::string_view bytes);
/// The standard input's next bytes, as they are: at most `size`, 0 at its end; -1 if it cannot be
/// read.
std::ptrdiff_t ReadBytes(char* buffer, std::size_t size);
/// Flushes the output first, so that the two keep their order where they share a terminal or a
/// file. Failure is not reported: there is nobody left to tell.
void WriteTalk(std::string_view text);
/// Whether the error stream is a terminal, and one that can erase a line.
bool IsTalkTerminal();
/// How many columns it has; 80 where that is not known.
std::size_t TalkColumns();

/// A line of the standard input without its end, UTF-8 from a Windows console too. Nothing at the
/// end of the input or if it can't be read. Any length.
std::optional<std::string> ReadInputLine();

}  // namespace velandoc
