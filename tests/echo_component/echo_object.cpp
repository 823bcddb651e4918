#include "tests/echo_component/echo_object.h"

#include <atomic>
#include <vector>

#include "platform/owners.h"
#include "tests/echo_component/variant_samples.h"

namespace velandoc::test {
namespace {

std::atomic<LONG> liveObjects = 0;

enum Member : DISPID {
  kValue = DISPID_VALUE,
  kSample,
  kDescribe,
  kText,
  kItem,
  kOptional,
  kChild,
  kHeld,
  kHowPut,
  kLiveObjects,
  kReadOnly,
  kFail,
  kIsItself,
};

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kPutRef = DISPATCH_PROPERTYPUTREF;
constexpr UINT kAny = 1000;

struct MemberInfo {
  WideView name;
  DISPID id;
  WORD kinds;
  UINT least;
  UINT most;
};
constexpr MemberInfo kMembers[] = {
    {OLESTR("Value"), kValue, kGet, 0, 0},
    {OLESTR("Sample"), kSample, DISPATCH_METHOD, 1, 1},
    {OLESTR("Describe"), kDescribe, DISPATCH_METHOD, 0, kAny},
    {OLESTR("Text"), kText, kGet | kPut, 0, 0},
    {OLESTR("Item"), kItem, kGet, 1, 1},
    {OLESTR("Optional"), kOptional, DISPATCH_METHOD, 1, 3},
    {OLESTR("Child"), kChild, kGet, 0, 0},
    {OLESTR("Held"), kHeld, kGet | kPut | kPutRef, 0, 0},
    {OLESTR("HowPut"), kHowPut, kGet, 0, 0},
    {OLESTR("LiveObjects"), kLiveObjects, kGet, 0, 0},
    {OLESTR("ReadOnly"), kReadOnly, kGet, 0, 0},
    {OLESTR("Fail"), kFail, DISPATCH_METHOD, 2, 3},
    {OLESTR("IsItself"), kIsItself, DISPATCH_METHOD, 1, 1},
};

bool SameName(WideView a, LPCOLESTR b) {
  const auto lower = [](OLECHAR unit) {
    return unit >= OLESTR('A') && unit <= OLESTR('Z') ? static_cast<OLECHAR>(unit + 32) : unit;
  };
  for (const OLECHAR unit : a) {
    if (lower(unit) != lower(*b++)) return false;
  }
  return *b == 0;
}

const MemberInfo* FindMember(DISPID id) {
  for (const MemberInfo& member : kMembers) {
    if (member.id == id) return &member;
  }
  return nullptr;
}

/// What a deferred exception says later. Not the thread's own: nothing with a destructor may be,
/// since the library can be unloaded before its threads end; scripts have one thread.
WideString deferredText;
HRESULT STDMETHODCALLTYPE FillDeferred(EXCEPINFO* info) {
  info->bstrDescription = Bstr(WideView(deferredText)).Detach();
  return S_OK;
}

class EchoObject final : public IDispatch {
 public:
  EchoObject() { ++liveObjects; }
  EchoObject(const EchoObject&) = delete;
  EchoObject& operator=(const EchoObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IDispatch)) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_references;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (const MemberInfo& member : kMembers) {
      if (count == 1 && SameName(member.name, names[0])) {
        ids[0] = member.id;
        return S_OK;
      }
    }
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override {
    const MemberInfo* member = FindMember(id);
    if (member == nullptr || (member->kinds & flags) == 0) return DISP_E_MEMBERNOTFOUND;
    if ((flags & (kPut | kPutRef)) != 0) return Put(id, flags, *params);
    if (params->cArgs < member->least || params->cArgs > member->most) {
      return DISP_E_BADPARAMCOUNT;
    }
    // Arguments come last first.
    std::vector<const VARIANT*> arguments;
    for (UINT i = params->cArgs; i > 0; --i) arguments.push_back(&params->rgvarg[i - 1]);
    Variant value;
    const HRESULT called = Call(id, arguments, value, exception);
    if (SUCCEEDED(called) && result != nullptr) {
      *result = value.Get();
      VariantInit(&value.Get());
    }
    return called;
  }

 private:
  ~EchoObject() { --liveObjects; }

  HRESULT Put(DISPID id, WORD flags, const DISPPARAMS& params) {
    if (params.cArgs != 1 || params.cNamedArgs != 1) return DISP_E_BADPARAMCOUNT;
    if (params.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) return DISP_E_PARAMNOTFOUND;
    VARIANT& value = params.rgvarg[0];
    if (id == kText) {
      if (value.vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
      m_text.assign(value.bstrVal, SysStringLen(value.bstrVal));
      return S_OK;
    }
    m_howPut = (flags & kPutRef) != 0 ? OLESTR("putref") : OLESTR("put");
    return VariantCopy(m_held.Receive(), &value);
  }

  HRESULT Call(DISPID id, const std::vector<const VARIANT*>& arguments, Variant& value,
               EXCEPINFO* exception) {
    switch (id) {
      case kValue:
        value = Variant(WideView(OLESTR("echo")));
        return S_OK;
      case kSample:
        if (arguments[0]->vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
        return MakeSample({arguments[0]->bstrVal, SysStringLen(arguments[0]->bstrVal)}, this, value)
                   ? S_OK
                   : E_INVALIDARG;
      case kDescribe:
      case kOptional:
        value = Variant(WideView(DescribeAll(arguments)));
        return S_OK;
      case kText:
        value = Variant(WideView(m_text));
        return S_OK;
      case kItem:
        value = Variant(WideView(OLESTR("item ") + Describe(*arguments[0])));
        return S_OK;
      case kChild:
        value.Get().pdispVal = NewEchoObject();
        value.Get().vt = VT_DISPATCH;
        return S_OK;
      case kHeld:
        return VariantCopy(value.Receive(), &m_held.Get());
      case kHowPut:
        value = Variant(WideView(m_howPut));
        return S_OK;
      case kLiveObjects:
        value = Variant(LiveEchoObjects(), VT_I4);
        return S_OK;
      case kReadOnly:
        value = Variant(WideView(OLESTR("fixed")));
        return S_OK;
      case kFail:
        return Fail(arguments, exception);
      case kIsItself:
        value.Get().vt = VT_BOOL;
        value.Get().boolVal = arguments[0]->vt == VT_UNKNOWN && arguments[0]->punkVal == this
                                  ? VARIANT_TRUE
                                  : VARIANT_FALSE;
        return S_OK;
      default:
        return DISP_E_MEMBERNOTFOUND;
    }
  }

  static WideString DescribeAll(const std::vector<const VARIANT*>& arguments) {
    WideString text;
    for (const VARIANT* argument : arguments) {
      if (!text.empty()) text += OLESTR(", ");
      text += Describe(*argument);
    }
    return text;
  }

  static HRESULT Fail(const std::vector<const VARIANT*>& arguments, EXCEPINFO* exception) {
    if (arguments[0]->vt != VT_I4 || arguments[1]->vt != VT_BSTR) return DISP_E_TYPEMISMATCH;
    const HRESULT result = arguments[0]->lVal;
    const WideString text(arguments[1]->bstrVal, SysStringLen(arguments[1]->bstrVal));
    const WideString how = arguments.size() > 2 && arguments[2]->vt == VT_BSTR
                               ? WideString(arguments[2]->bstrVal)
                               : OLESTR("rich");
    if (how == OLESTR("plain")) return result;
    if (exception != nullptr) {
      *exception = {};
      exception->scode = result;
      exception->bstrSource = Bstr(WideView(OLESTR("echo"))).Detach();
      if (how == OLESTR("deferred")) {
        deferredText = text;
        exception->pfnDeferredFillIn = FillDeferred;
      } else if (!text.empty()) {
        exception->bstrDescription = Bstr(WideView(text)).Detach();
      }
    }
    return DISP_E_EXCEPTION;
  }

  std::atomic<ULONG> m_references = 1;
  WideString m_text;
  WideString m_howPut;
  Variant m_held;
};

}  // namespace

IDispatch* NewEchoObject() { return new EchoObject; }

LONG LiveEchoObjects() { return liveObjects; }

}  // namespace velandoc::test
