// A streamed request body between a caller, who writes pieces of any size, and libcurl, which asks
// for bytes when the peer takes them. Small writes are gathered: libcurl sends what one call of its
// read function gives, and many small sends are slow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace velandoc::http {

class UploadBody {
 public:
  static constexpr std::size_t kGatheredBytes = 256 * 1024;

  UploadBody() = default;
  /// Of the announced length; none: sent in chunks.
  explicit UploadBody(std::optional<std::uint64_t> length);

  /// False if `size` more bytes are more than was announced.
  bool HasRoomFor(std::size_t size) const { return !m_unwritten || size <= *m_unwritten; }
  /// Whether all announced bytes were written.
  bool IsWhole() const { return m_unwritten.value_or(0) == 0; }
  /// Whether `size` bytes can be gathered now.
  bool CanGather(std::size_t size) const { return m_gathered.size() + size <= kGatheredBytes; }
  void Gather(const char* data, std::size_t size);
  bool IsGatheredSent() const { return m_sent == m_gathered.size(); }
  /// Lends a large piece, which is sent from where it lies: until IsLoanSent, or EndLoan.
  void Lend(const char* data, std::size_t size);
  bool IsLoanSent() const { return m_lentSize == 0; }
  void EndLoan() { m_lentSize = 0; }
  /// Forgets gathered bytes that were sent. The body cannot begin anew from then on.
  void DropSent();
  void End() { m_ended = true; }
  bool HasEnded() const { return m_ended; }

  /// Gives libcurl up to `size` bytes; 0 without HasEnded: there are none yet.
  std::size_t Give(char* buffer, std::size_t size);
  /// Whether the first byte was asked for.
  bool HasBegun() const { return m_begun; }
  /// Goes back to the first byte: only while all of what was given is still held, which is enough
  /// for a kept connection that turns out to be closed.
  bool Rewind();

 private:
  std::optional<std::uint64_t> m_unwritten;  // bytes still to come of a declared length
  std::vector<char> m_gathered;
  std::size_t m_sent = 0;  // of m_gathered
  const char* m_lent = nullptr;
  std::size_t m_lentSize = 0;
  bool m_dropped = false;  // bytes were given that are held no more
  bool m_begun = false;
  bool m_ended = false;
};

}  // namespace velandoc::http
