// velandoc hdfs cat and head: a file, or its first lines, to the output.
#include <fstream>
#include <vector>

#include "hosts/command/file_status.h"
#include "hosts/command/hdfs_actions.h"
#include "hosts/command/local_path.h"
#include "hosts/text_encoding.h"
#include "platform/standard_streams.h"

namespace velandoc {
namespace {

constexpr ULONG kPieceSize = 256 * 1024;
constexpr int kStatusOk = 200;
constexpr std::size_t kMarkSize = 3;  // what a preview begins with

/// The second client gives a stream over a refusal too.
bool IsRefused() {
  const std::vector<HdfsExchange>& exchanges = HdfsExchangeLog::OfThread().Exchanges();
  return !exchanges.empty() && exchanges.back().status != kStatusOk;
}

struct Printed {
  std::uint64_t bytes = 0;
  bool refused = false;  // by the output
};

HRESULT Print(IHdfsClient& client, Printed& printed) {
  ComPtr<IStream> stream;
  const HRESULT opened = client.Stream(stream.Receive());
  if (FAILED(opened)) return opened;
  std::vector<char> piece(kPieceSize);
  ULONG count = 0;
  if (IsRefused()) return stream->Read(piece.data(), kPieceSize, &count);  // for the watch to see
  do {
    const HRESULT read = stream->Read(piece.data(), kPieceSize, &count);
    if (FAILED(read)) return read;
    if (!WriteBytes(std::string_view(piece.data(), count))) {
      printed.refused = true;
      return S_OK;
    }
    printed.bytes += count;
  } while (count != 0);
  return S_OK;
}

/// The file of a preview, gone at the end.
class PreviewFile {
 public:
  PreviewFile() = default;
  PreviewFile(const PreviewFile&) = delete;
  PreviewFile& operator=(const PreviewFile&) = delete;
  ~PreviewFile() { Remove(); }
  void Replace(std::filesystem::path path) {
    Remove();
    m_path = std::move(path);
  }
  const std::filesystem::path& Path() const { return m_path; }

 private:
  void Remove() {
    std::error_code ignored;
    if (!m_path.empty()) std::filesystem::remove(m_path, ignored);
  }
  std::filesystem::path m_path;
};

/// Writes the file without its first bytes. The preview ends before its last line's end; on a
/// terminal or in a pipe the line is to be ended. False if the output refuses.
bool WriteLines(std::ifstream& file) {
  file.ignore(kMarkSize);
  std::vector<char> piece(kPieceSize);
  char first[2] = {};
  char last = '\n';
  bool begun = false;
  while (file.read(piece.data(), kPieceSize) || file.gcount() != 0) {
    const auto count = static_cast<std::size_t>(file.gcount());
    if (!begun && count > 1) {
      first[0] = piece[0];
      first[1] = piece[1];
    }
    begun = true;
    last = piece[count - 1];
    if (!WriteBytes(std::string_view(piece.data(), count))) return false;
  }
  const std::string_view mark(first, sizeof first);
  const bool isWide = mark == "\xFF\xFE" || mark == "\xFE\xFF";
  return isWide || last == '\n' || last == '\r' || WriteBytes("\n");
}

}  // namespace

int PrintFile(const HdfsRun& run) {
  const std::string& path = run.Hdfs().remote;
  Printed printed;
  auto failure =
      run.caller.Run({"OPEN", path}, [&](IHdfsClient& client) { return Print(client, printed); });
  if (printed.refused) return kExitOutput;
  FileStatus status;
  // Not every platform notices that a body ends too early, so its length is asked for: behind it,
  // because its first bytes are not to wait for that.
  if (!failure) failure = AskStatus(run.caller, path, status);
  if (!failure && printed.bytes < status.length) {
    failure = LocalFailure(
        "OPEN", path,
        std::to_string(printed.bytes) + " of " + std::to_string(status.length) + " bytes arrived",
        kExitIncomplete);
  }
  if (!failure) return kExitSuccess;
  run.progress.Say(FailureText(*failure));
  return failure->exitCode;
}

int PrintHead(const HdfsRun& run) {
  const std::string& path = run.Hdfs().remote;
  PreviewFile preview;
  const auto failure = run.caller.Run({"OPEN", path}, [&](IHdfsClient& client) {
    Bstr saved;
    const HRESULT result = client.DownloadPreview(run.Hdfs().lines, saved.Receive());
    if (SUCCEEDED(result)) preview.Replace(PathOf(Utf8FromWide(saved.View())));
    return result;
  });
  if (failure) {
    const bool isLocal = failure->node.empty();
    run.progress.Say(isLocal ? "preview of '" + path + "' failed: no temporary file can be written"
                             : FailureText(*failure));
    return isLocal ? kExitLocalFile : failure->exitCode;
  }
  std::ifstream file(preview.Path(), std::ios::binary);
  return WriteLines(file) ? kExitSuccess : kExitOutput;
}

}  // namespace velandoc
