// Operations of HDFS through the component's interface, each by an object of its own, with the name
// nodes gone through until one is active.
//
// The objects are made in this process and not by their ProgIDs, for the sake of the watch below
// them: IHdfsClient names neither the data node of a failure nor its status in an upload.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "hosts/command/hdfs_failure.h"
#include "hosts/command/hdfs_options.h"
#include "hosts/command/name_nodes.h"
#include "platform/owners.h"
#include "velandoc_idl.h"

namespace velandoc {

/// What one operation is.
struct HdfsCall {
  const char* operation;  // of WebHDFS: "OPEN"
  std::string path;
  int wanted = 200;        // the status of the answer that ends it well
  bool repeatable = true;  // nothing is done twice if it is sent again to another name node
};

/// For one thread, whose requests it makes; the thread is in a COM apartment.
class HdfsCaller {
 public:
  HdfsCaller(const HdfsOptions& options, NameNodes& nodes) : m_options(options), m_nodes(nodes) {}

  /// Gives `step` an object at HdfsPath `call.path`, with Op `call.operation` where that is a
  /// reading one. Nothing if it succeeded; else what went wrong, as told by the last name node that
  /// was asked. Where several were asked in vain, each but the last is named.
  std::optional<HdfsFailure> Run(const HdfsCall& call,
                                 const std::function<HRESULT(IHdfsClient&)>& step);

  /// GetText with this operation as Op: UTF-8.
  std::optional<HdfsFailure> ReadText(const char* operation, const std::string& path,
                                      std::string& text);

 private:
  std::optional<HdfsFailure> RunAt(const NameNode& node, const HdfsCall& call,
                                   const std::function<HRESULT(IHdfsClient&)>& step);

  const HdfsOptions& m_options;
  NameNodes& m_nodes;
};

/// A fresh object of the class for `stack`.
ComPtr<IHdfsClient> CreateHdfsClient(HdfsStack stack);

}  // namespace velandoc
