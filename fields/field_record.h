// CFieldRecord, one column of the current document's list.
#pragma once

#include <list>

#include "fields/row_attributes.h"
#include "platform/msxml.h"
#include "platform/text.h"

namespace velandoc {

/// A plain value. Texts stand as the server sent them.
struct CFieldRecord {
  CFieldRecord() = default;
  /// Reads a Field element of a content type. Raises nothing: the first failing DOM call ends the
  /// reading, and the record stays as far as it was read. `node` is borrowed.
  explicit CFieldRecord(IXMLDOMNode* node);

  WideString m_name;  // the internal name, the key of the field everywhere
  WideString m_displayName;
  WideString m_value;   // of several values, ";#" stands between them
  WideString m_type;    // "Text", "Choice" and so on
  WideString m_format;  // kept for who looks at a record; nothing reads it
  std::list<WideString> m_choices;
  bool m_required = false;
  WideString m_default;   // never offered as a value
  WideString m_sourceId;  // kept likewise
};

using FieldList = std::list<CFieldRecord>;

/// Lays the row over the records: a record whose "ows_" + m_name is an attribute takes its value,
/// every other keeps its own.
void OverlayRow(const RowAttributes& attributes, FieldList& fields);

}  // namespace velandoc
