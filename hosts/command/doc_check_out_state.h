// Who holds a document, since when, and what follows from it.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "hosts/command/doc_times.h"

namespace velandoc {

struct CheckOutState {
  std::optional<int> status;  // GetCheckOutStatus; nothing if no row came, which it cannot tell
  std::string holder;         // visible
  std::string caller;
  DocumentTime checkedOut;
  DocumentTime modified;
  // The component's answers.
  std::optional<bool> modifiedSince;
  std::optional<bool> initialCreation;
  std::optional<bool> offerCheckIn;
  /// By the times that the server wrote, where the component reads none of them.
  std::optional<bool> modifiedSinceByServer;
};

CheckOutState ReadCheckOutState(const DocumentSession& session);

/// "by you (Jane Doe)", "by nobody", ...
std::string HolderText(const CheckOutState& state);
std::vector<std::vector<std::string>> CheckOutRows(const CheckOutState& state);
nlohmann::ordered_json CheckOutJson(const CheckOutState& state);

}  // namespace velandoc
