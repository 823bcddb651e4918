// An open key of the registry, and what is often done with one, through the Registry port.
#pragma once

#include "platform/registry.h"
#include "platform/text.h"

namespace velandoc {

/// Owns an open key. Results are the port's; on failure there is no key. To be opened once.
class OpenKey {
 public:
  OpenKey() = default;
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey();

  /// Opens `name` below `parent`, for reading and writing; makes it, and every missing level above
  /// it, if it is not there.
  LONG Create(HKEY parent, const WideString& name);
  /// ERROR_FILE_NOT_FOUND if there is no such key.
  LONG Open(HKEY parent, const WideString& name);

  /// As Open, for those who may not write there.
  LONG OpenForReading(HKEY parent, const WideString& name);

  HKEY Get() const { return m_key; }
  /// A REG_SZ; a null or empty `name` is the default value.
  LONG SetText(LPCWSTR name, const WideString& text) const;

 private:
  HKEY m_key = nullptr;
};

/// The REG_SZ `name` of the key (null for its default value), without its terminator; the key is
/// opened for reading alone. ERROR_FILE_NOT_FOUND if there is no such key or value,
/// ERROR_INVALID_DATA if it is no text; `text` is then as it was.
LONG ReadKeyText(HKEY parent, const WideString& key, LPCWSTR name, WideString& text);

/// Deletes `name` with all below it. A key that is not there is no failure.
LONG DeleteKeyTree(HKEY parent, const WideString& name);

/// Deletes `name` unless it has subkeys: those are somebody else's, and keep it. A key that is not
/// there is no failure.
LONG DeleteKeyWithoutSubKeys(HKEY parent, const WideString& name);

}  // namespace velandoc
