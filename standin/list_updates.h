// UpdateListItems: reading the batch and writing the row.
#pragma once

#include <string>

#include "standin/soap_service.h"

namespace velandoc::standin {

// What stands inside UpdateListItemsResult: for the one method of the batch, a code and the row as
// it is then, or a code and a text. Throws SoapRefusal for a batch that is not to be understood.
std::string UpdateListItems(const SoapContext& context, Library& library);

}  // namespace velandoc::standin
