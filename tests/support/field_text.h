// Field records and rows as one line of text.
#pragma once

#include <string>

#include "fields/field_record.h"
#include "fields/row_attributes.h"

namespace velandoc::testing {

/// The members in their order, as `name='...'`; empty ones and a false m_required are left out, and
/// the choices stand as `choices=['A' 'B']`.
std::string FieldText(const CFieldRecord& field);
/// The records in order, each in parentheses.
std::string FieldTexts(const FieldList& fields);

/// `key='value'`, in the map's order.
std::string RowText(const RowAttributes& row);

}  // namespace velandoc::testing
