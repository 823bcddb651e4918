// Texts of a server as they are shown: nothing in them may steer the terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/text.h"

namespace velandoc {

/// UTF-8 in which no control character is left: a line feed is shown as \n, a carriage return as
/// \r, a tab as \t, the other controls of Unicode's first block as \xNN, and those that turn the
/// direction of writing or break lines as \uNNNN. All else stands as it is, a backslash too.
std::string VisibleText(WideView text);
/// The same of UTF-8; ill-formed bytes become U+FFFD.
std::string VisibleText(std::string_view utf8);

/// Whether a character can do more to a terminal than be shown: controls, separators of lines,
/// marks and overrides of the writing direction. All of them lie in the basic plane.
bool CanSteer(char32_t character);

/// At least `digits` hexadecimal digits, capitals.
std::string HexText(unsigned number, std::size_t digits);

/// How many columns of a terminal visible text takes: two for a wide character of East Asia, none
/// for a combining mark.
std::size_t DisplayWidth(std::string_view utf8);

/// Rows of cells as lines whose columns stand below one another, two blanks apart; the last cell of
/// a row is not padded and nothing is cut off. Each line begins with `indent` blanks.
std::string AlignRows(const std::vector<std::vector<std::string>>& rows, std::size_t indent = 0);

}  // namespace velandoc
