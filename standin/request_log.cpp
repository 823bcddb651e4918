#include "standin/request_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "standin/sha256.h"

namespace velandoc::standin {
namespace {

constexpr off_t kLargestFile = off_t{512} << 20;

// Each byte as the code point of the same number, so that any bytes survive in JSON text.
void AppendBytes(std::string& json, std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  json += '"';
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      json += '\\';
      json += c;
    } else if (c == '\r') {
      json += "\\r";
    } else if (c == '\n') {
      json += "\\n";
    } else if (byte < 0x20 || byte >= 0x7f) {
      json += "\\u00";
      json += kDigits[byte >> 4];
      json += kDigits[byte & 15];
    } else {
      json += c;
    }
  }
  json += '"';
}

void AppendField(std::string& json, std::string_view name, std::string_view bytes) {
  json += ",\"";
  json += name;
  json += "\":";
  AppendBytes(json, bytes);
}

std::string FormatLine(const Request& request, std::uint64_t number) {
  std::string json;
  json.reserve(512 + request.head.size() * 2 + request.body.size());
  json += "{\"n\":" + std::to_string(number);
  json += ",\"connection\":" + std::to_string(request.connection);
  json += request.tls ? ",\"tls\":true" : ",\"tls\":false";
  json += request.proxy ? ",\"proxy\":true" : ",\"proxy\":false";
  AppendField(json, "connect_host", request.connectHost);
  AppendField(json, "method", request.method);
  AppendField(json, "target", request.target);
  AppendField(json, "host", request.host);
  if (!request.operation.empty()) AppendField(json, "operation", request.operation);
  if (!request.role.empty()) AppendField(json, "role", request.role);
  AppendField(json, "head", request.head);
  if (request.bodyLength <= kLargestLoggedBody) AppendField(json, "body", request.body);
  json += ",\"body_length\":" + std::to_string(request.bodyLength);
  if (!request.bodySha256.empty()) AppendField(json, "body_sha256", request.bodySha256);
  if (!request.chunks.empty()) {
    json += ",\"chunks\":[";
    for (const std::uint64_t size : request.chunks) {
      if (json.back() != '[') json += ',';
      json += std::to_string(size);
    }
    json += ']';
  }
  json += "}\n";
  return json;
}

}  // namespace

RequestLog::RequestLog(const std::string& path)
    : m_file(open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666)) {
  if (!m_file.IsOpen()) throw std::system_error(errno, std::generic_category(), path);
  struct stat status {};
  m_isRegularFile = fstat(m_file.Get(), &status) == 0 && S_ISREG(status.st_mode);
  m_isRecording = m_isRegularFile;
}

void RequestLog::Add(const Request& request) {
  const std::lock_guard lock(m_mutex);
  ++m_count;
  if (!m_isRecording || m_size >= kLargestFile) return;
  const std::string line = FormatLine(request, m_count);
  for (std::size_t done = 0; done < line.size();) {
    const ssize_t written = write(m_file.Get(), line.data() + done, line.size() - done);
    if (written < 0 && errno != EINTR) {
      // A full disk: better no record than half a one.
      if (ftruncate(m_file.Get(), m_size) != 0) m_isRecording = false;
      return;
    }
    if (written > 0) done += static_cast<std::size_t>(written);
  }
  m_lines.push_back({m_count, m_size, line.size() - 1});
  m_size += static_cast<off_t>(line.size());
}

std::string RequestLog::Read(std::uint64_t since) const {
  const std::lock_guard lock(m_mutex);
  std::string json = "[";
  for (const auto& line : m_lines) {
    if (line.number <= since) continue;
    if (json.size() > 1) json += ",\n";
    const std::size_t start = json.size();
    json.resize(start + line.length);
    if (pread(m_file.Get(), json.data() + start, line.length, line.start) !=
        static_cast<ssize_t>(line.length))
      throw std::system_error(errno, std::generic_category(), "the log cannot be read back");
  }
  return json + "]\n";
}

void RequestLog::Clear() {
  const std::lock_guard lock(m_mutex);
  if (m_isRegularFile && ftruncate(m_file.Get(), 0) != 0)
    throw std::system_error(errno, std::generic_category(), "the log cannot be emptied");
  m_lines.clear();
  m_size = 0;
}

void RequestLog::SetRecording(bool on, std::uint64_t largestHash) {
  const std::lock_guard lock(m_mutex);
  m_isRecording = on && m_isRegularFile;
  m_largestHash = largestHash;
}

std::uint64_t RequestLog::LargestHash() const {
  const std::lock_guard lock(m_mutex);
  return m_isRecording ? m_largestHash : 0;
}

std::uint64_t RequestLog::Count() const {
  const std::lock_guard lock(m_mutex);
  return m_count;
}

}  // namespace velandoc::standin
