// The operations of the web services on any answer. The first line of the input is the list's name,
// the document's and a column's; the rest is what the server sends, whatever is asked.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "connection/utf8.h"
#include "platform/wininet.h"
#include "soap/check_out.h"
#include "soap/list_fields.h"
#include "soap/list_items.h"
#include "soap/user_group_service.h"
#include "soap/webs_service.h"

namespace velandoc {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

constexpr char kWeb[] =
    "<WebUrlFromPageUrlResponse xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">http://h"
    "</WebUrlFromPageUrlResponse>";

/// A network on which every request is answered at once, with status 200 and the same body.
class OneAnswer final : public WinInet {
 public:
  explicit OneAnswer(std::string answer) : m_answer(std::move(answer)) {}
  ~OneAnswer() override { Require(m_open == 0); }

  /// The next request alone gets this body.
  void Precede(std::string answer) { m_first = std::move(answer); }

  HINTERNET InternetOpenW(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) override { return Handle(); }
  HINTERNET InternetConnectW(HINTERNET, LPCWSTR, INTERNET_PORT, LPCWSTR, LPCWSTR, DWORD, DWORD,
                             DWORD_PTR) override {
    return Handle();
  }
  HINTERNET HttpOpenRequestW(HINTERNET, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR*, DWORD,
                             DWORD_PTR) override {
    return Handle();
  }
  BOOL HttpSendRequestW(HINTERNET, LPCWSTR, DWORD, LPVOID, DWORD) override {
    m_body = m_first.empty() ? m_answer : std::exchange(m_first, {});
    m_at = 0;
    return TRUE;
  }
  BOOL HttpSendRequestExW(HINTERNET, INTERNET_BUFFERSW*, INTERNET_BUFFERSW*, DWORD,
                          DWORD_PTR) override {
    return FALSE;
  }
  BOOL InternetWriteFile(HINTERNET, LPCVOID, DWORD, DWORD*) override { return FALSE; }
  BOOL HttpEndRequestW(HINTERNET, INTERNET_BUFFERSW*, DWORD, DWORD_PTR) override { return FALSE; }
  BOOL InternetReadFile(HINTERNET, LPVOID buffer, DWORD size, DWORD* read) override {
    *read = static_cast<DWORD>(std::min<std::size_t>(size, m_body.size() - m_at));
    std::memcpy(buffer, m_body.data() + m_at, *read);
    m_at += *read;
    return TRUE;
  }
  BOOL HttpQueryInfoW(HINTERNET, DWORD infoLevel, LPVOID buffer, DWORD* size, DWORD*) override {
    constexpr WideView status = OLESTR("200");
    if (infoLevel != HTTP_QUERY_STATUS_CODE || *size < (status.size() + 1) * sizeof(OLECHAR)) {
      return FALSE;
    }
    std::memcpy(buffer, status.data(), (status.size() + 1) * sizeof(OLECHAR));
    *size = status.size() * sizeof(OLECHAR);
    return TRUE;
  }
  DWORD InternetErrorDlg(HWND, HINTERNET, DWORD, DWORD, LPVOID*) override { return 0; }
  BOOL InternetQueryOptionW(HINTERNET, DWORD, LPVOID, DWORD*) override { return FALSE; }
  BOOL InternetSetOptionW(HINTERNET, DWORD, LPVOID, DWORD) override { return TRUE; }
  BOOL InternetCloseHandle(HINTERNET) override {
    --m_open;
    return TRUE;
  }
  HWND GetActiveWindow() override { return nullptr; }
  DWORD GetLastError() override { return 0; }

 private:
  HINTERNET Handle() {
    ++m_open;
    return this;
  }

  std::string m_answer;
  std::string m_first;
  std::string m_body;
  std::size_t m_at = 0;
  int m_open = 0;
};

void ReadColumns(LPCWSTR name) {
  FieldList fields(1);
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  GetListContentType(connection, name, name, fields);
  Require(!fields.empty() && fields.front().m_name.empty());
}

// `ask` reads into the map that it is given.
template <class Ask>
void ReadRow(Ask ask) {
  const RowAttributes before = {{OLESTR("ows_Before"), OLESTR("1")}};
  RowAttributes row = before;
  if (!ask(row)) Require(row == before);
  FieldList fields(1);
  if (!row.empty()) fields.front().m_name = row.begin()->first.substr(0, 4);
  OverlayRow(row, fields);
}

void ReadTexts(LPCWSTR name) {
  Bstr url(OLESTR("before"));
  if (!WebUrlFromPageUrl(OLESTR("http://h/a"), url)) Require(url.View() == OLESTR("before"));
  Bstr user(OLESTR("before"));
  Bstr id(OLESTR("before"));
  if (!GetUserInfo(OLESTR("http://h"), name, &user, &id)) {
    Require(user.View() == OLESTR("before") && id.View() == OLESTR("before"));
  }
}

void ReadVerdicts(OneAnswer& network, LPCWSTR comment) {
  network.Precede(kWeb);
  CheckOutFile(OLESTR("http://h/a"));
  network.Precede(kWeb);
  CheckInFile(OLESTR("http://h/a"), comment, 1);
  network.Precede(kWeb);
  const std::int32_t undone = UndoCheckOut(OLESTR("http://h/a"));
  Require(undone >= -1 && undone <= 1);
  UndoCheckOut(OLESTR("http://h/a"));  // the input says where the web is
}

void Run(const std::string& input) {
  const std::size_t line = std::min(input.find('\n'), input.size());
  const WideString name = FromUtf8(input.substr(0, line).c_str());
  OneAnswer network(input.substr(std::min(line + 1, input.size())));
  const PortScope<WinInet> scope(network);
  ReadColumns(name.c_str());
  ReadRow([&](RowAttributes& row) {
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    return GetListItems(connection, name.c_str(), name.c_str(), {name}, row);
  });
  ReadRow([&](RowAttributes& row) {
    return UpdateListItems(name.c_str(), OLESTR("http://h"), name.c_str(), name.c_str(), {name},
                           {name}, row);
  });
  ReadTexts(name.c_str());
  ReadVerdicts(network, name.c_str());
}

}  // namespace
}  // namespace velandoc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  velandoc::Run(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
