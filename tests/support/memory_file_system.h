// A FileSystem port that keeps its files in memory and fails where told. Open handles are counted.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
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
  ~MemoryFileSystem() override { EXPECT_EQ(m_open.size(), 0U) << "files left open"; }

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

  HANDLE CreateFileExclusive(LPCWSTR name) override {
    if (Fails("CreateFileExclusive")) return nullptr;
    files[name].clear();
    m_open.insert(name);
    return const_cast<WideString*>(&*m_open.find(name));
  }
  BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD size) override {
    if (Fails("WriteFile")) return FALSE;
    if (size > room) {
      m_lastError = ERROR_DISK_FULL;
      return FALSE;
    }
    room -= size;
    files[*static_cast<WideString*>(file)].append(static_cast<const char*>(buffer), size);
    return TRUE;
  }
  BOOL CloseHandle(HANDLE file) override {
    m_open.erase(WideString(*static_cast<WideString*>(file)));
    return Fails("CloseHandle") ? FALSE : TRUE;
  }
  BOOL DeleteFileW(LPCWSTR name) override {
    EXPECT_EQ(m_open.count(name), 0U) << "deleted while it is open";
    // What a system may leave behind a call that went well.
    m_lastError = 4711;
    return files.erase(name) != 0 ? TRUE : FALSE;
  }
  DWORD GetTempPathW(DWORD capacity, LPWSTR buffer) override {
    if (Fails("GetTempPathW")) return 0;
    EXPECT_EQ(capacity, 260U);
    const WideView folder = kFolder;
    *std::copy(folder.begin(), folder.end(), buffer) = 0;
    return static_cast<DWORD>(folder.size());
  }
  UINT GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) override {
    if (Fails("GetTempFileNameW")) return 0;
    EXPECT_EQ(WideView(folder), expectedFolder);
    EXPECT_EQ(prefix != nullptr ? std::optional<WideString>(prefix) : std::nullopt, expectedPrefix);
    files[temporaryName];
    *std::copy(temporaryName.begin(), temporaryName.end(), name) = 0;
    return 1;
  }
  HRESULT SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) override {
    streamName = name;
    streamMode = mode;
    return SystemPort<FileSystem>().SHCreateStreamOnFileEx(name, mode, stream);
  }
  DWORD GetLastError() override { return m_lastError; }

 private:
  bool Fails(const std::string& name) {
    if (failing.count(name) == 0) return false;
    m_lastError = error;
    return true;
  }

  std::set<WideString> m_open;
  DWORD m_lastError = 0;
};

}  // namespace velandoc::testing
