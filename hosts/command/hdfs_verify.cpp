// velandoc hdfs verify: which of the name nodes is there and active.
#include <nlohmann/json.hpp>

#include "hosts/command/hdfs_actions.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// The component's own question, except for a port that it would take for none: there the question
/// is asked as a text.
HRESULT Verify(IHdfsClient& client, const NameNode& node, const std::string& user,
               VARIANT_BOOL& isServer) {
  if (node.port == 80 || node.port == 443) {
    Bstr text;
    const HRESULT result = client.GetText(text.Receive());
    isServer = text.View().starts_with(OLESTR("{\"Path\"")) ? VARIANT_TRUE : VARIANT_FALSE;
    return result;
  }
  // Of the two clients one takes URL, user and operation from here, the other from its properties.
  Variant name;
  if (!user.empty()) name = Variant(WideFromUtf8(user));
  return client.VerifyServer(Bstr(WideFromUtf8(node.url)).Get(), name.Get(), &isServer);
}

}  // namespace

int VerifyNodes(const HdfsRun& run) {
  const HdfsOptions& options = run.Hdfs();
  nlohmann::ordered_json answers = nlohmann::ordered_json::array();
  bool anyIs = false;
  for (const NameNode& node : options.nodes) {
    NameNodes alone({node});
    HdfsCaller caller(options, alone);
    VARIANT_BOOL isServer = VARIANT_FALSE;
    const auto failure = caller.Run({"GETHOMEDIRECTORY", "/"}, [&](IHdfsClient& client) {
      return Verify(client, node, options.user, isServer);
    });
    const bool is = !failure && isServer != VARIANT_FALSE;
    const std::string why = failure ? failure->what : is ? "" : "the answer names no home folder";
    anyIs = anyIs || is;
    if (run.options.json) {
      answers.push_back({{"url", node.url},
                         {"webhdfs", is},
                         {"error", failure ? FailureJson(*failure) : nullptr}});
    } else {
      WriteOutput(node.url + (is ? ": WebHDFS server\n" : ": no WebHDFS server: " + why + "\n"));
      if (!FlushOutput()) return kExitOutput;
    }
  }
  if (run.options.json) run.WriteJson(answers);
  return anyIs ? kExitSuccess : kExitNo;
}

}  // namespace velandoc
