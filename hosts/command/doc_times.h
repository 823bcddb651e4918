// The times of a document: as the component answers them and, where it cannot read the server's
// form, as the server wrote them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "hosts/command/document_session.h"

namespace velandoc {

/// The component reads only time values that stand without type letters, and servers write most
/// with them: then `moment` is read from the server's text here, and `component` is empty.
struct DocumentTime {
  std::optional<Moment> moment;
  std::optional<Moment> component;  // what the component answered
  std::optional<WideString> raw;    // the meta-info's value; nothing if there is none
};

/// `reply` is what the object answered of the time that the meta-info's `key` holds.
DocumentTime ReadTime(const DocumentSession& session, const Reply<LONGLONG>& reply, LPCWSTR key);
/// Of a key that no member answers for.
DocumentTime ReadTime(const DocumentSession& session, LPCWSTR key);

/// Local time, and UTC in brackets; the visible text of the server where it is no time; "not known"
/// if there is none.
std::string TimeText(const DocumentTime& time);
/// {"utc", "local", "fileTime", "raw"}: fileTime is the component's answer; null for what is not
/// known, and for the whole if the meta-info has no such key.
nlohmann::ordered_json TimeJson(const DocumentTime& time);

}  // namespace velandoc
