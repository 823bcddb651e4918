#include <algorithm>
#include <array>
#include <fstream>

#include "standin/base64.h"
#include "standin/json_fields.h"
#include "standin/rule.h"
#include "standin/soap_message.h"

namespace velandoc::standin {
namespace {

using nlohmann::json;
using std::chrono::milliseconds;

milliseconds Milliseconds(const json& object, const char* key) {
  constexpr std::uint64_t kHour = 3'600'000;
  const std::uint64_t value = Number(object, key, 0);
  if (value > kHour) throw std::invalid_argument("an hour is the longest time");
  return milliseconds(value);
}

std::string Bytes(const json& object, const char* key) {
  auto bytes = DecodeBase64(object.at(key).get<std::string>());
  if (!bytes) throw std::invalid_argument(std::string(key) + " is no Base64");
  return std::move(*bytes);
}

// The bytes of a file, whose path counts from the folder in which the server was started.
std::string FileBytes(const json& object, const char* key) {
  constexpr std::size_t kLargest = std::size_t{16} << 20;
  const std::string path = object.at(key).get<std::string>();
  std::ifstream file(path, std::ios::binary);
  std::string bytes;
  std::array<char, 65536> piece{};
  while (file.read(piece.data(), piece.size()) || file.gcount() > 0) {
    bytes.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    if (bytes.size() > kLargest) throw std::invalid_argument(path + ": 16 MiB is the largest body");
  }
  if (!file.eof()) throw std::invalid_argument(path + ": cannot be read");
  return bytes;
}

int Status(const json& object, int otherwise) {
  const std::uint64_t status = Number(object, "status", static_cast<std::uint64_t>(otherwise));
  if (status > 999) throw std::invalid_argument("status has three digits at most");
  return static_cast<int>(status);
}

Framing ParseFraming(const std::string& name) {
  if (name == "length") return Framing::kLength;
  if (name == "chunked") return Framing::kChunked;
  if (name == "close") return Framing::kClose;
  throw std::invalid_argument("framing is length, chunked or close");
}

void ParseBody(const json& object, Response& response) {
  if (object.contains("body")) response.body = object["body"].get<std::string>();
  if (object.contains("body_base64")) response.body = Bytes(object, "body_base64");
  if (object.contains("body_file")) response.body = FileBytes(object, "body_file");
  if (object.contains("body_fill")) {
    const json& fill = object["body_fill"];
    CheckKeys(fill, "body_fill", {"byte", "count"});
    response.pattern = Pattern::kSame;
    response.fillByte = static_cast<unsigned char>(Number(fill, "byte", 0));
    response.patternLength = Number(fill, "count", 0);
  }
}

Response ParseRespond(const json& object) {
  CheckKeys(object, "respond",
            {"status", "reason", "headers", "body", "body_base64", "body_file", "body_fill",
             "framing", "chunk_size", "close", "early"});
  Response response;
  response.status = Status(object, 200);
  response.reason = object.value("reason", "");
  for (const json& header : object.value("headers", json::array()))
    response.headers.push_back({header.at(0).get<std::string>(), header.at(1).get<std::string>()});
  ParseBody(object, response);
  response.framing = ParseFraming(object.value("framing", "length"));
  response.chunkSize = Number(object, "chunk_size", response.chunkSize);
  if (response.chunkSize == 0) throw std::invalid_argument("chunk_size is 1 at least");
  response.close = object.value("close", false);
  return response;
}

Response ParseRedirect(const json& object) {
  CheckKeys(object, "redirect", {"status", "location"});
  const int status = Status(object, 302);
  Response response = HtmlPage(status, UsualReason(status), "The document is somewhere else.");
  response.headers.push_back({"Location", object.at("location").get<std::string>()});
  return response;
}

// A length is promised, fewer bytes are sent and the connection ends.
void ParseTruncate(const json& object, RuleActions& actions) {
  CheckKeys(object, "truncate", {"status", "length", "sent", "body"});
  Response response;
  response.status = Status(object, 200);
  response.headers.push_back({"Content-Type", "application/octet-stream"});
  response.headers.push_back({"Content-Length", std::to_string(Number(object, "length", 0))});
  const std::uint64_t sent = Number(object, "sent", 0);
  if (object.contains("body")) {
    response.body = object["body"].get<std::string>().substr(0, sent);
  } else {
    response.pattern = Pattern::kCounting;
    response.patternLength = sent;
  }
  actions.cut = Cut{Cut::At::kBody, response.Length(), false};
  actions.response = std::move(response);
}

Response ParseFault(const json& object) {
  CheckKeys(object, "fault", {"status", "code", "text"});
  return SoapFault(object.value("code", "Server"), object.value("text", "The server failed."),
                   Status(object, 500));
}

AuthScheme ParseScheme(const std::string& name) {
  if (name == "basic") return AuthScheme::kBasic;
  if (name == "digest") return AuthScheme::kDigest;
  if (name == "ntlm") return AuthScheme::kNtlm;
  if (name == "negotiate") return AuthScheme::kNegotiate;
  throw std::invalid_argument("scheme is basic, digest, ntlm, negotiate or a list of them");
}

AuthDemand ParseAuth(const json& object) {
  CheckKeys(object, "auth", {"scheme", "user", "password", "others", "realm", "proxy"});
  AuthDemand demand;
  const json& scheme = object.at("scheme");
  if (scheme.is_array()) {
    for (const json& one : scheme) demand.schemes.push_back(ParseScheme(one.get<std::string>()));
  } else {
    demand.schemes.push_back(ParseScheme(scheme.get<std::string>()));
  }
  demand.user = object.value("user", "");
  demand.password = object.value("password", "");
  const json others = object.value("others", json::object());
  if (!others.is_object() || others.size() > 100)
    throw std::invalid_argument("others has to be an object of 100 users at most");
  for (const auto& [user, password] : others.items())
    demand.others.push_back({user, password.get<std::string>()});
  demand.realm = object.value("realm", demand.realm);
  demand.isProxy = object.value("proxy", false);
  return demand;
}

Cut ParseCut(const json& object, std::string_view what, bool isReset) {
  CheckKeys(object, what, {"at", "after_bytes"});
  Cut cut;
  cut.isReset = isReset;
  const std::string at = object.value("at", "request");
  if (at == "accept") {
    cut.at = Cut::At::kAccept;
  } else if (at == "request") {
    cut.at = Cut::At::kRequest;
  } else if (at == "head") {
    cut.at = Cut::At::kHead;
  } else if (at == "body") {
    cut.at = Cut::At::kBody;
  } else {
    throw std::invalid_argument("at is accept, request, head or body");
  }
  cut.afterBytes = Optional<std::uint64_t>(object, "after_bytes");
  return cut;
}

RawAnswer ParseRaw(const json& object) {
  CheckKeys(object, "raw", {"base64", "close"});
  return {Bytes(object, "base64"), object.value("close", true)};
}

// Nothing that any client could take for an answer, a zero byte and bytes above 127 among it.
RawAnswer ParseGarbage(const json& object) {
  CheckKeys(object, "garbage", {"count", "close"});
  constexpr std::string_view kPiece("\x01\x00garbage \xff\xfe\r\n", 13);
  RawAnswer raw;
  raw.close = object.value("close", true);
  const std::uint64_t count = Number(object, "count", 64);
  if (count > (1u << 24)) throw std::invalid_argument("16 MiB is the most garbage");
  while (raw.bytes.size() < count) raw.bytes += kPiece.substr(0, count - raw.bytes.size());
  return raw;
}

Drip ParseDrip(const json& object) {
  CheckKeys(object, "drip", {"bytes", "interval_ms"});
  const Drip drip{Number(object, "bytes", 1), Milliseconds(object, "interval_ms")};
  if (drip.bytes == 0) throw std::invalid_argument("a drip has one byte at least");
  return drip;
}

std::vector<int> ParseInterim(const json& value) {
  int status = 100;
  std::uint64_t count = 1;
  if (value.is_object()) {
    CheckKeys(value, "continue100", {"status", "count"});
    status = Status(value, status);
    count = Number(value, "count", 1);
    if (count > 1000) throw std::invalid_argument("1000 interim answers are the most");
  } else if (!value.get<bool>()) {
    count = 0;
  }
  return std::vector<int>(count, status);
}

RuleActions ParseActions(const json& object) {
  CheckKeys(object, "do",
            {"respond", "raw", "auth", "redirect", "drip", "reset", "close", "truncate", "hang",
             "garbage", "continue100", "delay", "fault", "status"});
  RuleActions actions;
  int finals = 0;
  for (const auto& [key, value] : object.items()) {
    if (key == "respond") {
      actions.response = ParseRespond(value);
      actions.isEarly = value.value("early", false);
    } else if (key == "redirect") {
      actions.response = ParseRedirect(value);
    } else if (key == "truncate") {
      ParseTruncate(value, actions);
    } else if (key == "fault") {
      actions.response = ParseFault(value);
    } else if (key == "status") {
      const int status = Status(object, 200);
      actions.response = HtmlPage(status, UsualReason(status), "By command.");
    } else if (key == "raw") {
      actions.raw = ParseRaw(value);
    } else if (key == "garbage") {
      actions.raw = ParseGarbage(value);
    } else if (key == "hang") {
      CheckKeys(value, "hang", {"ms"});
      actions.hang = Milliseconds(value, "ms");
    } else if (key == "auth") {
      actions.auth = ParseAuth(value);
    } else if (key == "drip") {
      actions.drip = ParseDrip(value);
    } else if (key == "delay") {
      CheckKeys(value, "delay", {"ms"});
      actions.delay = Milliseconds(value, "ms");
    } else if (key == "continue100") {
      actions.interimStatuses = ParseInterim(value);
    } else {
      actions.cut = ParseCut(value, key, key == "reset");
    }
    constexpr std::string_view kFinal[] = {"respond", "redirect", "truncate", "fault",
                                           "status",  "raw",      "garbage",  "hang"};
    if (std::find(std::begin(kFinal), std::end(kFinal), key) != std::end(kFinal)) ++finals;
  }
  if (object.empty()) throw std::invalid_argument("do is empty");
  if (finals > 1) throw std::invalid_argument("do holds more than one answer");
  if (object.contains("reset") + object.contains("close") + object.contains("truncate") > 1)
    throw std::invalid_argument("do ends the connection in more than one way");
  return actions;
}

Rule ParseRule(const json& object) {
  CheckKeys(object, "a rule", {"match", "times", "skip", "do"});
  Rule rule;
  const json match = object.value("match", json::object());
  CheckKeys(match, "match",
            {"host", "path", "method", "tls", "head_contains", "operation", "role"});
  rule.match.host = Optional<std::string>(match, "host");
  rule.match.path = Optional<std::string>(match, "path");
  rule.match.method = Optional<std::string>(match, "method");
  rule.match.tls = Optional<bool>(match, "tls");
  rule.match.headContains = Optional<std::string>(match, "head_contains");
  rule.match.operation = Optional<std::string>(match, "operation");
  rule.match.role = Optional<std::string>(match, "role");
  rule.times = Optional<std::uint64_t>(object, "times");
  rule.skip = Number(object, "skip", 0);
  rule.actions = ParseActions(object.at("do"));
  const bool looksAtHead = rule.match.host || rule.match.path || rule.match.method ||
                           rule.match.headContains || rule.match.role;
  if (rule.actions.ConcernsAccept() && (looksAtHead || rule.match.operation))
    throw std::invalid_argument("nothing but tls is known when a connection is accepted");
  return rule;
}

}  // namespace

std::vector<Rule> ParseRules(std::string_view text) {
  const json value = json::parse(text);
  std::vector<Rule> rules;
  if (value.is_object()) {
    rules.push_back(ParseRule(value));
  } else if (value.is_array()) {
    for (const json& one : value) rules.push_back(ParseRule(one));
  } else {
    throw std::invalid_argument("rules come as an array of objects");
  }
  return rules;
}

}  // namespace velandoc::standin
