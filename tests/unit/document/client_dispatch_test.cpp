// IClient by name: every member with its number and kind, through the class object of the module.
#include <gtest/gtest.h>

#include "host/exports.h"
#include "platform/owners.h"
#include "tests/support/fault_dom.h"
#include "tests/support/scripted_dialog_host.h"
#include "tests/support/scripted_wininet.h"
#include "tests/support/variant_text.h"
#include "velandoc_idl.h"

namespace velandoc {
namespace {

using testing::DescribeResult;
using testing::DescribeVariant;

constexpr WORD kMethod = DISPATCH_METHOD;
constexpr WORD kGet = DISPATCH_PROPERTYGET;

struct Member {
  LPCOLESTR name;
  DISPID id;
  WORD kind;
  UINT arguments;
  const char* answer;  // with no document open and no server
};

// In the order of the virtual table.
constexpr Member kMembers[] = {
    {OLESTR("InitFromUNC"), 1, kMethod, 1, "E_FAIL"},
    {OLESTR("InitFromURL"), 2, kMethod, 1, "BOOL 0"},
    {OLESTR("URL"), 3, kGet, 0, "BSTR ''"},
    {OLESTR("WebURL"), 4, kGet, 0, "BSTR ''"},
    {OLESTR("ListID"), 5, kGet, 0, "BSTR ''"},
    {OLESTR("ContentTypeID"), 6, kGet, 0, "BSTR ''"},
    {OLESTR("DocID"), 7, kGet, 0, "BSTR ''"},
    {OLESTR("CheckOut"), 8, kMethod, 0, "BOOL 0"},
    {OLESTR("CheckIn"), 9, kMethod, 2, "BOOL 0"},
    {OLESTR("UndoCheckOut"), 10, kMethod, 0, "I4 -1"},
    {OLESTR("CheckOutTime"), 11, kGet, 0, "E_FAIL"},
    {OLESTR("GetCheckOutStatus"), 12, kMethod, 0, "I4 -1"},
    {OLESTR("SharePointCheckoutUser"), 13, kGet, 0, "BSTR ''"},
    {OLESTR("ModifiedSinceCheckOut"), 14, kGet, 0, "E_FAIL"},
    {OLESTR("FrontPageMetaInfo"), 15, kGet, 1, "E_FAIL"},
    {OLESTR("TimeLastModified"), 16, kGet, 0, "E_FAIL"},
    {OLESTR("IsInitialCreation"), 17, kMethod, 0, "E_FAIL"},
    {OLESTR("ShouldAskForCheckIn"), 18, kMethod, 0, "E_FAIL"},
    {OLESTR("ModifiedTimeUTCOA"), 19, kGet, 0, "E_FAIL"},
    {OLESTR("HasUnfilledFields"), 20, kMethod, 0, "E_FAIL"},
    {OLESTR("HasFields"), 21, kMethod, 0, "E_FAIL"},
    {OLESTR("HasUnfilledRequiredFields"), 22, kMethod, 0, "E_FAIL"},
    {OLESTR("EditFields"), 23, kMethod, 0, "BOOL 0"},
};

class ClientDispatch : public ::testing::Test {
 protected:
  ClientDispatch() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(CLSID_Client, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IDispatch, m_client.ReceiveVoid()), S_OK);
    m_dialogs.refusal = OLESTR("no windows here");
  }
  std::string Call(const Member& member, WORD kind) {
    VARIANTARG arguments[2];
    for (VARIANTARG& argument : arguments) {
      VariantInit(&argument);
      argument.vt = VT_I4;
      argument.lVal = 0;
    }
    // Last argument first: a text is before a number.
    if (member.arguments != 0) {
      arguments[member.arguments - 1].vt = VT_BSTR;
      arguments[member.arguments - 1].bstrVal = nullptr;
    }
    DISPPARAMS params{arguments, nullptr, member.arguments, 0};
    Variant result;
    EXCEPINFO exception{};
    const HRESULT code = m_client->Invoke(member.id, IID_NULL, LOCALE_USER_DEFAULT, kind, &params,
                                          &result.Get(), &exception, nullptr);
    // A member's own failure is an exception of automation that holds it, and no texts.
    if (code == DISP_E_EXCEPTION) {
      EXPECT_EQ(SysStringLen(exception.bstrDescription), 0U);
      return DescribeResult(exception.scode);
    }
    return code == S_OK ? DescribeVariant(result.Get()) : DescribeResult(code);
  }

  testing::ComScope m_com;
  testing::ScriptedWinInet m_platform;
  PortScope<WinInet> m_scope{m_platform};
  testing::ScriptedDialogHost m_dialogs;
  PortScope<DialogHost> m_dialogsScope{m_dialogs};
  ComPtr<IDispatch> m_client;
};

TEST_F(ClientDispatch, EveryMemberHasItsNameAndNumber) {
  for (const Member& member : kMembers) {
    LPOLESTR name = const_cast<LPOLESTR>(member.name);
    DISPID id = 0;
    EXPECT_EQ(m_client->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    EXPECT_EQ(id, member.id) << testing::Printable(member.name);
  }
}

TEST_F(ClientDispatch, EveryMemberIsOfItsKindAndAnswers) {
  for (const Member& member : kMembers) {
    SCOPED_TRACE(testing::Printable(member.name));
    EXPECT_EQ(Call(member, member.kind), member.answer);
    const WORD other = member.kind == kMethod ? kGet : kMethod;
    EXPECT_EQ(Call(member, other), "DISP_E_MEMBERNOTFOUND");
    EXPECT_EQ(Call(member, kMethod | kGet), member.answer) << "as scripts call";
  }
}

TEST_F(ClientDispatch, ArgumentsHaveTheirNames) {
  struct {
    LPCOLESTR member;
    LPCOLESTR argument;
    DISPID id;
  } const rows[] = {{OLESTR("InitFromUNC"), OLESTR("UNCPath"), 0},
                    {OLESTR("InitFromURL"), OLESTR("URLPath"), 0},
                    {OLESTR("CheckIn"), OLESTR("Comment"), 0},
                    {OLESTR("CheckIn"), OLESTR("CheckInType"), 1},
                    {OLESTR("FrontPageMetaInfo"), OLESTR("MetaTag"), 0}};
  for (const auto& row : rows) {
    LPOLESTR names[] = {const_cast<LPOLESTR>(row.member), const_cast<LPOLESTR>(row.argument)};
    DISPID ids[] = {77, 77};
    EXPECT_EQ(m_client->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids), S_OK);
    EXPECT_EQ(ids[1], row.id) << testing::Printable(row.argument);
  }
}

TEST_F(ClientDispatch, ThereIsNoMemberMore) {
  const Member none = {OLESTR("none"), 24, kMethod, 0, ""};
  EXPECT_EQ(Call(none, kMethod | kGet), "DISP_E_MEMBERNOTFOUND");
}

TEST_F(ClientDispatch, InsideAnotherObjectItIsThatObjects) {
  // The class can be a part of an aggregate.
  struct Outer final : IUnknown {
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
      *object = nullptr;
      ++asked;
      return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    int asked = 0;
  } outer;
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(DllGetClassObject(CLSID_Client, IID_IClassFactory, factory.ReceiveVoid()), S_OK);
  ComPtr<IUnknown> inner;
  ASSERT_EQ(factory->CreateInstance(&outer, IID_IUnknown, inner.ReceiveVoid()), S_OK);
  ComPtr<IClient> client;
  ASSERT_EQ(inner->QueryInterface(IID_IClient, client.ReceiveVoid()), S_OK);
  ComPtr<IUnknown> asked;
  EXPECT_EQ(client->QueryInterface(IID_IUnknown, asked.ReceiveVoid()), E_NOINTERFACE);
  EXPECT_EQ(outer.asked, 1);
}

}  // namespace
}  // namespace velandoc
