#include "platform/posix/debug_channel.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "platform/code_page.h"
#include "platform/posix/com/file_descriptor.h"
#include "platform/posix/last_error.h"
#include "platform/text.h"

namespace velandoc {
namespace {

NarrowString LineOf(LPCWSTR text) {
  WideString wide(text);
  std::replace_if(
      wide.begin(), wide.end(), [](WCHAR unit) { return unit < ' ' || unit == 0x7F; }, u' ');
  CodePage& codePage = SystemPort<CodePage>();
  const auto convert = [&](LPSTR bytes, int capacity) {
    return codePage.WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()),
                                        bytes, capacity, nullptr, nullptr);
  };
  NarrowString line(static_cast<std::size_t>(convert(nullptr, 0)), 0);
  convert(line.data(), static_cast<int>(line.size()));
  return line + '\n';
}

/// A text cut short by a signal or a full pipe is not taken up again: another's line may be behind
/// it.
void WriteLine(int descriptor, const NarrowString& line) {
  while (write(descriptor, line.data(), line.size()) < 0 && errno == EINTR) {
  }
}

}  // namespace

void WriteToDebugChannel(LPCWSTR text) {
  const char* channel = secure_getenv("VELANDOC_DEBUG");
  if (channel == nullptr || *channel == 0 || text == nullptr) return;
  const int systemError = errno;
  const DWORD lastError = ThreadLastError();
  const NarrowString line = LineOf(text);
  if (std::string_view(channel) == "stderr") {
    WriteLine(STDERR_FILENO, line);
  } else {
    constexpr mode_t kOwnerOnly = 0600;
    const FileDescriptor file(open(channel, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kOwnerOnly));
    if (file) WriteLine(file.Get(), line);
  }
  ThreadLastError() = lastError;
  errno = systemError;
}

}  // namespace velandoc
