#include "hosts/command/registration_command.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/command/exit_codes.h"
#include "hosts/command/registered_classes.h"
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

/// Whether one of the classes is registered for whom `options` names, or may be: true too if the
/// registry cannot be read.
bool MayBeRegistered(const Options& options) {
  std::vector<RegisteredClass> classes;
  bool forUser = false;
  if (FindRegisteredClasses(classes, forUser) != ERROR_SUCCESS) return true;
  return std::any_of(classes.begin(), classes.end(), [&](const RegisteredClass& one) {
    return std::any_of(
        one.registrations.begin(), one.registrations.end(),
        [&](const ClassRegistration& found) { return found.forUser == options.user; });
  });
}

void TellFailure(const Options& options, HRESULT result, bool wasRegistered) {
  const std::string verb = options.action == Action::kRegister ? "register" : "unregister";
  if (result == E_ACCESSDENIED && !options.user) {
    Talk("permission denied: to " + verb + " for all users type this as root or administrator; " +
         "for you alone type 'velandoc " + verb + " --user'");
  } else if (result == E_ACCESSDENIED) {
    Talk("permission denied: your registry cannot be written");
  } else if (options.action == Action::kUnregister && !wasRegistered) {
    Talk(std::string("nothing is registered for ") + (options.user ? "you alone" : "all users") +
         " (" + ResultText(result) + "): 'velandoc classes' tells what is");
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
  const bool wasRegistered = MayBeRegistered(options);
  const HRESULT result = Register(library, install, options.user);
  if (FAILED(result)) {
    TellFailure(options, result, wasRegistered);
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
