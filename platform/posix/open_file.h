// A file that is being written: its lock, and small writes gathered to large ones.
#pragma once

#include <memory>

#include "platform/com.h"
#include "platform/posix/com/file_descriptor.h"

namespace velandoc {

/// Operations that fail say false and leave errno.
class OpenFile {
 public:
  explicit OpenFile(FileDescriptor file);

  /// Takes all of `size` bytes; they reach the file now or later. May raise std::bad_alloc at the
  /// first call.
  bool Write(const char* bytes, std::size_t size);
  /// Brings what was gathered to the file and closes it, in any case. What an object that is
  /// destroyed without it had gathered is lost: that file was not wanted.
  bool Close();

 private:
  static constexpr std::size_t kGathered = std::size_t{256} * 1024;

  bool Flush();
  bool WriteThrough(const char* bytes, std::size_t size);

  FileDescriptor m_file;
  std::unique_ptr<char[]> m_buffer;  // kGathered bytes, made by the first small write
  std::size_t m_used = 0;
};

}  // namespace velandoc
