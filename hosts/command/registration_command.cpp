#include "hosts/command/registration_command.h"

#include <nlohmann/json.hpp>

#include "hosts/command/exit_codes.h"
#include "hosts/command/talk.h"
#include "hosts/component_library.h"
#include "platform/registry_place.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// As `regsvr32 FILE`, `regsvr32 /u FILE` and, for one user, `regsvr32 /n /i:user FILE` with or
/// without /u.
HRESULT Register(const ComponentLibrary& library, bool install, bool user) {
  if (user) return library.DllInstall(install ? TRUE : FALSE, OLESTR("user"));
  return install ? library.DllRegisterServer() : library.DllUnregisterServer();
}

void TellFailure(const Options& options, HRESULT result) {
  const std::string verb = options.action == Action::kRegister ? "register" : "unregister";
  if (result == E_ACCESSDENIED && !options.user) {
    Talk("permission denied: to " + verb + " for all users type this as root or administrator; " +
         "for you alone type 'velandoc " + verb + " --user'");
  } else if (result == E_ACCESSDENIED) {
    Talk("permission denied: your registry cannot be written");
  } else {
    Talk("the component's library could not " + verb + " itself (" + ResultText(result) + ")");
  }
}

}  // namespace

int RunRegistration(const Options& options) {
  const ComponentLibrary library;
  if (!library.Loaded()) {
    Talk("cannot load the component's library: " + library.Problem());
    return kExitNoComponent;
  }
  const bool install = options.action == Action::kRegister;
  const HRESULT result = Register(library, install, options.user);
  if (FAILED(result)) {
    TellFailure(options, result);
    return kExitRegistration;
  }
  const std::string key = options.user ? "HKEY_CURRENT_USER\\Software\\Classes"
                                       : "HKEY_LOCAL_MACHINE\\Software\\Classes";
  const std::string file = RegistryPlace(options.user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE);
  if (options.json) {
    nlohmann::ordered_json done = {
        {"registered", install}, {"library", library.Path()}, {"key", key}};
    if (!file.empty()) done["file"] = file;
    WriteOutput(done.dump(2) + "\n");
  } else {
    WriteOutput((install ? "registered " : "unregistered ") + library.Path() +
                (install ? " in " : " from ") + key + (file.empty() ? "" : " (" + file + ")") +
                "\n");
  }
  return FlushOutput() ? kExitSuccess : kExitOutput;
}

}  // namespace velandoc
