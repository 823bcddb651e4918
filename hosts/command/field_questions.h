// A document's fields as questions, for who has no dialog.
#pragma once

#include <functional>
#include <list>
#include <optional>
#include <string>

#include "fields/field_record.h"

namespace velandoc {

/// Shows a text, as UTF-8, without adding a line end.
using ShowText = std::function<void(const std::string&)>;
/// The next line that the user types, without its end; nothing if no more will come.
using ReadLine = std::function<std::optional<std::string>()>;

/// Asks for each field in its order, showing the current value, which an empty line keeps. A choice
/// is made by its number, several by several; a "-" alone empties a field. What a required field
/// must have is asked for until it is there, and so is what an update cannot carry (`escape` as in
/// FindUncarriedByUpdate). The values in the form in which the dialog's page would give them, not
/// yet escaped; nothing if the input ended before the last answer.
std::optional<std::list<WideString>> AskFields(const FieldList& fields, bool escape,
                                               const ShowText& show, const ReadLine& read);

}  // namespace velandoc
