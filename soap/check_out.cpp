#include "soap/check_out.h"

#include <optional>

#include "platform/dom.h"
#include "platform/out_of_memory.h"
#include "soap/read_or.h"
#include "soap/soap_connection.h"
#include "soap/soap_namespaces.h"
#include "soap/webs_service.h"

namespace velandoc {
namespace {

// None if it is neither there nor a boolean in any of OLE Automation's spellings.
std::optional<bool> ReadResult(IXMLDOMDocument2* response, const WideString& method) {
  return ReadOr(std::optional<bool>(), [&] {
    const WideString path = WideString(OLESTR("//resp:")).append(method).append(OLESTR("Result"));
    Variant value(GetNodeText(SelectSingleNode(response, path).Get()));
    CheckResult(VariantChangeType(&value.Get(), &value.Get(), 0, VT_BOOL));
    return std::optional<bool>(value.Get().boolVal != VARIANT_FALSE);
  });
}

// What the server says to `method`, none if a call failed or the answer cannot be read.
// `addParameters` adds what follows the document's URL.
template <class AddParameters>
std::optional<bool> Ask(LPCWSTR pageUrl, const WideString& method, AddParameters addParameters) {
  Bstr webUrl;
  if (!WebUrlFromPageUrl(pageUrl, webUrl)) return std::nullopt;
  CSoapEnvelope envelope(method.c_str());
  envelope.AddParameter(OLESTR("pageUrl"), pageUrl);
  addParameters(envelope);
  CSoapConnection connection(AppendListsPath(webUrl.View()).c_str());
  ComPtr<IXMLDOMDocument2> response;
  if (FAILED(connection.Call(envelope, response))) return std::nullopt;
  return ReadResult(response.Get(), method);
}

}  // namespace

bool CheckOutFile(LPCWSTR pageUrl) {
  return RaiseOutOfMemory([&] {
    const auto answer = Ask(pageUrl, OLESTR("CheckOutFile"), [](CSoapEnvelope& envelope) {
      envelope.AddParameter(OLESTR("checkOutToLocal"), OLESTR("true"));
    });
    return answer.value_or(false);
  });
}

bool CheckInFile(LPCWSTR pageUrl, LPCWSTR comment, std::int32_t checkInType) {
  return RaiseOutOfMemory([&] {
    const auto answer = Ask(pageUrl, OLESTR("CheckInFile"), [&](CSoapEnvelope& envelope) {
      envelope.AddParameter(OLESTR("comment"), comment);
      Variant type(checkInType, VT_INT);
      envelope.AddCheckInType(type.Get());
    });
    return answer.value_or(false);
  });
}

std::int32_t UndoCheckOut(LPCWSTR pageUrl) {
  return RaiseOutOfMemory([&] {
    const auto answer = Ask(pageUrl, OLESTR("UndoCheckOut"), [](CSoapEnvelope&) {});
    if (!answer) return -1;
    return *answer ? 0 : 1;
  });
}

}  // namespace velandoc
