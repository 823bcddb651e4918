// An object of the tests' own interface, and the table by which Linux calls it.
#pragma once

#include <map>

#include "platform/dispatch_impl.h"
#include "platform/owners.h"
#include "sample_idl.h"

#ifndef _WIN32
namespace velandoc {

template <>
struct DispatchTable<ISample> {
  static constexpr DispatchMember kMembers[] = {
      Get<&ISample::get_Value>(OLESTR("Value"), 0),
      Function<&ISample::Join>(
          OLESTR("Join"), 1,
          {OLESTR("First"), Optional(OLESTR("Second")), Default(OLESTR("Third"), 7)}),
      Get<&ISample::get_Name>(OLESTR("Name"), 2),
      Put<&ISample::put_Name>(OLESTR("Name"), 2),
      Get<&ISample::get_Item>(OLESTR("Item"), 3, {OLESTR("Key")}),
      Put<&ISample::put_Item>(OLESTR("Item"), 3, {OLESTR("Key")}),
      Method<&ISample::Fail>(OLESTR("Fail"), 4, {OLESTR("Result")}),
      Get<&ISample::get_Size>(OLESTR("Size"), 5),
      Get<&ISample::get_Mode>(OLESTR("Mode"), 6),
      Put<&ISample::put_Mode>(OLESTR("Mode"), 6),
      Function<&ISample::Open>(OLESTR("Open"), 7, {OLESTR("Source")}),
      Function<&ISample::Self>(OLESTR("Self"), 8),
      Function<&ISample::Same>(OLESTR("Same"), 9, {OLESTR("Other")}),
      Function<&ISample::Add>(OLESTR("Add"), 10, {OLESTR("First"), OLESTR("Negate")}),
      Method<&ISample::Twice>(OLESTR("Twice"), 11, {OLESTR("Number")}),
      Get<&ISample::get_Changed, VT_DATE>(OLESTR("Changed"), 12),
  };
};

}  // namespace velandoc
#endif

namespace velandoc::testing {

/// Lives on the stack of its test: its reference count is only counted.
class Sample final : public IDispatchImpl<ISample, &IID_ISample, &LIBID_SampleLib, 1, 0>,
                     public ISupportErrorInfo {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override;

  HRESULT STDMETHODCALLTYPE get_Value(BSTR* text) override;
  HRESULT STDMETHODCALLTYPE Join(BSTR first, VARIANT second, LONG third, BSTR* text) override;
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* text) override;
  HRESULT STDMETHODCALLTYPE put_Name(BSTR text) override;
  HRESULT STDMETHODCALLTYPE get_Item(BSTR key, VARIANT* content) override;
  HRESULT STDMETHODCALLTYPE put_Item(BSTR key, VARIANT content) override;
  /// Leaves an error object and returns `result`.
  HRESULT STDMETHODCALLTYPE Fail(LONG result) override;
  HRESULT STDMETHODCALLTYPE get_Size(LONGLONG* bytes) override;
  HRESULT STDMETHODCALLTYPE get_Mode(SampleMode* value) override;
  HRESULT STDMETHODCALLTYPE put_Mode(SampleMode value) override;
  HRESULT STDMETHODCALLTYPE Open(IStream* source, VARIANT_BOOL* isNull) override;
  HRESULT STDMETHODCALLTYPE Self(IDispatch** object) override;
  HRESULT STDMETHODCALLTYPE Same(ISample* other, VARIANT_BOOL* isSame) override;
  HRESULT STDMETHODCALLTYPE Add(DOUBLE first, VARIANT_BOOL negate, DOUBLE* sum) override;
  HRESULT STDMETHODCALLTYPE Twice(LONG* number) override;
  HRESULT STDMETHODCALLTYPE get_Changed(DATE* day) override;

  ULONG references = 1;
  bool speaksOfErrors = true;
  WideString name;
  SampleMode mode = smNone;
  std::map<WideString, Variant> items;
};

}  // namespace velandoc::testing
