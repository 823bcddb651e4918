// The body of a response as the source of a preview.
#pragma once

#include "hdfs/error_reports.h"
#include "hdfs/preview_lines.h"
#include "hdfs/response_stream.h"

namespace velandoc {

/// Reads what is left on `connection`, one read a chunk. `Port` is the one that the connection
/// uses.
template <class Port, class Connection>
class ResponseSource final : public PreviewSource {
 public:
  explicit ResponseSource(Connection& connection) : m_connection(connection) {}

  bool ReadChunk(void* buffer, std::uint32_t* count) override {
    ULONG read = 0;
    const bool isRead = ReadResponseBody(m_connection, buffer, kChunkSize, read);
    // At once: closing the file may put another error in its place.
    if (!isRead) m_error = LastErrorOf<Port>();
    *count = read;
    return isRead;
  }

  /// Of the read that failed; 0 if none did.
  DWORD Error() const { return m_error; }

 private:
  Connection& m_connection;
  DWORD m_error = 0;
};

}  // namespace velandoc
