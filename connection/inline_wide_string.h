// A wide string with room of its own for a usual URL; only a longer text goes to the heap.
#pragma once

#include <memory>

#include "platform/text.h"

namespace velandoc {

class InlineWideString {
 public:
  static constexpr std::size_t kInlineCapacity = 2085;  // characters, without the terminator

  InlineWideString() { m_inline[0] = 0; }
  InlineWideString(const InlineWideString&) = delete;
  InlineWideString& operator=(const InlineWideString&) = delete;

  /// `text` may not be a part of this string.
  void Assign(WideView text) {
    m_length = 0;
    Append(text);
  }
  void Append(WideView text);

  WideView View() const { return {Text(), m_length}; }
  LPCWSTR Text() const { return m_heap ? m_heap.get() : m_inline; }
  bool IsInline() const { return m_heap == nullptr; }

 private:
  OLECHAR* Buffer() { return m_heap ? m_heap.get() : m_inline; }

  std::size_t m_length = 0;
  std::size_t m_capacity = kInlineCapacity;
  std::unique_ptr<OLECHAR[]> m_heap;  // null while the inline room serves; kept once it was needed
  OLECHAR m_inline[kInlineCapacity + 1];
};

}  // namespace velandoc
