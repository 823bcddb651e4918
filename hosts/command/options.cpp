#include "hosts/command/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "hosts/command/exit_codes.h"
#include "hosts/command/probe_url.h"
#include "hosts/command/talk.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr char kDescription[] = "Asks SharePoint servers, through the Velandoc component.";
constexpr char kFooter[] =
    "Exit codes:\n"
    "  0  success; probe: every URL is on a SharePoint server\n"
    "  1  probe: at least one URL is not\n"
    "  2  the command line is wrong; nothing was sent\n"
    "  3  the component cannot be created\n"
    "  4  registering or unregistering failed\n"
    "  5  the output cannot be written\n"
    "  6  a call of the component failed\n";
constexpr char kUserHelp[] =
    "For this user alone; without it for all users, which needs root or administrator rights";

ParsedOptions Leave(int exitCode) { return {false, exitCode, {}}; }

ParsedOptions TellText(const std::string& text) {
  WriteOutput(text);
  return Leave(FlushOutput() ? kExitSuccess : kExitOutput);
}

ParsedOptions TellMistake(const std::string& mistake) {
  Talk(mistake);
  Talk("type 'velandoc --help' for what it understands");
  return Leave(kExitUsage);
}

}  // namespace

ParsedOptions ParseOptions(std::vector<std::string> arguments) {
  Options options;
  CLI::App app(kDescription, "velandoc");
  app.footer(kFooter);
  app.set_version_flag("--version", "velandoc " VELANDOC_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.add_flag("--json", options.json, "Print results as JSON");
  app.add_flag("--no-input", options.noInput, "Never ask for a password or about a certificate");
  app.require_subcommand(1);
  app.fallthrough();

  CLI::App* probe = app.add_subcommand("probe", "Tell whether each URL is on a SharePoint server");
  probe
      ->add_option("URL", options.urls,
                   "Any http:// or https:// URL on the server. Its path is not used, nor is its "
                   "port: the scheme's default port is asked")
      ->required();
  CLI::App* install = app.add_subcommand("register", "Register the component's classes");
  install->add_flag("--user", options.user, kUserHelp);
  CLI::App* remove = app.add_subcommand("unregister", "Remove the registration");
  remove->add_flag("--user", options.user, kUserHelp);

  try {
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return TellText(app.help());  // of the subcommand, if one stands before it
  } catch (const CLI::CallForVersion& version) {
    return TellText(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    return TellMistake(error.what());
  }

  options.action = probe->parsed()     ? Action::kProbe
                   : install->parsed() ? Action::kRegister
                                       : Action::kUnregister;
  for (const std::string& url : options.urls) {
    if (const auto problem = FindUrlProblem(url)) return TellMistake(*problem);
  }
  return {true, kExitSuccess, options};
}

}  // namespace velandoc
