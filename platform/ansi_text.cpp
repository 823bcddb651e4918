#include "platform/ansi_text.h"

#include <algorithm>
#include <limits>

#include "platform/code_page.h"

namespace velandoc {
namespace {

WideString Convert(UINT codePage, const NarrowString& bytes) {
  // The platform counts in int; text beyond that does not convert.
  if (bytes.empty() || bytes.size() > std::numeric_limits<int>::max()) return WideString();
  // A byte gives at most one unit.
  const int size = static_cast<int>(bytes.size());
  WideString wide(bytes.size(), 0);
  const int count = CurrentPort<CodePage>().MultiByteToWideChar(codePage, 0, bytes.data(), size,
                                                                wide.data(), size);
  wide.resize(static_cast<std::size_t>(std::max(count, 0)));
  return wide;
}

}  // namespace

WideString FromAnsi(const NarrowString& bytes) { return Convert(CP_ACP, bytes); }

WideString FromThreadAnsi(const NarrowString& bytes) { return Convert(CP_THREAD_ACP, bytes); }

}  // namespace velandoc
