// What a name node of HDFS answers. README.md tells it.
#pragma once

#include "standin/hdfs_call.h"
#include "standin/hdfs_store.h"
#include "standin/response.h"

namespace velandoc::standin {

// Throws HdfsError and BadHdfsAddress.
Response AnswerAsNameNode(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
                          const Request& request);

}  // namespace velandoc::standin
