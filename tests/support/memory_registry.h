// A registry in memory for tests: it works as the real one does, records what is done to it, and
// fails where told.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/text.h"

namespace velandoc {

class MemoryRegistry final : public Registry {
 public:
  MemoryRegistry();
  ~MemoryRegistry() override;

  /// The n-th call from now on (counted from 1; RegCloseKey is not counted) fails with `error`.
  void FailCall(int n, DWORD error);
  /// Calls since the last FailCall, RegCloseKey not counted.
  int Calls() const { return m_calls; }
  /// Keys that were opened and not closed.
  int OpenKeys() const { return static_cast<int>(m_open.size()); }

  /// What changed the registry, in order: "create HKCR\A\B" for a key that was not there, "set
  /// HKCR\A\[name]=data", "unset HKCR\A\[name]", "delete HKCR\A", "deltree HKCR\A".
  std::vector<std::string> changes;

  /// Every key and value, sorted: "HKCR\A" and "HKCR\A\[name]=data", numbers as "dword:5".
  std::vector<std::string> Dump() const;

  LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options,
                       REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result,
                       DWORD* disposition) override;
  LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, HKEY* result) override;
  LONG RegCloseKey(HKEY key) override;
  LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                      DWORD size) override;
  LONG RegQueryValueExW(HKEY key, LPCWSTR name, DWORD* reserved, DWORD* type, BYTE* data,
                        DWORD* size) override;
  LONG RegDeleteValueW(HKEY key, LPCWSTR name) override;
  LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey) override;
  LONG RegDeleteTreeW(HKEY key, LPCWSTR subKey) override;
  LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                     LPWSTR keyClass, DWORD* classLength, FILETIME* lastWrite) override;
  LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD* reserved,
                     DWORD* type, BYTE* data, DWORD* size) override;

 private:
  struct Node;
  struct Handle;

  /// Whether this call is the one that fails.
  bool Fails();
  /// The node and its path; a root's, or an open key's.
  Node* Find(HKEY key, std::string& path) const;
  /// The node `subKey` levels below, null if one is missing.
  static Node* Walk(Node* node, WideView subKey, std::string& path);

  std::unique_ptr<Node> m_classes, m_user, m_machine;
  std::map<HKEY, std::unique_ptr<Handle>> m_open;
  int m_calls = 0;
  int m_failing = 0;
  DWORD m_error = 0;
};

}  // namespace velandoc
