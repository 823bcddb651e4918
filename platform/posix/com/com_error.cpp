#include "platform/posix/com/com_error.h"

#include "platform/owners.h"

namespace {

struct Message {
  HRESULT result;
  LPCOLESTR text;
};

constexpr Message kMessages[] = {
    {E_NOTIMPL, OLESTR("Not implemented")},
    {E_NOINTERFACE, OLESTR("No such interface supported")},
    {E_POINTER, OLESTR("Invalid pointer")},
    {E_ABORT, OLESTR("Operation aborted")},
    {E_FAIL, OLESTR("Unspecified error")},
    {E_UNEXPECTED, OLESTR("Catastrophic failure")},
    {E_ACCESSDENIED, OLESTR("Access is denied.")},
    {E_HANDLE, OLESTR("The handle is invalid.")},
    {E_OUTOFMEMORY, OLESTR("Not enough memory.")},
    {E_INVALIDARG, OLESTR("The parameter is incorrect.")},
    {CLASS_E_NOAGGREGATION, OLESTR("Class does not support aggregation")},
    {CLASS_E_CLASSNOTAVAILABLE, OLESTR("The class is not served by its library")},
    {REGDB_E_READREGDB, OLESTR("The registry file can't be read")},
    {REGDB_E_CLASSNOTREG, OLESTR("Class not registered")},
    {CO_E_CLASSSTRING, OLESTR("Invalid class name")},
    {CO_E_DLLNOTFOUND, OLESTR("The library of the class was not found")},
    {DISP_E_MEMBERNOTFOUND, OLESTR("Member not found.")},
    {DISP_E_TYPEMISMATCH, OLESTR("Type mismatch.")},
    {DISP_E_UNKNOWNNAME, OLESTR("Unknown name.")},
    {DISP_E_OVERFLOW, OLESTR("Out of range.")},
    {DISP_E_BADPARAMCOUNT, OLESTR("Invalid number of parameters.")},
};

}  // namespace

std::basic_string<OLECHAR> _com_error::MessageOf(HRESULT result) {
  for (const Message& message : kMessages) {
    if (message.result == result) return message.text;
  }
  std::basic_string<OLECHAR> text = OLESTR("Unknown error 0x");
  for (int shift = 28; shift >= 0; shift -= 4) {
    const std::uint32_t digit = static_cast<std::uint32_t>(result) >> shift & 0xF;
    text += static_cast<OLECHAR>("0123456789ABCDEF"[digit]);
  }
  return text;
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
