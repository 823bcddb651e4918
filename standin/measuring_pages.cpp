#include "standin/measuring_pages.h"

#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr std::string_view kBytes = "/bytes/";
constexpr std::string_view kChunked = "/chunked/";
constexpr std::string_view kSink = "/sink";
constexpr std::string_view kEcho = "/echo";

Response Bytes(std::string_view number, Framing framing) {
  const auto count = ParseNumber<std::uint64_t>(number);
  if (!count) return HtmlPage(400, "Bad Request", "The path ends in no number.");
  Response response = TextAnswer(200, "application/octet-stream", {});
  response.pattern = Pattern::kCounting;
  response.patternLength = *count;
  response.framing = framing;
  return response;
}

}  // namespace

bool MeasuringPages::Serves(const Request& request) const {
  const std::string_view path = request.path;
  return path.starts_with(kBytes) || path.starts_with(kChunked) || path == kSink || path == kEcho;
}

bool MeasuringPages::IgnoresBody(const Request& request) const { return request.path == kSink; }

Response MeasuringPages::Answer(const Request& request) {
  const std::string_view path = request.path;
  if (path.starts_with(kBytes)) return Bytes(path.substr(kBytes.size()), Framing::kLength);
  if (path.starts_with(kChunked)) return Bytes(path.substr(kChunked.size()), Framing::kChunked);
  if (path == kEcho) return TextAnswer(200, "text/plain", request.head + request.body);
  return TextAnswer(200, "application/json",
                    "{\"bytes\":" + std::to_string(request.bodyLength) + "}");
}

}  // namespace velandoc::standin
