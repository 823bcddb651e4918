// What all connections share.
#pragma once

#include <functional>

#include "standin/application.h"
#include "standin/certificates.h"
#include "standin/hdfs_store.h"
#include "standin/request_log.h"
#include "standin/rule_book.h"
#include "standin/site_store.h"
#include "standin/statistics.h"
#include "standin/stop_signal.h"
#include "standin/tls_channel.h"

namespace velandoc::standin {

struct Services {
  ApplicationList& applications;
  ApplicationList& controlPages;
  Certificates& certificates;
  TlsAcceptor& tls;
  RequestLog& log;
  RuleBook& rules;
  SiteStore& sites;
  HdfsStore& hdfs;
  Statistics& statistics;
  StopSignal& stop;
};

}  // namespace velandoc::standin
