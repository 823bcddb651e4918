// The local file of a download: there whole, or not at all.
#pragma once

#include <optional>

#include "platform/mfc/file.h"
#include "platform/text.h"

namespace velandoc {

/// Closes and deletes its file at the end of the scope, also when an exception ends it, unless Keep
/// was reached. The file that stood at the path before is lost in any case.
class DownloadFile {
 public:
  /// `isMade`: the file is there already, made for this object. Empty text is no path.
  DownloadFile(WideString path, bool isMade);
  DownloadFile(const DownloadFile&) = delete;
  DownloadFile& operator=(const DownloadFile&) = delete;
  ~DownloadFile();

  /// Makes it, for nobody else to open meanwhile. False if it can't be opened; a file there that
  /// was not made for this object then stays as it is.
  bool Open();
  CFile& Sink() { return *m_file; }
  /// Closes the file and leaves it. Raises CFileException if what was written can't be brought to
  /// it; it is then not kept.
  void Keep();

  const WideString& Path() const { return m_path; }

 private:
  const WideString m_path;
  bool m_isOurs;  // to be deleted
  std::optional<CFile> m_file;
};

}  // namespace velandoc
