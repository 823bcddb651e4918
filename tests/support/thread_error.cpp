#include "tests/support/thread_error.h"

#include "tests/support/variant_text.h"

namespace velandoc::testing {

ComPtr<IErrorInfo> MakeErrorInfo(LPCOLESTR description) {
  ComPtr<ICreateErrorInfo> made;
  CheckResult(CreateErrorInfo(made.Receive()));
  CheckResult(made->SetDescription(const_cast<LPOLESTR>(description)));
  ComPtr<IErrorInfo> info;
  CheckResult(made->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()));
  return info;
}

ThreadError TakeThreadError() {
  ThreadError error;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Receive()) != S_OK) return error;
  Bstr source;
  Bstr description;
  CheckResult(info->GetGUID(&error.guid));
  CheckResult(info->GetSource(source.Receive()));
  CheckResult(info->GetDescription(description.Receive()));
  error.isThere = true;
  error.source = DescribeText(source.View());
  error.description = DescribeText(description.View());
  return error;
}

}  // namespace velandoc::testing
