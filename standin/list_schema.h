// A library's content types as the lists service describes them.
#pragma once

#include <string>

#include "standin/site.h"

namespace velandoc::standin {

// The element ContentType: the columns that every document has, then those of the type. As with
// real servers, further elements named Field stand below, in a column's display pattern and, in
// other namespaces, in the type's own documents.
std::string ContentTypeXml(const Library& library, const ContentType& type);

// The element List of a list collection.
std::string ListXml(const Web& web, const Library& library);

}  // namespace velandoc::standin
