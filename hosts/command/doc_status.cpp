#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/doc_check_out_state.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {

int ShowStatus(const DocumentSession& session, const Options& options) {
  const CheckOutState state = ReadCheckOutState(session);
  if (options.json) {
    nlohmann::ordered_json json = {{"url", Utf8FromWide(session.Url())}};
    json.update(CheckOutJson(state));
    WriteOutput(JsonText(json));
  } else {
    WriteOutput(AlignRows(CheckOutRows(state)));
  }
  if (!state.status.has_value()) return kExitIncomplete;
  switch (*state.status) {
    case 0:
      return kExitSuccess;
    case 1:
      return kExitHeldByCaller;
    default:
      return kExitHeldByAnother;
  }
}

}  // namespace velandoc
