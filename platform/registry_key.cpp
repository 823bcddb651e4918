#include "platform/registry_key.h"

#include <array>

namespace velandoc {
namespace {

constexpr LONG kSuccess = static_cast<LONG>(ERROR_SUCCESS);
constexpr LONG kNotFound = static_cast<LONG>(ERROR_FILE_NOT_FOUND);

// Characters of a key's name, which the registry itself bounds, and its terminator.
constexpr std::size_t kNameRoom = 256;

Registry& System() { return CurrentPort<Registry>(); }

LONG NotFoundIsSuccess(LONG error) { return error == kNotFound ? kSuccess : error; }

/// kSuccess if `name` has subkeys.
LONG FindSubKey(HKEY parent, const WideString& name) {
  OpenKey key;
  if (const LONG error = key.Open(parent, name)) return error;
  std::array<OLECHAR, kNameRoom> child;
  DWORD length = kNameRoom;
  return System().RegEnumKeyExW(key.Get(), 0, child.data(), &length, nullptr, nullptr, nullptr,
                                nullptr);
}

}  // namespace

OpenKey::~OpenKey() {
  if (m_key != nullptr) System().RegCloseKey(m_key);
}

LONG OpenKey::Create(HKEY parent, const WideString& name) {
  return System().RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                  KEY_READ | KEY_WRITE, nullptr, &m_key, nullptr);
}

LONG OpenKey::Open(HKEY parent, const WideString& name) {
  return System().RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WRITE, &m_key);
}

LONG OpenKey::OpenForReading(HKEY parent, const WideString& name) {
  return System().RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ, &m_key);
}

LONG OpenKey::SetText(LPCWSTR name, const WideString& text) const {
  const std::size_t size = (text.size() + 1) * sizeof(OLECHAR);
  return System().RegSetValueExW(m_key, name, 0, REG_SZ,
                                 reinterpret_cast<const BYTE*>(text.c_str()),
                                 static_cast<DWORD>(size));
}

LONG ReadKeyText(HKEY parent, const WideString& key, LPCWSTR name, WideString& text) {
  OpenKey opened;
  if (const LONG error = opened.OpenForReading(parent, key)) return error;
  DWORD type = REG_NONE;
  DWORD size = 0;
  LONG error = System().RegQueryValueExW(opened.Get(), name, nullptr, &type, nullptr, &size);
  if (error != 0) return error;
  if (type != REG_SZ || size % sizeof(OLECHAR) != 0) return static_cast<LONG>(ERROR_INVALID_DATA);
  WideString read(size / sizeof(OLECHAR), OLECHAR{0});
  error = System().RegQueryValueExW(opened.Get(), name, nullptr, nullptr,
                                    reinterpret_cast<BYTE*>(read.data()), &size);
  if (error != 0) return error;
  text = read.substr(0, read.find(OLECHAR{0}));
  return 0;
}

LONG DeleteKeyTree(HKEY parent, const WideString& name) {
  return NotFoundIsSuccess(System().RegDeleteTreeW(parent, name.c_str()));
}

LONG DeleteKeyWithoutSubKeys(HKEY parent, const WideString& name) {
  // The system is asked first: below HKEY_CLASSES_ROOT a key shows the subkeys of the user and the
  // machine, but those of the one that is written to are what keeps it.
  const LONG error = System().RegDeleteKeyW(parent, name.c_str());
  if (error != static_cast<LONG>(ERROR_ACCESS_DENIED)) return NotFoundIsSuccess(error);
  return FindSubKey(parent, name) == kSuccess ? kSuccess : error;
}

}  // namespace velandoc
