#include "tests/unit/document/client_fixture.h"

#include "host/velandoc_module.h"
#include "tests/support/field_text.h"
#include "tests/support/variant_text.h"

namespace velandoc::testing {
namespace {

std::string Envelope(const std::string& content) {
  return "<soap:Envelope xmlns:soap='http://schemas.xmlsoap.org/soap/envelope/'><soap:Body>" +
         content + "</soap:Body></soap:Envelope>";
}

constexpr char kUntouched[] = ", written";

}  // namespace

Answer Page(const std::string& lines) { return Answer{.chunks = {AnswerPage(lines)}}; }

Answer UserInfoAnswer(const std::string& attributes) {
  return Answer{.chunks = {Envelope(std::string("<GetUserInfoResponse xmlns='") + kDirectory +
                                    "'><GetUserInfoResult><GetUserInfo><User " + attributes +
                                    "/></GetUserInfo></GetUserInfoResult></GetUserInfoResponse>")}};
}

Answer ContentTypeAnswer(const std::string& fields) {
  return Answer{
      .chunks = {Envelope(std::string("<GetListContentTypeResponse xmlns='") + kService +
                          "'><GetListContentTypeResult><ContentType ID='0x0101'><Fields>" + fields +
                          "</Fields></ContentType></GetListContentTypeResult>"
                          "</GetListContentTypeResponse>")}};
}

Answer RowAnswer(const std::string& attributes) {
  return Answer{
      .chunks = {Envelope(std::string("<GetListItemsResponse xmlns='") + kService +
                          "'><GetListItemsResult><listitems xmlns:rs='urn:schemas-microsoft-com:"
                          "rowset' xmlns:z='#RowsetSchema'><rs:data ItemCount='1'><z:row " +
                          attributes +
                          "/></rs:data></listitems></GetListItemsResult>"
                          "</GetListItemsResponse>")}};
}

PagePairs DocumentPairs(PagePairs more) {
  PagePairs pairs = {{"vti_etag", std::string("SX|&#34;") + kDocId + ",5&#34;"},
                     {"ContentTypeId", "SW|0x0101002F"}};
  pairs.insert(pairs.end(), more.begin(), more.end());
  return pairs;
}

OpenAnswers::OpenAnswers()
    : openService(Page(ServiceLines({{"vti_username", "SX|EXAMPLE&#92;jane"}}))),
      userInfo(UserInfoAnswer("ID='12' Name='Jane Doe' LoginName='EXAMPLE\\jane'")),
      webUrl(Page(WebUrlLines("/sites/a", "Shared/b.xlsx"))),
      document(Page(DocumentLines("Shared/b.xlsx", DocumentPairs()))),
      folder(Page(FolderLines("Shared", {{"vti_listname", std::string("SX|") + kListId}}))),
      contentType(ContentTypeAnswer(
          "<Field Name='Title' DisplayName='Title' Type='Text' Required='TRUE' SourceID='x'/>"
          "<Field Name='Status' Type='Choice' SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'>"
          "<CHOICES><CHOICE>Draft</CHOICE><CHOICE>Final</CHOICE></CHOICES></Field>")),
      row(RowAnswer("ows_ID='7' ows_Title='Plan' ows_Status='Final'")) {}

std::vector<Answer> OpenAnswers::InOrder() const {
  return {openService, userInfo, webUrl, document, folder, contentType, row};
}

ClientTest::ClientTest() {
  // Objects count in the module.
  Module();
  // The request for the row overwrites the handle of that for the columns.
  m_platform.closesChildren = true;
  Renew();
}

void ClientTest::Renew() {
  CComObject<CClient>* client = nullptr;
  ASSERT_EQ(CComObject<CClient>::CreateInstance(&client), S_OK);
  m_client = client;
}

bool ClientTest::Open(WideView url) {
  const std::vector<Answer> answers = m_site.InOrder();
  m_platform.answers.assign(answers.begin(), answers.end());
  VARIANT_BOOL success = 7;
  EXPECT_EQ(m_client->InitFromURL(Bstr(url).Get(), &success), S_OK);
  EXPECT_TRUE(success == VARIANT_TRUE || success == VARIANT_FALSE) << success;
  return success == VARIANT_TRUE;
}

std::string ClientTest::Text(HRESULT (STDMETHODCALLTYPE IClient::*get)(BSTR*)) {
  Bstr text;
  const HRESULT result = (m_client.Get()->*get)(text.Receive());
  if (text.Get() == nullptr) return DescribeResult(result) + " null";
  return (result == S_OK ? "" : DescribeResult(result) + " ") + Printable(text.Get());
}

std::string ClientTest::Flag(HRESULT (STDMETHODCALLTYPE IClient::*ask)(VARIANT_BOOL*)) {
  VARIANT_BOOL flag = 7;
  const HRESULT result = (m_client.Get()->*ask)(&flag);
  if (result != S_OK) return DescribeResult(result) + (flag == 7 ? "" : kUntouched);
  if (flag != VARIANT_TRUE && flag != VARIANT_FALSE) return std::to_string(flag);
  return flag == VARIANT_TRUE ? "true" : "false";
}

std::string ClientTest::Number(HRESULT (STDMETHODCALLTYPE IClient::*get)(LONGLONG*)) {
  LONGLONG number = 7;
  const HRESULT result = (m_client.Get()->*get)(&number);
  if (result != S_OK) return DescribeResult(result) + (number == 7 ? "" : kUntouched);
  return std::to_string(number);
}

std::string ClientTest::Integer(HRESULT (STDMETHODCALLTYPE IClient::*get)(INT*)) {
  INT number = 77;
  const HRESULT result = (m_client.Get()->*get)(&number);
  if (result != S_OK) return DescribeResult(result) + (number == 77 ? "" : kUntouched);
  return std::to_string(number);
}

std::string ClientTest::MetaInfo(WideView key) {
  Variant value(OLESTR("from before"));
  const HRESULT result = m_client->get_FrontPageMetaInfo(Bstr(key).Get(), &value.Get());
  return (result == S_OK ? "" : DescribeResult(result) + " ") + DescribeVariant(value.Get());
}

std::string ClientTest::State() {
  std::string state;
  const auto add = [&state](const char* name, const std::string& value) {
    if (!value.empty()) state.append(name).append(": ").append(value).append("\n");
  };
  add("URL", Text(&IClient::get_URL));
  add("WebURL", Text(&IClient::get_WebURL));
  add("web path", Printable(m_client->WebPath().c_str()));
  add("login", Printable(m_client->UserLogin().c_str()));
  add("name", Printable(m_client->UserName().c_str()));
  add("DocID", Text(&IClient::get_DocID));
  add("ListID", Text(&IClient::get_ListID));
  add("ContentTypeID", Text(&IClient::get_ContentTypeID));
  std::string keys;
  for (const auto& [key, value] : m_client->MetaInfo().m_values) {
    keys += (keys.empty() ? "" : " ") + Printable(key.c_str());
  }
  add("meta-info", keys);
  add("row", RowText(m_client->ItemAttributes()));
  add("fields", FieldTexts(m_client->Fields()));
  return state;
}

}  // namespace velandoc::testing
