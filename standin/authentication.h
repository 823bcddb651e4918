// Asking clients for credentials and verifying them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standin/request.h"
#include "standin/response.h"

namespace velandoc::standin {

enum class AuthScheme { kBasic, kDigest, kNtlm, kNegotiate };

// UTF-8.
struct Account {
  std::string user;
  std::string password;
};

// What a rule demands.
struct AuthDemand {
  std::vector<AuthScheme> schemes;
  // The account that one check is about.
  std::string user;
  std::string password;
  // Further ones that are as good.
  std::vector<Account> others;
  std::string realm = "stand-in";
  // Asks as a proxy: 407 and Proxy-Authenticate, in place of 401 and WWW-Authenticate.
  bool isProxy = false;
};

// NTLM authenticates a connection, not a request; one of these for the server and one for the
// proxy.
struct NtlmState {
  // The challenge sent; empty when none is open.
  std::string challenge;
  // The user that the connection belongs to; empty before the exchange is done.
  std::string user;
};

struct ConnectionAuth {
  NtlmState origin;
  NtlmState proxy;
};

// Nothing if the request carries what is demanded, and whose it is in `user`; else the answer that
// refuses it.
std::optional<Response> CheckCredentials(const Request& request, const AuthDemand& demand,
                                         ConnectionAuth& connection, std::string& user);

}  // namespace velandoc::standin
