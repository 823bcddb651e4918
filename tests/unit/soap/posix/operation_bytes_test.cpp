// The request of each operation byte for byte, as this home's own serializer writes it.

#include <gtest/gtest.h>

#include "soap/check_out.h"
#include "soap/list_fields.h"
#include "soap/list_items.h"
#include "soap/user_group_service.h"
#include "soap/webs_service.h"
#include "tests/unit/soap/service_fixture.h"

namespace velandoc {
namespace {

const std::string kBefore =
    "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>";
const std::string kBehind = "</soap:Body></soap:Envelope>\r\n";
const std::string kNamespace = " xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">";
constexpr LPCWSTR kPage = OLESTR("http://h/s/D/b & c.xlsx");
constexpr char kPageElement[] = "<pageUrl>http://h/s/D/b &amp; c.xlsx</pageUrl>";

class OperationBytes : public testing::ServiceTest {
 protected:
  // The body of the last request, without the envelope round it.
  std::string LastBody() {
    const std::string body = m_platform.bodies.empty() ? "" : m_platform.bodies.back();
    if (body.size() < kBefore.size() + kBehind.size() || body.rfind(kBefore, 0) != 0 ||
        body.substr(body.size() - kBehind.size()) != kBehind) {
      ADD_FAILURE() << body;
      return body;
    }
    return body.substr(kBefore.size(), body.size() - kBefore.size() - kBehind.size());
  }
  void AnswerWithWeb() {
    m_platform.answers = {
        Xml(Envelope(std::string("<WebUrlFromPageUrlResponse xmlns='") + testing::kService +
                     "'>http://h/s</WebUrlFromPageUrlResponse>")),
        Xml("<a/>")};
  }
};

TEST_F(OperationBytes, WebUrlFromPageUrl) {
  m_platform.answers = {Xml("<a/>")};
  Bstr url;
  WebUrlFromPageUrl(kPage, url);
  EXPECT_EQ(LastBody(), "<WebUrlFromPageUrl" + kNamespace + kPageElement + "</WebUrlFromPageUrl>");
}

TEST_F(OperationBytes, GetUserInfo) {
  m_platform.answers = {Xml("<a/>")};
  GetUserInfo(OLESTR("http://h"), OLESTR("DOM\\\u00e4nn"), nullptr, nullptr);
  EXPECT_EQ(LastBody(),
            "<GetUserInfo xmlns=\"http://schemas.microsoft.com/sharepoint/soap/directory/\">"
            "<userLoginName>DOM\\\xC3\xA4nn</userLoginName></GetUserInfo>");
}

TEST_F(OperationBytes, GetListContentType) {
  m_platform.answers = {Xml("<a/>")};
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  FieldList fields;
  GetListContentType(connection, OLESTR("{L}"), OLESTR("0x0101"), fields);
  EXPECT_EQ(LastBody(), "<GetListContentType" + kNamespace +
                            "<listName>{L}</listName><contentTypeId>0x0101</contentTypeId>"
                            "</GetListContentType>");
}

TEST_F(OperationBytes, GetListItems) {
  m_platform.answers = {Xml("<a/>")};
  CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
  RowAttributes row;
  GetListItems(connection, OLESTR("{U}"), OLESTR("{L}"), {OLESTR("ID")}, row);
  EXPECT_EQ(LastBody(),
            "<GetListItems" + kNamespace +
                "<listName>{L}</listName><query><Query xmlns=\"\"><Where><Eq><FieldRef "
                "Name=\"UniqueId\"/><Value Type=\"string\">{U}</Value></Eq></Where></Query></query>"
                "<queryOptions><QueryOptions xmlns=\"\"><ViewAttributes Scope=\"Recursive\"/>"
                "</QueryOptions></queryOptions><viewFields><ViewFields xmlns=\"\"><FieldRef "
                "Name=\"ID\"/></ViewFields></viewFields></GetListItems>");
}

TEST_F(OperationBytes, UpdateListItems) {
  m_platform.answers = {Xml("<a/>")};
  RowAttributes row;
  UpdateListItems(OLESTR("http://h/s/D/b.xlsx"), OLESTR("http://h/s"), OLESTR("{L}"), OLESTR("7"),
                  {OLESTR("Title")}, {OLESTR("\u20ac 1 \"x\"")}, row);
  EXPECT_EQ(
      LastBody(),
      "<UpdateListItems" + kNamespace +
          "<listName>{L}</listName><updates><Batch xmlns=\"\"><Method ID=\"1\" "
          "Cmd=\"Update\"><Field Name=\"ID\">7</Field><FileRef "
          "Name=\"FileRef\">http://h/s/D/b.xlsx</FileRef><Field Name=\"Title\">\xE2\x82\xAC 1 "
          "\"x\"</Field></Method></Batch></updates></UpdateListItems>");
}

TEST_F(OperationBytes, CheckOutFile) {
  AnswerWithWeb();
  CheckOutFile(kPage);
  EXPECT_EQ(LastBody(), "<CheckOutFile" + kNamespace + kPageElement +
                            "<checkOutToLocal>true</checkOutToLocal></CheckOutFile>");
}

TEST_F(OperationBytes, CheckInFile) {
  AnswerWithWeb();
  CheckInFile(kPage, OLESTR("a <b>"), 1);
  EXPECT_EQ(LastBody(), "<CheckInFile" + kNamespace + kPageElement +
                            "<comment>a &lt;b&gt;</comment><checkinType>1</checkinType>"
                            "</CheckInFile>");
  AnswerWithWeb();
  CheckInFile(kPage, nullptr, 7);
  EXPECT_EQ(LastBody(), "<CheckInFile" + kNamespace + kPageElement +
                            "<comment/><checkinType>7</checkinType></CheckInFile>");
}

TEST_F(OperationBytes, UndoCheckOut) {
  AnswerWithWeb();
  UndoCheckOut(kPage);
  EXPECT_EQ(LastBody(), "<UndoCheckOut" + kNamespace + kPageElement + "</UndoCheckOut>");
}

}  // namespace
}  // namespace velandoc
