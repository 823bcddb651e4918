#include "tests/support/field_text.h"

#include "tests/support/scripted_wininet.h"

namespace velandoc::testing {
namespace {

std::string Quoted(const WideString& text) { return "'" + Printable(text.c_str()) + "'"; }

void AddPart(std::string& line, const std::string& part) {
  if (!line.empty()) line += ' ';
  line += part;
}

void AddText(std::string& line, const std::string& name, const WideString& text) {
  if (!text.empty()) AddPart(line, name + "=" + Quoted(text));
}

}  // namespace

std::string FieldText(const CFieldRecord& field) {
  std::string line;
  AddText(line, "name", field.m_name);
  AddText(line, "displayName", field.m_displayName);
  AddText(line, "value", field.m_value);
  AddText(line, "type", field.m_type);
  AddText(line, "format", field.m_format);
  std::string choices;
  for (const WideString& choice : field.m_choices) AddPart(choices, Quoted(choice));
  if (!field.m_choices.empty()) AddPart(line, "choices=[" + choices + "]");
  if (field.m_required) AddPart(line, "required");
  AddText(line, "default", field.m_default);
  AddText(line, "sourceId", field.m_sourceId);
  return line;
}

std::string FieldTexts(const FieldList& fields) {
  std::string line;
  for (const CFieldRecord& field : fields) AddPart(line, "(" + FieldText(field) + ")");
  return line;
}

std::string RowText(const RowAttributes& row) {
  std::string line;
  for (const auto& [key, value] : row) AddPart(line, Printable(key.c_str()) + "=" + Quoted(value));
  return line;
}

}  // namespace velandoc::testing
