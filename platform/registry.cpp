// The Registry port: the functions of these names, the system's own on Windows, the COM runtime's
// on Linux, which finds its classes in the same files.
#include "platform/registry.h"

namespace velandoc {
namespace {

class SystemRegistry final : public Registry {
 public:
  LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                       REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result,
                       DWORD* disposition) override {
    return ::RegCreateKeyExW(key, subKey, reserved, keyClass, options, access, security, result,
                             disposition);
  }
  LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access,
                     HKEY* result) override {
    return ::RegOpenKeyExW(key, subKey, options, access, result);
  }
  LONG RegCloseKey(HKEY key) override { return ::RegCloseKey(key); }
  LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                      DWORD size) override {
    return ::RegSetValueExW(key, name, reserved, type, data, size);
  }
  LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                        DWORD* size) override {
    return ::RegQueryValueExW(key, name, reserved, type, data, size);
  }
  LONG RegDeleteValueW(HKEY key, LPCWSTR name) override { return ::RegDeleteValueW(key, name); }
  LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) override { return ::RegDeleteKeyW(key, subKey); }
  LONG RegDeleteTreeW(HKEY key, LPCWSTR subKey) override { return ::RegDeleteTreeW(key, subKey); }
  LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                     LPWSTR keyClass, DWORD* classLength, FILETIME* lastWrite) override {
    return ::RegEnumKeyExW(key, index, name, nameLength, reserved, keyClass, classLength,
                           lastWrite);
  }
  LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                     DWORD* type, BYTE* data, DWORD* size) override {
    return ::RegEnumValueW(key, index, name, nameLength, reserved, type, data, size);
  }
};

}  // namespace

template <>
Registry& SystemPort<Registry>() {
  static SystemRegistry registry;
  return registry;
}

}  // namespace velandoc
