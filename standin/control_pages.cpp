#include "standin/control_pages.h"

#include <unistd.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "standin/hdfs_settings.h"
#include "standin/json_fields.h"
#include "standin/site_json.h"
#include "standin/site_time.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

using nlohmann::json;

Response Json(int status, const json& value) {
  return TextAnswer(status, "application/json", value.dump() + "\n");
}

Response Done() { return Json(200, {{"ok", true}}); }

}  // namespace

Response ControlPages::Answer(const Request& request) {
  const std::string_view method = request.method;
  const std::string_view path = request.path;
  try {
    if (path == "/behaviour") return Behaviour(request);
    if (path == "/log") return Log(request);
    if (path == "/site") return SiteState(request);
    if (path == "/hdfs") return Hdfs(request);
    if (path == "/caller" && method == "PUT") return SetCaller(request);
    if (path == "/clock" && method == "PUT") return SetClock(request);
    if (path == "/stats" && method == "GET") return Stats();
    if (path == "/certificate" && method == "PUT") return SetCertificate(request);
    if (path == "/recording" && method == "PUT") return SetRecording(request);
    if (path == "/stop" && method == "POST") {
      Response response = Done();
      response.close = true;
      kill(getpid(), SIGTERM);
      return response;
    }
  } catch (const std::exception& error) {
    return Json(400, {{"error", error.what()}});
  }
  return Json(404, {{"error", "no such command: " + request.method + " " + request.path}});
}

Response ControlPages::Behaviour(const Request& request) {
  if (request.method == "DELETE") {
    m_services.rules.Replace({});
  } else if (request.method == "PUT") {
    m_services.rules.Replace(ParseRules(request.body));
  } else if (request.method == "POST") {
    m_services.rules.Append(ParseRules(request.body));
  } else {
    throw std::invalid_argument("behaviour takes PUT, POST and DELETE");
  }
  return Done();
}

Response ControlPages::Log(const Request& request) {
  if (request.method == "DELETE") {
    m_services.log.Clear();
    return Done();
  }
  if (request.method != "GET") throw std::invalid_argument("log takes GET and DELETE");
  constexpr std::string_view kSince = "/log?since=";
  std::uint64_t since = 0;
  if (request.pathAndQuery.starts_with(kSince)) {
    const auto number =
        ParseNumber<std::uint64_t>(std::string_view(request.pathAndQuery).substr(kSince.size()));
    if (!number) throw std::invalid_argument("since takes the number of a request");
    since = *number;
  }
  return TextAnswer(200, "application/json", m_services.log.Read(since));
}

Response ControlPages::SiteState(const Request& request) {
  if (request.method == "GET")
    return TextAnswer(200, "application/json", m_services.sites.With(FormatSite));
  if (request.method == "DELETE") {
    m_services.sites.Reset();
  } else if (request.method == "PUT") {
    m_services.sites.Replace(ParseSite(request.body));
  } else {
    throw std::invalid_argument("site takes GET, PUT and DELETE");
  }
  return Done();
}

Response ControlPages::Hdfs(const Request& request) {
  if (request.method == "GET")
    return TextAnswer(200, "application/json", FormatHdfsSettings(m_services.hdfs.Settings()));
  if (request.method == "PUT") {
    m_services.hdfs.Set(ParseHdfsSettings(request.body));
  } else if (request.method == "DELETE") {
    m_services.hdfs.Reset();
  } else {
    throw std::invalid_argument("hdfs takes GET, PUT and DELETE");
  }
  return Done();
}

// The user is told in the answer, as the site knows him.
Response ControlPages::SetCaller(const Request& request) {
  const json value = json::parse(request.body);
  CheckKeys(value, "caller", {"login"});
  const std::string login = value.at("login").get<std::string>();
  return m_services.sites.With([&login](Site& site) {
    const User* user = site.FindUser(login);
    if (!user && !login.empty()) throw std::invalid_argument("there is no user " + login);
    site.caller = user ? user->login : std::string();
    return Json(200, {{"ok", true}, {"login", site.caller}});
  });
}

Response ControlPages::SetClock(const Request& request) {
  const json value = json::parse(request.body);
  CheckKeys(value, "clock", {"time"});
  const auto text = Optional<std::string>(value, "time");
  const auto time = text ? ParseTime(*text) : std::nullopt;
  if (text && !time) throw std::invalid_argument("a time looks like 2009-07-04T10:11:12Z");
  m_services.sites.With([&time](Site& site) { site.clock = time; });
  return Done();
}

Response ControlPages::Stats() const {
  const Statistics& statistics = m_services.statistics;
  return Json(200, {{"connections", statistics.connectionsAccepted.load()},
                    {"open", statistics.connectionsOpen.load()},
                    {"tls", statistics.tlsHandshakes.load()},
                    {"requests", statistics.requests.load()}});
}

Response ControlPages::SetCertificate(const Request& request) {
  const json value = json::parse(request.body);
  const json& kind = value.at("kind");
  if (kind.is_null()) {
    m_services.certificates.Force(std::nullopt);
    return Done();
  }
  const auto parsed = ParseCertificateKind(kind.get<std::string>());
  if (!parsed) throw std::invalid_argument("no such kind of certificate: " + kind.dump());
  m_services.certificates.Force(parsed);
  return Done();
}

Response ControlPages::SetRecording(const Request& request) {
  const json value = json::parse(request.body);
  CheckKeys(value, "recording", {"on", "largest_hash"});
  m_services.log.SetRecording(value.at("on").get<bool>(),
                              Number(value, "largest_hash", kLargestHashedBody));
  return Done();
}

}  // namespace velandoc::standin
