// The counted references that a script's values hold.
#pragma once

#include <unordered_set>

#include "platform/com.h"
#include "platform/owners.h"

namespace velandoc {

/// A reference held by one value of the script. `dispatch` is null for an object that a script can
/// only pass on.
struct Reference {
  ComPtr<IUnknown> object;
  ComPtr<IDispatch> dispatch;
};

/// Owns them, so that all can be released at the end of the script even while its values still
/// stand, as they do when the script quits in the middle of a call.
class ReferenceTable {
 public:
  ReferenceTable() = default;
  ReferenceTable(const ReferenceTable&) = delete;
  ReferenceTable& operator=(const ReferenceTable&) = delete;
  ~ReferenceTable() { ReleaseAll(); }

  /// The new reference lives until Release or ReleaseAll.
  Reference* Add(IUnknown* object, IDispatch* dispatch) {
    auto* reference = new Reference{object, dispatch};
    m_references.insert(reference);
    return reference;
  }
  /// Without effect on a reference that is no longer in the table.
  void Release(Reference* reference) {
    if (m_references.erase(reference) != 0) delete reference;
  }
  void ReleaseAll() {
    // Releasing may run code that comes back here, so each is taken out first.
    while (!m_references.empty()) Release(*m_references.begin());
  }

 private:
  std::unordered_set<Reference*> m_references;
};

}  // namespace velandoc
