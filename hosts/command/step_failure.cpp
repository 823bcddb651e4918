#include "hosts/command/step_failure.h"

#include <algorithm>

#include "hosts/command/server_word.h"
#include "hosts/command/visible_text.h"

namespace velandoc {
namespace {

constexpr int kStatusOk = 200;
constexpr int kStatusUnauthorized = 401;
constexpr int kStatusProxyAuthentication = 407;

struct NetworkError {
  DWORD number;
  const char* text;
};
constexpr NetworkError kNetworkErrors[] = {
    {ERROR_INTERNET_TIMEOUT, "the server does not answer in time"},
    {ERROR_INTERNET_INVALID_URL, "the URL is not valid"},
    {ERROR_INTERNET_UNRECOGNIZED_SCHEME, "the URL's scheme is not spoken"},
    {ERROR_INTERNET_NAME_NOT_RESOLVED, "the host's name is not known"},
    {ERROR_INTERNET_INCORRECT_PASSWORD, "the password is wrong"},
    {ERROR_INTERNET_OPERATION_CANCELLED, "cancelled"},
    {ERROR_INTERNET_CANNOT_CONNECT, "no connection: nobody answers at that host and port"},
    {ERROR_INTERNET_CONNECTION_ABORTED, "the connection broke off"},
    {ERROR_INTERNET_CONNECTION_RESET, "the server reset the connection"},
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, "the server's certificate is expired or not yet valid"},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, "the server's certificate is for another host"},
    {ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED, "the server wants a client certificate"},
    {ERROR_INTERNET_INVALID_CA, "the authority of the server's certificate is not trusted"},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, "the answer is not HTTP"},
    {ERROR_HTTP_REDIRECT_FAILED, "a redirect could not be followed"},
    {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, "no secure connection could be made"},
};

std::string HostText(const ExchangeRecord& record) {
  const bool usual = record.port == 80 || record.port == 443 || record.port == 0;
  const std::string port = usual ? std::string() : ":" + std::to_string(record.port);
  return VisibleText(record.host) + port;
}

std::string StatusText(const ExchangeRecord& record) {
  std::string text = "the server answered " + std::to_string(record.status);
  if (record.status == kStatusUnauthorized) return text + ": it wants another login";
  if (record.status == kStatusProxyAuthentication) {
    return "the proxy answered " + std::to_string(record.status) + ": it wants a login";
  }
  const std::string word = FindServerWord(record.answer);
  if (!word.empty()) text += ": " + word;
  return text;
}

/// A finder for the requests of one operation, in their order.
class Requests {
 public:
  explicit Requests(const std::vector<ExchangeRecord>& records) : m_records(records) {}

  /// The `index`-th of this operation, null if there are not so many.
  const ExchangeRecord* Find(std::string_view operation, int index = 0) const {
    for (const ExchangeRecord& record : m_records) {
      if (record.operation == operation && index-- == 0) return &record;
    }
    return nullptr;
  }

 private:
  const std::vector<ExchangeRecord>& m_records;
};

/// Why a request was never sent, as far as another one tells that could not be made either.
std::string UnsentText(const std::vector<ExchangeRecord>& records) {
  for (const ExchangeRecord& record : records) {
    if (!record.sent) return "it could not be sent: " + NetworkErrorText(record.error);
  }
  return "it could not be sent";
}

bool Holds(const ExchangeRecord* record, std::string_view text) {
  return record != nullptr && record->status == kStatusOk && record->error == 0 &&
         record->answer.find(text) != std::string::npos;
}

}  // namespace

std::string NetworkErrorText(DWORD error) {
  const auto* found =
      std::find_if(std::begin(kNetworkErrors), std::end(kNetworkErrors),
                   [error](const NetworkError& row) { return row.number == error; });
  const std::string number = "error " + std::to_string(error);
  return found == std::end(kNetworkErrors) ? number : found->text + (" (" + number + ")");
}

std::string FailureText(const StepFailure& failure) {
  std::string text = failure.step;
  if (!failure.host.empty()) text += " at " + failure.host;
  return text + " failed: " + failure.what;
}

StepFailure ExplainFailure(std::string step, const ExchangeRecord& record, std::string missing) {
  StepFailure failure{std::move(step), HostText(record), {}};
  if (record.status == 0) {
    failure.what = NetworkErrorText(record.error);
  } else if (record.status != kStatusOk) {
    failure.what = StatusText(record);
  } else if (record.error != 0) {
    failure.what = "the answer broke off: " + NetworkErrorText(record.error);
  } else {
    const std::string word = FindServerWord(record.answer);
    failure.what = word.empty() ? std::move(missing) : "the server said: " + word;
  }
  return failure;
}

std::vector<StepFailure> ReviewOpen(const OpenedParts& parts,
                                    const std::vector<ExchangeRecord>& records) {
  const Requests requests(records);
  std::vector<StepFailure> failures;
  const auto check = [&](bool good, std::string_view operation, int index, const char* step,
                         const char* missing) {
    if (good) return;
    const ExchangeRecord* record = requests.Find(operation, index);
    failures.push_back(record != nullptr ? ExplainFailure(step, *record, missing)
                                         : StepFailure{step, {}, UnsentText(records)});
  };

  const bool login =
      parts.login || (!parts.user && Holds(requests.Find("open service"), "vti_username"));
  check(login, "open service", 0, "the question for the login (open service)",
        "the answer names no login");
  check(parts.user, "GetUserInfo", 0, "the question for the user's name (GetUserInfo)",
        "the answer names no user");
  if (!parts.user) return failures;
  check(parts.web, "url to web url", 0, "the question for the web (url to web url)",
        "the answer names no web");
  // Without it the others go out, too, and ask for nothing.
  if (!parts.web) return failures;
  check(parts.document, "getDocsMetaInfo", 0, "getDocsMetaInfo of the document",
        "the server knows no such document");
  if (!parts.document) return failures;
  check(parts.list, "getDocsMetaInfo", 1, "getDocsMetaInfo of the folder",
        "the answer names no list");
  // Both that follow are asked for without a list, too, which cannot succeed.
  if (!parts.list && !parts.row) return failures;
  // The row is asked for only if the answer to the first could be read, be it any XML. A content
  // type may have no column that counts.
  const bool rowAsked = requests.Find("GetListItems") != nullptr;
  const bool columns = rowAsked && (parts.columns || Holds(requests.Find("GetListContentType"),
                                                           "GetListContentTypeRes"));
  check(columns, "GetListContentType", 0, "GetListContentType", "the answer holds no content type");
  if (rowAsked) check(parts.row, "GetListItems", 0, "GetListItems", "the list has no such row");
  return failures;
}

}  // namespace velandoc
