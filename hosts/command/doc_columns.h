// The columns of a document as they are shown.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "fields/field_record.h"

namespace velandoc {

/// Required and without a value.
bool IsMissing(const CFieldRecord& field);

// Both are told whether the row arrived: without it no value is known.

/// A line a column, under a heading; what is required and empty is marked.
std::vector<std::vector<std::string>> ColumnRows(const FieldList& fields, bool rowArrived);
/// An array of objects with all that is known of each.
nlohmann::ordered_json ColumnsJson(const FieldList& fields, bool rowArrived);

/// The internal names of what IsMissing, in the columns' order.
std::vector<WideString> MissingColumns(const FieldList& fields);

/// Visible texts with ", " between them.
std::string JoinedText(const std::vector<WideString>& texts);

/// The parts of a value between ";#", where a column takes several; else the value.
std::vector<WideString> ValueParts(const CFieldRecord& field);

}  // namespace velandoc
