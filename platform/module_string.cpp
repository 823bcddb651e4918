#include "platform/mfc/module_state.h"
#include "platform/module_path.h"
#include "platform/module_services.h"
#include "platform/resources.h"

namespace velandoc {
namespace {

constexpr std::size_t kFirstRoom = 256;
// A row's length is a 16-bit number.
constexpr std::size_t kMostRoom = 65536;

WideString LoadFrom(HINSTANCE module, WORD id) {
  ModuleServices& services = CurrentPort<ModuleServices>();
  WideString text;
  for (std::size_t room = kFirstRoom;; room *= 2) {
    text.assign(room, OLECHAR{0});
    const int length = services.LoadStringW(module, id, text.data(), static_cast<int>(room));
    text.resize(static_cast<std::size_t>(length));
    // What fills the room may have been cut.
    if (text.size() + 1 < room || room >= kMostRoom) return text;
  }
}

}  // namespace

WideString LoadModuleString(WORD id) {
  const WideString text = LoadFrom(AfxGetResourceHandle(), id);
  return !text.empty() ? text : LoadFrom(GetModuleInstance(), id);
}

}  // namespace velandoc
