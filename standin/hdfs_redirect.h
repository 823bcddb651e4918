// The way from a name node to a data node.
#pragma once

#include <string>

#include "standin/hdfs_call.h"
#include "standin/hdfs_settings.h"
#include "standin/response.h"

namespace velandoc::standin {

// 307 with the address of the data node, or, for clients that want no redirect, 200 with it in
// JSON. Parameters pass as they were sent.
Response RedirectToDataNode(const Request& request, const HdfsCall& call,
                            const HdfsSettings& settings);

// "hdfs://HOST:8020/path", as the answer to an upload tells.
std::string HdfsUrl(const Request& request);

}  // namespace velandoc::standin
