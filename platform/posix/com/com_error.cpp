#include "platform/posix/com/com_error.h"

#include <cstdio>
#include <cstring>

#include "platform/owners.h"
#include "platform/posix/com/system_messages.h"

namespace {

// Results of FACILITY_ITF that stand for Basic's error numbers.
constexpr HRESULT kFirstCode = MakeResult(0x80040200);
constexpr HRESULT kLastCode = MakeResult(0x8004FFFF);

}  // namespace

std::basic_string<OLECHAR> _com_error::MessageOf(HRESULT result) {
  const std::u16string_view known = velandoc::SystemMessage(static_cast<DWORD>(result));
  if (!known.empty()) return std::basic_string<OLECHAR>(known);
  char text[32];
  if (result > kFirstCode && result <= kLastCode) {
    std::snprintf(text, sizeof text, "IDispatch error #%d", static_cast<int>(result - kFirstCode));
  } else {
    std::snprintf(text, sizeof text, "Unknown error 0x%0X", static_cast<unsigned>(result));
  }
  return std::basic_string<OLECHAR>(text, text + std::strlen(text));
}

void _com_issue_errorex(HRESULT result, IUnknown* object, REFIID riid) {
  velandoc::ComPtr<ISupportErrorInfo> support;
  velandoc::ComPtr<IErrorInfo> info;
  if (object != nullptr &&
      SUCCEEDED(object->QueryInterface(IID_ISupportErrorInfo, support.ReceiveVoid())) &&
      support->InterfaceSupportsErrorInfo(riid) == S_OK) {
    GetErrorInfo(0, info.Receive());
  }
  _com_raise_error(result, info.Detach());
}
