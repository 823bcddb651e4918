#include "frontpage/document_meta.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/owners.h"
#include "tests/support/variant_text.h"

namespace velandoc {
namespace {

using testing::DescribeText;
using testing::DescribeVariant;

constexpr LPCWSTR kKey = OLESTR("key");

/// An object with one value, which may hold NULs.
CDocumentMeta With(WideView raw, LPCWSTR key = kKey) {
  CDocumentMeta meta;
  meta.m_values[key] = raw;
  return meta;
}

WideString TextOf(WideView raw) { return With(raw).GetTextValue(kKey); }

WideString DocGuidOf(WideView raw) { return With(raw, OLESTR("vti_etag")).GetDocGuid(); }

/// "true BSTR 'abc'", "false EMPTY", or the words of the exception. What stood in the result before
/// is to be gone.
std::string Typed(WideView raw) {
  Variant out(OLESTR("from before"));
  try {
    const bool found = With(raw).GetVariantValue(kKey, out.Get());
    return (found ? "true " : "false ") + DescribeVariant(out.Get());
  } catch (const std::out_of_range& error) {
    return std::string(error.what()) + ", " + DescribeVariant(out.Get());
  }
}

/// The value in seconds of the linear scale, to be compared without the last digits of a fraction.
double SecondsOf(WideView raw) {
  Variant out;
  EXPECT_TRUE(With(raw).GetVariantValue(kKey, out.Get())) << DescribeText(raw);
  EXPECT_EQ(out.Get().vt, VT_DATE) << DescribeText(raw);
  return MirrorDate(out.Get().date) * 86400;
}

/// `date` as the system writes it for US English.
std::string Written(double date) {
  Variant in;
  in.Get().vt = VT_DATE;
  in.Get().date = date;
  Variant out;
  EXPECT_EQ(VariantChangeTypeEx(&out.Get(), &in.Get(), 0x409, 0, VT_BSTR), S_OK);
  return DescribeText(out.Get().bstrVal);
}

std::string DateOf(WideView raw) {
  Variant out;
  if (!With(raw).GetVariantValue(kKey, out.Get())) return "false";
  EXPECT_EQ(out.Get().vt, VT_DATE) << DescribeText(raw);
  return Written(out.Get().date);
}

TEST(DocumentMeta, IsEmptyAtFirst) {
  const CDocumentMeta meta;
  EXPECT_TRUE(meta.m_documentName.empty());
  EXPECT_TRUE(meta.m_urlEntry.empty());
  EXPECT_TRUE(meta.m_values.empty());
  EXPECT_FALSE(meta.m_hasDocument);
  EXPECT_FALSE(meta.m_hasUrlEntry);
}

TEST(DocumentMeta, IsCopiedByValue) {
  CDocumentMeta meta = With(OLESTR("SR|abc"));
  meta.m_documentName = OLESTR("a.docx");
  meta.m_urlEntry = OLESTR("Documents");
  meta.m_hasDocument = true;
  meta.m_hasUrlEntry = true;
  CDocumentMeta copy;
  copy.m_values[OLESTR("other")] = OLESTR("gone");
  copy = meta;
  meta.m_values[kKey] = OLESTR("SR|changed");
  EXPECT_EQ(copy.m_documentName, OLESTR("a.docx"));
  EXPECT_EQ(copy.m_urlEntry, OLESTR("Documents"));
  EXPECT_EQ(copy.m_values.size(), 1U);
  EXPECT_EQ(copy.GetTextValue(kKey), OLESTR("abc"));
  EXPECT_TRUE(copy.m_hasDocument);
  EXPECT_TRUE(copy.m_hasUrlEntry);
  const CDocumentMeta& same = copy;
  copy = same;
  EXPECT_EQ(copy.GetTextValue(kKey), OLESTR("abc"));
}

TEST(DocumentMeta, OrdersItsKeysByUnitsShorterFirst) {
  CDocumentMeta meta;
  for (const LPCWSTR key : {OLESTR("\uE000"), OLESTR("b"), OLESTR("aa"), OLESTR("a"), OLESTR("B"),
                            OLESTR("\U0001F600")}) {
    meta.m_values[key] = OLESTR("");
  }
  std::vector<std::string> keys;
  for (const auto& [key, value] : meta.m_values) keys.push_back(DescribeText(key));
  EXPECT_EQ(keys, (std::vector<std::string>{"B", "a", "aa", "b", "\\uD83D\\uDE00", "\\uE000"}));
}

TEST(FindRawValue, GivesTheValueAsItArrived) {
  EXPECT_EQ(With(OLESTR("SR|abc")).FindRawValue(kKey), OLESTR("SR|abc"));
  const WideView withNul(OLESTR("a\0b"), 3);
  EXPECT_EQ(With(withNul).FindRawValue(kKey), withNul);
}

TEST(FindRawValue, DoesNotFindAKeyThatDiffersInCaseOnly) {
  const CDocumentMeta meta = With(OLESTR("SR|abc"), OLESTR("ContentTypeId"));
  EXPECT_EQ(meta.FindRawValue(OLESTR("ContentTypeID")), WideString());
  EXPECT_EQ(meta.GetTextValue(OLESTR("contenttypeid")), WideString());
  Variant out;
  EXPECT_FALSE(meta.GetVariantValue(OLESTR("CONTENTTYPEID"), out.Get()));
  EXPECT_EQ(meta.GetTextValue(OLESTR("ContentTypeId")), OLESTR("abc"));
}

TEST(FindRawValue, TakesANullKeyForAnEmptyOne) {
  EXPECT_EQ(With(OLESTR("SR|abc")).FindRawValue(nullptr), WideString());
  EXPECT_EQ(With(OLESTR("SR|abc"), OLESTR("")).FindRawValue(nullptr), OLESTR("SR|abc"));
}

TEST(GetTextValue, GivesWhatFollowsTheFirstSeparator) {
  EXPECT_EQ(TextOf(OLESTR("SR|abc")), OLESTR("abc"));
  EXPECT_EQ(TextOf(OLESTR("|abc")), OLESTR("abc"));
  EXPECT_EQ(TextOf(OLESTR("TR|04 Jul 2009 10:11:12 -0000")), OLESTR("04 Jul 2009 10:11:12 -0000"));
}

TEST(GetTextValue, IsEmptyWithoutASeparator) { EXPECT_EQ(TextOf(OLESTR("abc")), WideString()); }

TEST(GetTextValue, IsEmptyBehindALastSeparator) { EXPECT_EQ(TextOf(OLESTR("SX|")), WideString()); }

TEST(GetTextValue, KeepsASecondSeparatorAsText) {
  EXPECT_EQ(TextOf(OLESTR("VR|a|b")), OLESTR("a|b"));
  EXPECT_EQ(TextOf(OLESTR("SW||")), OLESTR("|"));
}

TEST(GetTextValue, EndsAtTheFirstNulBehindTheSeparator) {
  EXPECT_EQ(TextOf(WideView(OLESTR("SR|ab\0cd"), 8)), OLESTR("ab"));
  EXPECT_EQ(TextOf(WideView(OLESTR("SR|\0cd"), 6)), WideString());
  EXPECT_EQ(TextOf(WideView(OLESTR("S\0R|cd"), 6)), OLESTR("cd"));
}

TEST(GetTextValue, IsEmptyForAnAbsentKey) {
  EXPECT_EQ(CDocumentMeta().GetTextValue(kKey), WideString());
}

TEST(GetDocGuid, DropsTheQuotesAndTheVersionOfAnEtag) {
  EXPECT_EQ(DocGuidOf(OLESTR("SR|\"{01234567-89AB-CDEF-0123-456789ABCDEF},3\"")),
            OLESTR("{01234567-89AB-CDEF-0123-456789ABCDEF}"));
}

TEST(GetDocGuid, CutsAtEachBraceOnItsOwn) {
  EXPECT_EQ(DocGuidOf(OLESTR("SR|\"abc,3\"")), OLESTR("\"abc,3\""));
  EXPECT_EQ(DocGuidOf(OLESTR("SR|\"{abc,3\"")), OLESTR("{abc,3\""));
  EXPECT_EQ(DocGuidOf(OLESTR("SR|\"abc},3\"")), OLESTR("\"abc}"));
  EXPECT_EQ(DocGuidOf(OLESTR("SR|}a{b}c}")), OLESTR("{b}"));
  EXPECT_EQ(DocGuidOf(OLESTR("SR|{a{b}")), OLESTR("{a{b}"));
}

TEST(GetDocGuid, ReadsTheTextBehindTheSeparator) {
  EXPECT_EQ(DocGuidOf(OLESTR("{abc}")), WideString());
  EXPECT_EQ(DocGuidOf(WideView(OLESTR("SR|{ab\0c}"), 9)), OLESTR("{ab"));
  EXPECT_EQ(CDocumentMeta().GetDocGuid(), WideString());
}

TEST(GetListName, ReadsTheListsGuid) {
  EXPECT_EQ(With(OLESTR("SR|{ABC}"), OLESTR("vti_listname")).GetListName(), OLESTR("{ABC}"));
  EXPECT_EQ(CDocumentMeta().GetListName(), WideString());
}

TEST(GetVariantValue, RefusesEveryValueWithASeparator) {
  EXPECT_EQ(Typed(OLESTR("SR|abc")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("TR|04 Jul 2009 10:11:12 -0000")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("IR|5")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("BR|true")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("abc|")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("|")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("Today|")), "false EMPTY");
  EXPECT_EQ(Typed(WideView(OLESTR("abc\0|"), 5)), "false EMPTY");  // behind a NUL as well
}

TEST(GetVariantValue, GivesTextWhole) {
  EXPECT_EQ(Typed(OLESTR("abc")), "true BSTR 'abc'");
  EXPECT_EQ(Typed(OLESTR("Sabc")), "true BSTR 'Sabc'");
  EXPECT_EQ(Typed(OLESTR("S")), "true BSTR 'S'");
  EXPECT_EQ(Typed(OLESTR("5")), "true BSTR '5'");
  EXPECT_EQ(Typed(OLESTR("04 Jul 2009")), "true BSTR '04 Jul 2009'");
  EXPECT_EQ(Typed(OLESTR("true")), "true BSTR 'true'");             // the letters differ in case
  EXPECT_EQ(Typed(OLESTR("\u0154abc")), "true BSTR '\\u0154abc'");  // 0x154 cut to a byte is "T"
}

TEST(GetVariantValue, EndsTheTextAtTheFirstNul) {
  EXPECT_EQ(Typed(WideView(OLESTR("ab\0c"), 4)), "true BSTR 'ab'");
  EXPECT_EQ(Typed(WideView(OLESTR("\0abc"), 4)), "false EMPTY");
}

TEST(GetVariantValue, IsFalseForAnAbsentOrEmptyValue) {
  EXPECT_EQ(Typed(OLESTR("")), "false EMPTY");
  Variant out(OLESTR("from before"));
  EXPECT_FALSE(CDocumentMeta().GetVariantValue(kKey, out.Get()));
  EXPECT_EQ(DescribeVariant(out.Get()), "EMPTY");
}

TEST(GetVariantValue, IsTrueAndEmptyForANumberThatIsNone) {
  EXPECT_EQ(Typed(OLESTR("Iabc")), "true EMPTY");
  EXPECT_EQ(Typed(OLESTR("I5")), "true EMPTY");
  EXPECT_EQ(Typed(OLESTR("I")), "true EMPTY");
}

TEST(GetVariantValue, IsTrueAndEmptyForABooleanThatIsNone) {
  EXPECT_EQ(Typed(OLESTR("Bool")), "true EMPTY");
  EXPECT_EQ(Typed(OLESTR("B1")), "true EMPTY");
  EXPECT_EQ(Typed(OLESTR("B")), "true EMPTY");
}

TEST(GetVariantValue, TakesADateThatTheSystemReads) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tuesday, July 07, 2009 10:11:12 PM")), "7/7/2009 10:11:12 PM");
  EXPECT_EQ(DateOf(OLESTR("Thu 9 Jul 2009")), "7/9/2009");
  EXPECT_EQ(DateOf(OLESTR("Tue 10:11")), "10:11:00 AM");
  EXPECT_EQ(DateOf(WideView(OLESTR("Tue 10:11\0 and what not"), 23)), "10:11:00 AM");
}

TEST(GetVariantValue, MovesADateByTheZoneBehindIt) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 -0000")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +0000")), "7/7/2009 10:11:12 AM");
  // The sign as it reads: later with "+", earlier with "-".
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +0100")), "7/7/2009 11:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 -0100")), "7/7/2009 9:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +0530")), "7/7/2009 3:41:12 PM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 23:00 +0200")), "7/8/2009 1:00:00 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 +0100")), "7/7/2009 1:00:00 AM");
  EXPECT_NEAR(SecondsOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +0100")), 40001 * 86400.0 + 40272, 1e-3);
}

TEST(GetVariantValue, ReadsAZoneOfEightHoursAsOctal) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +0800")), "7/7/2009 11:31:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 -0930")), "7/7/2009 8:38:12 AM");
}

TEST(GetVariantValue, KeepsTheFractionForwardBeforeTheEpoch) {
  EXPECT_EQ(DateOf(OLESTR("Tue 7 Jul 1899 06:00")), "7/7/1899 6:00:00 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue 7 Jul 1899 06:00 +0100")), "7/7/1899 7:00:00 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue 7 Jul 1899 06:00 -0700")), "7/6/1899 11:00:00 PM");
  EXPECT_EQ(DateOf(OLESTR("Tue 12/29/1899 23:00 +0200")), "1:00:00 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue 12/30/1899 00:00 -0001")), "12/29/1899 11:59:00 PM");
  EXPECT_EQ(DateOf(OLESTR("Tue 12/30/1899 00:00 +0000")), "12:00:00 AM");
}

TEST(GetVariantValue, LeavesTheDateWithAZoneOfFourCharacters) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +100")), "7/7/2009 10:11:12 AM");
}

TEST(GetVariantValue, LeavesTheDateWithAnyOtherTextOfTheWrongLength) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 GMT")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +01:00")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Thu 9 Jul 2009 ")), "7/9/2009");
}

TEST(GetVariantValue, LeavesTheDateWithAZoneThatIsNone) {
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 GMT+1")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 x0100")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +1:00")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 \u012B0100")), "7/7/2009 10:11:12 AM");
  EXPECT_EQ(DateOf(OLESTR("Tue, 07 Jul 2009 10:11:12 +\uFF10100")), "7/7/2009 10:11:12 AM");
}

TEST(GetVariantValue, LooksForTheZoneBehindTheLastBlankOnly) {
  EXPECT_EQ(DateOf(OLESTR("Tue 7 Jul 2009 UTC +0100")), "false");
  // A tab is white space to the date, and no blank here: what stands behind the blank is no zone.
  EXPECT_EQ(DateOf(OLESTR("Tue 7/7/2009 10:11\t+0100")), "7/7/2009");
}

TEST(GetVariantValue, IsFalseForATextThatIsNoDateBeforeItsLastBlankEither) {
  EXPECT_EQ(Typed(OLESTR("Today at noon")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("T04 Jul 2009 10:11:12 -0000")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("Tue 31 Feb 2009 +0100")), "false EMPTY");
}

TEST(GetVariantValue, RaisesForATextThatIsNoDateAndHasNoBlank) {
  EXPECT_EQ(Typed(OLESTR("Today")), "invalid string position, EMPTY");
  EXPECT_EQ(Typed(OLESTR("T")), "invalid string position, EMPTY");
  EXPECT_EQ(Typed(OLESTR("T2009-07-04T10:11:12Z")), "invalid string position, EMPTY");
  EXPECT_EQ(Typed(OLESTR("True")), "invalid string position, EMPTY");
  EXPECT_EQ(Typed(WideView(OLESTR("Today\0 +0100"), 12)), "invalid string position, EMPTY");
}

TEST(GetVariantValue, ReadsATextOfAMillionUnits) {
  EXPECT_EQ(Typed(WideString(1000000, 'T')), "invalid string position, EMPTY");
  EXPECT_EQ(Typed(WideString(1000000, 'T') + OLESTR(" +0100")), "false EMPTY");
  EXPECT_EQ(Typed(OLESTR("I") + WideString(1000000, '9')), "true EMPTY");
}

TEST(ParseDateText, GivesADate) {
  double date = 5;
  bool failed = true;
  EXPECT_TRUE(ParseDateText(date, failed, OLESTR("04 Jul 2009 06:00")));
  EXPECT_FALSE(failed);
  EXPECT_EQ(date, 39998.25);
}

TEST(ParseDateText, GivesZeroForATextThatIsNoDate) {
  for (const LPCWSTR text : {LPCWSTR{OLESTR("abc")}, LPCWSTR{OLESTR("")}, LPCWSTR{nullptr}}) {
    double date = 5;
    bool failed = false;
    EXPECT_FALSE(ParseDateText(date, failed, text));
    EXPECT_TRUE(failed);
    EXPECT_EQ(date, 0.0);
  }
}

TEST(MirrorDate, TurnsTheFractionBeforeTheEpoch) {
  EXPECT_EQ(MirrorDate(39998.25), 39998.25);
  EXPECT_EQ(MirrorDate(0.75), 0.75);
  EXPECT_EQ(MirrorDate(0), 0);
  EXPECT_EQ(MirrorDate(-1), -1);
  EXPECT_EQ(MirrorDate(-1.25), -0.75);
  EXPECT_EQ(MirrorDate(-0.75), 0.75);
  EXPECT_EQ(MirrorDate(-2.75), -1.25);
  EXPECT_EQ(MirrorDate(-176.25), -175.75);
}

TEST(MirrorDate, LeavesWhatIsLessThanHalfASecondBeforeZero) {
  constexpr double kLimit = -1.0 / 172800;
  EXPECT_EQ(MirrorDate(-0.000005), -0.000005);
  EXPECT_EQ(MirrorDate(kLimit), -kLimit);
  EXPECT_EQ(MirrorDate(-0.000006), 0.000006);
}

}  // namespace
}  // namespace velandoc
