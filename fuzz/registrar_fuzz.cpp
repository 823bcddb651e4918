// The registry script reader: any text is either refused or applied and taken back, and no key
// stays open.
#include <cstdlib>

#include "platform/atl/registrar.h"
#include "tests/support/memory_registry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  velandoc::WideString script;
  // Bytes of Latin-1, NUL ends the script as it ends every text.
  for (std::size_t i = 0; i < size && data[i] != 0; ++i) script += static_cast<OLECHAR>(data[i]);
  velandoc::MemoryRegistry registry;
  const velandoc::PortScope<velandoc::Registry> scope(registry);
  for (const bool perUser : {false, true}) {
    CRegObject registrar(perUser);
    registrar.AddReplacement(OLESTR("MODULE"), OLESTR("/it''s/libvelandoc.so"));
    registrar.AddReplacement(OLESTR("APPID"), OLESTR("{91509BD2-09D1-4F79-B147-D5EF6C90DB1C}"));
    const HRESULT made = registrar.StringRegister(script.c_str());
    const bool refused = made == DISP_E_EXCEPTION;
    if (refused && registry.Calls() != 0 && !perUser) std::abort();
    if (refused != (registrar.StringUnregister(script.c_str()) == DISP_E_EXCEPTION)) std::abort();
    if (registry.OpenKeys() != 0) std::abort();
  }
  return 0;
}
