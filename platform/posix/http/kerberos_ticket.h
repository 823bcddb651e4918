// Whether the user may hold a Kerberos ticket, so that Negotiate is worth a try.
#pragma once

namespace velandoc::http {

/// Looks for the ticket cache that KRB5CCNAME names, else for the user's file in /tmp. A cache that
/// is no file (KEYRING:, KCM:) counts as there. Whether a ticket in it is good for the server shows
/// only when it is used.
bool MayHoldTicket();

}  // namespace velandoc::http
