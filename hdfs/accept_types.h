// What the requests of both HDFS clients ask for.
#pragma once

#include "platform/com.h"

namespace velandoc {

/// Null-ended.
inline constexpr LPCWSTR kHdfsAcceptTypes[] = {OLESTR("text/*"), OLESTR("application/json"),
                                               nullptr};

}  // namespace velandoc
