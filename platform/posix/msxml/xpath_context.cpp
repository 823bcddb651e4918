#include "platform/posix/msxml/xpath_context.h"

#include <libxml/xpathInternals.h>

#include <mutex>
#include <new>
#include <vector>

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {
namespace {

constexpr std::size_t kMaxIdle = 8;

struct IdleContexts {
  IdleContexts() { contexts.reserve(kMaxIdle); }
  std::mutex mutex;
  std::vector<xmlXPathContext*> contexts;
};

// Never destroyed: documents may be released while the program ends.
IdleContexts& Idle() {
  static IdleContexts& idle = *new IdleContexts;
  return idle;
}

/// Takes out all that a document's queries have put in. False if the context is not fit for another
/// document: a query that failed may have left its depth behind.
bool Clear(xmlXPathContext* context) {
  if (context->lastError.code != XML_ERR_OK) return false;
  xmlXPathRegisteredNsCleanup(context);
  // What the namespace axis gathered of the document, if it was left in its midst.
  xmlFree(context->tmpNsList);
  context->tmpNsList = nullptr;
  context->tmpNsNr = 0;
  context->doc = nullptr;
  context->node = nullptr;
  context->here = nullptr;
  context->origin = nullptr;
  context->contextSize = -1;
  context->proximityPosition = -1;
  return true;
}

}  // namespace

XPathContextLease LeaseXPathContext(xmlDoc* document) {
  IdleContexts& idle = Idle();
  {
    const std::lock_guard lock(idle.mutex);
    if (!idle.contexts.empty()) {
      XPathContextLease context(idle.contexts.back());
      idle.contexts.pop_back();
      context->doc = document;
      return context;
    }
  }
  XPathContextLease context(xmlXPathNewContext(document));
  if (!context) throw std::bad_alloc();
  context->error = [](void*, xmlError*) {};
  return context;
}

void XPathContextReturn::operator()(xmlXPathContext* context) const {
  if (Clear(context)) {
    IdleContexts& idle = Idle();
    const std::lock_guard lock(idle.mutex);
    if (idle.contexts.size() < kMaxIdle) {
      idle.contexts.push_back(context);
      return;
    }
  }
  xmlXPathFreeContext(context);
}

}  // namespace velandoc::dom
