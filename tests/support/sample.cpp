#include "tests/support/sample.h"

#include "tests/support/variant_text.h"

namespace velandoc::testing {
namespace {

WideView ViewOf(BSTR text) { return WideView(text, SysStringLen(text)); }

}  // namespace

HRESULT Sample::QueryInterface(REFIID riid, void** object) {
  *object = nullptr;
  if (IsEqualIID(riid, IID_ISupportErrorInfo)) {
    *object = static_cast<ISupportErrorInfo*>(this);
  } else if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch) ||
             IsEqualIID(riid, IID_ISample)) {
    *object = static_cast<ISample*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

HRESULT Sample::InterfaceSupportsErrorInfo(REFIID riid) {
  return speaksOfErrors && IsEqualIID(riid, IID_ISample) ? S_OK : S_FALSE;
}

HRESULT Sample::get_Value(BSTR* text) {
  *text = Bstr(OLESTR("42")).Detach();
  return S_OK;
}

HRESULT Sample::Join(BSTR first, VARIANT second, LONG third, BSTR* text) {
  const std::string joined =
      DescribeText(ViewOf(first)) + "|" + DescribeVariant(second) + "|" + std::to_string(third);
  *text = Bstr(WideString(joined.begin(), joined.end())).Detach();
  return S_OK;
}

HRESULT Sample::get_Name(BSTR* text) {
  *text = Bstr(name).Detach();
  return S_OK;
}

HRESULT Sample::put_Name(BSTR text) {
  name = ViewOf(text);
  return S_OK;
}

HRESULT Sample::get_Item(BSTR key, VARIANT* content) {
  VariantInit(content);
  return VariantCopy(content, &items[WideString(ViewOf(key))].Get());
}

HRESULT Sample::put_Item(BSTR key, VARIANT content) {
  return VariantCopy(&items[WideString(ViewOf(key))].Get(), &content);
}

HRESULT Sample::Fail(LONG result) {
  ComPtr<ICreateErrorInfo> create;
  ComPtr<IErrorInfo> info;
  CheckResult(CreateErrorInfo(create.Receive()));
  CheckResult(create->SetDescription(const_cast<LPOLESTR>(OLESTR("what went wrong"))));
  CheckResult(create->SetSource(const_cast<LPOLESTR>(OLESTR("Sample"))));
  CheckResult(create->SetHelpContext(5));
  CheckResult(create->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()));
  CheckResult(SetErrorInfo(0, info.Get()));
  return result;
}

HRESULT Sample::get_Size(LONGLONG* bytes) {
  *bytes = 5000000000;
  return S_OK;
}

HRESULT Sample::get_Mode(SampleMode* value) {
  *value = mode;
  return S_OK;
}

HRESULT Sample::put_Mode(SampleMode value) {
  mode = value;
  return S_OK;
}

HRESULT Sample::Open(IStream* source, VARIANT_BOOL* isNull) {
  *isNull = source == nullptr ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT Sample::Self(IDispatch** object) {
  AddRef();
  *object = this;
  return S_OK;
}

HRESULT Sample::Same(ISample* other, VARIANT_BOOL* isSame) {
  *isSame = other == this ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

HRESULT Sample::Add(DOUBLE first, VARIANT_BOOL negate, DOUBLE* sum) {
  *sum = negate != VARIANT_FALSE ? -first : first;
  return S_OK;
}

HRESULT Sample::Twice(LONG* number) {
  *number *= 2;
  return S_OK;
}

HRESULT Sample::get_Changed(DATE* day) {
  *day = 39998.25;
  return S_OK;
}

}  // namespace velandoc::testing
