// The one HDFS that all connections see: its files and what kind of server it is.
#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "standin/hdfs_folder.h"
#include "standin/hdfs_settings.h"

namespace velandoc::standin {

// Any thread may call.
class HdfsStore {
 public:
  // `isOwn`: the folder was made for this run, so that Reset may empty it.
  HdfsStore(const std::string& directory, bool isOwn) : m_folder(directory), m_isOwn(isOwn) {}

  HdfsFolder& Folder() { return m_folder; }

  HdfsSettings Settings() const {
    const std::lock_guard lock(m_mutex);
    return m_settings;
  }
  void Set(HdfsSettings settings) {
    const std::lock_guard lock(m_mutex);
    m_settings = std::move(settings);
  }
  // The settings of the start; a folder of somebody else keeps its files.
  void Reset() {
    Set({});
    if (m_isOwn) m_folder.Clear();
  }

 private:
  HdfsFolder m_folder;
  const bool m_isOwn;
  mutable std::mutex m_mutex;
  HdfsSettings m_settings;
};

}  // namespace velandoc::standin
