#include "hosts/command/field_questions.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "fields/form_generator.h"
#include "hosts/command/doc_columns.h"
#include "hosts/command/doc_options.h"
#include "hosts/command/visible_text.h"
#include "hosts/text_encoding.h"

namespace velandoc {
namespace {

constexpr std::string_view kEmptied = "-";
constexpr WideView kSeparator = OLESTR(";#");

bool IsMultiple(const CFieldRecord& field) { return field.m_type == OLESTR("MultiChoice"); }

bool HasChoices(const CFieldRecord& field) {
  return (field.m_type == OLESTR("Choice") || IsMultiple(field)) && !field.m_choices.empty();
}

/// The label, and the choices with their numbers, those that are chosen marked.
std::string Heading(const CFieldRecord& field) {
  const WideString& label = field.m_displayName.empty() ? field.m_name : field.m_displayName;
  std::string text = VisibleText(label) + (field.m_required ? " (required)" : "") + "\n";
  if (!HasChoices(field)) return text;
  const std::vector<WideString> chosen = ValueParts(field);
  std::vector<std::vector<std::string>> rows;
  for (const WideString& choice : field.m_choices) {
    const bool marked = std::find(chosen.begin(), chosen.end(), choice) != chosen.end();
    rows.push_back({std::to_string(rows.size() + 1), marked ? "*" : "", VisibleText(choice)});
  }
  return text + AlignRows(rows, 2);
}

std::string Prompt(const CFieldRecord& field) {
  std::string text = "  ";
  if (HasChoices(field)) text += IsMultiple(field) ? "numbers " : "number ";
  const std::vector<WideString> parts = ValueParts(field);
  return text + (parts.empty() ? "" : "[" + JoinedText(parts) + "] ") + "> ";
}

/// Either a value, or the reason why the line gives none.
struct Reading {
  WideString value;
  std::string problem;
};

/// The choices whose numbers stand in `line`, blanks or commas between them, in the choices' order.
Reading ReadNumbers(const CFieldRecord& field, std::string_view line) {
  std::vector<bool> chosen(field.m_choices.size());
  std::size_t count = 0;
  for (std::size_t at = line.find_first_not_of(" ,\t"); at != line.npos;
       at = line.find_first_not_of(" ,\t", at)) {
    const std::size_t end = std::min(line.find_first_of(" ,\t", at), line.size());
    std::size_t number = 0;
    const auto [rest, error] = std::from_chars(line.data() + at, line.data() + end, number);
    if (error != std::errc() || rest != line.data() + end || number == 0 ||
        number > chosen.size()) {
      return {{},
              "'" + VisibleText(line.substr(at, end - at)) + "' is no number from 1 to " +
                  std::to_string(chosen.size())};
    }
    chosen[number - 1] = true;
    ++count;
    at = end;
  }
  if (count == 0) return {{}, "no number"};
  if (count > 1 && !IsMultiple(field)) return {{}, "one number, please"};
  Reading reading;
  std::size_t place = 0;
  for (const WideString& choice : field.m_choices) {
    if (!chosen[place++]) continue;
    if (!reading.value.empty()) reading.value += kSeparator;
    reading.value += choice;
  }
  return reading;
}

Reading ReadAnswer(const CFieldRecord& field, const std::string& line, bool escape) {
  Reading reading;
  if (line.empty()) {
    reading.value = field.m_value;
  } else if (line != kEmptied) {
    if (!IsUtf8(line)) return {{}, "that is no UTF-8 text"};
    if (HasChoices(field)) {
      reading = ReadNumbers(field, line);
    } else {
      reading.value = WideFromUtf8(line);
    }
  }
  if (!reading.problem.empty()) return reading;
  if (reading.value.empty() && field.m_required) return {{}, "a value is required"};
  if (const auto problem = FindUncarriedByUpdate(Utf8FromWide(reading.value), escape)) {
    return {{}, "the value cannot be written: " + *problem};
  }
  return reading;
}

}  // namespace

std::optional<std::list<WideString>> AskFields(const FieldList& fields, bool escape,
                                               const ShowText& show, const ReadLine& read) {
  std::list<WideString> values;
  for (const CFieldRecord& field : fields) {
    show(Heading(field));
    for (;;) {
      show(Prompt(field));
      const std::optional<std::string> line = read();
      if (!line) return std::nullopt;
      const Reading reading = ReadAnswer(field, *line, escape);
      if (reading.problem.empty()) {
        values.push_back(reading.value);
        break;
      }
      show("  " + reading.problem + "\n");
    }
  }
  return values;
}

}  // namespace velandoc
