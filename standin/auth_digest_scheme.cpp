#include "standin/auth_digest_scheme.h"

#include <map>

#include "standin/auth_digests.h"
#include "standin/sha256.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

using Parameters = std::map<std::string, std::string, std::less<>>;

// name=value and name="value", separated by commas; \ quotes the next character in quotes.
Parameters Split(std::string_view text) {
  Parameters parameters;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t equals = text.find('=', at);
    if (equals == std::string_view::npos) break;
    const std::string name = LowerAscii(Trim(text.substr(at, equals - at)));
    std::string value;
    at = equals + 1;
    if (at < text.size() && text[at] == '"') {
      for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size()) ++at;
        value += text[at];
      }
    } else {
      const std::size_t comma = text.find(',', at);
      value = Trim(text.substr(at, comma - at));
    }
    parameters[name] = value;
    const std::size_t comma = text.find(',', at);
    if (comma == std::string_view::npos) break;
    at = comma + 1;
  }
  return parameters;
}

std::string HexMd5(std::string_view bytes) { return Hex(Md5(bytes)); }

// A nonce proves itself: random bytes and their seal. So none has to be remembered.
std::string Seal(std::string_view random) {
  static const std::string secret = RandomBytes(16);
  return Hex(HmacMd5(secret, random));
}

constexpr std::size_t kRandomDigits = 16;

bool IsOwnNonce(std::string_view nonce) {
  return nonce.size() > kRandomDigits &&
         nonce.substr(kRandomDigits) == Seal(nonce.substr(0, kRandomDigits));
}

}  // namespace

std::string DigestChallenge(const std::string& realm, bool isStale) {
  const std::string random = Hex(RandomBytes(kRandomDigits / 2));
  std::string challenge = "Digest realm=\"" + realm + "\", nonce=\"" + random + Seal(random) +
                          "\", qop=\"auth\", algorithm=MD5";
  if (isStale) challenge += ", stale=true";
  return challenge;
}

DigestResult CheckDigest(const Request& request, const AuthDemand& demand,
                         std::string_view parameters) {
  Parameters given = Split(parameters);
  const std::string& uri = given["uri"];
  const bool isThisTarget = uri == request.target || uri == request.pathAndQuery;
  if (given["username"] != demand.user || given["realm"] != demand.realm ||
      given["qop"] != "auth" || given["nc"].size() != 8 || given["cnonce"].empty() || !isThisTarget)
    return DigestResult::kWrong;
  if (given.contains("algorithm") && !EqualNoCase(given["algorithm"], "MD5"))
    return DigestResult::kWrong;
  const std::string secret = HexMd5(demand.user + ":" + demand.realm + ":" + demand.password);
  const std::string asked = HexMd5(request.method + ":" + uri);
  const std::string right = HexMd5(secret + ":" + given["nonce"] + ":" + given["nc"] + ":" +
                                   given["cnonce"] + ":auth:" + asked);
  if (LowerAscii(given["response"]) != right) return DigestResult::kWrong;
  return IsOwnNonce(given["nonce"]) ? DigestResult::kRight : DigestResult::kStale;
}

}  // namespace velandoc::standin
