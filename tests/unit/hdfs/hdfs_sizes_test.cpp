// Files of every size around the pieces in which they travel, byte for byte over the wire: the
// client's 8192 and 32768, what the Linux home reads, gathers and sends, and from where on it reads
// a body from its socket itself.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <span>
#include <string>

#include "hdfs/hdfs_client.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "host/velandoc_module.h"
#include "tests/support/standin_client.h"
#include "tests/support/temporary_folder.h"

namespace velandoc::testing {
namespace {

constexpr std::size_t kSizes[] = {0,      1,      2,      3,      8191,   8192,  8193,
                                  16384,  32767,  32768,  32769,  65535,  65536, 65537,
                                  131072, 253952, 262143, 262144, 262145, 524289};
// On both sides of the length from which on a body is read from its socket.
constexpr std::size_t kLongSizes[] = {8388608, 8716289};
constexpr std::size_t kLineSize = 64;

struct Form {
  const char* name;
  HRESULT (*create)(IUnknown*, REFIID, void**);
  bool isChunked;

  friend void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }
};

std::string CountingBytes(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i % 251);
  return bytes;
}

std::string Content(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string content(std::filesystem::file_size(path), '\0');
  file.read(content.data(), static_cast<std::streamsize>(content.size()));
  EXPECT_TRUE(file);
  return content;
}

Bstr Wide(const std::string& text) { return Bstr(WideString(text.begin(), text.end())); }

class HdfsSizesTest : public ::testing::TestWithParam<Form> {
 protected:
  void SetUp() override {
    if (!test::StandIn::IsAvailable()) GTEST_SKIP() << "VELANDOC_STANDIN is not set";
    EXPECT_EQ(Module().GetLockCount(), 0);
    m_server.emplace();
    m_server->Reset();
    if (GetParam().isChunked) m_server->SetHdfs(R"({"chunked": true})");
    ASSERT_EQ(GetParam().create(nullptr, IID_IHdfsClient, m_client.ReceiveVoid()), S_OK);
    ASSERT_EQ(m_client->put_BaseUrl(Wide(m_server->HttpUrl("")).Get()), S_OK);
  }
  void TearDown() override {
    if (m_server) m_server->Reset();
    m_client.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
  }

  /// The sizes of a test, less the empty body in chunks that Wine's WinHTTP fails on.
  static std::span<const std::size_t> Sizes() {
    std::span<const std::size_t> sizes(kSizes);
#ifdef _WIN32
    const bool isWinHttp = GetParam().create == &CHdfsClientWinHttp::CreateObject;
    if (isWinHttp && GetParam().isChunked) sizes = sizes.subspan(1);
#endif
    return sizes;
  }

  void Select(const std::string& path, LPCOLESTR op = OLESTR("OPEN")) {
    EXPECT_EQ(m_client->put_HdfsPath(Wide(path).Get()), S_OK);
    EXPECT_EQ(m_client->put_Op(Bstr(op).Get()), S_OK);
  }
  void SelectGenerated(const char* kind, std::size_t size) {
    Select(std::string("/.generated/") + kind + "/" + std::to_string(size) + "/file");
  }
  Bstr LocalName(const std::string& name) const {
    const std::u16string path = (m_folder.Path() / name).u16string();
    return Bstr(WideString(path.begin(), path.end()));
  }
  std::string Download() {
    Bstr saved;
    EXPECT_EQ(m_client->Download(VARIANT_FALSE, LocalName("local").Get(), saved.Receive()), S_OK);
    return Content(m_folder.Path() / "local");
  }
  /// What a preview holds behind its three bytes; the file is deleted.
  std::string Preview(LONG lines) {
    Bstr saved;
    EXPECT_EQ(m_client->DownloadPreview(lines, saved.Receive()), S_OK);
    const WideString name = saved.Text();
    const std::filesystem::path path(std::u16string(name.begin(), name.end()));
    const std::string content = Content(path);
    std::filesystem::remove(path);
    EXPECT_EQ(content.substr(0, 3), "\xEF\xBB\xBF");
    return content.substr(std::min<std::size_t>(3, content.size()));
  }

  void ReadStream(std::size_t size, ULONG step) {
    SelectGenerated("bytes", size);
    ComPtr<IStream> stream;
    ASSERT_EQ(m_client->Stream(stream.Receive()), S_OK);
    std::string found;
    std::string piece(step, '\0');
    ULONG read = 0;
    do {
      const HRESULT result = stream->Read(piece.data(), step, &read);
      ASSERT_GE(result, S_OK) << size << " by " << step;
      EXPECT_EQ(result, read == step ? S_OK : S_FALSE) << size << " by " << step;
      found.append(piece, 0, read);
    } while (read != 0);
    EXPECT_TRUE(found == CountingBytes(size)) << size << " by " << step;
  }

  TemporaryFolder m_folder;
  std::optional<test::StandIn> m_server;
  ComPtr<IHdfsClient> m_client;
};

TEST_P(HdfsSizesTest, DownloadsAreWhole) {
  for (const auto& sizes : {Sizes(), std::span<const std::size_t>(kLongSizes)}) {
    for (const std::size_t size : sizes) {
      SelectGenerated("bytes", size);
      EXPECT_TRUE(Download() == CountingBytes(size)) << size;
    }
  }
}

TEST_P(HdfsSizesTest, StreamsAreWholeWhateverTheReads) {
  for (const std::size_t size : Sizes()) {
    for (const ULONG step : {ULONG{4096}, ULONG{8192}, ULONG{100001}}) ReadStream(size, step);
  }
  for (const std::size_t size : kLongSizes) ReadStream(size, 8192);
}

TEST_P(HdfsSizesTest, PreviewsOfAllLinesAreWhole) {
  for (const std::size_t size : Sizes()) {
    SelectGenerated("lines", size);
    const std::string whole = Download();
    ASSERT_EQ(whole.size(), size);
    EXPECT_TRUE(Preview(1000000) == whole) << size;
  }
}

TEST_P(HdfsSizesTest, PreviewsEndInFrontOfTheirLastLinesEnd) {
  // Lines of 64 bytes: the 512th ends a chunk of 32768.
  const std::size_t size = 1 << 20;
  SelectGenerated("lines", size);
  const std::string whole = Download();
  for (const LONG lines : {1, 2, 511, 512, 513, 1000, 1024, 1025, 4096}) {
    const std::size_t expected = static_cast<std::size_t>(lines) * kLineSize - 1;
    EXPECT_TRUE(Preview(lines) == whole.substr(0, expected)) << lines;
  }
}

TEST_P(HdfsSizesTest, UploadsAreWhole) {
  for (const std::size_t size : Sizes()) {
    const std::string content = CountingBytes(size);
    std::ofstream(m_folder.Path() / "source", std::ios::binary) << content;
    Variant source(LocalName("source").View());
    // A name of its own for each: nothing is to come from a cache.
    const std::string path = "/upload-" + std::to_string(size);
    m_server->ClearLog();
    Select(path);
    ASSERT_EQ(m_client->Upload(source.Get(), VARIANT_TRUE, nullptr), S_OK) << size;
    const auto log = m_server->Log();
    ASSERT_EQ(log.size(), 2U) << size;
    EXPECT_EQ(log[0].bodyLength, 0U) << size;
    EXPECT_EQ(log[1].bodyLength, size);
    ComPtr<IHdfsClient> reader;
    ASSERT_EQ(GetParam().create(nullptr, IID_IHdfsClient, reader.ReceiveVoid()), S_OK);
    ASSERT_EQ(reader->put_BaseUrl(Wide(m_server->HttpUrl("")).Get()), S_OK);
    m_client = reader;
    Select(path);
    EXPECT_TRUE(Download() == content) << size;
  }
}

INSTANTIATE_TEST_SUITE_P(
    , HdfsSizesTest,
    ::testing::Values(Form{"WinInet", &CHdfsClient::CreateObject, false},
                      Form{"WinInetChunked", &CHdfsClient::CreateObject, true},
                      Form{"WinHttp", &CHdfsClientWinHttp::CreateObject, false},
                      Form{"WinHttpChunked", &CHdfsClientWinHttp::CreateObject, true}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace velandoc::testing
