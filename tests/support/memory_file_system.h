// A FileSystem port that keeps its files in memory and fails where told. Open handles are counted.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/file_system.h"
#include "platform/text.h"

namespace velandoc::testing {

class MemoryFileSystem final : public FileSystem {
 public:
  static constexpr LPCOLESTR kFolder = OLESTR("temp");
  static constexpr LPCOLESTR kRandomName = OLESTR("temp/hdf1.tmp");

  MemoryFileSystem() = default;
  ~MemoryFileSystem() override;

  std::map<WideString, std::string> files;
  /// Names of operations that fail with `error`.
  std::set<std::string> failing;
  DWORD error = ERROR_ACCESS_DENIED;
  /// A write that would take more than this altogether finds the disk full.
  std::size_t room = std::size_t{1} << 30;
  /// The handle and the mode of the latest stream that was asked for.
  WideString streamName;
  DWORD streamMode = 0;
  /// What a temporary file is asked for with; a prefix that is nothing stands for null.
  WideString expectedFolder = kFolder;
  std::optional<WideString> expectedPrefix = OLESTR("hdfs");
  /// The name that a temporary file gets.
  WideString temporaryName = kRandomName;

  std::size_t OpenCount() const { return m_open.size(); }

  HANDLE CreateFileExclusive(LPCWSTR name) override;
  BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) override;
  BOOL CloseHandle(HANDLE file) override;
  BOOL DeleteFileW(LPCWSTR name) override;
  DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) override;
  UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) override;
  HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) override;
  DWORD GetLastError() override { return m_lastError; }

 private:
  bool Fails(const std::string& name);

  std::set<WideString> m_open;
  DWORD m_lastError = 0;
};

}  // namespace velandoc::testing
