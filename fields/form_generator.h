// The page on which the user fills in the fields: one control for each record, and a script that
// reads them and complains of a missing value.
//
// Nothing is escaped. A name, a label, a value or a choice goes into the page as it stands, so one
// with a "'", "<" or "&" changes the markup around it; hosts and servers have met the pages as they
// are. Texts have no limit of their own. Nothing but std::bad_alloc is raised.
#pragma once

#include <list>

#include "fields/field_record.h"
#include "platform/text.h"

namespace velandoc {

/// The whole page. Text boxes and choice lists come first, each in the order of `fields`, then the
/// groups of check boxes.
WideString BuildFieldsForm(const FieldList& fields);

/// A list of the choices, the one marked that is the value. With an empty value it begins with
/// "Select...", which stands for it; a value that is no choice marks nothing, and what the browser
/// shows first is read back.
WideString BuildChoiceField(const CFieldRecord& record);

/// A check box for each choice, ticked if it is among the values. A value that is no choice has no
/// box and is lost with the next update.
WideString BuildMultiChoiceField(const CFieldRecord& record);

/// Everything else: a text box.
WideString BuildTextField(const CFieldRecord& record);

/// The page's script: the library's own resource JAVASCRIPT 1, whatever satellite is current. Empty
/// if there is none.
NarrowString LoadFormScript();

/// The parts between ";#", empty ones left out: ";#A;#B;#" is A and B, as is "A;#B".
std::list<WideString> SplitMultiValue(WideView text);

}  // namespace velandoc
