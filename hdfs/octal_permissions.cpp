#include "hdfs/octal_permissions.h"

#include <algorithm>

namespace velandoc {

bool IsValidOctalPermissions(WideView text) {
  return text.size() == 3 && std::all_of(text.begin(), text.end(), [](OLECHAR digit) {
           return digit >= '0' && digit <= '7';
         });
}

}  // namespace velandoc
