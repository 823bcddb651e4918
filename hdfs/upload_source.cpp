#include "hdfs/upload_source.h"

#include "hdfs/octal_permissions.h"
#include "platform/file_system.h"

namespace velandoc {
namespace {

constexpr DWORD kReadMode = STGM_READ | STGM_SHARE_DENY_WRITE;
static_assert(kReadMode == 0x20);

}  // namespace

HRESULT OpenUploadSource(const VARIANT& source, WideView permissions, ComPtr<IStream>& stream) {
  if (!permissions.empty() && !IsValidOctalPermissions(permissions)) return E_INVALIDARG;
  switch (source.vt) {
    case VT_BSTR: {
      const WideString path(ViewOf(source.bstrVal));
      return CurrentPort<FileSystem>().SHCreateStreamOnFileEx(path.c_str(), kReadMode,
                                                              stream.Receive());
    }
    case VT_DISPATCH:
    case VT_UNKNOWN:
    case VT_STREAM: {
      if (source.punkVal == nullptr) return E_NOINTERFACE;
      const HRESULT result = source.punkVal->QueryInterface(IID_IStream, stream.ReceiveVoid());
      if (result != E_NOINTERFACE) CheckResult(result);
      return stream ? S_OK : E_NOINTERFACE;
    }
    default:
      return E_NOINTERFACE;
  }
}

}  // namespace velandoc
