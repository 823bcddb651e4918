// The component's resources: bytes by type and number, as the resource script resources/velandoc.rc
// lists them.
//
// On Windows they lie in the library's resource section, on Linux in its read-only data. They are
// always the library's own, whatever resource instance is current and whichever program has loaded
// it.
#pragma once

#include <optional>
#include <string_view>

#include "platform/text.h"

#ifndef _WIN32
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
#endif

namespace velandoc {

/// The bytes of resource `id` of `type` ("REGISTRY", "TYPELIB", ...), nothing if there is none.
/// They live as long as the library is loaded and are not null-ended.
std::optional<std::string_view> FindModuleResource(LPCWSTR type, WORD id);

/// Row `id` of the string table; empty if there is none. Unlike the bytes above it comes from the
/// resources that are current for the calling thread (platform/mfc/module_state.h), so from a
/// language's satellite where one is loaded, and from the library where that lacks the row.
WideString LoadModuleString(WORD id);

}  // namespace velandoc
