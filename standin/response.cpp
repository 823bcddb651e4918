#include "standin/response.h"

#include <utility>

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::pair<int, std::string_view> kReasons[] = {
    {100, "Continue"},
    {200, "OK"},
    {201, "Created"},
    {202, "Accepted"},
    {204, "No Content"},
    {206, "Partial Content"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {303, "See Other"},
    {304, "Not Modified"},
    {307, "Temporary Redirect"},
    {308, "Permanent Redirect"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {407, "Proxy Authentication Required"},
    {409, "Conflict"},
    {411, "Length Required"},
    {413, "Payload Too Large"},
    {415, "Unsupported Media Type"},
    {431, "Request Header Fields Too Large"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
};

}  // namespace

std::string_view UsualReason(int status) {
  for (const auto& [number, words] : kReasons)
    if (number == status) return words;
  return "Status";
}

Response HtmlPage(int status, std::string_view title, std::string_view text) {
  std::string page = "<!DOCTYPE html><html><head><title>";
  page += EscapeMarkup(title);
  page += "</title></head><body><h1>";
  page += EscapeMarkup(title);
  page += "</h1><p>";
  page += EscapeMarkup(text);
  page += "</p></body></html>\n";
  return TextAnswer(status, "text/html; charset=utf-8", std::move(page));
}

Response TextAnswer(int status, std::string_view contentType, std::string body) {
  Response response;
  response.status = status;
  response.headers.push_back({"Content-Type", std::string(contentType)});
  response.body = std::move(body);
  return response;
}

}  // namespace velandoc::standin
