#include "hdfs/connection_error.h"

#include <gtest/gtest.h>

#include "hdfs/error_texts.h"
#include "host/velandoc_module.h"
#include "platform/owners.h"
#include "tests/support/scripted_error_services.h"
#include "tests/support/thread_error.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using testing::DescribeVariant;
using testing::TakeThreadError;

class ConnectionErrorTest : public ::testing::Test {
 protected:
  ConnectionErrorTest() {
    EXPECT_EQ(Module().GetLockCount(), 0);
    CComObject<CConnectionError>::CreateInstance(&m_object);
    m_error = ComPtr<IConnectionError>(m_object);
  }
  void TearDown() override {
    m_error.Reset();
    EXPECT_EQ(Module().GetLockCount(), 0);
  }
  std::string Message() {
    Bstr message;
    EXPECT_EQ(m_error->get_Message(message.Receive()), S_OK);
    EXPECT_NE(message.Get(), nullptr);
    return DescribeText(message.View());
  }
  LONG HttpCode() {
    LONG code = -1;
    EXPECT_EQ(m_error->get_HttpCode(&code), S_OK);
    return code;
  }
  /// What a script reads.
  std::string Property(LPCOLESTR name) {
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    DISPID id = 0;
    EXPECT_EQ(m_error->GetIDsOfNames(IID_NULL, names, 1, 0x409, &id), S_OK);
    DISPPARAMS none{};
    Variant result;
    EXPECT_EQ(m_error->Invoke(id, IID_NULL, 0x409, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                              result.Receive(), nullptr, nullptr),
              S_OK);
    return std::to_string(id) + " " + DescribeVariant(result.Get());
  }

  CComObject<CConnectionError>* m_object = nullptr;
  ComPtr<IConnectionError> m_error;
};

TEST_F(ConnectionErrorTest, IsEmptyAtCreation) {
  EXPECT_EQ(HttpCode(), 0);
  EXPECT_EQ(Message(), "");
}

TEST_F(ConnectionErrorTest, GivesWhatItsClientWrote) {
  m_object->m_httpCode = 404;
  m_object->m_message = WideString(OLESTR("a\0b"), 3);
  EXPECT_EQ(HttpCode(), 404);
  EXPECT_EQ(Message(), "a\\u0000b") << "the text is counted";
  m_object->m_httpCode = -1;
  EXPECT_EQ(HttpCode(), -1);
}

TEST_F(ConnectionErrorTest, NullPointersAreRefused) {
  EXPECT_EQ(m_error->get_HttpCode(nullptr), E_POINTER);
  EXPECT_EQ(m_error->get_Message(nullptr), E_POINTER);
}

TEST_F(ConnectionErrorTest, ScriptsReadItByName) {
  m_object->m_httpCode = 307;
  m_object->m_message = OLESTR("moved");
  EXPECT_EQ(Property(OLESTR("HttpCode")), "1 I4 307");
  EXPECT_EQ(Property(OLESTR("message")), "2 BSTR 'moved'");
}

TEST_F(ConnectionErrorTest, ThereIsNoSetter) {
  Variant value(OLESTR("mine"));
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS params{&value.Get(), &put, 1, 1};
  EXPECT_EQ(
      m_error->Invoke(2, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &params, nullptr, nullptr, nullptr),
      DISP_E_MEMBERNOTFOUND);
}

TEST_F(ConnectionErrorTest, AnswersToItsThreeInterfaces) {
  const struct {
    const IID* id;
    HRESULT result;
  } rows[] = {{&IID_IUnknown, S_OK},
              {&IID_IDispatch, S_OK},
              {&IID_IConnectionError, S_OK},
              {&IID_ISupportErrorInfo, E_NOINTERFACE}};
  for (const auto& row : rows) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(m_error->QueryInterface(*row.id, found.ReceiveVoid()), row.result);
  }
}

TEST_F(ConnectionErrorTest, LocksTheModuleWhileItLives) {
  EXPECT_EQ(Module().GetLockCount(), 1);
  m_error.Reset();
  EXPECT_EQ(Module().GetLockCount(), 0);
}

TEST_F(ConnectionErrorTest, AFailedReadIsDescribedByThePlainErrorTakenAsAResult) {
  testing::ScriptedErrorServices services;
  const PortScope<ErrorServices> scope(services);
  services.texts[12030] = OLESTR("it broke off\r\n");
  m_object->m_httpCode = 200;
  SetConnectionErrorText(m_error.Get(), 12030);
  EXPECT_EQ(Message(), "it broke off");
  EXPECT_EQ(HttpCode(), 200);
  services.texts[12030] = std::nullopt;
  SetConnectionErrorText(m_error.Get(), 12030);
  EXPECT_EQ(Message(), "Unknown error 0x2EFE") << "no conversion to an HRESULT";
}

TEST_F(ConnectionErrorTest, AFailedReadWithoutAnErrorHasATextOfItsOwn) {
  m_object->m_httpCode = 200;
  SetConnectionErrorText(m_error.Get(), 0);
  EXPECT_EQ(Message(), "Error reading HDFS file from network.");
  EXPECT_EQ(HttpCode(), 200);
}

TEST_F(ConnectionErrorTest, AFailedReadLeavesTheThreadsErrorAlone) {
  SetErrorInfo(0, nullptr);
  SetConnectionErrorText(m_error.Get(), 5);
  EXPECT_FALSE(TakeThreadError().isThere);
}

/// Another's implementation.
class ForeignError final : public IConnectionError {
 public:
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP get_HttpCode(LONG*) override { return E_NOTIMPL; }
  STDMETHODIMP get_Message(BSTR*) override { return E_NOTIMPL; }
};

TEST_F(ConnectionErrorTest, NothingHappensToAnObjectThatIsNotOurs) {
  testing::ScriptedErrorServices services;
  const PortScope<ErrorServices> scope(services);
  ForeignError foreign;
  SetConnectionErrorText(&foreign, 5);
  SetConnectionErrorText(nullptr, 5);
  EXPECT_TRUE(services.calls.empty());
}

}  // namespace
}  // namespace velandoc
