// velandoc, the command: a host of the component. It makes the objects by their ProgIDs where their
// interfaces tell all that it shows, and of the component's own classes where they do not (doc,
// hdfs).
#include <exception>

#include "hosts/com_apartment.h"
#include "hosts/command/classes_command.h"
#include "hosts/command/doc_command.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/hdfs_command.h"
#include "hosts/command/options.h"
#include "hosts/command/probe_command.h"
#include "hosts/command/registration_command.h"
#include "hosts/command/talk.h"
#include "platform/environment.h"
#include "platform/program_arguments.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

int Run(int argc, char** argv) {
  const ParsedOptions parsed = ParseOptions(ProgramArguments(argc, argv));
  if (!parsed.proceed) return parsed.exitCode;
  // Read by the component where it would ask on the terminal.
  if (parsed.options.noInput) SetEnvironment("VELANDOC_NO_INPUT", "1");
  const ComApartment apartment;
  switch (parsed.options.action) {
    case Action::kProbe:
      return RunProbe(parsed.options);
    case Action::kDoc:
      return RunDoc(parsed.options);
    case Action::kHdfs:
      return RunHdfs(parsed.options);
    case Action::kClasses:
      return RunClasses(parsed.options);
    default:
      return RunRegistration(parsed.options);
  }
}

}  // namespace
}  // namespace velandoc

int main(int argc, char** argv) {
  velandoc::PrepareStandardStreams();
  try {
    return velandoc::Run(argc, argv);
  } catch (const _com_error& error) {
    velandoc::Talk("failed (" + velandoc::ResultText(error.Error()) + ")");
  } catch (const std::exception& error) {
    velandoc::Talk(error.what());
  }
  return velandoc::kExitFailure;
}
