#include "hosts/command/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "hosts/command/exit_codes.h"
#include "hosts/command/probe_url.h"
#include "hosts/command/talk.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr char kDescription[] =
    "Works with documents on SharePoint servers and with files in HDFS, through the Velandoc "
    "component.";
constexpr char kFooter[] =
    "Exit codes:\n"
    "   0  success; probe: every URL is on a SharePoint server;\n"
    "      doc status: nobody holds the document\n"
    "   1  probe: at least one URL is not; doc, hdfs: the server refused;\n"
    "      hdfs verify: no name node is active; doc edit: cancelled\n"
    "   2  the command line is wrong; nothing was sent\n"
    "   3  the component cannot be created\n"
    "   4  registering or unregistering failed; classes: the registry cannot be read\n"
    "   5  the output cannot be written\n"
    "   6  a call of the component failed\n"
    "   7  doc: the document cannot be opened; hdfs: no such file or folder\n"
    "   8  doc, hdfs: a part of the document or file did not arrive\n"
    "   9  doc meta, doc set: the document has no key or column of that name\n"
    "  10  doc status: you hold the document\n"
    "  11  doc status: somebody else holds it\n"
    "  12  hdfs: no active name node, or a node that cannot be spoken to\n"
    "  13  hdfs: a local file or folder cannot be read or written\n"
    "  14  hdfs: it is there already\n";
constexpr char kUserHelp[] =
    "For this user alone; without it for all users, which needs root or administrator rights";

constexpr char kTargetHelp[] =
    "The document: its http:// or https:// URL, or its path on a WebDAV share (UNC, mapped drive, "
    "mounted folder)";

constexpr char kEscapeHelp[] =
    "Write &, < and > as references, which is how an update can carry them";

struct DocCommand {
  const char* name;
  DocAction action;
  const char* description;
};
constexpr DocCommand kDocCommands[] = {
    {"show", DocAction::kShow, "Print everything that is known of the document"},
    {"meta", DocAction::kMeta, "Print its meta-info, all of it or the given keys"},
    {"status", DocAction::kStatus, "Tell who holds it, since when, and whether to check it in"},
    {"fields", DocAction::kFields, "List its columns, their values, and what is missing"},
    {"set", DocAction::kSet, "Write columns of its row"},
    {"edit", DocAction::kEdit, "Fill in its columns in a dialog"},
    {"checkout", DocAction::kCheckOut, "Check it out"},
    {"checkin", DocAction::kCheckIn, "Check it in"},
    {"undo", DocAction::kUndo, "Give the check-out up, and with it what was changed since"},
};

/// Adds `doc` and its commands, whose words go to `options`.
CLI::App* AddDocCommands(CLI::App& app, DocOptions& options) {
  CLI::App* doc = app.add_subcommand("doc", "Work with one document");
  doc->require_subcommand(1);
  for (const DocCommand& row : kDocCommands) {
    CLI::App* command = doc->add_subcommand(row.name, row.description);
    command->callback([&options, action = row.action] { options.action = action; });
    command->add_option("TARGET", options.target, kTargetHelp)->required();
    if (row.action == DocAction::kMeta) {
      command->add_option("KEY", options.words, "A key, such as vti_timelastmodified");
    } else if (row.action == DocAction::kSet) {
      command->add_option("ASSIGNMENT", options.words, "NAME=VALUE; without a VALUE to empty it")
          ->required();
      command->add_flag("--escape", options.escape, kEscapeHelp);
    } else if (row.action == DocAction::kEdit) {
      command->add_flag("--terminal", options.terminal,
                        "Ask for one column after the other on the terminal, without a dialog");
      command->add_flag("--escape", options.escape, kEscapeHelp);
    } else if (row.action == DocAction::kCheckIn) {
      command->add_option("--comment", options.comment, "The comment of the version");
      command->add_option(
          "--type", options.typeWord,
          "minor (0), major (1), overwrite (2) or another number; major without it");
    }
  }
  return doc;
}

struct HdfsCommand {
  const char* name;
  HdfsAction action;
  const char* description;
};
constexpr HdfsCommand kHdfsCommands[] = {
    {"get", HdfsAction::kGet, "Download a file, or with -r a folder"},
    {"cat", HdfsAction::kCat, "Write a file to the output"},
    {"head", HdfsAction::kHead, "Write the first lines of a file to the output"},
    {"put", HdfsAction::kPut, "Upload a file, or with -r a folder"},
    {"rm", HdfsAction::kRemove, "Delete a file, an empty folder, or with -r any folder"},
    {"mv", HdfsAction::kMove, "Rename or move a file or folder"},
    {"mkdir", HdfsAction::kMakeFolder, "Make a folder and those on the way to it"},
    {"ls", HdfsAction::kList, "List a folder"},
    {"stat", HdfsAction::kStat, "Tell what is known of a file or folder"},
    {"verify", HdfsAction::kVerify, "Tell which of the name nodes are there and active"},
};
constexpr unsigned kMostJobs = 64;

/// What get and put have alike.
void AddTransferOptions(CLI::App* command, HdfsOptions& options) {
  command->add_flag("-r,--recursive", options.recursive,
                    "A folder with all below it; what has the right size already is skipped");
  command->add_flag("--all", options.all, "With -r: skip nothing");
  command->add_option("-j,--jobs", options.jobs, "With -r: this many files at once (1)")
      ->check(CLI::Range(1U, kMostJobs));
}

void AddHdfsArguments(CLI::App* command, HdfsAction action, HdfsOptions& options) {
  constexpr const char* kRemoteHelp = "A path in HDFS, which begins with a /";
  constexpr const char* kPermissionHelp = "Three octal digits, such as 644";
  if (action == HdfsAction::kVerify) return;
  if (action == HdfsAction::kPut) {
    command
        ->add_option("LOCAL", options.local, "The local file or folder; - for the standard input")
        ->required();
  }
  CLI::Option* remote = command->add_option("REMOTE", options.remote, kRemoteHelp);
  if (action == HdfsAction::kList) {
    options.remote = "/";
    command->add_flag("-l,--long", options.longForm, "With permissions, owner, size and time");
    return;
  }
  remote->required();
  switch (action) {
    case HdfsAction::kGet:
      command->add_option("LOCAL", options.local,
                          "The local file or folder, in the current folder without it; - for the "
                          "output");
      AddTransferOptions(command, options);
      break;
    case HdfsAction::kHead:
      command->add_option("-n,--lines", options.lines, "How many lines (10)")
          ->check(CLI::NonNegativeNumber);
      break;
    case HdfsAction::kPut:
      command->add_flag("--no-overwrite", options.noOverwrite, "Leave what is there already");
      command->add_option("--permission", options.permission, kPermissionHelp);
      AddTransferOptions(command, options);
      break;
    case HdfsAction::kRemove:
      command->add_flag("-r,--recursive", options.recursive, "A folder with all below it");
      break;
    case HdfsAction::kMove:
      command->add_option("DESTINATION", options.destination, "Its new path")->required();
      break;
    case HdfsAction::kMakeFolder:
      command->add_option("--permission", options.permission, kPermissionHelp);
      break;
    default:
      break;
  }
}

/// Adds `hdfs` and its commands, whose words go to `options`.
CLI::App* AddHdfsCommands(CLI::App& app, HdfsOptions& options) {
  CLI::App* hdfs = app.add_subcommand("hdfs", "Work with files in HDFS, over WebHDFS");
  hdfs->require_subcommand(1);
  hdfs->add_option("--base-url", options.baseUrl,
                   "The name node: http://HOST[:PORT] or https://HOST[:PORT], several with commas "
                   "between them; port 50070 or 50470 without one")
      ->envname("VELANDOC_HDFS_URL");
  hdfs->add_option("--user", options.user, "Who asks, where the cluster takes one's word for it");
  hdfs->add_option("--stack", options.stackWord,
                   "Which of the component's clients: wininet or winhttp")
      ->check(CLI::IsMember({"wininet", "winhttp"}));
  hdfs->add_option("--resolve", options.resolve,
                   "NAME=ADDRESS[:PORT]: where a node is whose name cannot be looked up; may be "
                   "repeated")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  hdfs->add_flag("!--no-check-certificate", options.checksCertificates,
                 "Let every certificate pass");
  hdfs->add_flag("-q,--quiet", options.quiet, "Say nothing but what went wrong");
  for (const HdfsCommand& row : kHdfsCommands) {
    CLI::App* command = hdfs->add_subcommand(row.name, row.description);
    command->callback([&options, action = row.action] { options.action = action; });
    AddHdfsArguments(command, row.action, options);
  }
  return hdfs;
}

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

/// The parser's words, or better ones: of an unknown command it only says that one is required.
std::string MistakeOf(const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_name() == "RequiredError") {
    const std::vector<std::string> words = app.remaining(true);
    if (!words.empty()) return "'" + words.front() + "' is no command";
  }
  return error.what();
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
  // A path in HDFS begins with what would begin an option, on Windows by the parser's own choice.
  app.allow_windows_style_options(false);

  CLI::App* probe = app.add_subcommand("probe", "Tell whether each URL is on a SharePoint server");
  probe
      ->add_option("URL", options.urls,
                   "Any http:// or https:// URL on the server. Its path is not used, nor is its "
                   "port: the scheme's default port is asked")
      ->required();
  const CLI::App* doc = AddDocCommands(app, options.doc);
  const CLI::App* hdfs = AddHdfsCommands(app, options.hdfs);
  CLI::App* install = app.add_subcommand("register", "Register the component's classes");
  install->add_flag("--user", options.user, kUserHelp);
  CLI::App* remove = app.add_subcommand("unregister", "Remove the registration");
  remove->add_flag("--user", options.user, kUserHelp);
  const CLI::App* classes = app.add_subcommand(
      "classes", "List the component's classes, where they are registered, and their library");

  try {
    std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return TellText(app.help());  // of the subcommand, if one stands before it
  } catch (const CLI::CallForVersion& version) {
    return TellText(std::string(version.what()) + "\n");
  } catch (const CLI::ParseError& error) {
    return TellMistake(MistakeOf(app, error));
  }

  options.action = probe->parsed()     ? Action::kProbe
                   : doc->parsed()     ? Action::kDoc
                   : hdfs->parsed()    ? Action::kHdfs
                   : install->parsed() ? Action::kRegister
                   : classes->parsed() ? Action::kClasses
                                       : Action::kUnregister;
  for (const std::string& url : options.urls) {
    if (const auto problem = FindUrlProblem(url)) return TellMistake(*problem);
  }
  if (doc->parsed()) {
    if (const auto problem = FinishDocOptions(options.doc)) return TellMistake(*problem);
  }
  if (hdfs->parsed()) {
    if (const auto problem = FinishHdfsOptions(options.hdfs)) return TellMistake(*problem);
  }
  return {true, kExitSuccess, options};
}

}  // namespace velandoc
