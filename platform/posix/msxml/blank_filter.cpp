#include "platform/posix/msxml/blank_filter.h"

#include "platform/posix/msxml/xml_owners.h"

namespace velandoc::dom {

bool BlankFilter::Pass(std::string_view text, bool isReference, std::string& held) {
  const bool isPreserving = m_keepsAll || (!m_preserving.empty() && m_preserving.back());
  if (m_isInText || isPreserving || isReference || !IsBlank(text)) {
    m_isInText = true;
    held.swap(m_held);
    m_held.clear();
    return true;
  }
  m_held += text;
  return false;
}

bool BlankFilter::EndText() {
  m_isInText = false;
  if (m_held.empty()) return false;
  m_held.clear();
  return true;
}

void BlankFilter::BeginElement(Space space) {
  const bool inherited = !m_preserving.empty() && m_preserving.back();
  m_preserving.push_back(space == Space::kInherited ? inherited : space == Space::kPreserve);
}

void BlankFilter::EndElement() {
  if (!m_preserving.empty()) m_preserving.pop_back();
}

}  // namespace velandoc::dom
