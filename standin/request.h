// One request as it arrived.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velandoc::standin {

struct Header {
  std::string name;
  std::string value;
};

struct Request {
  // The head as received, from the request line to the empty line, both included.
  std::string head;
  std::string method;
  // As it stands in the request line: a path, an absolute URL (to a proxy), host:port (CONNECT).
  std::string target;
  std::string version;
  std::vector<Header> headers;

  // The host name asked for, in lower case, without a port: of an absolute target, else of Host.
  std::string host;
  // The target without scheme and host.
  std::string pathAndQuery;
  // The part of pathAndQuery in front of "?".
  std::string path;

  // The payload, chunk framing removed. Empty for bodies that the application lets pass unseen.
  std::string body;
  std::uint64_t bodyLength = 0;
  // Payload sizes of the chunks, the first thousand of them; empty without chunked framing.
  std::vector<std::uint64_t> chunks;
  // Hexadecimal; empty for short bodies, which are kept whole, and for those too large to hash.
  std::string bodySha256;

  std::uint64_t connection = 0;
  bool tls = false;
  // The client spoke as to a proxy: absolute target, CONNECT, or a request inside a tunnel.
  bool proxy = false;
  // The host name of the tunnel that this request came through.
  std::string connectHost;

  // What is called, if this is a call: the operation of a web service or the method of FrontPage
  // RPC, without its version, or of WebHDFS in capitals. That of RPC is known once the body is.
  std::string operation;
  // Which of several servers at one address is meant: "name node" or "data node" of HDFS; else
  // empty.
  std::string role;
  // Whose credentials a rule demanded and got; empty without one.
  std::string user;

  // The first header of that name, in any case; null when there is none.
  const std::string* Find(std::string_view name) const;
  // True if a header of that name lists `token`.
  bool Lists(std::string_view name, std::string_view token) const;
};

}  // namespace velandoc::standin
