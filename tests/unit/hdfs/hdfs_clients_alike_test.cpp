// What does not differ between the two HDFS clients and needs no network.
#include "hdfs/hdfs_client.h"
#include "hdfs/hdfs_client_winhttp.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_stream.h"
#include "tests/unit/hdfs/hdfs_client_fixture.h"
#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// `Fixture` is that of a client; `kClass` its name in the debugger.
template <class Fixture>
class HdfsClientsAlikeTest : public Fixture {
 protected:
  static constexpr const char* kClass =
      std::is_same_v<Fixture, HdfsClientTest> ? "CHdfsClient" : "CHdfsClientWinHttp";

  HdfsClientsAlikeTest() {
    this->m_services.texts[0x80070057] = OLESTR("bad argument\r\n");
    this->m_services.texts[0x80070002] = OLESTR("no such file\r\n");
    this->m_services.texts[0x80004002] = OLESTR("no such interface\r\n");
    this->m_services.texts[0x80004004] = OLESTR("aborted\r\n");
  }
  HRESULT Upload(const VARIANT& source, LPCOLESTR permissions = OLESTR("")) {
    return this->m_client->Upload(source, VARIANT_TRUE, Bstr(permissions).Get());
  }
  HRESULT Upload(TextStream& stream) {
    VARIANT source;
    VariantInit(&source);
    source.vt = VT_UNKNOWN;
    source.punkVal = &stream;
    const HRESULT result = Upload(source);
    EXPECT_EQ(stream.references, 1U) << "the stream was not released";
    return result;
  }
  /// Refused before anything else happened, without the line of an exception.
  void ExpectUploadRefused(const std::string& text) {
    EXPECT_EQ(this->OnTheThread(), "HDFS Client Upload: " + text);
    EXPECT_EQ(this->Error(), "0 " + text);
    EXPECT_EQ(this->Op(), "OPEN");
    EXPECT_THAT(this->m_platform.calls, IsEmpty());
    EXPECT_THAT(this->m_services.lines, IsEmpty());
  }
};

using Fixtures = ::testing::Types<HdfsClientTest, HdfsClientWinHttpTest>;
TYPED_TEST_SUITE(HdfsClientsAlikeTest, Fixtures);

TYPED_TEST(HdfsClientsAlikeTest, SettersKeepWhatTheyAreGiven) {
  const struct {
    HRESULT (STDMETHODCALLTYPE IHdfsClient::*put)(BSTR);
    HRESULT (STDMETHODCALLTYPE IHdfsClient::*get)(BSTR*);
  } rows[] = {{&IHdfsClient::put_ServerName, &IHdfsClient::get_ServerName},
              {&IHdfsClient::put_HdfsPath, &IHdfsClient::get_HdfsPath},
              {&IHdfsClient::put_UserName, &IHdfsClient::get_UserName},
              {&IHdfsClient::put_Op, &IHdfsClient::get_Op}};
  for (const auto& row : rows) {
    for (const LPCOLESTR value : {OLESTR("a b/\u00e9 ?"), OLESTR("")}) {
      EXPECT_EQ((this->m_client.Get()->*row.put)(Bstr(value).Get()), S_OK);
      Bstr text;
      EXPECT_EQ((this->m_client.Get()->*row.get)(text.Receive()), S_OK);
      EXPECT_EQ(text.Text(), value);
    }
    EXPECT_EQ((this->m_client.Get()->*row.put)(nullptr), S_OK);
  }
  for (const INT value : {0, 1, 2, 3, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(this->m_client->put_Options(value), S_OK);
    INT options = 77;
    this->m_client->get_Options(&options);
    EXPECT_EQ(options, value);
  }
  EXPECT_EQ(this->m_client->put_Port(65535), S_OK);
  USHORT port = 0;
  this->m_client->get_Port(&port);
  EXPECT_EQ(port, 65535);
  EXPECT_EQ(this->m_client->put_Secure(7), S_OK);
  VARIANT_BOOL secure = VARIANT_FALSE;
  this->m_client->get_Secure(&secure);
  EXPECT_EQ(secure, 7) << "as it comes";
}

TYPED_TEST(HdfsClientsAlikeTest, SecureAloneLeavesThePort) {
  this->m_client->put_Secure(VARIANT_TRUE);
  Bstr text;
  this->m_client->get_BaseUrl(text.Receive());
  EXPECT_EQ(text.Text(), OLESTR("https://h:50070"));
}

TYPED_TEST(HdfsClientsAlikeTest, ItCanBeAggregated) {
  using Client = std::conditional_t<std::is_same_v<TypeParam, HdfsClientTest>, CHdfsClient,
                                    CHdfsClientWinHttp>;
  ComPtr<IUnknown> outer;
  EXPECT_EQ(this->m_client->QueryInterface(IID_IUnknown, outer.ReceiveVoid()), S_OK);
  ComPtr<IUnknown> inner;
  EXPECT_EQ(Client::CreateObject(outer.Get(), IID_IUnknown, inner.ReceiveVoid()), S_OK);
  ComPtr<IHdfsClient> client;
  EXPECT_EQ(inner->QueryInterface(IID_IHdfsClient, client.ReceiveVoid()), S_OK);
  ComPtr<IUnknown> identity;
  EXPECT_EQ(client->QueryInterface(IID_IUnknown, identity.ReceiveVoid()), S_OK);
  EXPECT_EQ(identity.Get(), outer.Get());
}

TYPED_TEST(HdfsClientsAlikeTest, ScriptsFindTheMembersByTheirNumbers) {
  const struct {
    LPCOLESTR name;
    DISPID id;
  } rows[] = {{OLESTR("Port"), 1},
              {OLESTR("ServerName"), 2},
              {OLESTR("HdfsPath"), 3},
              {OLESTR("Download"), 4},
              {OLESTR("BaseUrl"), 5},
              {OLESTR("Stream"), 6},
              {OLESTR("DownloadPreview"), 7},
              {OLESTR("UserName"), 8},
              {OLESTR("VerifyServer"), 10},
              {OLESTR("Secure"), 11},
              {OLESTR("URL"), 12},
              {OLESTR("ConnectionError"), 14},
              {OLESTR("Op"), 15},
              {OLESTR("GetText"), 16},
              {OLESTR("Options"), 17},
              {OLESTR("Upload"), 18},
              {OLESTR("Delete"), 19},
              {OLESTR("Rename"), 20},
              {OLESTR("CreateFolder"), 21}};
  for (const auto& row : rows) {
    LPOLESTR names[] = {const_cast<LPOLESTR>(row.name)};
    DISPID id = 0;
    EXPECT_EQ(this->m_client->GetIDsOfNames(IID_NULL, names, 1, 0x409, &id), S_OK);
    EXPECT_EQ(id, row.id) << Printable(row.name);
  }
}

TYPED_TEST(HdfsClientsAlikeTest, APathTogetherWithARandomNameIsRefusedAndTouchesNoFile) {
  Bstr saved;
  EXPECT_EQ(this->m_client->Download(VARIANT_TRUE, Bstr(OLESTR("out")).Get(), saved.Receive()),
            E_INVALIDARG);
  EXPECT_EQ(saved.Get(), nullptr);
  EXPECT_THAT(this->m_files.files, IsEmpty());
  EXPECT_THAT(this->m_platform.calls, IsEmpty());
  EXPECT_EQ(this->Error(), "none");
}

TYPED_TEST(HdfsClientsAlikeTest, AFileThatIsNotThereIsTheSystemsFailure) {
  constexpr auto kNotFound = static_cast<HRESULT>(0x80070002);
  const TemporaryFolder folder;
  const std::string narrow = (folder.Path() / "none").string();
  const Variant source(WideString(narrow.begin(), narrow.end()));
  EXPECT_EQ(this->Upload(source.Get()), kNotFound);
  this->ExpectUploadRefused("no such file");
}

TYPED_TEST(HdfsClientsAlikeTest, BadPermissionsOfAnUploadAreRefusedWithHttpCode0) {
  for (const LPCOLESTR permissions : {OLESTR("999"), OLESTR("75"), OLESTR("7555"), OLESTR("rwx")}) {
    // Before the source is looked at, which is none.
    EXPECT_EQ(this->Upload(Variant(7, VT_I4).Get(), permissions), E_INVALIDARG);
    this->ExpectUploadRefused("bad argument");
  }
}

TYPED_TEST(HdfsClientsAlikeTest, AnIntegerAndOtherThingsAreNoSource) {
  for (const VARTYPE type : {VT_I4, VT_EMPTY, VT_NULL, VT_UNKNOWN, VT_DISPATCH}) {
    VARIANT source{};
    source.vt = type;
    EXPECT_EQ(this->Upload(source), E_NOINTERFACE) << type;
    this->ExpectUploadRefused("no such interface");
  }
  TextStream stream("x");
  stream.queryResult = E_NOINTERFACE;
  EXPECT_EQ(this->Upload(stream), E_NOINTERFACE);
  this->ExpectUploadRefused("no such interface");
}

TYPED_TEST(HdfsClientsAlikeTest, AnObjectThatFailsOtherwiseToGiveItsStreamIsAnException) {
  TextStream stream("x");
  stream.queryResult = E_ABORT;
  EXPECT_EQ(this->Upload(stream), E_ABORT);
  EXPECT_THAT(this->m_services.lines, ElementsAre(std::string("Exception in automation method [") +
                                                  this->kClass + "::Upload]: aborted"));
  EXPECT_EQ(this->Error(), "none");
}

}  // namespace
}  // namespace velandoc::testing
