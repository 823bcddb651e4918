#include "hdfs/ansi_text.h"

#include "platform/code_page.h"

namespace velandoc {
namespace {

WideString Convert(UINT page, const NarrowString& bytes) {
  if (bytes.empty()) return WideString();
  CodePage& codePage = CurrentPort<CodePage>();
  const auto convert = [&](LPWSTR wide, int capacity) {
    return codePage.MultiByteToWideChar(page, 0, bytes.data(), static_cast<int>(bytes.size()), wide,
                                        capacity);
  };
  WideString wide(static_cast<std::size_t>(convert(nullptr, 0)), 0);
  if (!wide.empty()) convert(wide.data(), static_cast<int>(wide.size()));
  return wide;
}

}  // namespace

WideString FromAnsi(const NarrowString& bytes) { return Convert(CP_ACP, bytes); }

WideString FromThreadAnsi(const NarrowString& bytes) { return Convert(CP_THREAD_ACP, bytes); }

}  // namespace velandoc
