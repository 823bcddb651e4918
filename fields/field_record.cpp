#include "fields/field_record.h"

#include "platform/ascii_case.h"
#include "platform/dom.h"
#include "platform/out_of_memory.h"

namespace velandoc {
namespace {

WideString RowAttributeName(WideView field) { return WideString(OLESTR("ows_")).append(field); }

// False, and `target` as it was, if there is none of this name.
bool ReadAttribute(IXMLDOMNamedNodeMap* attributes, WideView name, WideString& target) {
  const auto attribute = GetNamedItem(attributes, name);
  if (!attribute) return false;
  target = GetNodeText(attribute.Get());
  return true;
}

void ReadChoices(IXMLDOMNode* node, std::list<WideString>& choices) {
  const auto found = SelectNodes(node, OLESTR("resp:CHOICES/resp:CHOICE"));
  if (!found) return;
  const LONG count = GetLength(found.Get());
  for (LONG index = 0; index < count; ++index) {
    choices.push_back(GetNodeText(GetItem(found.Get(), index).Get()));
  }
}

// The order of the steps matters to a record that is read in part.
void ReadField(IXMLDOMNode* node, CFieldRecord& record) {
  // Fetched and dropped: of a column that cannot be written out again nothing is read.
  GetNodeXml(node);
  const auto attributes = GetNodeAttributes(node);
  ReadAttribute(attributes.Get(), OLESTR("Name"), record.m_name);
  ReadAttribute(attributes.Get(), RowAttributeName(record.m_name), record.m_value);
  ReadAttribute(attributes.Get(), OLESTR("DisplayName"), record.m_displayName);
  ReadAttribute(attributes.Get(), OLESTR("Type"), record.m_type);
  ReadAttribute(attributes.Get(), OLESTR("Format"), record.m_format);
  WideString required;
  if (ReadAttribute(attributes.Get(), OLESTR("Required"), required)) {
    record.m_required = EqualsIgnoringAsciiCase(required, OLESTR("true"));
  }
  ReadAttribute(attributes.Get(), OLESTR("SourceID"), record.m_sourceId);
  if (const auto text = SelectSingleNode(node, OLESTR("resp:Default"))) {
    record.m_default = GetNodeText(text.Get());
  }
  ReadChoices(node, record.m_choices);
}

}  // namespace

CFieldRecord::CFieldRecord(IXMLDOMNode* node) {
  try {
    RaiseOutOfMemory([&] { ReadField(node, *this); });
  } catch (const _com_error&) {
    // The record stays as far as it was read, and counts like any other.
  }
}

void OverlayRow(const RowAttributes& attributes, FieldList& fields) {
  for (CFieldRecord& field : fields) {
    const auto value = attributes.find(RowAttributeName(field.m_name));
    if (value != attributes.end()) field.m_value = value->second;
  }
}

}  // namespace velandoc
