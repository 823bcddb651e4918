// What went wrong in the requests that the component made, in words.
#pragma once

#include <string>
#include <vector>

#include "hosts/command/exchange_watch.h"

namespace velandoc {

/// A request that did not bring what it was made for.
struct StepFailure {
  std::string step;  // "getDocsMetaInfo of the document", "GetListItems"
  std::string host;  // with its port if that is not the scheme's own; empty if nothing was sent
  std::string what;  // "the server answered 500: List does not exist."
};

/// Step and host and what, as one line.
std::string FailureText(const StepFailure& failure);

/// Tells of a request whose answer was of no use to the caller, whatever its status. `missing` is
/// what the answer lacks if nothing else is wrong with it.
StepFailure ExplainFailure(std::string step, const ExchangeRecord& record, std::string missing);

/// The platform's words for an error number of a request.
std::string NetworkErrorText(DWORD error);

/// What an open has brought, as its object answers.
struct OpenedParts {
  bool user = false;      // the display name: the open itself succeeded
  bool login = false;     // and the login, which is not kept without the name
  bool web = false;       // the web's path
  bool document = false;  // the document's GUID
  bool list = false;      // the list's GUID
  bool columns = false;   // at least one column
  bool row = false;       // at least one attribute of the row
};

/// The steps of an open that failed, in their order. `records` are its requests. Where a step did
/// not run because of an earlier one, only that one is told.
std::vector<StepFailure> ReviewOpen(const OpenedParts& parts,
                                    const std::vector<ExchangeRecord>& records);

}  // namespace velandoc
