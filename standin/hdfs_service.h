// WebHDFS: a name node and a data node at one address. What the name node redirects here counts as
// the data node's.
#pragma once

#include "standin/application.h"
#include "standin/hdfs_store.h"

namespace velandoc::standin {

class HdfsService final : public Application {
 public:
  // Borrows the store.
  explicit HdfsService(HdfsStore& store) : m_store(store) {}

  bool Serves(const Request& request) const override;
  bool IgnoresBody(const Request&) const override { return true; }
  std::unique_ptr<BodySink> OpenBody(const Request& request) override;
  Response Answer(const Request& request) override;

 private:
  HdfsStore& m_store;
};

}  // namespace velandoc::standin
