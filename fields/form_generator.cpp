#include "fields/form_generator.h"

#include <algorithm>

#include "platform/ansi_text.h"
#include "platform/resources.h"

namespace velandoc {
namespace {

// What most pages and fields fit into without growing.
constexpr std::size_t kUsualPage = 8192;
constexpr std::size_t kUsualField = 2048;

constexpr WORD kScriptId = 1;
constexpr WideView kSeparator = OLESTR(";#");

/// The label points at an id, where the controls have only names: a click on it does nothing.
void AppendLabel(const CFieldRecord& record, WideString& page) {
  page.append(OLESTR("<label for='")).append(record.m_name).append(OLESTR("'>"));
  page.append(record.m_displayName);
  if (record.m_required) page.append(OLESTR("<span style='float: none;color: red'>*</span>"));
  page.append(OLESTR(":</label><br/>"));
}

}  // namespace

WideString BuildFieldsForm(const FieldList& fields) {
  WideString page;
  page.reserve(kUsualPage);
  page.append(OLESTR("<html><head>"));
  page.append(
      OLESTR("<style>body{font: 8pt sans-serif;} span{float: left;margin-right: 0.5em;}</style>"));
  page.append(OLESTR("</head><body>"));
  page.append(
      OLESTR("<div style='text-align: right;'>"
             "<div style='color: red;display:inline;'>*&nbsp;</div> Required</div>"));
  page.append(OLESTR("<form name='shptform1' id='shptform1' method='post' action=''>"));
  for (const CFieldRecord& record : fields) {
    if (record.m_type == OLESTR("Choice")) {
      page.append(BuildChoiceField(record));
    } else if (record.m_type != OLESTR("MultiChoice")) {
      page.append(BuildTextField(record));
    }
  }
  page.append(OLESTR("<br/><br/><br/>"));
  for (const CFieldRecord& record : fields) {
    if (record.m_type == OLESTR("MultiChoice")) page.append(BuildMultiChoiceField(record));
  }
  page.append(OLESTR("</form>"));
  page.append(OLESTR("<script>")).append(FromAnsi(LoadFormScript())).append(OLESTR("</script>"));
  page.append(OLESTR("</body></html>"));
  return page;
}

WideString BuildTextField(const CFieldRecord& record) {
  WideString field;
  field.reserve(kUsualField);
  field.append(OLESTR("<span>"));
  AppendLabel(record, field);
  // The value whole, a lookup's number and separator included: what is read back is what goes to
  // the server, which needs them.
  field.append(OLESTR("<input type='text' name='")).append(record.m_name);
  field.append(OLESTR("' value='")).append(record.m_value).append(OLESTR("'>"));
  return field.append(OLESTR("</span>"));
}

WideString BuildChoiceField(const CFieldRecord& record) {
  WideString field;
  field.reserve(kUsualField);
  field.append(OLESTR("<span>"));
  AppendLabel(record, field);
  field.append(OLESTR("<select name='")).append(record.m_name).append(OLESTR("'>"));
  if (record.m_value.empty()) {
    field.append(OLESTR("<option value='' selected>Select...</option>&nbsp;"));
  }
  for (const WideString& choice : record.m_choices) {
    field.append(OLESTR("<option value='")).append(choice);
    field.append(choice == record.m_value ? OLESTR("' selected>") : OLESTR("'>"));
    field.append(choice).append(OLESTR("</option>&nbsp;"));
  }
  return field.append(OLESTR("</select>")).append(OLESTR("</span>"));
}

WideString BuildMultiChoiceField(const CFieldRecord& record) {
  const std::list<WideString> values = SplitMultiValue(record.m_value);
  WideString field;
  field.reserve(kUsualField);
  field.append(OLESTR("<span style='width: 30%;'>"));
  AppendLabel(record, field);
  field.append(OLESTR("<fieldset style='overflow:auto;height: 6em;'>"));
  for (const WideString& choice : record.m_choices) {
    const bool ticked = std::find(values.begin(), values.end(), choice) != values.end();
    field.append(OLESTR("<input type='checkbox' name='")).append(record.m_name);
    field.append(OLESTR("' value='")).append(choice);
    field.append(ticked ? OLESTR("' checked='1' />") : OLESTR("' />"));
    field.append(choice).append(OLESTR("<br/>"));
  }
  return field.append(OLESTR("</fieldset></span>"));
}

NarrowString LoadFormScript() {
  return NarrowString(FindModuleResource(OLESTR("JAVASCRIPT"), kScriptId).value_or(""));
}

std::list<WideString> SplitMultiValue(WideView text) {
  std::list<WideString> values;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(kSeparator), text.size());
    if (end > 0) values.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + kSeparator.size(), text.size()));
  }
  return values;
}

}  // namespace velandoc
