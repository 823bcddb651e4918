// Every operation of an HDFS client that goes to the network, with the answers by which it does
// well. For tests that let it do badly.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "platform/owners.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_stream.h"
#include "velandoc_idl.h"

namespace velandoc::testing {

/// An answer as both scripted services can play it.
struct HdfsAnswer {
  WideString status = OLESTR("200");
  std::vector<std::string> chunks = {};
  WideString location = {};
};

/// That answer as `Service`'s.
template <class ServiceAnswer>
ServiceAnswer AnswerOf(const HdfsAnswer& answer) {
  constexpr DWORD kLocation = 33;  // of both services
  ServiceAnswer made;
  made.status = answer.status;
  made.chunks = answer.chunks;
  if (!answer.location.empty()) made.headers[kLocation] = answer.location;
  return made;
}

struct HdfsOperation {
  const char* name;
  std::vector<HdfsAnswer> answers;
  std::function<HRESULT(IHdfsClient&)> run;
};

inline const std::vector<HdfsAnswer>& UploadAnswers() {
  static const std::vector<HdfsAnswer> answers = {
      {.status = OLESTR("307"), .chunks = {"moved"}, .location = OLESTR("http://dn:1/x")},
      {.status = OLESTR("201")}};
  return answers;
}

inline HRESULT UploadText(IHdfsClient& client) {
  TextStream source("abc");
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_UNKNOWN;
  variant.punkVal = &source;
  const HRESULT result = client.Upload(variant, VARIANT_TRUE, nullptr);
  EXPECT_EQ(source.references, 1U) << "the source is kept";
  return result;
}

inline HRESULT UploadFile(IHdfsClient& client) {
  const TemporaryFolder folder;
  const std::filesystem::path path = folder.Path() / "source";
  std::ofstream(path) << "abc";
  const std::u16string name = path.u16string();
  const Variant source{WideString(name.begin(), name.end())};
  const HRESULT result = client.Upload(source.Get(), VARIANT_TRUE, nullptr);
  // Where an open file can't be deleted, this is what shows it.
  EXPECT_TRUE(std::filesystem::remove(path)) << "the source is still open";
  return result;
}

/// Reads a stream to its end.
inline HRESULT ReadAll(IStream& stream) {
  char buffer[100];
  ULONG read = 0;
  do {
    const HRESULT result = stream.Read(buffer, sizeof buffer, &read);
    if (FAILED(result)) return result;
  } while (read != 0);
  return S_OK;
}

inline std::vector<HdfsOperation> HdfsOperations() {
  const HdfsAnswer yes = {.chunks = {R"({"boolean":true})"}};
  const HdfsAnswer text = {.chunks = {"one\n", "two\n"}};
  return {
      {"Download to a name",
       {text},
       [](IHdfsClient& client) {
         Bstr saved;
         return client.Download(VARIANT_FALSE, Bstr(OLESTR("out")).Get(), saved.Receive());
       }},
      {"Download to the temporary folder",
       {text},
       [](IHdfsClient& client) { return client.Download(VARIANT_FALSE, nullptr, nullptr); }},
      {"Download to a random name",
       {text},
       [](IHdfsClient& client) { return client.Download(VARIANT_TRUE, nullptr, nullptr); }},
      {"DownloadPreview",
       {text},
       [](IHdfsClient& client) { return client.DownloadPreview(1, nullptr); }},
      {"Stream",
       {text},
       [](IHdfsClient& client) {
         ComPtr<IStream> stream;
         const HRESULT result = client.Stream(stream.Receive());
         return FAILED(result) ? result : ReadAll(*stream);
       }},
      {"GetText",
       {text},
       [](IHdfsClient& client) {
         Bstr found;
         return client.GetText(found.Receive());
       }},
      {"VerifyServer",
       {{.chunks = {R"({"Path":"/"})"}}},
       [](IHdfsClient& client) {
         VARIANT_BOOL isServer = VARIANT_FALSE;
         const HRESULT result =
             client.VerifyServer(Bstr(OLESTR("http://h")).Get(), Variant().Get(), &isServer);
         return result == S_OK && isServer == VARIANT_FALSE ? E_FAIL : result;
       }},
      {"Delete", {yes}, [](IHdfsClient& client) { return client.Delete(VARIANT_TRUE, nullptr); }},
      {"Rename",
       {yes},
       [](IHdfsClient& client) { return client.Rename(Bstr(OLESTR("/new")).Get(), nullptr); }},
      {"CreateFolder",
       {yes},
       [](IHdfsClient& client) { return client.CreateFolder(nullptr, nullptr); }},
      {"Upload of a stream", UploadAnswers(), &UploadText},
      {"Upload of a file", UploadAnswers(), &UploadFile},
  };
}

}  // namespace velandoc::testing
