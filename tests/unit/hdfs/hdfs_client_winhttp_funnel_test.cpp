// What a host sees when something below a method raises, by each of the funnel's ways.
#include <stdexcept>

#include "platform/mfc/exceptions.h"
#include "tests/support/thread_error.h"
#include "tests/unit/hdfs/hdfs_client_winhttp_fixture.h"

namespace velandoc::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WordlessException final : public CException {};

/// A platform whose first operation raises.
class RaisingWinHttp final : public ScriptedWinHttp {
 public:
  explicit RaisingWinHttp(void (*raise)()) : m_raise(raise) {}
  HINTERNET WinHttpOpen(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD) override {
    m_raise();
    return nullptr;
  }

 private:
  void (*m_raise)();
};

const std::string kLine = "Exception in automation method [CHdfsClientWinHttp::Download]: ";

class HdfsClientWinHttpFunnelTest : public HdfsClientWinHttpTest {
 protected:
  HRESULT Download(void (*raise)()) {
    RaisingWinHttp platform(raise);
    const PortScope<WinHttp> scope(platform);
    Bstr saved;
    const HRESULT result =
        m_client->Download(VARIANT_FALSE, Bstr(OLESTR("out")).Get(), saved.Receive());
    EXPECT_THAT(m_files.files, IsEmpty()) << "whatever ends it, no file is left";
    EXPECT_EQ(saved.Get(), nullptr);
    return result;
  }
};

TEST_F(HdfsClientWinHttpFunnelTest, AnOleExceptionsCodeIsTheResult) {
  EXPECT_EQ(Download([] { AfxThrowOleException(E_INVALIDARG); }), E_INVALIDARG);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_THAT(m_services.lines, ElementsAre(kLine + "bad argument"));
}

TEST_F(HdfsClientWinHttpFunnelTest, AnOleExceptionOfSFalseIsThatWithoutALine) {
  EXPECT_EQ(Download([] { AfxThrowOleException(S_FALSE); }), S_FALSE);
  EXPECT_THAT(m_services.lines, IsEmpty());
}

TEST_F(HdfsClientWinHttpFunnelTest, AnotherExceptionOfMfcWithoutWordsIsEFailInTheSystems) {
  EXPECT_EQ(Download([] { throw new WordlessException; }), E_FAIL);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_THAT(m_services.lines, ElementsAre(kLine + "failed"));
}

TEST_F(HdfsClientWinHttpFunnelTest, AComErrorWithoutAnObjectIsItsCode) {
  m_services.texts[0x80004003] = OLESTR("a null pointer\r\n");
  EXPECT_EQ(Download([] { throw _com_error(E_POINTER); }), E_POINTER);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_THAT(m_services.lines, ElementsAre(kLine + "a null pointer"));
}

TEST_F(HdfsClientWinHttpFunnelTest, AComErrorsObjectReachesTheHost) {
  static IErrorInfo* thrown = nullptr;
  const ComPtr<IErrorInfo> info = MakeErrorInfo(OLESTR("the name node is in safe mode"));
  thrown = info.Get();
  EXPECT_EQ(Download([] { throw _com_error(E_ABORT, thrown, true); }), E_ABORT);
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_OK);
  EXPECT_EQ(left.Get(), thrown);
  EXPECT_THAT(m_services.lines, ElementsAre(kLine + "the name node is in safe mode"));
  info->Release();  // what the funnel keeps
}

TEST_F(HdfsClientWinHttpFunnelTest, AnyOtherExceptionIsEFailWithoutAnObject) {
  EXPECT_EQ(Download([] { throw std::runtime_error("unheard"); }), E_FAIL);
  EXPECT_EQ(Download([] { throw 7; }), E_FAIL);
  EXPECT_EQ(OnTheThread(), "none");
  EXPECT_THAT(m_services.lines, ElementsAre(kLine + "failed", kLine + "failed"));
  EXPECT_EQ(Error(), "0 ") << "of a request that never went out";
}

}  // namespace
}  // namespace velandoc::testing
