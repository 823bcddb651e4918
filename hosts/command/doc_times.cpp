#include "hosts/command/doc_times.h"

#include <nlohmann/json.hpp>

#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {

DocumentTime ReadTime(const DocumentSession& session, const Reply<LONGLONG>& reply, LPCWSTR key) {
  DocumentTime time;
  if (reply.Answered()) time.component = reply.value;
  const auto& values = session.Own().MetaInfo().m_values;
  if (const auto found = values.find(WideView(key)); found != values.end()) {
    time.raw = found->second;
    time.moment = ReadServerTime(found->second);
  }
  if (time.component.has_value()) time.moment = time.component;
  return time;
}

DocumentTime ReadTime(const DocumentSession& session, LPCWSTR key) {
  return ReadTime(session, Reply<LONGLONG>{}, key);
}

std::string TimeText(const DocumentTime& time) {
  if (time.moment.has_value()) return LocalText(*time.moment) + " (" + UtcText(*time.moment) + ")";
  if (time.raw.has_value()) return VisibleText(*time.raw) + " (no time that can be read)";
  return "not known";
}

nlohmann::ordered_json TimeJson(const DocumentTime& time) {
  if (!time.moment.has_value() && !time.raw.has_value()) return nullptr;
  nlohmann::ordered_json json = {
      {"utc", nullptr}, {"local", nullptr}, {"fileTime", nullptr}, {"raw", nullptr}};
  if (time.moment.has_value()) {
    json["utc"] = IsoText(*time.moment);
    json["local"] = IsoLocalText(*time.moment);
  }
  if (time.component.has_value()) json["fileTime"] = *time.component;
  if (time.raw.has_value()) json["raw"] = Utf8FromWide(*time.raw);
  return json;
}

}  // namespace velandoc
