#include "connection/inline_wide_string.h"

#include <algorithm>

namespace velandoc {

void InlineWideString::Append(WideView text) {
  const std::size_t length = m_length + text.size();
  if (length > m_capacity) {
    const std::size_t capacity = std::max(length, 2 * m_capacity);
    auto larger = std::make_unique_for_overwrite<OLECHAR[]>(capacity + 1);
    View().copy(larger.get(), m_length);
    m_heap = std::move(larger);
    m_capacity = capacity;
  }
  text.copy(Buffer() + m_length, text.size());
  Buffer()[length] = 0;
  m_length = length;
}

}  // namespace velandoc
