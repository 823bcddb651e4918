// Identifiers as text: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
#include <string_view>

#include "platform/posix/com/activation.h"

namespace {

// The byte of the layout that each pair of digits gives; the first three fields stand highest byte
// first. {33221100-5544-7766-8899-AABBCCDDEEFF}, by offset in the structure.
constexpr std::string_view kForm = "{hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh}";
constexpr BYTE kByteOrder[16] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

int DigitValue(OLECHAR digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return -1;
}

HRESULT Parse(LPCOLESTR text, GUID* guid) {
  if (guid == nullptr) return E_INVALIDARG;
  *guid = GUID_NULL;
  if (text == nullptr) return S_OK;
  BYTE bytes[sizeof(GUID)] = {};
  std::size_t digits = 0;
  for (const char expected : kForm) {
    const OLECHAR unit = *text++;
    if (expected != 'h') {
      if (unit != static_cast<OLECHAR>(expected)) return CO_E_CLASSSTRING;
      continue;
    }
    const int value = DigitValue(unit);
    if (value < 0) return CO_E_CLASSSTRING;
    BYTE& byte = bytes[kByteOrder[digits / 2]];
    byte = static_cast<BYTE>(byte << 4 | value);
    ++digits;
  }
  if (*text != 0) return CO_E_CLASSSTRING;
  std::memcpy(guid, bytes, sizeof(GUID));
  return S_OK;
}

}  // namespace

STDAPI IIDFromString(LPCOLESTR text, IID* iid) {
  const HRESULT result = Parse(text, iid);
  return result == CO_E_CLASSSTRING ? CO_E_IIDSTRING : result;
}

STDAPI CLSIDFromString(LPCOLESTR text, CLSID* clsid) {
  const HRESULT result = Parse(text, clsid);
  // A ProgID serves too: only a text in braces is meant as an identifier.
  if (result == CO_E_CLASSSTRING && *text != '{') return CLSIDFromProgID(text, clsid);
  return result;
}

STDAPI_(int) StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) {
  constexpr int kSize = static_cast<int>(kForm.size()) + 1;
  if (text == nullptr || capacity < kSize) return 0;
  BYTE bytes[sizeof(GUID)];
  std::memcpy(bytes, &guid, sizeof(GUID));
  std::size_t digits = 0;
  for (const char form : kForm) {
    if (form != 'h') {
      *text++ = static_cast<OLECHAR>(form);
      continue;
    }
    const BYTE byte = bytes[kByteOrder[digits / 2]];
    *text++ = static_cast<OLECHAR>("0123456789ABCDEF"[digits % 2 == 0 ? byte >> 4 : byte & 0xF]);
    ++digits;
  }
  *text = 0;
  return kSize;
}

STDAPI StringFromCLSID(REFCLSID clsid, LPOLESTR* text) {
  if (text == nullptr) return E_POINTER;
  constexpr int kSize = static_cast<int>(kForm.size()) + 1;
  *text = static_cast<LPOLESTR>(CoTaskMemAlloc(kSize * sizeof(OLECHAR)));
  if (*text == nullptr) return E_OUTOFMEMORY;
  StringFromGUID2(clsid, *text, kSize);
  return S_OK;
}
