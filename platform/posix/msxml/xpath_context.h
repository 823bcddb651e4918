// XPath contexts, which are costly to make: each holds a table of all functions. A few that are not
// in use are kept for the next document, whichever thread it is on.
#pragma once

#include <libxml/xpath.h>

#include <memory>

namespace velandoc::dom {

struct XPathContextReturn {
  void operator()(xmlXPathContext* context) const;
};
/// A context in use.
using XPathContextLease = std::unique_ptr<xmlXPathContext, XPathContextReturn>;

/// A context for queries in `document`, as good as new: no namespaces are bound in it, and it
/// reports no errors but by results. To be given back before the document is freed. Raises
/// std::bad_alloc.
XPathContextLease LeaseXPathContext(xmlDoc* document);

}  // namespace velandoc::dom
