#include "tests/support/memory_registry.h"

#include <algorithm>
#include <cstring>

namespace velandoc {
namespace {

// What no test needs of the real one's error numbers is left out.
constexpr LONG kSuccess = 0;
constexpr LONG kNotFound = static_cast<LONG>(ERROR_FILE_NOT_FOUND);

/// Registry names and data of the tests are ASCII.
std::string Narrow(WideView text) {
  std::string narrow;
  for (const OLECHAR c : text) narrow += static_cast<char>(c);
  return narrow;
}

struct NoCase {
  bool operator()(const std::string& a, const std::string& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
      return std::tolower(x) < std::tolower(y);
    });
  }
};

}  // namespace

struct MemoryRegistry::Node {
  struct Data {
    DWORD type;
    std::string bytes;

    std::string Text() const {
      if (type == REG_DWORD) {
        DWORD number = 0;
        std::memcpy(&number, bytes.data(), sizeof(number));
        return "dword:" + std::to_string(number);
      }
      WideString wide(bytes.size() / sizeof(OLECHAR), OLECHAR(0));
      std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(OLECHAR));
      // The terminator is stored with the text; its absence shows.
      if (wide.empty() || wide.back() != 0) return Narrow(wide) + " without its terminator";
      wide.pop_back();
      return Narrow(wide);
    }
  };
  std::map<std::string, std::unique_ptr<Node>, NoCase> keys;
  std::map<std::string, Data, NoCase> values;

  void Dump(const std::string& path, std::vector<std::string>& lines) const {
    for (const auto& [name, data] : values) {
      lines.push_back(path + "\\[" + name + "]=" + data.Text());
    }
    for (const auto& [name, node] : keys) {
      lines.push_back(path + "\\" + name);
      node->Dump(path + "\\" + name, lines);
    }
  }
};

struct MemoryRegistry::Handle {
  Node* node;
  std::string path;
};

MemoryRegistry::MemoryRegistry()
    : m_classes(std::make_unique<Node>()),
      m_user(std::make_unique<Node>()),
      m_machine(std::make_unique<Node>()) {}
MemoryRegistry::~MemoryRegistry() = default;

void MemoryRegistry::FailCall(int n, DWORD error) {
  m_calls = 0;
  m_failing = n;
  m_error = error;
}

bool MemoryRegistry::Fails() { return ++m_calls == m_failing; }

std::vector<std::string> MemoryRegistry::Dump() const {
  std::vector<std::string> lines;
  m_classes->Dump("HKCR", lines);
  m_user->Dump("HKCU", lines);
  m_machine->Dump("HKLM", lines);
  return lines;
}

MemoryRegistry::Node* MemoryRegistry::Find(HKEY key, std::string& path) const {
  if (key == HKEY_CLASSES_ROOT) return path = "HKCR", m_classes.get();
  if (key == HKEY_CURRENT_USER) return path = "HKCU", m_user.get();
  if (key == HKEY_LOCAL_MACHINE) return path = "HKLM", m_machine.get();
  const auto found = m_open.find(key);
  if (found == m_open.end()) return nullptr;
  path = found->second->path;
  return found->second->node;
}

MemoryRegistry::Node* MemoryRegistry::Walk(Node* node, WideView subKey, std::string& path) {
  while (node != nullptr && !subKey.empty()) {
    const std::size_t end = subKey.find(OLECHAR('\\'));
    const std::string name = Narrow(subKey.substr(0, end));
    const auto found = node->keys.find(name);
    path += "\\" + (found != node->keys.end() ? found->first : name);
    node = found != node->keys.end() ? found->second.get() : nullptr;
    subKey = end == WideView::npos ? WideView() : subKey.substr(end + 1);
  }
  return node;
}

LONG MemoryRegistry::RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD, LPWSTR, DWORD, REGSAM,
                                     SECURITY_ATTRIBUTES*, HKEY* result, DWORD*) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  WideView rest = subKey;
  while (!rest.empty()) {
    const std::size_t end = rest.find(OLECHAR('\\'));
    const WideView name = rest.substr(0, end);
    Node* child = Walk(node, name, path);
    if (child == nullptr) {
      changes.push_back("create " + path);
      child = node->keys.emplace(Narrow(name), std::make_unique<Node>()).first->second.get();
    }
    node = child;
    rest = end == WideView::npos ? WideView() : rest.substr(end + 1);
  }
  auto handle = std::make_unique<Handle>(Handle{node, path});
  *result = reinterpret_cast<HKEY>(handle.get());
  m_open.emplace(*result, std::move(handle));
  return kSuccess;
}

LONG MemoryRegistry::RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD, REGSAM, HKEY* result) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  node = Walk(node, subKey != nullptr ? WideView(subKey) : WideView(), path);
  if (node == nullptr) return kNotFound;
  auto handle = std::make_unique<Handle>(Handle{node, path});
  *result = reinterpret_cast<HKEY>(handle.get());
  m_open.emplace(*result, std::move(handle));
  return kSuccess;
}

LONG MemoryRegistry::RegCloseKey(HKEY key) {
  return m_open.erase(key) == 1 ? kSuccess : static_cast<LONG>(ERROR_INVALID_HANDLE);
}

LONG MemoryRegistry::RegSetValueExW(HKEY key, LPCWSTR name, DWORD, DWORD type, const BYTE* data,
                                    DWORD size) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  const std::string narrow = name != nullptr ? Narrow(name) : "";
  Node::Data& value = node->values[narrow];
  value = {type, std::string(reinterpret_cast<const char*>(data), size)};
  changes.push_back("set " + path + "\\[" + narrow + "]=" + value.Text());
  return kSuccess;
}

LONG MemoryRegistry::RegQueryValueExW(HKEY key, LPCWSTR name, DWORD*, DWORD* type, BYTE* data,
                                      DWORD* size) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  const auto found = node->values.find(name != nullptr ? Narrow(name) : "");
  if (found == node->values.end()) return kNotFound;
  const std::string& bytes = found->second.bytes;
  if (type != nullptr) *type = found->second.type;
  const DWORD room = size != nullptr ? *size : 0;
  if (size != nullptr) *size = static_cast<DWORD>(bytes.size());
  if (data == nullptr) return kSuccess;
  if (room < bytes.size()) return static_cast<LONG>(ERROR_MORE_DATA);
  std::memcpy(data, bytes.data(), bytes.size());
  return kSuccess;
}

LONG MemoryRegistry::RegDeleteValueW(HKEY key, LPCWSTR name) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  const std::string narrow = name != nullptr ? Narrow(name) : "";
  if (node->values.erase(narrow) == 0) return kNotFound;
  changes.push_back("unset " + path + "\\[" + narrow + "]");
  return kSuccess;
}

LONG MemoryRegistry::RegDeleteKeyW(HKEY key, LPCWSTR subKey) {
  if (Fails()) return static_cast<LONG>(m_error);
  const WideView whole = subKey;
  const std::size_t cut = whole.rfind(OLECHAR('\\'));
  std::string path;
  Node* parent = Find(key, path);
  if (cut != WideView::npos) parent = Walk(parent, whole.substr(0, cut), path);
  const WideView name = cut != WideView::npos ? whole.substr(cut + 1) : whole;
  Node* node = Walk(parent, name, path);
  if (node == nullptr) return kNotFound;
  if (!node->keys.empty()) return static_cast<LONG>(ERROR_ACCESS_DENIED);
  parent->keys.erase(Narrow(name));
  changes.push_back("delete " + path);
  return kSuccess;
}

LONG MemoryRegistry::RegDeleteTreeW(HKEY key, LPCWSTR subKey) {
  if (Fails()) return static_cast<LONG>(m_error);
  const WideView whole = subKey;
  const std::size_t cut = whole.rfind(OLECHAR('\\'));
  std::string path;
  Node* parent = Find(key, path);
  if (cut != WideView::npos) parent = Walk(parent, whole.substr(0, cut), path);
  const WideView name = cut != WideView::npos ? whole.substr(cut + 1) : whole;
  if (Walk(parent, name, path) == nullptr) return kNotFound;
  parent->keys.erase(Narrow(name));
  changes.push_back("deltree " + path);
  return kSuccess;
}

LONG MemoryRegistry::RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, DWORD* nameLength, DWORD*,
                                   LPWSTR, DWORD*, FILETIME*) {
  if (Fails()) return static_cast<LONG>(m_error);
  std::string path;
  Node* node = Find(key, path);
  if (node == nullptr) return static_cast<LONG>(ERROR_INVALID_HANDLE);
  if (index >= node->keys.size()) return static_cast<LONG>(ERROR_NO_MORE_ITEMS);
  const std::string& found =
      std::next(node->keys.begin(), static_cast<std::ptrdiff_t>(index))->first;
  if (*nameLength <= found.size()) return static_cast<LONG>(ERROR_MORE_DATA);
  std::copy(found.begin(), found.end(), name);
  name[found.size()] = 0;
  *nameLength = static_cast<DWORD>(found.size());
  return kSuccess;
}

LONG MemoryRegistry::RegEnumValueW(HKEY, DWORD, LPWSTR, DWORD*, DWORD*, DWORD*, BYTE*, DWORD*) {
  // Nothing here enumerates values.
  return static_cast<LONG>(ERROR_NOT_SUPPORTED);
}

}  // namespace velandoc
