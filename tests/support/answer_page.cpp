#include "tests/support/answer_page.h"

namespace velandoc::testing {
namespace {

std::string EntryLines(std::string_view entry, const PagePairs& pairs) {
  return "<ul>\n<ul>\n<li>" + std::string(entry) + "\n<li>meta_info=\n" + PairLines(pairs) +
         "</ul>\n</ul>\n";
}

}  // namespace

std::string AnswerPage(std::string_view answer) {
  return "<html><head><title>vermeer RPC packet</title></head>\n<body>\n"
         "<p>method=answer:12.0.0.6665\n" +
         std::string(answer) + "</body>\n</html>\n";
}

std::string PairLines(const PagePairs& pairs) {
  std::string lines = "<ul>\n";
  for (const auto& [key, value] : pairs) {
    lines.append("<li>").append(key).append("\n<li>").append(value).append("\n");
  }
  return lines + "</ul>\n";
}

std::string WebUrlLines(std::string_view webUrl, std::string_view fileUrl) {
  return "<p>webUrl=" + std::string(webUrl) + "\n<p>fileUrl=" + std::string(fileUrl) + "\n";
}

std::string DocumentLines(std::string_view name, const PagePairs& pairs) {
  return "<p>document_list=\n" + EntryLines("document_name=" + std::string(name), pairs);
}

std::string FolderLines(std::string_view url, const PagePairs& pairs) {
  return "<p>document_list=\n<ul>\n</ul>\n<p>urldirs=\n" +
         EntryLines("url=" + std::string(url), pairs);
}

std::string ServiceLines(const PagePairs& pairs) {
  return "<p>service=\n<ul>\n<li>service_name=/\n<li>meta_info=\n" + PairLines(pairs) + "</ul>\n";
}

std::string StatusLines(std::string_view status, std::string_view message) {
  return "<p>status=\n<ul>\n<li>status=" + std::string(status) +
         "\n<li>osstatus=0\n<li>msg=" + std::string(message) + "\n<li>osmsg=\n</ul>\n";
}

std::string WithCarriageReturns(std::string_view page) {
  std::string converted;
  for (const char character : page) {
    if (character == '\n') converted += '\r';
    converted += character;
  }
  return converted;
}

}  // namespace velandoc::testing
