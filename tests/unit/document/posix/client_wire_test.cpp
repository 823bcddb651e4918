// The seven requests of an open and the two of a check-out, byte for byte as this home sends them.
//
// The server stands in as a proxy, because the client asks on the default port, which no test can
// have: hence the whole URLs in the first lines. A line of the transcript ends in CRLF where the
// request is a head, and where a web service's envelope ends.
#include "tests/unit/document/posix/standin_fixture.h"

namespace velandoc::test {
namespace {

// Who is the caller, by login; who by name; in which web the document is; what is known of it, and
// of its folder, which tells the list; which columns it has; what its row holds.
// clang-format off
constexpr char kOpen[] = R"wire(POST http://docs.example.test:80/_vti_bin/_vti_aut/author.dll HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 19
User-Agent: CWinInetConnection
Content-Type: application/x-vermeer-urlencoded
X-Vermeer-Content-Type: application/x-vermeer-urlencoded
Connection: Keep-Alive

method=open+service

POST http://docs.example.test:80/_vti_bin/usergroup.asmx HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 245
User-Agent: CWinInetConnection
Content-Type: text/xml; charset=utf-8
SOAPAction: http://schemas.microsoft.com/sharepoint/soap/directory/GetUserInfo
Connection: Keep-Alive

<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body><GetUserInfo xmlns="http://schemas.microsoft.com/sharepoint/soap/directory/"><userLoginName>EXAMPLE\jane</userLoginName></GetUserInfo></soap:Body></soap:Envelope>

POST http://docs.example.test:80/_vti_bin/shtml.dll/_vti_rpc HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 80
User-Agent: CWinInetConnection
Content-Type: application/x-vermeer-urlencoded
X-Vermeer-Content-Type: application/x-vermeer-urlencoded
Connection: Keep-Alive

method=url+to+web+url%3a12.0.0.6665&url=%2fsites%2fa%2fShared+Documents%2fb.xlsx

POST http://docs.example.test:80/sites/a/_vti_bin/_vti_aut/author.dll HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 133
User-Agent: CWinInetConnection
Content-Type: application/x-vermeer-urlencoded
X-Vermeer-Content-Type: application/x-vermeer-urlencoded
Connection: Keep-Alive

method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5bShared+Documents%2fb.xlsx%5d&listHiddenDocs=false&listLinkInfo=true

POST http://docs.example.test:80/sites/a/_vti_bin/_vti_aut/author.dll HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 124
User-Agent: CWinInetConnection
Content-Type: application/x-vermeer-urlencoded
X-Vermeer-Content-Type: application/x-vermeer-urlencoded
Connection: Keep-Alive

method=getDocsMetaInfo%3a12.0.0.6665&service_name=%2f&url_list=%5bShared+Documents%5d&listHiddenDocs=false&listLinkInfo=true

POST http://docs.example.test:80/sites/a//_vti_bin/lists.asmx HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 336
User-Agent: CWinInetConnection
Content-Type: text/xml; charset=utf-8
SOAPAction: http://schemas.microsoft.com/sharepoint/soap/GetListContentType
Connection: Keep-Alive

<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body><GetListContentType xmlns="http://schemas.microsoft.com/sharepoint/soap/"><listName>{3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}</listName><contentTypeId>0x0101002F4C6B8A9D1E3A5C7E90B2D4F6081A3C</contentTypeId></GetListContentType></soap:Body></soap:Envelope>

POST http://docs.example.test:80/sites/a//_vti_bin/lists.asmx HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 512
User-Agent: CWinInetConnection
Content-Type: text/xml; charset=utf-8
SOAPAction: http://schemas.microsoft.com/sharepoint/soap/GetListItems
Connection: Keep-Alive

<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body><GetListItems xmlns="http://schemas.microsoft.com/sharepoint/soap/"><listName>{3F1C7A52-0D5B-4E0A-9B59-6C2F0E4D7A10}</listName><query><Query xmlns=""><Where><Eq><FieldRef Name="UniqueId"/><Value Type="string">{5D1F0E3A-6B2C-4A7D-8E90-1F2A3B4C5D6E}</Value></Eq></Where></Query></query><queryOptions><QueryOptions xmlns=""><ViewAttributes Scope="Recursive"/></QueryOptions></queryOptions></GetListItems></soap:Body></soap:Envelope>

)wire";
// In which web the page is; and check it out there.
constexpr char kCheckOut[] = R"wire(POST http://docs.example.test:80/_vti_bin/webs.asmx HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 279
User-Agent: CWinInetConnection
Content-Type: text/xml; charset=utf-8
SOAPAction: http://schemas.microsoft.com/sharepoint/soap/WebUrlFromPageUrl
Connection: Keep-Alive

<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body><WebUrlFromPageUrl xmlns="http://schemas.microsoft.com/sharepoint/soap/"><pageUrl>http://docs.example.test/sites/a/Shared Documents/b.xlsx</pageUrl></WebUrlFromPageUrl></soap:Body></soap:Envelope>

POST http://docs.example.test:80/sites/a/_vti_bin/lists.asmx HTTP/1.1
Accept: text/*
Host: docs.example.test
Content-Length: 308
User-Agent: CWinInetConnection
Content-Type: text/xml; charset=utf-8
SOAPAction: http://schemas.microsoft.com/sharepoint/soap/CheckOutFile
Connection: Keep-Alive

<soap:Envelope xmlns:soap="http://schemas.xmlsoap.org/soap/envelope/"><soap:Body><CheckOutFile xmlns="http://schemas.microsoft.com/sharepoint/soap/"><pageUrl>http://docs.example.test/sites/a/Shared Documents/b.xlsx</pageUrl><checkOutToLocal>true</checkOutToLocal></CheckOutFile></soap:Body></soap:Envelope>

)wire";
// clang-format on

class ClientWire : public StandInClientTest {
 protected:
  /// What was sent since the last call, with an empty line behind each body.
  std::string Sent() {
    std::string transcript;
    for (const StandInRequest& request : m_server->Log()) {
      const std::string bytes = request.head + request.body;
      for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (bytes[at] == '\n' && (at == 0 || bytes[at - 1] != '\r')) {
          transcript += "<LF alone>";
        } else if (bytes[at] == '\r' && (at + 1 == bytes.size() || bytes[at + 1] != '\n')) {
          transcript += "<CR alone>";
        } else if (bytes[at] != '\r') {
          transcript += bytes[at];
        }
      }
      transcript += bytes.ends_with('\n') ? "\n" : "\n\n";
    }
    m_server->ClearLog();
    return transcript;
  }
};

TEST_F(ClientWire, TheSevenRequestsOfAnOpen) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(Sent(), kOpen);
}

TEST_F(ClientWire, TheNineRequestsOfAnOpenAndACheckOut) {
  ASSERT_TRUE(Open());
  VARIANT_BOOL success = 7;
  ASSERT_EQ(m_client->CheckOut(&success), S_OK);
  EXPECT_EQ(success, VARIANT_TRUE);
  EXPECT_EQ(Sent(), std::string(kOpen) + kCheckOut);
}

}  // namespace
}  // namespace velandoc::test
