#include "hosts/command/hdfs_exchange.h"

namespace velandoc {

HdfsExchangeLog& ThreadExchangeLog() {
  thread_local HdfsExchangeLog log;
  return log;
}

}  // namespace velandoc
