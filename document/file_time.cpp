#include "document/file_time.h"

namespace velandoc {

LONGLONG FileTimeOfDate(DATE date) {
  // Neither result is looked at: of what fails, the zeros remain.
  SYSTEMTIME time{};
  FILETIME steps{};
  VariantTimeToSystemTime(date, &time);
  SystemTimeToFileTime(&time, &steps);
  return static_cast<LONGLONG>(ULONGLONG{steps.dwHighDateTime} << 32 | steps.dwLowDateTime);
}

}  // namespace velandoc
