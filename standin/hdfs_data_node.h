// What a data node of HDFS answers: the bytes of files. README.md tells it.
#pragma once

#include <memory>

#include "standin/body_sink.h"
#include "standin/hdfs_call.h"
#include "standin/hdfs_store.h"
#include "standin/response.h"

namespace velandoc::standin {

// Throw HdfsError and BadHdfsAddress.
Response OpenAsDataNode(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
                        const Request& request);
std::unique_ptr<BodySink> CreateAsDataNode(HdfsStore& store, const HdfsSettings& settings,
                                           const HdfsCall& call, const Request& request);

}  // namespace velandoc::standin
