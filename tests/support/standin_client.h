// Talks to the stand-in server's control port from a test, in both homes.
//
// The server is started by whoever runs the tests; the environment variable VELANDOC_STANDIN tells
// its ports: "http=1234,https=1235,control=1236". What the rules look like is told in
// standin/README.md.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc::test {

// A request as the server recorded it.
struct StandInRequest {
  std::uint64_t number = 0;
  std::uint64_t connection = 0;
  bool tls = false;
  bool proxy = false;
  std::string connectHost;
  std::string method;
  std::string target;
  std::string host;
  // The operation of a web service or of WebHDFS, or the method of FrontPage RPC, without its
  // version; empty for a request that is no call.
  std::string operation;
  // "name node" or "data node" for WebHDFS; else empty.
  std::string role;
  // The bytes from the request line to the empty line.
  std::string head;
  // The payload; empty for bodies above 64 KiB, which have a hash instead.
  std::string body;
  std::uint64_t bodyLength = 0;
  std::string bodySha256;
};

// Counts since the server started, the control port left aside.
struct StandInStats {
  std::uint64_t connections = 0;
  std::uint64_t open = 0;
  std::uint64_t tls = 0;
  std::uint64_t requests = 0;
};

// Every operation throws std::runtime_error when the server cannot be reached or says no; the
// message holds its answer.
class StandIn {
 public:
  // True if the environment names a server; a test that needs one skips itself otherwise.
  static bool IsAvailable();

  // Throws std::runtime_error when the environment names none.
  StandIn();

  std::uint16_t HttpPort() const { return m_http; }
  std::uint16_t HttpsPort() const { return m_https; }
  std::uint16_t ControlPort() const { return m_control; }

  // "http://localhost:PORT" and "https://localhost:PORT" with `pathAndQuery` behind.
  std::string HttpUrl(std::string_view pathAndQuery) const;
  std::string HttpsUrl(std::string_view pathAndQuery) const;

  // Replaces the rules by those of a JSON array; adds the one rule of a JSON object; drops all.
  void SetBehaviour(std::string_view json);
  void AddBehaviour(std::string_view json);
  void ClearBehaviour();

  // The requests recorded since the last ClearLog, oldest first.
  std::vector<StandInRequest> Log() const;
  void ClearLog();

  // Replaces the SharePoint site by that of a JSON object; its state as such text; the site that
  // the server started with.
  void SetSite(std::string_view json);
  std::string Site() const;
  void ResetSite();
  // Who comes without credentials, by login or by the part of it behind "\"; empty for nobody.
  void SetCaller(std::string_view login);

  // What kind of HDFS is played, by a JSON object; keys left out have their defaults.
  void SetHdfs(std::string_view json);
  // The defaults, and no files if the server's folder is its own.
  void ResetHdfs();

  // What the https port shows for every name: "good", "expired", "notyet", "othername",
  // "unknownca", "selfsigned", "allwrong" or "clientcert". Empty: by the name asked for.
  void SetCertificate(std::string_view kind);

  // Off: requests are only counted, for measurements.
  void SetRecording(bool on);

  StandInStats Stats() const;

  // Sends bytes to one of the ports and returns all that comes back until the server ends the
  // connection. For tests of what is on the wire; ask for "Connection: close".
  std::string Exchange(std::uint16_t port, std::string_view bytes) const;

  // Rules, log, site, HDFS, forced certificate: all as after the start.
  void Reset();

 private:
  std::string Command(std::string_view method, std::string_view target,
                      std::string_view body = {}) const;

  std::uint16_t m_http = 0;
  std::uint16_t m_https = 0;
  std::uint16_t m_control = 0;
};

// Resets the server when a test begins and when it ends, so that no rule leaks into the next one.
class StandInScope {
 public:
  explicit StandInScope(StandIn& server) : m_server(server) { m_server.Reset(); }
  StandInScope(const StandInScope&) = delete;
  StandInScope& operator=(const StandInScope&) = delete;
  ~StandInScope();

 private:
  StandIn& m_server;
};

}  // namespace velandoc::test
