#include <nlohmann/json.hpp>

#include "hosts/command/doc_actions.h"
#include "hosts/command/exit_codes.h"
#include "hosts/command/json_text.h"
#include "hosts/command/talk.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

/// {"raw", "text", "value"}: as it arrived, what stands behind the type letters, and what the
/// component's typed read gives, as text.
nlohmann::ordered_json ValueJson(const DocumentSession& session, const WideString& key,
                                 const WideString& raw) {
  nlohmann::ordered_json json = {{"raw", Utf8FromWide(raw)}, {"text", nullptr}, {"value", nullptr}};
  if (raw.find(OLESTR('|')) != WideString::npos) {
    json["text"] = Utf8FromWide(session.Own().MetaInfo().GetTextValue(key.c_str()));
  }
  const auto typed = session.AskMeta(key);
  if (typed.Answered() && typed.value.has_value()) json["value"] = *typed.value;
  return json;
}

}  // namespace

int ShowMeta(const DocumentSession& session, const Options& options) {
  const auto& values = session.Own().MetaInfo().m_values;
  std::vector<WideString> keys;
  for (const std::string& word : options.doc.words) keys.push_back(WideFromUtf8(word));
  if (keys.empty()) {
    for (const auto& [key, raw] : values) keys.push_back(key);
  }

  int exitCode = kExitSuccess;
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  std::vector<std::vector<std::string>> rows;
  for (const WideString& key : keys) {
    const auto found = values.find(key);
    if (found == values.end()) {
      Talk("the document has no key '" + VisibleText(key) + "': keys differ in case");
      exitCode = kExitUnknownName;
      continue;
    }
    if (options.json) {
      json[Utf8FromWide(key)] = ValueJson(session, key, found->second);
    } else {
      rows.push_back({VisibleText(key), VisibleText(found->second)});
    }
  }
  WriteOutput(options.json ? JsonText(json) : AlignRows(rows));
  return exitCode;
}

}  // namespace velandoc
