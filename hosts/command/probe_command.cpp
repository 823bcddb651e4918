#include "hosts/command/probe_command.h"

#include <velandoc_idl.h>

#include <nlohmann/json.hpp>

#include "hosts/command/exit_codes.h"
#include "hosts/command/probe_url.h"
#include "hosts/command/talk.h"
#include "hosts/create_object.h"
#include "hosts/text_encoding.h"
#include "platform/owners.h"
#include "platform/shared_library.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

void WarnOfUnusedPorts(const std::vector<std::string>& urls) {
  for (const std::string& url : urls) {
    if (const auto port = FindUnusedPort(url)) {
      Talk("warning: port " + *port + " of '" + url +
           "' is not used: a probe asks the scheme's default port");
    }
  }
}

}  // namespace

int RunProbe(const Options& options) {
  ComPtr<IServerCheck> check;
  const HRESULT created =
      CreateObject(OLESTR("Velandoc.ServerCheck"), IID_IServerCheck, check.ReceiveVoid());
  if (FAILED(created)) {
    Talk("cannot create Velandoc.ServerCheck (" + ResultText(created) +
         "): put the component's library at '" + ComponentLibraryPath() +
         "', or type 'velandoc register' where it is");
    return kExitNoComponent;
  }

  WarnOfUnusedPorts(options.urls);
  nlohmann::ordered_json answers = nlohmann::ordered_json::array();
  bool allAre = true;
  for (const std::string& url : options.urls) {
    VARIANT_BOOL isServer = VARIANT_FALSE;
    const HRESULT asked = check->Check(Bstr(WideFromUtf8(url)).Get(), &isServer);
    if (FAILED(asked)) {
      Talk("asking about '" + url + "' failed (" + ResultText(asked) + ")");
      return kExitFailure;
    }
    const bool is = isServer != VARIANT_FALSE;
    allAre = allAre && is;
    if (options.json) {
      answers.push_back({{"url", url}, {"sharepoint", is}});
    } else {
      WriteOutput(url + (is ? ": SharePoint server\n" : ": no SharePoint server\n"));
      // Nobody reads the answers any more: spare the servers the remaining questions.
      if (!FlushOutput()) return kExitOutput;
    }
  }
  if (options.json) WriteOutput(answers.dump(2) + "\n");
  if (!FlushOutput()) return kExitOutput;
  return allAre ? kExitSuccess : kExitNo;
}

}  // namespace velandoc
