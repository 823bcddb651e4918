#include "hdfs/rich_error.h"

#include "platform/error_services.h"
#include "platform/owners.h"
#include "platform/resources.h"

namespace velandoc {

void SetRichError(LPCWSTR description, WORD sourceStringId, REFGUID guid) {
  ComPtr<ICreateErrorInfo> error;
  if (FAILED(CurrentPort<ErrorServices>().CreateErrorInfo(error.Receive()))) return;
  // The setters copy what they take, in spite of their arguments' types.
  error->SetDescription(const_cast<LPWSTR>(description));
  error->SetGUID(guid);
  error->SetSource(LoadModuleString(sourceStringId).data());
  ComPtr<IErrorInfo> info;
  if (FAILED(error->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()))) return;
  SetErrorInfo(0, info.Get());
}

}  // namespace velandoc
