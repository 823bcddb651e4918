#include "standin/authentication.h"

#include "standin/auth_digest_scheme.h"
#include "standin/auth_ntlm_scheme.h"
#include "standin/base64.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

// "Scheme rest" as clients send it.
struct Credentials {
  std::string scheme;
  std::string rest;
};

Credentials ReadCredentials(const Request& request, const AuthDemand& demand) {
  const std::string* header =
      request.Find(demand.isProxy ? "Proxy-Authorization" : "Authorization");
  if (!header) return {};
  const std::size_t blank = header->find(' ');
  Credentials credentials;
  credentials.scheme = LowerAscii(header->substr(0, blank));
  if (blank != std::string::npos) credentials.rest = Trim(std::string_view(*header).substr(blank));
  return credentials;
}

bool CheckBasic(const Credentials& credentials, const AuthDemand& demand) {
  return DecodeBase64(credentials.rest) == demand.user + ":" + demand.password;
}

// The outcome for one scheme: let through, or what its challenge has to say.
struct Outcome {
  bool isRight = false;
  std::string challenge;
};

Outcome Check(AuthScheme scheme, const Request& request, const AuthDemand& demand,
              const Credentials& credentials, NtlmState& ntlm) {
  switch (scheme) {
    case AuthScheme::kBasic:
      return {credentials.scheme == "basic" && CheckBasic(credentials, demand),
              "Basic realm=\"" + demand.realm + "\""};
    case AuthScheme::kDigest: {
      const DigestResult result = credentials.scheme == "digest"
                                      ? CheckDigest(request, demand, credentials.rest)
                                      : DigestResult::kWrong;
      return {result == DigestResult::kRight,
              DigestChallenge(demand.realm, result == DigestResult::kStale)};
    }
    case AuthScheme::kNtlm: {
      if (credentials.scheme != "ntlm") return {ntlm.user == demand.user, "NTLM"};
      std::string challenge;
      const bool isRight = CheckNtlm(demand, credentials.rest, ntlm, challenge);
      return {isRight, challenge.empty() ? "NTLM" : "NTLM " + challenge};
    }
    case AuthScheme::kNegotiate:
      break;
  }
  // No ticket can be verified here: clients see how they fall back.
  return {false, "Negotiate"};
}

// The same for all accounts of the demand, and whose credentials they are in `user`. The challenge,
// and the state of an exchange that goes on, are those of the first account.
Outcome CheckAccounts(AuthScheme scheme, const Request& request, const AuthDemand& demand,
                      const Credentials& credentials, NtlmState& ntlm, std::string& user) {
  const NtlmState before = ntlm;
  Outcome first = Check(scheme, request, demand, credentials, ntlm);
  if (first.isRight) {
    user = demand.user;
    return first;
  }
  for (const Account& account : demand.others) {
    AuthDemand other = demand;
    other.user = account.user;
    other.password = account.password;
    NtlmState state = before;
    Outcome outcome = Check(scheme, request, other, credentials, state);
    if (!outcome.isRight) continue;
    ntlm = state;
    user = account.user;
    return outcome;
  }
  return first;
}

}  // namespace

std::optional<Response> CheckCredentials(const Request& request, const AuthDemand& demand,
                                         ConnectionAuth& connection, std::string& user) {
  const Credentials credentials = ReadCredentials(request, demand);
  NtlmState& ntlm = demand.isProxy ? connection.proxy : connection.origin;
  const int status = demand.isProxy ? 407 : 401;
  Response refusal =
      HtmlPage(status, UsualReason(status), "This address asks for a user name and a password.");
  const std::string_view name = demand.isProxy ? "Proxy-Authenticate" : "WWW-Authenticate";
  for (const AuthScheme scheme : demand.schemes) {
    Outcome outcome = CheckAccounts(scheme, request, demand, credentials, ntlm, user);
    if (outcome.isRight) return std::nullopt;
    refusal.headers.push_back({std::string(name), std::move(outcome.challenge)});
  }
  // In the midst of an NTLM exchange only its next step is offered.
  if (!ntlm.challenge.empty()) {
    std::erase_if(refusal.headers, [name](const Header& header) {
      return header.name == name && !header.value.starts_with("NTLM ");
    });
  }
  return refusal;
}

}  // namespace velandoc::standin
