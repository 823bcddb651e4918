// A stream over a file. Small writes are gathered, and small reads of a stream that only reads are
// served from a large one ahead of them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "platform/owners.h"
#include "platform/posix/com/activation.h"
#include "platform/posix/com/counted.h"
#include "platform/posix/com/file_descriptor.h"
#include "platform/posix/com/utf8.h"

namespace velandoc {
namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
// Few system calls, and still small enough to stay in the processor's cache.
constexpr std::size_t kAheadSize = 256 * 1024;
constexpr mode_t kNewFileMode = 0666;  // less the process's mask
// One call of the system moves at most this much anyway.
constexpr std::size_t kMaxTransfer = std::size_t{1} << 30;

HRESULT OpenError(int number) {
  switch (number) {
    case ENOENT:
      return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    case ENOTDIR:
      return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
    case EEXIST:
      return HRESULT_FROM_WIN32(ERROR_FILE_EXISTS);
    case ENOSPC:
    case EDQUOT:
      return HRESULT_FROM_WIN32(ERROR_DISK_FULL);
    case ENOMEM:
      return E_OUTOFMEMORY;
    default:
      // A folder and a name that is too long are what Windows calls no access, too.
      return E_ACCESSDENIED;
  }
}

HRESULT WriteError(int number) {
  switch (number) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return STG_E_MEDIUMFULL;
    case EBADF:
      return STG_E_ACCESSDENIED;
    default:
      return STG_E_WRITEFAULT;
  }
}

/// 100-nanosecond steps since 1601.
FILETIME FileTimeOf(const timespec& time) {
  constexpr std::int64_t kSecondsTo1970 = 11644473600;
  const auto steps =
      static_cast<std::uint64_t>((time.tv_sec + kSecondsTo1970) * 10'000'000 + time.tv_nsec / 100);
  return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

class FileStream final : public Counted<std::atomic<ULONG>, IStream> {
 public:
  FileStream(FileDescriptor file, DWORD mode, WideString name)
      : m_file(std::move(file)), m_mode(mode), m_name(std::move(name)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (riid != IID_IUnknown && riid != IID_ISequentialStream && riid != IID_IStream) {
      return E_NOINTERFACE;
    }
    *object = this;
    AddRef();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG size, ULONG* read) override {
    if (read != nullptr) *read = 0;
    if (buffer == nullptr) return STG_E_INVALIDPOINTER;
    if (const HRESULT result = Flush(); FAILED(result)) return result;
    auto* const target = static_cast<char*>(buffer);
    ULONG done = TakeAhead(target, size);
    while (done < size) {
      std::size_t count = 0;
      if (IsReadAhead(size - done)) {
        const HRESULT result = FillAhead();
        if (FAILED(result)) return result;
        count = TakeAhead(target + done, size - done);
      } else {
        const std::size_t wanted = std::min<std::size_t>(size - done, kMaxTransfer);
        const HRESULT result = ReadThrough(target + done, wanted, count);
        if (FAILED(result)) return result;
      }
      if (count == 0) break;
      done += static_cast<ULONG>(count);
    }
    if (read != nullptr) *read = done;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG size, ULONG* written) override {
    if (written != nullptr) *written = 0;
    if (buffer == nullptr) return STG_E_INVALIDPOINTER;
    if ((m_mode & (STGM_WRITE | STGM_READWRITE)) == 0) return STG_E_ACCESSDENIED;
    if (m_gathered + size > kBufferSize) {
      if (const HRESULT result = Flush(); FAILED(result)) return result;
    }
    if (size >= kBufferSize) {
      ULONG done = 0;
      const HRESULT result = WriteThrough(static_cast<const char*>(buffer), size, done);
      if (written != nullptr) *written = done;
      return result;
    }
    if (m_buffer == nullptr) {
      m_buffer.reset(new (std::nothrow) char[kBufferSize]);
      if (m_buffer == nullptr) return E_OUTOFMEMORY;
    }
    std::memcpy(m_buffer.get() + m_gathered, buffer, size);
    m_gathered += size;
    if (written != nullptr) *written = size;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin,
                                 ULARGE_INTEGER* position) override {
    constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (origin > STREAM_SEEK_END) return STG_E_INVALIDFUNCTION;
    if (const HRESULT result = Flush(); FAILED(result)) return result;
    // The file stands behind what was read ahead.
    const auto ahead = static_cast<LONGLONG>(m_aheadEnd - m_aheadBegin);
    const LONGLONG distance = origin == STREAM_SEEK_CUR ? move.QuadPart - ahead : move.QuadPart;
    const off_t reached = lseek(m_file.Get(), distance, kOrigins[origin]);
    if (reached < 0) return STG_E_SEEKERROR;
    m_aheadBegin = m_aheadEnd = 0;
    if (position != nullptr) position->QuadPart = static_cast<ULONGLONG>(reached);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override {
    if (const HRESULT result = Flush(); FAILED(result)) return result;
    const bool isTooLarge = size.QuadPart >> 63 != 0;
    if (isTooLarge) return STG_E_MEDIUMFULL;
    if (ftruncate(m_file.Get(), static_cast<off_t>(size.QuadPart)) == 0) return S_OK;
    return errno == EINVAL ? STG_E_ACCESSDENIED : WriteError(errno);
  }

  HRESULT STDMETHODCALLTYPE CopyTo(IStream* target, ULARGE_INTEGER size, ULARGE_INTEGER* read,
                                   ULARGE_INTEGER* written) override {
    ULARGE_INTEGER unasked;
    ULARGE_INTEGER& readTotal = read != nullptr ? *read : unasked;
    ULARGE_INTEGER& writtenTotal = written != nullptr ? *written : unasked;
    readTotal.QuadPart = 0;
    writtenTotal.QuadPart = 0;
    if (target == nullptr) return STG_E_INVALIDPOINTER;
    const std::unique_ptr<char[]> piece(new (std::nothrow) char[kBufferSize]);
    if (piece == nullptr) return E_OUTOFMEMORY;
    for (ULONGLONG left = size.QuadPart; left != 0;) {
      const auto wanted = static_cast<ULONG>(std::min<ULONGLONG>(left, kBufferSize));
      ULONG count = 0;
      HRESULT result = Read(piece.get(), wanted, &count);
      if (FAILED(result)) return result;
      readTotal.QuadPart += count;
      if (count == 0) break;
      left -= count;
      ULONG stored = 0;
      result = target->Write(piece.get(), count, &stored);
      writtenTotal.QuadPart += stored;
      if (FAILED(result)) return result;
      if (stored != count) return STG_E_MEDIUMFULL;
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return Flush(); }

  HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD flag) override {
    if (stat == nullptr) return STG_E_INVALIDPOINTER;
    if (const HRESULT result = Flush(); FAILED(result)) return result;
    struct stat state {};
    if (fstat(m_file.Get(), &state) != 0) return STG_E_READFAULT;
    *stat = STATSTG{};
    stat->type = STGTY_STREAM;
    stat->cbSize.QuadPart = static_cast<ULONGLONG>(state.st_size);
    stat->mtime = FileTimeOf(state.st_mtim);
    stat->ctime = FileTimeOf(state.st_ctim);
    stat->atime = FileTimeOf(state.st_atim);
    stat->grfMode = m_mode;
    if (flag == STATFLAG_NONAME) return S_OK;
    const std::size_t size = (m_name.size() + 1) * sizeof(OLECHAR);
    stat->pwcsName = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
    if (stat->pwcsName == nullptr) return E_OUTOFMEMORY;
    std::memcpy(stat->pwcsName, m_name.c_str(), size);
    return S_OK;
  }

  // As on Windows, whose file streams have none of these either.
  HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Clone(IStream** stream) override {
    if (stream != nullptr) *stream = nullptr;
    return E_NOTIMPL;
  }

 private:
  /// An error of the last gathered bytes is lost here: who wants to know it calls Commit first.
  ~FileStream() override { Flush(); }

  /// What could not be written stays gathered, so the next attempt goes on where this one failed.
  HRESULT Flush() {
    if (m_gathered == 0) return S_OK;
    ULONG done = 0;
    const HRESULT result = WriteThrough(m_buffer.get(), static_cast<ULONG>(m_gathered), done);
    m_gathered -= done;
    if (m_gathered != 0 && done != 0) {
      std::memmove(m_buffer.get(), m_buffer.get() + done, m_gathered);
    }
    return result;
  }

  /// Of a stream that can write, its own writes would have to show in what was read ahead.
  bool IsReadAhead(std::size_t size) const {
    return size < kAheadSize && (m_mode & (STGM_WRITE | STGM_READWRITE)) == 0;
  }

  ULONG TakeAhead(char* buffer, ULONG size) {
    const auto count = static_cast<ULONG>(std::min<std::size_t>(size, m_aheadEnd - m_aheadBegin));
    if (count == 0) return 0;
    std::memcpy(buffer, m_ahead.get() + m_aheadBegin, count);
    m_aheadBegin += count;
    return count;
  }

  /// Once all that was read ahead is taken.
  HRESULT FillAhead() {
    if (m_ahead == nullptr) m_ahead.reset(new (std::nothrow) char[kAheadSize]);
    if (m_ahead == nullptr) return E_OUTOFMEMORY;
    m_aheadBegin = m_aheadEnd = 0;
    return ReadThrough(m_ahead.get(), kAheadSize, m_aheadEnd);
  }

  /// What one call of the system gives; 0 at the end.
  HRESULT ReadThrough(char* buffer, std::size_t size, std::size_t& done) {
    ssize_t count = 0;
    do {
      count = ::read(m_file.Get(), buffer, size);
    } while (count < 0 && errno == EINTR);
    done = count > 0 ? static_cast<std::size_t>(count) : 0;
    if (count >= 0) return S_OK;
    return errno == EBADF ? STG_E_ACCESSDENIED : STG_E_READFAULT;
  }

  HRESULT WriteThrough(const char* bytes, ULONG size, ULONG& done) {
    while (done < size) {
      const std::size_t wanted = std::min<std::size_t>(size - done, kMaxTransfer);
      const ssize_t count = write(m_file.Get(), bytes + done, wanted);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return WriteError(errno);
      done += static_cast<ULONG>(count);
    }
    return S_OK;
  }

  FileDescriptor m_file;
  DWORD m_mode;
  WideString m_name;
  std::unique_ptr<char[]> m_buffer;  // kBufferSize bytes, made by the first small write
  std::size_t m_gathered = 0;
  std::unique_ptr<char[]> m_ahead;  // kAheadSize bytes, made by the first small read
  std::size_t m_aheadBegin = 0;
  std::size_t m_aheadEnd = 0;
};

/// The flags of open() for a mode; false for a mode that file streams don't have.
bool OpenFlagsOf(DWORD mode, bool create, int& flags) {
  constexpr DWORD kAccessMask = 0x3;
  constexpr DWORD kShareMask = 0x70;
  if ((mode & ~(kAccessMask | kShareMask | STGM_CREATE)) != 0) return false;
  switch (mode & kAccessMask) {
    case STGM_READ:
      flags = O_RDONLY;
      break;
    case STGM_WRITE:
      flags = O_WRONLY;
      break;
    case STGM_READWRITE:
      flags = O_RDWR;
      break;
    default:
      return false;
  }
  flags |= O_CLOEXEC;
  if ((mode & STGM_CREATE) != 0) {
    flags |= O_CREAT | O_TRUNC;
  } else if (create) {
    flags |= O_CREAT | O_EXCL;
  }
  return true;
}

}  // namespace
}  // namespace velandoc

STDAPI SHCreateStreamOnFileEx(LPCWSTR file, DWORD mode, DWORD, BOOL create, IStream* reserved,
                              IStream** stream) try {
  if (stream == nullptr) return E_INVALIDARG;
  *stream = nullptr;
  int flags = 0;
  if (file == nullptr || reserved != nullptr ||
      !velandoc::OpenFlagsOf(mode, create != FALSE, flags)) {
    return E_INVALIDARG;
  }
  velandoc::WideString name(file);
  velandoc::FileDescriptor descriptor(
      open(velandoc::WideToUtf8(name).c_str(), flags, velandoc::kNewFileMode));
  if (!descriptor) return velandoc::OpenError(errno);
  struct stat state {};
  if (fstat(descriptor.Get(), &state) == 0 && S_ISDIR(state.st_mode)) return E_ACCESSDENIED;
  *stream = new velandoc::FileStream(std::move(descriptor), mode, std::move(name));
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}
