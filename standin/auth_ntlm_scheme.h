// The NTLM scheme: three messages on one connection, the last one verified as NTLMv2.
#pragma once

#include <string>
#include <string_view>

#include "standin/authentication.h"

namespace velandoc::standin {

// Takes the client's message (Base64). True if it completes the exchange for the demanded user.
// Else `challenge` is the next message (Base64), or empty when the exchange failed and has to start
// anew. The domain that the client names enters the proof but is not compared with anything.
bool CheckNtlm(const AuthDemand& demand, std::string_view message, NtlmState& state,
               std::string& challenge);

}  // namespace velandoc::standin
