// Answer pages in the form in which FrontPage servers write them: line feeds only, tags at the
// start of the line, items opened and never closed.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velandoc::testing {

/// Keys and values as they stand on the page, nothing escaped.
using PagePairs = std::vector<std::pair<std::string, std::string>>;

/// The whole page round the lines of an answer.
std::string AnswerPage(std::string_view answer);

/// The lines of one list of pairs.
std::string PairLines(const PagePairs& pairs);

/// Lines of answers.
std::string WebUrlLines(std::string_view webUrl, std::string_view fileUrl);
std::string DocumentLines(std::string_view name, const PagePairs& pairs);
/// Behind the empty list of documents.
std::string FolderLines(std::string_view url, const PagePairs& pairs);
std::string ServiceLines(const PagePairs& pairs);
std::string StatusLines(std::string_view status, std::string_view message);

/// `page` with a carriage return in front of each line feed.
std::string WithCarriageReturns(std::string_view page);

}  // namespace velandoc::testing
