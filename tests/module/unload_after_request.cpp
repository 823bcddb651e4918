// Sends one request through the component's library on a thread that ends, gives the library back
// and goes on with OpenSSL, as a program may that uses OpenSSL itself.
//
//   unload_after_request LIBRARY URL
//
// Exit code 0 if the process lives to the end, 2 if the library can't be used.
#include <dlfcn.h>
#include <openssl/ssl.h>

#include <cstdio>
#include <string>
#include <thread>

#include "platform/owners.h"
#include "velandoc_idl.h"

namespace {

using velandoc::Bstr;
using velandoc::ComPtr;
using GetClassObject = HRESULT (*)(REFCLSID, REFIID, void**);

void Check(GetClassObject getClassObject, const velandoc::WideString& url, bool& asked) {
  ComPtr<IClassFactory> factory;
  ComPtr<IServerCheck> check;
  if (FAILED(getClassObject(CLSID_ServerCheck, IID_IClassFactory, factory.ReceiveVoid()))) return;
  if (FAILED(factory->CreateInstance(nullptr, IID_IServerCheck, check.ReceiveVoid()))) return;
  VARIANT_BOOL isServer = VARIANT_FALSE;
  check->Check(Bstr(url).Get(), &isServer);
  asked = true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  void* const library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return 2;
  const auto getClassObject = reinterpret_cast<GetClassObject>(dlsym(library, "DllGetClassObject"));
  if (getClassObject == nullptr) return 2;
  const std::string url = argv[2];
  bool asked = false;
  // The connections of a thread end with it; a library with connections left is not unloaded.
  std::thread(Check, getClassObject, velandoc::WideString(url.begin(), url.end()), std::ref(asked))
      .join();
  if (!asked) return 2;
  dlclose(library);
  SSL_CTX_free(SSL_CTX_new(TLS_client_method()));
  std::printf("alive\n");
  return 0;
}
