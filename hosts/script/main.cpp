// velandoc-script FILE.js [ARGS]: runs a script that drives automation objects, as cscript does on
// Windows.
#include <exception>
#include <string>
#include <vector>

#include "hosts/com_apartment.h"
#include "hosts/script/script_engine.h"
#include "hosts/script/script_source.h"
#include "platform/program_arguments.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr char kUsage[] =
    "Usage: velandoc-script FILE.js [ARGS]\n"
    "\n"
    "Runs a script in which new ActiveXObject(\"Velandoc.ServerCheck\") works as on Windows.\n"
    "\n"
    "  WScript.Echo(...)             prints its arguments with a blank between them\n"
    "  WScript.Arguments(i)          one of ARGS; .length and .Count() tell how many there are\n"
    "  WScript.Quit(code)            ends the script with an exit code\n"
    "  WScript.StdOut, .StdErr       Write(text), WriteLine(text)\n"
    "  WScript.Sleep(milliseconds), .CreateObject(name), .ScriptName, .ScriptFullName\n"
    "\n"
    "FILE.js is UTF-8, or UTF-16 with a byte order mark.\n"
    "Exit codes: the script's own; 1 after an error in it that nothing caught; 2 if it cannot be "
    "read.\n";

constexpr int kExitScriptError = 1;
constexpr int kExitUsage = 2;

int Run(std::vector<std::string> arguments) {
  if (arguments.empty()) {
    WriteTalk(kUsage);
    return kExitUsage;
  }
  const std::string path = arguments.front();
  if (path == "--help" || path == "-h" || path == "--version") {
    WriteOutput(path == "--version" ? "velandoc-script " VELANDOC_VERSION "\n" : kUsage);
    return FlushOutput() ? 0 : kExitScriptError;
  }
  if (path.starts_with('-')) {
    WriteTalk("velandoc-script: unknown option '" + path + "': type 'velandoc-script --help'\n");
    return kExitUsage;
  }
  ScriptSource source;
  std::string problem;
  if (!ReadScript(path, source, problem)) {
    WriteTalk("velandoc-script: '" + path + "': " + problem + "\n");
    return kExitUsage;
  }
  arguments.erase(arguments.begin());
  const ComApartment apartment;
  ScriptEngine engine(source, arguments);
  const int exitCode = engine.Run();
  return FlushOutput() || exitCode != 0 ? exitCode : kExitScriptError;
}

}  // namespace
}  // namespace velandoc

int main(int argc, char** argv) {
  velandoc::PrepareStandardStreams();
  try {
    return velandoc::Run(velandoc::ProgramArguments(argc, argv));
  } catch (const std::exception& error) {
    velandoc::WriteTalk(std::string("velandoc-script: ") + error.what() + "\n");
    return velandoc::kExitScriptError;
  }
}
