// trust_ca FILE.pem: puts a certificate into the current user's Root store, so that WinINet trusts
// the authority of the tests. For a throw-away Wine prefix only.
#include <windows.h>

#include <wincrypt.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: trust_ca FILE.pem\n");
    return 2;
  }
  std::ifstream file(argv[1], std::ios::binary);
  const std::string pem((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  DWORD size = 0;
  if (!CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                            nullptr, &size, nullptr, nullptr)) {
    std::fprintf(stderr, "trust_ca: %s holds no certificate\n", argv[1]);
    return 1;
  }
  std::vector<BYTE> der(size);
  HCERTSTORE store = CertOpenSystemStoreW(0, L"Root");
  const bool added =
      store != nullptr &&
      CryptStringToBinaryA(pem.data(), static_cast<DWORD>(pem.size()), CRYPT_STRING_BASE64HEADER,
                           der.data(), &size, nullptr, nullptr) &&
      CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, der.data(), size,
                                       CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
  const DWORD error = added ? 0 : GetLastError();
  if (store != nullptr) CertCloseStore(store, 0);
  if (!added) {
    std::fprintf(stderr, "trust_ca: error %lu\n", error);
    return 1;
  }
  return 0;
}
