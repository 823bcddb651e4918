// Windows: works with the component through its type library alone, without its header: makes an
// HdfsClient, tells the members of its interface, and sets and reads two of them by name.
//
//   x86_64-w64-mingw32-g++ -std=c++20 -static members.cpp -lole32 -loleaut32 -luuid
//   members.exe velandoc.tlb
//
// With Visual C++, #import "velandoc.tlb" writes the same as smart pointers.
#include <windows.h>

#include <oleauto.h>

#include <cstdio>
#include <string>

namespace {

int Fail(const char* what, HRESULT result) {
  std::fprintf(stderr, "%s (0x%08lX)\n", what, static_cast<unsigned long>(result));
  return 1;
}

HRESULT Invoke(ITypeInfo* type, IDispatch* object, const wchar_t* name, WORD kind,
               VARIANT* argument, VARIANT* result) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
  MEMBERID member = MEMBERID_NIL;
  HRESULT done = type->GetIDsOfNames(names, 1, &member);
  if (FAILED(done)) return done;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {argument, kind == DISPATCH_PROPERTYPUT ? &put : nullptr,
                           argument != nullptr ? 1u : 0u, kind == DISPATCH_PROPERTYPUT ? 1u : 0u};
  return type->Invoke(object, member, kind, &parameters, result, nullptr, nullptr);
}

int Work(ITypeLib* library) {
  // The coclass names the class to make, its default interface what the class has.
  wchar_t interfaceName[] = L"IHdfsClient";
  wchar_t className[] = L"HdfsClient";
  ITypeInfo* coclass = nullptr;
  ITypeInfo* type = nullptr;
  IDispatch* object = nullptr;
  MEMBERID member = MEMBERID_NIL;
  USHORT count = 1;
  HRESULT result = library->FindName(className, 0, &coclass, &member, &count);
  if (FAILED(result) || count == 0) return Fail("the type library has no HdfsClient", result);
  count = 1;
  result = library->FindName(interfaceName, 0, &type, &member, &count);
  if (FAILED(result) || count == 0) return Fail("the type library has no IHdfsClient", result);
  result = coclass->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&object));
  if (FAILED(result)) return Fail("HdfsClient cannot be created", result);

  TYPEATTR* attributes = nullptr;
  if (SUCCEEDED(type->GetTypeAttr(&attributes))) {
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      if (FAILED(type->GetFuncDesc(i, &function))) continue;
      BSTR name = nullptr;
      BSTR help = nullptr;
      if (SUCCEEDED(type->GetDocumentation(function->memid, &name, &help, nullptr, nullptr))) {
        std::printf("%2ld  %ls (%ls)\n", static_cast<long>(function->memid), name, help);
      }
      SysFreeString(name);
      SysFreeString(help);
      type->ReleaseFuncDesc(function);
    }
    type->ReleaseTypeAttr(attributes);
  }

  VARIANT server = {};
  server.vt = VT_BSTR;
  server.bstrVal = SysAllocString(L"http://namenode.example.com:8020");
  result = Invoke(type, object, L"BaseUrl", DISPATCH_PROPERTYPUT, &server, nullptr);
  VariantClear(&server);
  VARIANT url = {};
  if (SUCCEEDED(result)) result = Invoke(type, object, L"URL", DISPATCH_PROPERTYGET, nullptr, &url);
  if (SUCCEEDED(result)) std::printf("%ls\n", url.bstrVal);
  VariantClear(&url);
  object->Release();
  type->Release();
  coclass->Release();
  return FAILED(result) ? Fail("a member cannot be called", result) : 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: members velandoc.tlb\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const std::string path = argv[1];
  ITypeLib* library = nullptr;
  const HRESULT loaded =
      LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE, &library);
  const int exitCode =
      FAILED(loaded) ? Fail("the type library cannot be loaded", loaded) : Work(library);
  if (library != nullptr) library->Release();
  CoUninitialize();
  return exitCode;
}
