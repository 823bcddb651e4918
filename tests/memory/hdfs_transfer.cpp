// One operation of an HDFS client on a large file, and what it took of the process's memory.
//
//   hdfs_transfer PROGID BASE-URL PATH download LOCAL
//   hdfs_transfer PROGID BASE-URL PATH upload LOCAL
//   hdfs_transfer PROGID BASE-URL PATH stream
//   hdfs_transfer PROGID BASE-URL PATH preview LINES
//
// Prints "bytes N, peak N KiB" (those that arrived or went out, the resident peak), and for a
// preview its local path in front. Exit code 1 for a failed operation.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/owners.h"
#include "velandoc_idl.h"

using namespace velandoc;

namespace {

constexpr ULONG kStep = 8192;

Bstr Wide(const std::string& text) { return Bstr(WideString(text.begin(), text.end())); }

std::string Narrow(WideView text) { return {text.begin(), text.end()}; }

std::uintmax_t Download(IHdfsClient& client, const char* local) {
  Bstr saved;
  CheckResult(client.Download(VARIANT_FALSE, Wide(local).Get(), saved.Receive()));
  return std::filesystem::file_size(local);
}

std::uintmax_t Upload(IHdfsClient& client, const char* local) {
  const Variant source{Wide(local).View()};
  CheckResult(client.Upload(source.Get(), VARIANT_TRUE, nullptr));
  return std::filesystem::file_size(local);
}

std::uintmax_t Stream(IHdfsClient& client) {
  ComPtr<IStream> stream;
  CheckResult(client.Stream(stream.Receive()));
  std::array<char, kStep> piece;
  std::uintmax_t total = 0;
  ULONG read = 0;
  do {
    CheckResult(stream->Read(piece.data(), kStep, &read));
    total += read;
  } while (read != 0);
  return total;
}

std::uintmax_t Preview(IHdfsClient& client, const char* lines) {
  Bstr saved;
  CheckResult(client.DownloadPreview(std::atoi(lines), saved.Receive()));
  const std::string path = Narrow(saved.View());
  std::printf("%s ", path.c_str());
  return std::filesystem::file_size(path);
}

/// The highest value of the whole life of this program's memory, not of who started it.
long PeakKib() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long kib = 0;
  while (status >> word && word != "VmHWM:") {
  }
  status >> kib;
  return kib;
}

std::uintmax_t Run(IHdfsClient& client, const std::string& operation, const char* argument) {
  if (operation == "download") return Download(client, argument);
  if (operation == "upload") return Upload(client, argument);
  if (operation == "preview") return Preview(client, argument);
  return Stream(client);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fputs("usage: hdfs_transfer PROGID BASE-URL PATH OPERATION [ARGUMENT]\n", stderr);
    return 2;
  }
  try {
    CLSID clsid;
    CheckResult(CLSIDFromProgID(Wide(argv[1]).Get(), &clsid));
    ComPtr<IHdfsClient> client;
    CheckResult(
        CoCreateInstance(clsid, nullptr, CLSCTX_ALL, IID_IHdfsClient, client.ReceiveVoid()));
    CheckResult(client->put_BaseUrl(Wide(argv[2]).Get()));
    CheckResult(client->put_HdfsPath(Wide(argv[3]).Get()));
    const std::uintmax_t bytes = Run(*client, argv[4], argc > 5 ? argv[5] : "");
    std::printf("bytes %ju, peak %ld KiB\n", bytes, PeakKib());
  } catch (const _com_error& error) {
    std::fprintf(stderr, "hdfs_transfer: result 0x%08X\n", static_cast<unsigned>(error.Error()));
    return 1;
  }
  return 0;
}
