// The request bodies byte for byte, as this home's own serializer writes them.

#include <gtest/gtest.h>

#include "soap/soap_connection.h"
#include "tests/support/fault_dom.h"
#include "tests/support/scripted_wininet.h"

namespace velandoc {
namespace {

using testing::Answer;
using testing::ComScope;
using testing::ScriptedWinInet;

class SoapBytes : public ::testing::Test {
 protected:
  std::string BodyOf(const CSoapEnvelope& envelope) {
    ScriptedWinInet platform;
    PortScope<WinInet> scope(platform);
    platform.answers = {Answer{.chunks = {"<a/>"}}};
    CSoapConnection connection(OLESTR("http://h/_vti_bin/lists.asmx"));
    ComPtr<IXMLDOMDocument2> response;
    EXPECT_EQ(connection.Call(envelope, response), S_OK);
    return platform.bodies.at(0);
  }

  ComScope m_com;
};

TEST_F(SoapBytes, AMethodWithoutParameters) {
  EXPECT_EQ(BodyOf(CSoapEnvelope(OLESTR("GetListCollection"))),
            "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
            "<GetListCollection xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\"/>"
            "</soap:Body></soap:Envelope>\r\n");
}

TEST_F(SoapBytes, TextParameters) {
  CSoapEnvelope envelope(OLESTR("GetListContentType"));
  envelope.AddParameter(OLESTR("listName"), OLESTR("{A1}"));
  envelope.AddParameter(OLESTR("contentTypeId"), OLESTR("0x01 & <\u00e9>"));
  EXPECT_EQ(BodyOf(envelope),
            "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
            "<GetListContentType xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">"
            "<listName>{A1}</listName><contentTypeId>0x01 &amp; &lt;\xC3\xA9&gt;</contentTypeId>"
            "</GetListContentType></soap:Body></soap:Envelope>\r\n");
}

TEST_F(SoapBytes, AFragment) {
  CSoapEnvelope envelope(OLESTR("GetListItems"));
  envelope.AddXmlParameter(OLESTR("query"), OLESTR("<Query><Eq a='1'>x</Eq></Query>"));
  EXPECT_EQ(BodyOf(envelope),
            "<soap:Envelope xmlns:soap=\"http://schemas.xmlsoap.org/soap/envelope/\"><soap:Body>"
            "<GetListItems xmlns=\"http://schemas.microsoft.com/sharepoint/soap/\">"
            "<query><Query xmlns=\"\"><Eq a=\"1\">x</Eq></Query></query>"
            "</GetListItems></soap:Body></soap:Envelope>\r\n");
}

}  // namespace
}  // namespace velandoc
