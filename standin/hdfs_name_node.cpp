#include "standin/hdfs_name_node.h"

#include <cstdio>
#include <string_view>

#include "standin/hdfs_data_node.h"
#include "standin/hdfs_error.h"
#include "standin/hdfs_generated.h"
#include "standin/hdfs_json.h"
#include "standin/hdfs_operation.h"
#include "standin/hdfs_params.h"
#include "standin/hdfs_redirect.h"

namespace velandoc::standin {
namespace {

using nlohmann::json;

std::string Octal(unsigned permission) {
  char text[8];
  std::snprintf(text, sizeof(text), "%o", permission);
  return text;
}

json StatusJson(const HdfsStatus& status) {
  constexpr std::uint64_t kBlock = std::uint64_t{128} << 20;
  return {{"accessTime", status.accessed},
          {"blockSize", status.isFolder ? 0 : kBlock},
          {"childrenNum", status.children},
          {"fileId", status.id},
          {"group", kHdfsGroup},
          {"length", status.length},
          {"modificationTime", status.modified},
          {"owner", status.rights.owner},
          {"pathSuffix", status.name},
          {"permission", Octal(status.rights.permission)},
          {"replication", status.isFolder ? 0 : 1},
          {"storagePolicy", 0},
          {"type", status.isFolder ? "DIRECTORY" : "FILE"}};
}

HdfsStatus StatusOfGenerated(const GeneratedFile& file) {
  HdfsStatus status;
  status.length = file.length;
  status.rights = {std::string(kHdfsSuperuser), 0444};
  return status;
}

// One call and all that its answer needs.
class NameNode {
 public:
  NameNode(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
           const Request& request)
      : m_folder(store.Folder()),
        m_store(store),
        m_settings(settings),
        m_call(call),
        m_request(request),
        m_caller(HdfsCaller(call, request)),
        m_pathText(DecodeHdfsPath(request)),
        m_path(m_pathText) {}

  Response Answer() {
    const HdfsOperation& operation = FindHdfsOperation(m_call.op, m_request.method);
    RefuseOnStandby(operation);
    switch (operation.kind) {
      case HdfsOperationKind::kOpen:
        return Open();
      case HdfsOperationKind::kCreate:
        return Create();
      case HdfsOperationKind::kDelete:
        return Delete();
      case HdfsOperationKind::kRename:
        return Rename();
      case HdfsOperationKind::kMakeFolders:
        return MakeFolders();
      case HdfsOperationKind::kStatus:
        return Status();
      case HdfsOperationKind::kList:
        return List();
      case HdfsOperationKind::kHome:
        return HdfsJson(200, {{"Path", "/user/" + m_caller}});
    }
    return {};
  }

 private:
  void RefuseOnStandby(const HdfsOperation& operation) const {
    if (!m_settings.isStandby && !m_settings.standbyHosts.contains(m_request.host)) return;
    throw HdfsError(HdfsFault::kStandby, "Operation category " +
                                             std::string(operation.isWrite ? "WRITE" : "READ") +
                                             " is not supported in state standby. Visit "
                                             "https://s.apache.org/sbnn-error");
  }

  void RefuseChange(const std::string& what, const HdfsPath& path) const {
    if (m_settings.isSafe) throw HdfsSafeModeError(what + ' ' + path.Text(), m_request.host);
    if (IsBelowGenerated(path)) throw HdfsGeneratedError(m_caller, path);
  }

  Response Open() {
    const auto generated = FindGenerated(m_path);
    // A folder has a redirect too; the data node refuses it.
    const HdfsStatus status = generated ? StatusOfGenerated(*generated) : StatusForOpen();
    const std::uint64_t offset = HdfsNumber(m_call, "offset").value_or(0);
    HdfsNumber(m_call, "length");
    if (offset > 0 && offset >= status.length)
      throw HdfsError(HdfsFault::kIo, "Offset=" + std::to_string(offset) +
                                          " out of the range [0, " + std::to_string(status.length) +
                                          "); OPEN, path=" + m_path.Text());
    if (m_settings.isHttpFs) return OpenAsDataNode(m_store, m_settings, m_call, m_request);
    return RedirectToDataNode(m_request, m_call, m_settings);
  }

  HdfsStatus StatusForOpen() const {
    try {
      return m_folder.Status(m_path, m_caller);
    } catch (const HdfsError& error) {
      if (error.Fault() != HdfsFault::kFileNotFound) throw;
      throw HdfsError(HdfsFault::kFileNotFound, "File " + m_path.Text() + " not found.");
    }
  }

  // What hinders the upload is the data node's affair; only the parameters are looked at here.
  Response Create() {
    HdfsBool(m_call, "overwrite", false);
    HdfsBool(m_call, "createparent", true);
    HdfsPermission(m_call, 0);
    return RedirectToDataNode(m_request, m_call, m_settings);
  }

  Response Delete() {
    const bool isRecursive = HdfsBool(m_call, "recursive", false);
    RefuseChange("Cannot delete", m_path);
    return HdfsJson(200, {{"boolean", m_folder.Remove(m_path, isRecursive, m_caller)}});
  }

  Response Rename() {
    const HdfsPath target = HdfsPath::ToBeMade(HdfsDestination(m_call));
    RefuseChange("Cannot rename", m_path);
    RefuseChange("Cannot rename to", target);
    return HdfsJson(200, {{"boolean", m_folder.Rename(m_path, target, m_caller)}});
  }

  Response MakeFolders() {
    const unsigned permission = HdfsPermission(m_call, 0755);
    const HdfsPath path = HdfsPath::ToBeMade(m_pathText);
    RefuseChange("Cannot create directory", path);
    return HdfsJson(200, {{"boolean", m_folder.MakeFolders(path, permission, m_caller)}});
  }

  Response Status() {
    const auto generated = FindGenerated(m_path);
    return HdfsJson(200,
                    {{"FileStatus", StatusJson(generated ? StatusOfGenerated(*generated)
                                                         : m_folder.Status(m_path, m_caller))}});
  }

  Response List() {
    json list = json::array();
    if (const auto generated = FindGenerated(m_path)) {
      list.push_back(StatusJson(StatusOfGenerated(*generated)));
    } else {
      for (const HdfsStatus& status : m_folder.List(m_path, m_caller))
        list.push_back(StatusJson(status));
    }
    return HdfsJson(200, {{"FileStatuses", {{"FileStatus", list}}}});
  }

  HdfsFolder& m_folder;
  HdfsStore& m_store;
  const HdfsSettings& m_settings;
  const HdfsCall& m_call;
  const Request& m_request;
  std::string m_caller;
  std::string m_pathText;
  HdfsPath m_path;
};

}  // namespace

Response AnswerAsNameNode(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
                          const Request& request) {
  return NameNode(store, settings, call, request).Answer();
}

}  // namespace velandoc::standin
