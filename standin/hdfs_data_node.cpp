#include "standin/hdfs_data_node.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "standin/hdfs_error.h"
#include "standin/hdfs_generated.h"
#include "standin/hdfs_operation.h"
#include "standin/hdfs_params.h"
#include "standin/hdfs_redirect.h"
#include "standin/text.h"

namespace velandoc::standin {
namespace {

constexpr unsigned kFilePermission = 0644;

Response Created(const std::string& url) {
  Response response;
  response.status = 201;
  response.headers.push_back({"Location", url});
  return response;
}

// Writes as the bytes come. A client that leaves has written what had come by then, as on HDFS.
class FileSink final : public BodySink {
 public:
  FileSink(UniqueFd file, bool greets, Response created)
      : m_file(std::move(file)), m_greets(greets), m_created(std::move(created)) {}

  bool GreetsUnasked() const override { return m_greets; }

  void Add(std::string_view bytes) override {
    while (!bytes.empty() && m_error == 0) {
      const ssize_t written = write(m_file.Get(), bytes.data(), bytes.size());
      if (written < 0 && errno != EINTR) m_error = errno;
      if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void Skip(std::uint64_t) override {}

  Response Finish() override {
    if (m_error == 0) return m_created;
    return HdfsErrorAnswer(HdfsError(HdfsFault::kIo, std::strerror(m_error)));
  }

 private:
  UniqueFd m_file;
  bool m_greets;
  Response m_created;
  int m_error = 0;
};

// Keeps the length only: a file without blocks.
class LengthSink final : public BodySink {
 public:
  LengthSink(UniqueFd file, bool greets, Response created)
      : m_file(std::move(file)), m_greets(greets), m_created(std::move(created)) {}
  ~LengthSink() override { Store(); }

  bool GreetsUnasked() const override { return m_greets; }
  bool NeedsBytes() const override { return false; }
  void Add(std::string_view bytes) override { m_length += bytes.size(); }
  void Skip(std::uint64_t count) override { m_length += count; }

  Response Finish() override {
    if (Store()) return m_created;
    return HdfsErrorAnswer(HdfsError(HdfsFault::kIo, std::strerror(errno)));
  }

 private:
  bool Store() const { return ftruncate(m_file.Get(), static_cast<off_t>(m_length)) == 0; }

  UniqueFd m_file;
  bool m_greets;
  Response m_created;
  std::uint64_t m_length = 0;
};

void CheckToken(const HdfsSettings& settings, const HdfsCall& call) {
  if (settings.delegation.empty()) return;
  const HdfsParam* token = call.Find("delegation");
  if (!token || token->raw != "delegation=" + settings.delegation)
    throw HdfsError(HdfsFault::kInvalidToken, "The token can't be found in cache.");
}

}  // namespace

Response OpenAsDataNode(HdfsStore& store, const HdfsSettings& settings, const HdfsCall& call,
                        const Request& request) {
  const HdfsPath path(DecodeHdfsPath(request));
  if (!settings.isHttpFs) CheckToken(settings, call);
  const std::uint64_t offset = HdfsNumber(call, "offset").value_or(0);
  const auto wanted = HdfsNumber(call, "length");
  Response response = TextAnswer(200, "application/octet-stream", {});
  response.framing = settings.isChunked ? Framing::kChunked : Framing::kLength;
  const auto part = [offset, wanted](std::uint64_t length) {
    const std::uint64_t rest = length - std::min(offset, length);
    return std::min(rest, wanted.value_or(rest));
  };
  if (const auto generated = FindGenerated(path)) {
    response.pattern = generated->pattern;
    response.patternStart = offset;
    response.patternLength = part(generated->length);
    return response;
  }
  HdfsFile file = store.Folder().Open(path, HdfsCaller(call, request));
  response.fileStart = offset;
  response.fileLength = part(file.length);
  response.file = std::move(file.file);
  return response;
}

std::unique_ptr<BodySink> CreateAsDataNode(HdfsStore& store, const HdfsSettings& settings,
                                           const HdfsCall& call, const Request& request) {
  const HdfsPath path = HdfsPath::ToBeMade(DecodeHdfsPath(request));
  const std::string caller = HdfsCaller(call, request);
  const unsigned permission = HdfsPermission(call, kFilePermission);
  const bool overwrite = HdfsBool(call, "overwrite", false);
  const bool createParent = HdfsBool(call, "createparent", true);
  CheckToken(settings, call);
  if (settings.isSafe) throw HdfsSafeModeError("Cannot create file" + path.Text(), request.host);
  if (IsBelowGenerated(path)) throw HdfsGeneratedError(caller, path);
  UniqueFd file = store.Folder().Create(path, overwrite, createParent, permission, caller);
  Response created = Created(HdfsUrl(request));
  created.close = !settings.isHttpFs;
  if (IsBelowSink(path))
    return std::make_unique<LengthSink>(std::move(file), settings.greetsUnasked,
                                        std::move(created));
  return std::make_unique<FileSink>(std::move(file), settings.greetsUnasked, std::move(created));
}

}  // namespace velandoc::standin
