#include "document/unc_path.h"

#include "platform/shell.h"

namespace velandoc {
namespace {

// In characters. The two buffers for URLs differ: the longer one takes a share's root, the shorter
// one the result, whose limit callers know.
constexpr std::size_t kPartSize = 260;
constexpr DWORD kRemoteSize = 1024;
constexpr DWORD kShareUrlSize = 2024;
constexpr DWORD kUrlSize = 1024;

}  // namespace

WideString UncToHttpUrl(LPCWSTR path) {
  Shell& shell = CurrentPort<Shell>();
  // No result is looked at: what fails leaves its text empty, and an empty text is the answer.
  OLECHAR drive[kPartSize]{};
  OLECHAR folder[kPartSize]{};
  OLECHAR name[kPartSize]{};
  OLECHAR extension[kPartSize]{};
  shell._wsplitpath_s(path, drive, kPartSize, folder, kPartSize, name, kPartSize, extension,
                      kPartSize);
  WideString unc;
  if (drive[0] == OLESTR('\0')) {
    unc = path;
  } else {
    OLECHAR remote[kRemoteSize]{};
    DWORD remoteSize = kRemoteSize;
    shell.WNetGetConnectionW(drive, remote, &remoteSize);
    unc = WideString(remote) + folder + name + extension;

    // Nobody needs the share's URL. The redirector is asked for it all the same, before it is asked
    // for the file's.
    OLECHAR shareBuffer[kShareUrlSize]{};
    DWORD shareSize = kShareUrlSize;
    shell.DavGetHTTPFromUNCPath(remote, shareBuffer, &shareSize);
    [[maybe_unused]] const WideString shareUrl(shareBuffer);
  }
  OLECHAR url[kUrlSize]{};
  DWORD urlSize = kUrlSize;
  shell.DavGetHTTPFromUNCPath(unc.c_str(), url, &urlSize);
  return url;
}

}  // namespace velandoc
