#include "platform/resources.h"

#include "platform/mfc/module_state.h"
#include "platform/module_path.h"

namespace velandoc {
namespace {

WideString LoadFrom(HINSTANCE module, WORD id) {
  // A size of 0 asks for the text where it lies; it is counted, not null-ended.
  LPCWSTR text = nullptr;
  const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
  return length > 0 ? WideString(text, static_cast<std::size_t>(length)) : WideString();
}

}  // namespace

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

WideString LoadModuleString(WORD id) {
  const WideString text = LoadFrom(AfxGetResourceHandle(), id);
  return !text.empty() ? text : LoadFrom(GetModuleInstance(), id);
}

}  // namespace velandoc
