#include "platform/posix/http/certificate_check.h"

#include <openssl/evp.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <cstdlib>
#include <new>

#include "platform/posix/http/error_map.h"

namespace velandoc::http {
namespace {

using CheckOwner = std::shared_ptr<CertificateCheck>;

struct FreeBio {
  void operator()(BIO* bio) const { BIO_free(bio); }
};
using BioOwner = std::unique_ptr<BIO, FreeBio>;

std::string TextOf(BIO* bio) {
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio, &data);
  std::string text(data, size > 0 ? static_cast<std::size_t>(size) : 0);
  // A certificate's names are the peer's words; none of them may steer a terminal.
  for (char& character : text) {
    if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) character = ' ';
  }
  return text;
}

std::string NameText(const X509_NAME* name) {
  const BioOwner bio(BIO_new(BIO_s_mem()));
  X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_ONELINE & ~ASN1_STRFLGS_ESC_MSB);
  return TextOf(bio.get());
}

std::string TimeText(const ASN1_TIME* time) {
  const BioOwner bio(BIO_new(BIO_s_mem()));
  ASN1_TIME_print(bio.get(), time);
  return TextOf(bio.get());
}

std::string Fingerprint(const X509* certificate) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  if (X509_digest(certificate, EVP_sha256(), digest, &size) != 1) return {};
  std::string text;
  for (unsigned i = 0; i < size; ++i) {
    if (i != 0) text += ':';
    text += kDigits[digest[i] >> 4];
    text += kDigits[digest[i] & 15];
  }
  return text;
}

void FreeCheckOwner(void*, void* owner, CRYPTO_EX_DATA*, int, long, void*) {
  delete static_cast<CheckOwner*>(owner);
}

int ExDataIndex() {
  static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, &FreeCheckOwner);
  return index;
}

CertificateCheck* CheckOf(const SSL_CTX* context) {
  const auto* owner = static_cast<CheckOwner*>(SSL_CTX_get_ex_data(context, ExDataIndex()));
  return owner != nullptr ? owner->get() : nullptr;
}

CertificateCheck* CheckOf(X509_STORE_CTX* store) {
  const auto* ssl =
      static_cast<SSL*>(X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
  return ssl != nullptr ? CheckOf(SSL_get_SSL_CTX(ssl)) : nullptr;
}

/// Called for each problem; goes on behind all of them so that none hides another.
int NoteProblem(int ok, X509_STORE_CTX* store) {
  CertificateCheck* check = CheckOf(store);
  if (check == nullptr) return ok;
  if (ok != 0) return 1;
  switch (X509_STORE_CTX_get_error(store)) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
    case X509_V_ERR_CERT_NOT_YET_VALID:
      check->hasDateProblem = true;
      break;
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      check->hasNameProblem = true;
      break;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
      check->hasUnknownAuthority = true;
      break;
    case X509_V_ERR_INVALID_PURPOSE:
    case X509_V_ERR_CERT_REJECTED:
      check->hasWrongUsage = true;
      break;
    default:
      check->hasOtherProblem = true;
      break;
  }
  return 1;
}

/// False if the chain is not to be trusted. Raises std::bad_alloc.
bool Judge(X509_STORE_CTX* store, CertificateCheck* check) {
  X509* certificate = X509_STORE_CTX_get0_cert(store);
  check->facts.subject = NameText(X509_get_subject_name(certificate));
  check->facts.issuer = NameText(X509_get_issuer_name(certificate));
  check->facts.validFrom = TimeText(X509_get0_notBefore(certificate));
  check->facts.validUntil = TimeText(X509_get0_notAfter(certificate));
  check->facts.sha256 = Fingerprint(certificate);

  X509_VERIFY_PARAM* rules = X509_STORE_CTX_get0_param(store);
  std::string host = check->host;
  if (host.size() > 2 && host.front() == '[') host = host.substr(1, host.size() - 2);
  if (X509_VERIFY_PARAM_set1_ip_asc(rules, host.c_str()) != 1) {
    // A dot behind the name is the root's and stands in no certificate.
    if (!host.empty() && host.back() == '.') host.pop_back();
    X509_VERIFY_PARAM_set_hostflags(rules, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    if (X509_VERIFY_PARAM_set1_host(rules, host.c_str(), host.size()) != 1) return false;
  }
  X509_STORE_CTX_set_verify_cb(store, &NoteProblem);
  // Not 1 although every problem was passed over: no judgement was possible at all.
  if (X509_verify_cert(store) != 1) check->hasOtherProblem = true;
  return check->FirstProblem() == ERROR_SUCCESS;
}

int Verify(X509_STORE_CTX* store, void*) {
  CertificateCheck* check = CheckOf(store);
  bool isTrusted = false;
  try {
    isTrusted = check != nullptr && Judge(store, check);
  } catch (const std::bad_alloc&) {
    // Must not pass through OpenSSL.
  }
  // libcurl asks for the result of the verification, too.
  X509_STORE_CTX_set_error(store, isTrusted ? X509_V_OK : X509_V_ERR_APPLICATION_VERIFICATION);
  return isTrusted ? 1 : 0;
}

/// There is no client certificate to give; that one was asked for explains a refusal later.
int NoteClientCertificate(SSL* ssl, X509**, EVP_PKEY**) {
  if (CertificateCheck* check = CheckOf(SSL_get_SSL_CTX(ssl)))
    check->clientCertificateWanted = true;
  return 0;
}

/// libcurl calls this with a new context for each new connection, which may serve later requests,
/// too. Its manual does not say whether that includes the connection to an https:// proxy; the
/// check would then ask that proxy's certificate for the server's name, and refuse it.
CURLcode SetUpContext(CURL*, void* context, void* check) {
  auto* ssl = static_cast<SSL_CTX*>(context);
  std::unique_ptr<CheckOwner> owner(new (std::nothrow)
                                        CheckOwner(*static_cast<CheckOwner*>(check)));
  if (owner == nullptr) return CURLE_OUT_OF_MEMORY;
  if (SSL_CTX_set_ex_data(ssl, ExDataIndex(), owner.get()) != 1) return CURLE_OUT_OF_MEMORY;
  // The context owns it from here on.
  static_cast<void>(owner.release());
  SSL_CTX_set_cert_verify_callback(ssl, &Verify, nullptr);
  SSL_CTX_set_client_cert_cb(ssl, &NoteClientCertificate);
  return CURLE_OK;
}

const char* Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

/// The environment variables that the curl command reads, in its order.
void UseConfiguredAuthorities(CURL* easy) {
  const char* bundle = Variable("CURL_CA_BUNDLE");
  const char* folder = bundle == nullptr ? Variable("SSL_CERT_DIR") : nullptr;
  if (bundle == nullptr) bundle = Variable("SSL_CERT_FILE");
  if (bundle != nullptr) curl_easy_setopt(easy, CURLOPT_CAINFO, bundle);
  // Without a folder libcurl keeps the parsed bundle for the pool's next handshakes; with one, a
  // handshake parses everything anew. The built-in folder holds what the built-in bundle holds.
  curl_easy_setopt(easy, CURLOPT_CAPATH, folder);
}

}  // namespace

DWORD CertificateCheck::FirstProblem() const {
  const auto passes = [this](DWORD flag) { return (ignoreFlags & flag) != 0; };
  if (hasOtherProblem) return kErrorInvalidCertificate;
  if (hasWrongUsage && !passes(SECURITY_FLAG_IGNORE_WRONG_USAGE)) return kErrorInvalidCertificate;
  if (hasDateProblem && !passes(SECURITY_FLAG_IGNORE_CERT_DATE_INVALID)) {
    return ERROR_INTERNET_SEC_CERT_DATE_INVALID;
  }
  if (hasNameProblem && !passes(SECURITY_FLAG_IGNORE_CERT_CN_INVALID)) {
    return ERROR_INTERNET_SEC_CERT_CN_INVALID;
  }
  if (hasUnknownAuthority && !passes(SECURITY_FLAG_IGNORE_UNKNOWN_CA)) {
    return ERROR_INTERNET_INVALID_CA;
  }
  return ERROR_SUCCESS;
}

void InstallCertificateCheck(CURL* easy, const std::shared_ptr<CertificateCheck>& check) {
  UseConfiguredAuthorities(easy);
  // libcurl's own look at the name would add nothing and knows no flags; the chain is asked for all
  // the same.
  curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 0L);
  curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, &SetUpContext);
  curl_easy_setopt(easy, CURLOPT_SSL_CTX_DATA, &check);
}

}  // namespace velandoc::http
