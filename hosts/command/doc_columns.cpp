#include "hosts/command/doc_columns.h"

#include <nlohmann/json.hpp>

#include "fields/form_generator.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

std::string ValueText(const CFieldRecord& field, bool rowArrived) {
  if (!rowArrived) return "not known";
  return IsMissing(field) ? "missing" : JoinedText(ValueParts(field));
}

}  // namespace

std::string JoinedText(const std::vector<WideString>& texts) {
  std::string joined;
  for (const WideString& text : texts) {
    if (!joined.empty()) joined += ", ";
    joined += VisibleText(text);
  }
  return joined;
}

std::vector<WideString> MissingColumns(const FieldList& fields) {
  std::vector<WideString> names;
  for (const CFieldRecord& field : fields) {
    if (IsMissing(field)) names.push_back(field.m_name);
  }
  return names;
}

bool IsMissing(const CFieldRecord& field) { return field.m_required && field.m_value.empty(); }

std::vector<WideString> ValueParts(const CFieldRecord& field) {
  std::vector<WideString> parts;
  if (field.m_type != OLESTR("MultiChoice")) {
    if (!field.m_value.empty()) parts.push_back(field.m_value);
    return parts;
  }
  const std::list<WideString> values = SplitMultiValue(field.m_value);
  return {values.begin(), values.end()};
}

std::vector<std::vector<std::string>> ColumnRows(const FieldList& fields, bool rowArrived) {
  std::vector<std::vector<std::string>> rows;
  if (fields.empty()) return {{"none"}};
  rows.push_back({"NAME", "SHOWN AS", "TYPE", "REQUIRED", "VALUE"});
  for (const CFieldRecord& field : fields) {
    std::vector<WideString> choices(field.m_choices.begin(), field.m_choices.end());
    std::string type = VisibleText(field.m_type);
    if (!choices.empty()) type += " (" + JoinedText(choices) + ")";
    rows.push_back({VisibleText(field.m_name), VisibleText(field.m_displayName), type,
                    field.m_required ? "yes" : "no", ValueText(field, rowArrived)});
  }
  return rows;
}

nlohmann::ordered_json ColumnsJson(const FieldList& fields, bool rowArrived) {
  nlohmann::ordered_json columns = nlohmann::ordered_json::array();
  for (const CFieldRecord& field : fields) {
    nlohmann::ordered_json choices = nlohmann::ordered_json::array();
    for (const WideString& choice : field.m_choices) choices.push_back(Utf8FromWide(choice));
    nlohmann::ordered_json values = nlohmann::ordered_json::array();
    for (const WideString& part : ValueParts(field)) values.push_back(Utf8FromWide(part));
    columns.push_back({{"name", Utf8FromWide(field.m_name)},
                       {"displayName", Utf8FromWide(field.m_displayName)},
                       {"type", Utf8FromWide(field.m_type)},
                       {"format", Utf8FromWide(field.m_format)},
                       {"required", field.m_required},
                       {"choices", choices},
                       {"default", Utf8FromWide(field.m_default)},
                       {"sourceId", Utf8FromWide(field.m_sourceId)},
                       {"value", Utf8FromWide(field.m_value)},
                       {"values", values},
                       {"missing", rowArrived && IsMissing(field)}});
  }
  return columns;
}

}  // namespace velandoc
