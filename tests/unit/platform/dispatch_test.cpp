// IDispatch of a dual interface: the same calls through the system's ITypeInfo and through our
// table.
#include "platform/dispatch_impl.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/sample.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeResult;
using testing::DescribeText;
using testing::DescribeVariant;
using testing::Sample;

// Where the system's library, as it is in the test's Windows, is known to answer otherwise than
// ours: it does not tell which argument is wrong, gives a VARIANT that is a reference as it came,
// does not mind a wrong named argument, and loses a reference to an object that lacks the interface
// asked for.
#ifdef _WIN32
constexpr bool kIsLinux = false;
#else
constexpr bool kIsLinux = true;
#endif

constexpr WORD kCall = DISPATCH_METHOD | DISPATCH_PROPERTYGET;  // as scripts call
constexpr UINT kUntouched = 99;

VARIANT Text(LPCOLESTR text) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_BSTR;
  variant.bstrVal = SysAllocString(text);
  return variant;
}
VARIANT Number(LONG value) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = VT_I4;
  variant.lVal = value;
  return variant;
}
VARIANT OfType(VARTYPE type, LONGLONG value = 0) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = type;
  variant.llVal = value;
  return variant;
}
VARIANT LeftOut() { return OfType(VT_ERROR, static_cast<LONG>(DISP_E_PARAMNOTFOUND)); }

class DispatchTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(m_sample.references, 1U); }

  /// Calls with the arguments in their natural order, and frees them: "BSTR 'x'",
  /// "DISP_E_TYPEMISMATCH arg 1". The last arguments belong to `named`, last one to the last
  /// name.
  std::string Call(DISPID member, WORD flags, std::vector<VARIANT> arguments,
                   std::vector<DISPID> named = {}) {
    std::vector<VARIANT> array;
    const std::size_t positional = arguments.size() - named.size();
    array.insert(array.end(), arguments.begin() + static_cast<std::ptrdiff_t>(positional),
                 arguments.end());
    for (std::size_t i = positional; i > 0; --i) array.push_back(arguments[i - 1]);
    DISPPARAMS params{};
    params.rgvarg = array.data();
    params.cArgs = static_cast<UINT>(array.size());
    params.rgdispidNamedArgs = named.data();
    params.cNamedArgs = static_cast<UINT>(named.size());
    Variant result;
    UINT argErr = kUntouched;
    const HRESULT code = m_sample.Invoke(member, IID_NULL, 0x409, flags, &params, &result.Get(),
                                         &m_exception, &argErr);
    for (VARIANT& argument : array) VariantClear(&argument);
    if (SUCCEEDED(code)) return DescribeVariant(result.Get());
    EXPECT_EQ(DescribeVariant(result.Get()), "EMPTY");
    const bool tellsArgument = kIsLinux && (code == DISP_E_TYPEMISMATCH || code == DISP_E_OVERFLOW);
    return DescribeResult(code) + (tellsArgument ? " arg " + std::to_string(argErr) : "");
  }

  /// The text, which is freed.
  static std::string Take(BSTR& text) {
    Bstr owner;
    *owner.Receive() = std::exchange(text, nullptr);
    return DescribeText(owner.View());
  }

  VARIANT SampleObject(VARTYPE type) {
    VARIANT variant = OfType(type);
    m_sample.AddRef();
    variant.pdispVal = &m_sample;
    return variant;
  }

  Sample m_sample;
  EXCEPINFO m_exception{};
};

std::vector<VARIANT> None() { return {}; }

std::string Wrong(std::string result, UINT argument) {
  if (kIsLinux) result.append(" arg ").append(std::to_string(argument));
  return result;
}

TEST_F(DispatchTest, FindsNamesWithoutRegardToCase) {
  const auto find = [this](std::vector<LPCOLESTR> names) {
    std::vector<DISPID> ids(names.size(), 77);
    const HRESULT result =
        m_sample.GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()),
                               static_cast<UINT>(names.size()), 0x409, ids.data());
    std::string text = DescribeResult(result);
    for (const DISPID id : ids) text.append(" ").append(std::to_string(id));
    return text;
  };
  EXPECT_EQ(find({OLESTR("Join")}), "S_OK 1");
  EXPECT_EQ(find({OLESTR("jOIN"), OLESTR("third"), OLESTR("FIRST")}), "S_OK 1 2 0");
  EXPECT_EQ(find({OLESTR("Item"), OLESTR("Key")}), "S_OK 3 0");
  EXPECT_EQ(find({OLESTR("None")}), "DISP_E_UNKNOWNNAME -1");
  EXPECT_EQ(find({OLESTR("Join"), OLESTR("Fourth")}), "DISP_E_UNKNOWNNAME 1 -1");
}

TEST_F(DispatchTest, FillsInWhatIsLeftOut) {
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a"))}), "BSTR 'a|ERROR 80020004|7'");
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), Number(5)}), "BSTR 'a|I4 5|7'");
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), LeftOut(), Number(3)}), "BSTR 'a|ERROR 80020004|3'");
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), Text(OLESTR("b")), LeftOut()}),
            "BSTR 'a|BSTR 'b'|7'");
  EXPECT_EQ(Call(1, kCall, None()), "DISP_E_BADPARAMCOUNT");
  EXPECT_EQ(Call(1, kCall, {Number(1), Number(2), Number(3), Number(4)}), "DISP_E_BADPARAMCOUNT");
}

TEST_F(DispatchTest, ConvertsArguments) {
  EXPECT_EQ(Call(1, kCall, {Number(12), OfType(VT_NULL), Text(OLESTR("3"))}), "BSTR '12|NULL|3'");
  EXPECT_EQ(Call(10, kCall, {Text(OLESTR("1.5")), OfType(VT_BOOL, -1)}), "R8 -1.5");
  EXPECT_EQ(Call(10, kCall, {Number(2), Text(OLESTR("false"))}), "R8 2");
  EXPECT_EQ(Call(10, kCall, {Text(OLESTR("x")), Number(1)}), Wrong("DISP_E_TYPEMISMATCH", 1));
  EXPECT_EQ(Call(10, kCall, {Number(1), Text(OLESTR("x"))}), Wrong("DISP_E_TYPEMISMATCH", 0));
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), LeftOut(), Text(OLESTR("3000000000"))}),
            Wrong("DISP_E_OVERFLOW", 0));
  EXPECT_EQ(Call(1, kCall, {SampleObject(VT_DISPATCH)}), "BSTR '42|ERROR 80020004|7'")
      << "the default property stands for the object";
}

TEST_F(DispatchTest, TakesReferences) {
  LONG number = 21;
  VARIANT reference = OfType(VT_BYREF | VT_I4);
  reference.plVal = &number;
  EXPECT_EQ(Call(11, kCall, {reference}), "EMPTY");
  EXPECT_EQ(number, 42) << "the caller's variable";
  EXPECT_EQ(Call(1, kCall, {reference, reference, reference}),
            kIsLinux ? "BSTR '42|I4 42|42'" : "BSTR '42|I4* 42|42'");
  EXPECT_EQ(Call(11, kCall, {Number(4)}), "EMPTY") << "a variable of the call's own";
  VARIANT text = Text(OLESTR("inner"));
  VARIANT outer = OfType(VT_BYREF | VT_VARIANT);
  outer.pvarVal = &text;
  EXPECT_EQ(Call(1, kCall, {outer, outer}),
            kIsLinux ? "BSTR 'inner|BSTR 'inner'|7'" : "BSTR 'inner|BSTR* 'inner'|7'");
  VariantClear(&text);
}

TEST_F(DispatchTest, ReadsAndSetsProperties) {
  EXPECT_EQ(Call(2, DISPATCH_PROPERTYPUT, {Text(OLESTR("new"))}, {DISPID_PROPERTYPUT}), "EMPTY");
  EXPECT_EQ(DescribeText(m_sample.name), "new");
  EXPECT_EQ(Call(2, kCall, None()), "BSTR 'new'");
  EXPECT_EQ(Call(2, DISPATCH_PROPERTYGET, None()), "BSTR 'new'");
  EXPECT_EQ(Call(2, DISPATCH_METHOD, None()), "DISP_E_MEMBERNOTFOUND");
  EXPECT_EQ(Call(2, DISPATCH_PROPERTYPUT, {Text(OLESTR("x"))}), "DISP_E_PARAMNOTFOUND")
      << "the value must be named as such";
  EXPECT_EQ(Call(5, DISPATCH_PROPERTYPUT, {Number(1)}, {DISPID_PROPERTYPUT}),
            "DISP_E_MEMBERNOTFOUND")
      << "read only";
  EXPECT_EQ(Call(99, kCall, None()), "DISP_E_MEMBERNOTFOUND");
}

TEST_F(DispatchTest, ReadsAndSetsPropertiesWithArguments) {
  EXPECT_EQ(Call(3, DISPATCH_PROPERTYPUT, {Text(OLESTR("key")), Number(9)}, {DISPID_PROPERTYPUT}),
            "EMPTY");
  EXPECT_EQ(Call(3, kCall, {Text(OLESTR("key"))}), "I4 9");
  EXPECT_EQ(Call(3, kCall, {Text(OLESTR("other"))}), "EMPTY");
  EXPECT_EQ(Call(3, kCall, None()), "DISP_E_BADPARAMCOUNT");
}

TEST_F(DispatchTest, GivesEveryKindOfResult) {
  EXPECT_EQ(Call(0, kCall, None()), "BSTR '42'");
  EXPECT_EQ(Call(5, kCall, None()), "I8 5000000000");
  EXPECT_EQ(Call(6, DISPATCH_PROPERTYPUT, {Number(2)}, {DISPID_PROPERTYPUT}), "EMPTY");
  EXPECT_EQ(Call(6, kCall, None()), "I4 2") << "an enumeration is a number";
  EXPECT_EQ(Call(8, kCall, None()), "DISPATCH object");
  EXPECT_EQ(Call(12, kCall, None()), "DATE 39998.25");
}

TEST_F(DispatchTest, TakesObjectsByTheInterfaceThatIsAskedFor) {
  EXPECT_EQ(Call(9, kCall, {SampleObject(VT_DISPATCH)}), "BOOL -1");
  EXPECT_EQ(Call(9, kCall, {SampleObject(VT_UNKNOWN)}), "BOOL -1");
  EXPECT_EQ(Call(9, kCall, {OfType(VT_DISPATCH)}), "BOOL 0") << "no object is null";
  EXPECT_EQ(Call(7, kCall, {OfType(VT_UNKNOWN)}), "BOOL -1") << "no object is null";
  if (kIsLinux) {
    EXPECT_EQ(Call(7, kCall, {SampleObject(VT_DISPATCH)}), Wrong("DISP_E_TYPEMISMATCH", 0))
        << "the object is no stream";
  }
  EXPECT_EQ(Call(9, kCall, {Number(1)}), Wrong("DISP_E_TYPEMISMATCH", 0));
}

TEST_F(DispatchTest, TurnsFailuresIntoExceptions) {
  EXPECT_EQ(Call(4, kCall, {Number(E_ACCESSDENIED)}), "DISP_E_EXCEPTION");
  EXPECT_EQ(DescribeResult(m_exception.scode), "80070005");
  EXPECT_EQ(m_exception.wCode, 0);
  EXPECT_EQ(m_exception.dwHelpContext, 5U);
  EXPECT_EQ(Take(m_exception.bstrDescription), "what went wrong");
  EXPECT_EQ(Take(m_exception.bstrSource), "Sample");
  EXPECT_EQ(Take(m_exception.bstrHelpFile), "");
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_FALSE) << "taken from the thread";

  EXPECT_EQ(Call(4, kCall, {Number(S_FALSE)}), "EMPTY") << "a success of another kind";
  SetErrorInfo(0, nullptr);
}

TEST_F(DispatchTest, TakesTheErrorObjectOfAnObjectThatDoesNotSpeakOfItToo) {
  m_sample.speaksOfErrors = false;
  EXPECT_EQ(Call(4, kCall, {Number(E_FAIL)}), "DISP_E_EXCEPTION");
  EXPECT_EQ(Take(m_exception.bstrDescription), "what went wrong");
  EXPECT_EQ(Take(m_exception.bstrSource), "Sample");
  EXPECT_EQ(Take(m_exception.bstrHelpFile), "");
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_FALSE);
}

TEST_F(DispatchTest, LeavesTheErrorObjectBehindASuccess) {
  EXPECT_EQ(Call(4, kCall, {Number(S_OK)}), "EMPTY");
  EXPECT_EQ(m_exception.bstrDescription, nullptr);
  ComPtr<IErrorInfo> left;
  EXPECT_EQ(GetErrorInfo(0, left.Receive()), S_OK);
}

TEST_F(DispatchTest, TakesNamedArguments) {
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), Number(3)}, {2}), "BSTR 'a|ERROR 80020004|3'");
  EXPECT_EQ(Call(1, kCall, {Number(3), Text(OLESTR("a"))}, {2, 0}), "BSTR 'a|ERROR 80020004|3'");
  if (!kIsLinux) return;
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), Number(3)}, {0}), "DISP_E_BADPARAMCOUNT")
      << "given twice";
  EXPECT_EQ(Call(1, kCall, {Text(OLESTR("a")), Number(3)}, {3}), "DISP_E_PARAMNOTFOUND");
}

TEST_F(DispatchTest, TellsWhetherItHasATypeInfo) {
  UINT count = kUntouched;
  EXPECT_EQ(m_sample.GetTypeInfoCount(&count), S_OK);
  EXPECT_EQ(count, kIsLinux ? 0U : 1U);
  ITypeInfo* info = nullptr;
  EXPECT_EQ(m_sample.GetTypeInfo(1, 0x409, &info), DISP_E_BADINDEX);
  EXPECT_EQ(m_sample.GetTypeInfo(0, 0x409, &info), kIsLinux ? E_NOTIMPL : S_OK);
#ifdef _WIN32
  info->Release();
#endif
}

TEST_F(DispatchTest, RefusesACallWithoutParameters) {
  EXPECT_EQ(m_sample.Invoke(2, IID_NULL, 0x409, kCall, nullptr, nullptr, nullptr, nullptr),
            E_INVALIDARG);
}

}  // namespace
}  // namespace velandoc
