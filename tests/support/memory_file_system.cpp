#include "tests/support/memory_file_system.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velandoc::testing {

MemoryFileSystem::~MemoryFileSystem() { EXPECT_EQ(m_open.size(), 0U) << "files left open"; }

HANDLE MemoryFileSystem::CreateFileExclusive(LPCWSTR name) {
  if (Fails("CreateFileExclusive")) return nullptr;
  files[name].clear();
  m_open.insert(name);
  return const_cast<WideString*>(&*m_open.find(name));
}

BOOL MemoryFileSystem::WriteFile(HANDLE file, LPCVOID buffer, DWORD size) {
  if (Fails("WriteFile")) return FALSE;
  if (size > room) {
    m_lastError = ERROR_DISK_FULL;
    return FALSE;
  }
  room -= size;
  files[*static_cast<WideString*>(file)].append(static_cast<const char*>(buffer), size);
  return TRUE;
}

BOOL MemoryFileSystem::CloseHandle(HANDLE file) {
  m_open.erase(WideString(*static_cast<WideString*>(file)));
  return Fails("CloseHandle") ? FALSE : TRUE;
}

BOOL MemoryFileSystem::DeleteFileW(LPCWSTR name) {
  EXPECT_EQ(m_open.count(name), 0U) << "deleted while it is open";
  // What a system may leave behind a call that went well.
  m_lastError = 4711;
  return files.erase(name) != 0 ? TRUE : FALSE;
}

DWORD MemoryFileSystem::GetTempPathW(DWORD capacity, LPWSTR buffer) {
  if (Fails("GetTempPathW")) return 0;
  EXPECT_EQ(capacity, 260U);
  const WideView folder = kFolder;
  *std::copy(folder.begin(), folder.end(), buffer) = 0;
  return static_cast<DWORD>(folder.size());
}

UINT MemoryFileSystem::GetTempFileNameW(LPCWSTR folder, LPCWSTR prefix, LPWSTR name) {
  if (Fails("GetTempFileNameW")) return 0;
  EXPECT_EQ(WideView(folder), expectedFolder);
  EXPECT_EQ(prefix != nullptr ? std::optional<WideString>(prefix) : std::nullopt, expectedPrefix);
  files[temporaryName];
  *std::copy(temporaryName.begin(), temporaryName.end(), name) = 0;
  return 1;
}

HRESULT MemoryFileSystem::SHCreateStreamOnFileEx(LPCWSTR name, DWORD mode, IStream** stream) {
  streamName = name;
  streamMode = mode;
  return SystemPort<FileSystem>().SHCreateStreamOnFileEx(name, mode, stream);
}

bool MemoryFileSystem::Fails(const std::string& name) {
  if (failing.count(name) == 0) return false;
  m_lastError = error;
  return true;
}

}  // namespace velandoc::testing
