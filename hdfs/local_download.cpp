#include "hdfs/local_download.h"

#include "hdfs/download_file.h"
#include "hdfs/local_path.h"
#include "platform/owners.h"

namespace velandoc {
namespace {

constexpr unsigned char kUtf8Mark[] = {0xEF, 0xBB, 0xBF};

/// The file is kept and its path given to the caller, or neither.
HRESULT Hand(DownloadFile& file, BSTR* savedPath) {
  Bstr path(file.Path());
  file.Keep();
  if (savedPath != nullptr) *savedPath = path.Detach();
  return S_OK;
}

}  // namespace

HRESULT DownloadToFile(WideView hdfsPath, VARIANT_BOOL randomName, BSTR localPath, BSTR* savedPath,
                       const FetchBody& fetch) {
  const WideView wanted = ViewOf(localPath);
  const bool isRandom = randomName != VARIANT_FALSE;
  if (!wanted.empty() && isRandom) return E_INVALIDARG;
  DownloadFile file(MakeLocalPath(hdfsPath, isRandom, wanted), isRandom);
  if (!file.Open()) return E_ACCESSDENIED;
  return fetch(file.Sink()) ? Hand(file, savedPath) : E_FAIL;
}

HRESULT DownloadToPreview(WideView hdfsPath, BSTR* savedPath, const FetchBody& fetch) {
  DownloadFile file(MakeLocalPath(hdfsPath, true, {}), true);
  if (!file.Open()) return E_ACCESSDENIED;
  // Before anything is known of the coding; UTF-16 gets them too.
  file.Sink().Write(kUtf8Mark, sizeof kUtf8Mark);
  return fetch(file.Sink()) ? Hand(file, savedPath) : E_FAIL;
}

}  // namespace velandoc
