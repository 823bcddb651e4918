#include "hosts/command/classes_command.h"

#include <nlohmann/json.hpp>

#include "hosts/command/exit_codes.h"
#include "hosts/command/registered_classes.h"
#include "hosts/command/talk.h"
#include "platform/registry_place.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

HKEY RootOf(bool forUser) { return forUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

const char* ScopeOf(bool forUser) { return forUser ? "user" : "machine"; }

/// "Velandoc.Client {6884BC45-...}", and below it a line a registration.
std::string TextOf(const RegisteredClass& one) {
  std::string text = one.progId + " " + one.classId + "\n";
  if (one.registrations.empty()) text += "  not registered\n";
  for (const ClassRegistration& registration : one.registrations) {
    text.append("  ").append(ScopeOf(registration.forUser)).append(": ");
    text.append(registration.library);
    text.append(registration.libraryExists ? "\n" : " (no such file)\n");
  }
  return text;
}

nlohmann::ordered_json JsonOf(const RegisteredClass& one) {
  nlohmann::ordered_json registrations = nlohmann::ordered_json::array();
  for (const ClassRegistration& registration : one.registrations) {
    registrations.push_back({{"scope", ScopeOf(registration.forUser)},
                             {"library", registration.library},
                             {"exists", registration.libraryExists}});
  }
  return {{"progId", one.progId}, {"classId", one.classId}, {"registrations", registrations}};
}

}  // namespace

int RunClasses(const Options& options) {
  std::vector<RegisteredClass> classes;
  bool forUser = false;
  if (const LONG error = FindRegisteredClasses(classes, forUser)) {
    const std::string file = RegistryPlace(RootOf(forUser));
    Talk((file.empty() ? "the registry" : "'" + file + "'") + " cannot be read (" +
         ResultText(HRESULT_FROM_WIN32(static_cast<DWORD>(error))) + ")");
    return kExitRegistration;
  }
  std::string text;
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const RegisteredClass& one : classes) {
    if (options.json) {
      list.push_back(JsonOf(one));
    } else {
      text += TextOf(one);
    }
  }
  WriteOutput(options.json ? list.dump(2) + "\n" : text);
  return FlushOutput() ? kExitSuccess : kExitOutput;
}

}  // namespace velandoc
