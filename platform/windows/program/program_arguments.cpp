#include "platform/program_arguments.h"

#include <memory>

#include "platform/com.h"
// Behind platform/com.h, which brings windows.h.
#include <shellapi.h>

#include "platform/windows/program/wide_text.h"

namespace velandoc {

std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
  struct LocalFreer {
    void operator()(LPWSTR* memory) const { LocalFree(memory); }
  };
  int count = 0;
  const std::unique_ptr<LPWSTR[], LocalFreer> wide(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; wide != nullptr && i < count; ++i)
    arguments.push_back(NarrowedText(wide[static_cast<std::size_t>(i)]));
  return arguments;
}

}  // namespace velandoc
