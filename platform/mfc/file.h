// CFile, as much of it as a connection needs: something that bytes are written to.
#pragma once

#include "platform/com.h"

/// A local file, or one in memory.
class CFile {
 public:
  CFile() = default;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  virtual ~CFile() = default;

  /// All `count` bytes, which may be none. What cannot be written is raised as an exception.
  virtual void Write(const void* buffer, UINT count) = 0;
};
