// How HDFS refuses: a RemoteException in JSON.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velandoc {

/// All texts are UTF-8, not yet made visible.
struct RemoteException {
  std::string exception;  // "FileNotFoundException"
  std::string javaClassName;
  std::string message;  // the whole of it, which may be many lines
};

/// What `answer` tells; nothing if it is no such JSON.
std::optional<RemoteException> FindRemoteException(std::string_view answer);

}  // namespace velandoc
