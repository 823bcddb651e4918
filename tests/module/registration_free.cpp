// Makes the component's four objects by their ProgIDs. Its manifest
// (registration_free.exe.manifest) names the component's assembly, so nothing needs to be
// registered. Prints a line a class.
#include <windows.h>
// Behind windows.h, which it needs.
#include <ole2.h>

#include <cstdio>
#include <initializer_list>

int main() {
  CoInitialize(nullptr);
  int failed = 0;
  for (const wchar_t* const progId :
       {L"Velandoc.Client", L"Velandoc.ServerCheck", L"Velantrica.HdfsClient",
        L"Velantrica.HdfsWinHttpClient", L"Velandoc.Client.1", L"Velandoc.ServerCheck.1",
        L"Velantrica.HdfsClient.1", L"Velantrica.HdfsWinHttpClient.1"}) {
    CLSID clsid{};
    IDispatch* object = nullptr;
    HRESULT result = CLSIDFromProgID(progId, &clsid);
    if (SUCCEEDED(result)) {
      result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&object));
    }
    ITypeInfo* info = nullptr;
    if (SUCCEEDED(result)) result = object->GetTypeInfo(0, 0x409, &info);
    if (info != nullptr) info->Release();
    if (object != nullptr) object->Release();
    std::printf("%ls %08lx\n", progId, static_cast<unsigned long>(result));
    failed += FAILED(result) ? 1 : 0;
  }
  CoUninitialize();
  return failed == 0 ? 0 : 1;
}
