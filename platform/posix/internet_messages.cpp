#include "platform/posix/internet_messages.h"

#include <algorithm>
#include <optional>

namespace velandoc {
namespace {

struct Row {
  DWORD code;
  std::optional<InternetModule> module;  // none: of both
  std::u16string_view text;
};

constexpr auto kBoth = std::nullopt;
constexpr auto kWinInet = InternetModule::kWinInet;
constexpr auto kWinHttp = InternetModule::kWinHttp;

constexpr Row kRows[] = {
    {12001, kBoth, u"Too many connections are open at once."},
    {12002, kBoth, u"The server took too long to answer."},
    {12003, kWinInet, u"The server sent an explanation of its own along with the error."},
    {12004, kBoth, u"Something went wrong inside the network library."},
    {12005, kBoth, u"The address is not a valid URL."},
    {12006, kBoth, u"The address begins with a scheme that is not supported."},
    {12007, kBoth, u"No computer with the server's name was found."},
    {12008, kWinInet, u"The protocol of the address is not available."},
    {12009, kBoth, u"The setting asked for does not exist."},
    {12010, kWinInet, u"The setting was given in the wrong size."},
    {12011, kBoth, u"The setting can be read but not changed."},
    {12012, kBoth, u"The network library is shutting down."},
    {12013, kWinInet, u"The server does not know this user name."},
    {12014, kWinInet, u"The server did not accept the password."},
    {12015, kBoth, u"The server did not accept the login."},
    {12016, kWinInet, u"This operation is not possible for this kind of connection."},
    {12017, kBoth, u"The operation was cancelled before it had finished."},
    {12018, kBoth, u"The operation was used on the wrong kind of handle."},
    {12019, kBoth, u"The operation came at a moment when the request is not ready for it."},
    {12020, kWinInet, u"The request cannot be made through a proxy."},
    {12023, kWinInet, u"The network cannot be reached directly from here."},
    {12026, kWinInet, u"Another request is still under way on this handle."},
    {12027, kWinInet, u"The request is not in a valid format."},
    {12028, kWinInet, u"The item asked for was not found on the server."},
    {12029, kBoth, u"No connection to the server could be made."},
    {12030, kBoth, u"The connection to the server broke off before everything had arrived."},
    {12031, kWinInet, u"The server reset the connection."},
    {12032, kBoth, u"The request has to be sent once more."},
    {12033, kWinInet, u"The proxy did not understand the request."},
    {12034, kWinInet, u"The user has to be asked before the request can go on."},
    {12037, kBoth, u"The server's certificate has expired or is not valid yet."},
    {12038, kBoth, u"The server's certificate was made for another server name."},
    {12039, kWinInet, u"The server redirects from an open to an encrypted connection."},
    {12040, kWinInet, u"The server redirects from an encrypted to an open connection."},
    {12041, kWinInet, u"The page mixes encrypted and open content."},
    {12042, kWinInet, u"The data would be sent, and then redirected, over an open connection."},
    {12043, kWinInet, u"The data would be sent over an open connection."},
    {12044, kBoth, u"The server asks for a certificate of the client's."},
    {12045, kBoth, u"The server's certificate was issued by an authority that is not trusted."},
    {12046, kWinInet, u"Logging in with a certificate is not set up on this computer."},
    {12048, kWinInet, u"The server redirects to an address with another scheme."},
    {12055, kWinInet, u"The server's certificate has several problems."},
    {12056, kWinInet, u"It cannot be found out whether the server's certificate was revoked."},
    {12057, kBoth, u"The check whether the server's certificate was revoked has failed."},
    {12100, kWinHttp, u"The operation came before the request was opened."},
    {12101, kWinHttp, u"The operation came before the request was sent."},
    {12102, kWinHttp, u"The operation came after the request was sent."},
    {12103, kWinHttp, u"The operation came after the request was opened."},
    {12150, kBoth, u"The answer does not have the header asked for."},
    {12151, kWinInet, u"The server answers without any headers."},
    {12152, kBoth, u"The server's answer is not valid HTTP."},
    {12153, kBoth, u"A header of the request is not valid."},
    {12154, kBoth, u"The question about the request or its answer is not valid."},
    {12155, kBoth, u"The request already has this header."},
    {12156, kBoth, u"The server redirects too often, or to nowhere."},
    {12157, kBoth, u"No encrypted connection to the server could be set up."},
    {12158, kWinInet, u"The answer could not be kept in the cache."},
    {12159, kWinInet, u"The network is not installed on this computer."},
    {12160, kWinInet, u"The server's redirection was not followed."},
    {12161, kWinInet, u"The user has to agree to the server's cookie."},
    {12162, kWinInet, u"The server's cookie was declined."},
    {12163, kWinInet, u"This computer is not connected to the network."},
    {12164, kWinInet, u"The server cannot be reached."},
    {12165, kWinInet, u"The proxy cannot be reached."},
    {12166, kBoth, u"The script that chooses the proxy contains an error."},
    {12167, kBoth, u"The script that chooses the proxy could not be fetched."},
    {12168, kWinInet, u"The user has to agree to the server's redirection."},
    {12169, kBoth, u"The server's certificate is not valid."},
    {12170, kBoth, u"The server's certificate was revoked."},
    {12171, kWinInet, u"The request was stopped by a security check."},
    {12172, kBoth, u"The network library has not been started."},
    {12174, kWinInet, u"The login failed, and the server's page explains why."},
    {12175, kWinInet, u"The content of the answer could not be decoded."},
    {12175, kWinHttp,
     u"The encrypted connection failed: the server or its certificate is not safe."},
    {12176, kWinHttp, u"The script that chooses the proxy is in an unknown language."},
    {12177, kWinHttp, u"The script that chooses the proxy failed while it ran."},
    {12178, kWinHttp, u"The service that chooses the proxy is not available."},
    {12179, kWinHttp, u"The server's certificate was issued for another purpose."},
    {12180, kWinHttp, u"The settings of the proxy could not be detected."},
    {12181, kWinHttp, u"The answer has too many headers."},
    {12182, kWinHttp, u"The headers of the answer are too long."},
    {12183, kWinHttp, u"A part of the answer announces itself with too long a line."},
    {12184, kWinHttp, u"The rest of the answer is too long to be skipped."},
    {12185, kWinHttp, u"The client's certificate has no private key."},
    {12186, kWinHttp, u"The private key of the client's certificate cannot be used."},
};

std::u16string_view TextOf(const Row* row) { return row != std::end(kRows) ? row->text : u""; }

}  // namespace

std::u16string_view InternetMessage(DWORD code, InternetModule module) {
  return TextOf(std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& row) {
    return row.code == code && row.module.value_or(module) == module;
  }));
}

std::u16string_view InternetMessage(DWORD code) {
  const std::u16string_view text = InternetMessage(code, InternetModule::kWinHttp);
  return !text.empty() ? text : InternetMessage(code, InternetModule::kWinInet);
}

}  // namespace velandoc
