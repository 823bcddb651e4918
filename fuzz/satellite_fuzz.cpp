// The reader of satellites: whatever a file holds, what it gives lies inside of it, and a search
// ends.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/posix/pe_resources.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto resources =
      velandoc::PeResources::Read(std::string(reinterpret_cast<const char*>(data), size));
  if (!resources) return 0;
  for (int id = 96; id < 130; ++id) {
    if (resources->LoadString(static_cast<WORD>(id)).size() > size / 2) std::abort();
  }
  for (int type = 0; type < 25; ++type) {
    const auto found = resources->Find(static_cast<WORD>(type), 7);
    if (found && found->size() > size) std::abort();
  }
  return 0;
}
