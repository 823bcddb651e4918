#include "hdfs/download_file.h"

#include "platform/file_system.h"

namespace velandoc {

DownloadFile::DownloadFile(WideString path, bool isMade)
    : m_path(std::move(path)), m_isOurs(isMade && !m_path.empty()) {}

DownloadFile::~DownloadFile() {
  m_file.reset();
  if (m_isOurs) CurrentPort<FileSystem>().DeleteFileW(m_path.c_str());
}

bool DownloadFile::Open() {
  m_file.emplace();
  constexpr UINT mode = CFile::modeCreate | CFile::modeReadWrite | CFile::shareExclusive;
  static_assert(mode == 0x1012);
  if (m_path.empty() || !m_file->Open(m_path.c_str(), mode)) return false;
  m_isOurs = true;
  return true;
}

void DownloadFile::Keep() {
  m_file->Close();
  m_isOurs = false;
}

}  // namespace velandoc
