// An answer's body between libcurl, which hands over pieces of its own size, and a caller who reads
// in another.
#pragma once

#include <cstddef>
#include <vector>

namespace velandoc::http {

class DownloadBody {
 public:
  /// With as much held, no more is asked of the peer until the caller has read it.
  static constexpr std::size_t kFullBytes = 64 * 1024;

  /// Takes all of a piece: into the buffer of a read that waits, and the rest is held.
  void Take(const char* data, std::size_t size);
  /// Bytes that are held.
  std::size_t Held() const { return m_held.size() - m_begin; }
  bool IsFull() const { return Held() >= kFullBytes; }
  void Clear();

  /// A read waits between these two. BeginRead takes what is held; IsServed says that the buffer is
  /// full. EndRead returns how many bytes it has got.
  void BeginRead(char* buffer, std::size_t size);
  bool IsServed() const { return m_room == 0; }
  std::size_t EndRead();

 private:
  void Give(const char* data, std::size_t size);

  std::vector<char> m_held;  // from m_begin on
  std::size_t m_begin = 0;
  char* m_target = nullptr;  // of the read that waits
  std::size_t m_room = 0;
  std::size_t m_served = 0;
};

}  // namespace velandoc::http
