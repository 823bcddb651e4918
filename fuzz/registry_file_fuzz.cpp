// The reader of the registry's text files: whatever it accepts, it must be able to write and read
// again unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/posix/com/registry_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr LPCOLESTR kHive = OLESTR("HKEY_LOCAL_MACHINE");
  velandoc::RegistryKey hive;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!velandoc::ReadRegistryText(text, kHive, hive)) return 0;
  const std::string written = velandoc::WriteRegistryText(hive, kHive);
  velandoc::RegistryKey again;
  if (!velandoc::ReadRegistryText(written, kHive, again)) std::abort();
  if (velandoc::WriteRegistryText(again, kHive) != written) std::abort();
  return 0;
}
