#include "platform/resources.h"

#include "platform/module_path.h"

namespace velandoc {
std::optional<std::string_view> FindModuleResource(LPCWSTR type, WORD id) {
  const HINSTANCE module = GetModuleInstance();
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
  if (found == nullptr) return std::nullopt;
  const HGLOBAL loaded = LoadResource(module, found);
  // Neither is freed: both are the mapped file's.
  const void* bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
  if (bytes == nullptr) return std::nullopt;
  return std::string_view(static_cast<const char*>(bytes), SizeofResource(module, found));
}

}  // namespace velandoc
