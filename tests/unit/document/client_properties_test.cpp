// What CClient says of an open document, and what it says when none is open.
#include <gmock/gmock.h>

#include <cmath>
#include <optional>
#include <stdexcept>

#include "tests/unit/document/client_fixture.h"

namespace velandoc {
namespace {

using testing::DocumentLines;
using testing::DocumentPairs;
using ::testing::ElementsAre;
using testing::Page;
using testing::PagePairs;
using testing::RowAnswer;

using TextGetter = HRESULT (STDMETHODCALLTYPE IClient::*)(BSTR*);

constexpr TextGetter kTexts[] = {&IClient::get_URL, &IClient::get_WebURL, &IClient::get_ListID,
                                 &IClient::get_ContentTypeID, &IClient::get_DocID};

class ClientProperties : public testing::ClientTest {
 protected:
  /// Opens a document that has these pairs too.
  void OpenWith(const PagePairs& pairs) {
    m_site.document = Page(DocumentLines("Shared/b.xlsx", DocumentPairs(pairs)));
    ASSERT_TRUE(Open());
  }
  std::string UtcDate() {
    double date = 7;
    const HRESULT result = m_client->get_ModifiedTimeUTCOA(&date);
    if (result == E_FAIL) return date == 7.0 ? "E_FAIL" : "E_FAIL, written";
    EXPECT_EQ(result, S_OK);
    return std::to_string(date);
  }
};

TEST_F(ClientProperties, BeforeAnyOpenTheTextsAreEmpty) {
  for (const TextGetter get : kTexts) EXPECT_EQ(Text(get), "");
  EXPECT_EQ(Text(&IClient::get_SharePointCheckoutUser), "");
}

TEST_F(ClientProperties, EachTextIsANewOne) {
  ASSERT_TRUE(Open());
  for (const TextGetter get : kTexts) {
    Bstr first;
    Bstr second;
    ASSERT_EQ((m_client.Get()->*get)(first.Receive()), S_OK);
    ASSERT_EQ((m_client.Get()->*get)(second.Receive()), S_OK);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(first.View(), second.View());
    EXPECT_FALSE(first.View().empty());
  }
}

TEST_F(ClientProperties, ANullResultIsEPointerWhetherADocumentIsOpenOrNot) {
  for (const bool isOpen : {false, true}) {
    if (isOpen) {
      ASSERT_TRUE(Open());
      m_platform.calls.clear();
    }
    for (const TextGetter get : kTexts) EXPECT_EQ((m_client.Get()->*get)(nullptr), E_POINTER);
    EXPECT_EQ(m_client->CheckOut(nullptr), E_POINTER);
    EXPECT_EQ(m_client->CheckIn(nullptr, 0, nullptr), E_POINTER);
    EXPECT_EQ(m_client->UndoCheckOut(nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_CheckOutTime(nullptr), E_POINTER);
    EXPECT_EQ(m_client->GetCheckOutStatus(nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_SharePointCheckoutUser(nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_ModifiedSinceCheckOut(nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_FrontPageMetaInfo(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_TimeLastModified(nullptr), E_POINTER);
    EXPECT_EQ(m_client->IsInitialCreation(nullptr), E_POINTER);
    EXPECT_EQ(m_client->ShouldAskForCheckIn(nullptr), E_POINTER);
    EXPECT_EQ(m_client->get_ModifiedTimeUTCOA(nullptr), E_POINTER);
    EXPECT_EQ(m_client->HasUnfilledFields(nullptr), E_POINTER);
    EXPECT_EQ(m_client->HasFields(nullptr), E_POINTER);
    EXPECT_EQ(m_client->HasUnfilledRequiredFields(nullptr), E_POINTER);
    EXPECT_EQ(m_platform.calls.size(), 0U) << "nothing is sent";
  }
}

TEST_F(ClientProperties, WithNoDocumentOpenTheGuardedMembersWriteNothing) {
  EXPECT_EQ(MetaInfo(OLESTR("vti_etag")), "E_FAIL BSTR 'from before'");
  EXPECT_EQ(Number(&IClient::get_TimeLastModified), "E_FAIL");
  EXPECT_EQ(UtcDate(), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::HasFields), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::HasUnfilledFields), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::get_ModifiedSinceCheckOut), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::IsInitialCreation), "E_FAIL");
  EXPECT_EQ(Flag(&IClient::ShouldAskForCheckIn), "E_FAIL");
}

TEST_F(ClientProperties, MetaInfoIsReadByTypeAndUnknownKeysAreEmpty) {
  OpenWith({{"vti_title", "SW|Plan"},
            {"plain", "text without a mark"},
            {"vti_filesize", "I512"},
            {"vti_timelastmodified", "Tue, 07 Jul 2009 06:00:00"}});
  EXPECT_EQ(MetaInfo(OLESTR("no such key")), "EMPTY");
  EXPECT_EQ(MetaInfo(OLESTR("")), "EMPTY");
  EXPECT_EQ(MetaInfo(OLESTR("vti_title")), "EMPTY") << "values with their type's mark are refused";
  EXPECT_EQ(MetaInfo(OLESTR("plain")), "BSTR 'text without a mark'");
  EXPECT_EQ(MetaInfo(OLESTR("vti_filesize")), "EMPTY") << "I512 is no number";
  Variant value;
  ASSERT_EQ(
      m_client->get_FrontPageMetaInfo(Bstr(OLESTR("vti_timelastmodified")).Get(), &value.Get()),
      S_OK);
  EXPECT_EQ(value.Get().vt, VT_DATE);
  EXPECT_EQ(value.Get().date, 40001.25);
}

TEST_F(ClientProperties, ANullKeyIsAnEmptyOne) {
  ASSERT_TRUE(Open());
  Variant value(OLESTR("from before"));
  EXPECT_EQ(m_client->get_FrontPageMetaInfo(nullptr, &value.Get()), S_OK);
  EXPECT_EQ(value.Get().vt, VT_EMPTY);
}

TEST_F(ClientProperties, TheTimeOfTheLastChangeIsAFileTime) {
  OpenWith({{"vti_timelastmodified", "Tue, 07 Jul 2009 06:00:00"}});
  EXPECT_EQ(Number(&IClient::get_TimeLastModified), "128914200000000000") << "no zone is applied";
  EXPECT_EQ(UtcDate(), "40001.250000");
}

TEST_F(ClientProperties, ATimeThatIsNotADateFails) {
  for (const char* value : {"TR|07 Jul 2009 06:00:00 -0000", "Wed, 08 Jul 2009 06:00:00", "I7"}) {
    SCOPED_TRACE(value);
    OpenWith({{"vti_timelastmodified", value}});
    EXPECT_EQ(Number(&IClient::get_TimeLastModified), "E_FAIL");
    EXPECT_EQ(UtcDate(), "E_FAIL");
  }
}

// What GetVariantValue raises is caught by none of the members that read through it.
TEST_F(ClientProperties, ATimeWithoutABlankLeavesTheMethodAsAnException) {
  OpenWith({{"vti_timelastmodified", "Tomorrow"}, {"vti_sourcecontroltimecheckedout", "Tomorrow"}});
  LONGLONG time = 0;
  double date = 0;
  VARIANT_BOOL flag = 0;
  Variant value;
  EXPECT_THROW(m_client->get_TimeLastModified(&time), std::out_of_range);
  EXPECT_THROW(m_client->get_ModifiedTimeUTCOA(&date), std::out_of_range);
  EXPECT_THROW(m_client->get_CheckOutTime(&time), std::out_of_range);
  EXPECT_THROW(m_client->get_ModifiedSinceCheckOut(&flag), std::out_of_range);
  EXPECT_THROW(m_client->IsInitialCreation(&flag), std::out_of_range);
  EXPECT_THROW(
      m_client->get_FrontPageMetaInfo(Bstr(OLESTR("vti_timelastmodified")).Get(), &value.Get()),
      std::out_of_range);
}

/// A client whose meta-info says what a test wants, and that notes which keys it is asked for.
class DatedClient : public CClient {
 public:
  STDMETHODIMP get_FrontPageMetaInfo(BSTR MetaTag, VARIANT* pVal) override {
    asked.push_back(testing::Printable(MetaTag));
    if (date) {
      pVal->vt = VT_DATE;
      pVal->date = *date;
    }
    return E_UNEXPECTED;
  }
  std::optional<double> date;
  std::vector<std::string> asked;

 protected:
  ~DatedClient() = default;
};

class DatedProperties : public ClientProperties {
 protected:
  DatedProperties() {
    CComObject<DatedClient>* made = nullptr;
    EXPECT_EQ(CComObject<DatedClient>::CreateInstance(&made), S_OK);
    m_dated = made;
    m_client = ComPtr<CClient>(made);
    EXPECT_TRUE(Open());
  }
  ComPtr<DatedClient> m_dated;
};

TEST_F(DatedProperties, TimesAreReadThroughTheVirtualTableAndByTheirTypeAlone) {
  m_dated->date = 39998.25;
  EXPECT_EQ(Number(&IClient::get_TimeLastModified), "128911608000000000");
  EXPECT_EQ(UtcDate(), "39998.250000");
  EXPECT_THAT(m_dated->asked, ElementsAre("vti_timelastmodified", "vti_timelastmodified"));
  m_dated->date.reset();
  EXPECT_EQ(Number(&IClient::get_TimeLastModified), "E_FAIL");
}

TEST_F(DatedProperties, DatesBeforeTheEpochComeOutOnALinearScale) {
  struct {
    double date;
    double linear;
  } const rows[] = {
      {0.0, 0.0},
      {1.25, 1.25},
      {-1.25, -0.75},
      {-1.75, -0.25},
      {-1.0, -1.0},
      {-2.5, -1.5},
      // Unlike in the comparisons, the last half second before the epoch is turned as well.
      {-0.000001, 0.000001},
  };
  for (const auto& row : rows) {
    m_dated->date = row.date;
    double linear = 0;
    ASSERT_EQ(m_client->get_ModifiedTimeUTCOA(&linear), S_OK);
    EXPECT_DOUBLE_EQ(linear, row.linear) << row.date;
  }
  m_dated->date = std::nan("");
  double linear = 0;
  ASSERT_EQ(m_client->get_ModifiedTimeUTCOA(&linear), S_OK);
  EXPECT_TRUE(std::isnan(linear));
}

TEST_F(DatedProperties, ADateThatNoFileTimeReachesIsZero) {
  for (const double date : {-200000.0, 1e300}) {
    m_dated->date = date;
    EXPECT_EQ(Number(&IClient::get_TimeLastModified), "0") << date;
  }
}

class ClientFields : public testing::ClientTest {
 protected:
  bool OpenWith(const std::string& fields, const std::string& row) {
    m_site.contentType = testing::ContentTypeAnswer(fields);
    m_site.row = RowAnswer(row);
    return Open();
  }
};

TEST_F(ClientFields, AnEmptyAttributeIsUnfilledEvenWithoutFields) {
  ASSERT_TRUE(OpenWith("", "ows_ID='7' ows_Any=''"));
  EXPECT_EQ(Flag(&IClient::HasFields), "false");
  EXPECT_EQ(Flag(&IClient::HasUnfilledFields), "true");
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "false");
}

TEST_F(ClientFields, ARowWithoutEmptyAttributesIsFilledWhateverTheFieldsSay) {
  ASSERT_TRUE(OpenWith("<Field Name='A' Required='TRUE'/>", "ows_ID='7'"));
  EXPECT_EQ(Flag(&IClient::HasFields), "true");
  EXPECT_EQ(Flag(&IClient::HasUnfilledFields), "false");
}

TEST_F(ClientFields, WithoutARowNothingIsUnfilled) {
  m_site.row = {.status = OLESTR("404")};
  ASSERT_TRUE(Open());
  EXPECT_EQ(Flag(&IClient::HasFields), "true");
  EXPECT_EQ(Flag(&IClient::HasUnfilledFields), "false");
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "false");
}

// The row's keys begin with "ows_", and the fields are looked up without it.
TEST_F(ClientFields, AnEmptyOrMissingRequiredColumnIsNotTold) {
  for (const char* row : {"ows_A=''", "ows_Other='x'"}) {
    ASSERT_TRUE(OpenWith("<Field Name='A' Required='TRUE'/>", row));
    EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "false") << row;
  }
}

TEST_F(ClientFields, AColumnNamedLikeAnAttributeIsTold) {
  ASSERT_TRUE(OpenWith("<Field Name='ows_A' Required='TRUE'/>", "ows_A=''"));
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "true");
  // Required or not plays no part.
  const std::string ofThisList =
      "<Field Name='ows_A' SourceID='{3f1c7a52-0d5b-4e0a-9b59-6c2f0e4d7a10}'/>";
  ASSERT_TRUE(OpenWith(ofThisList, "ows_A=''"));
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "true");
  ASSERT_TRUE(OpenWith(ofThisList, "ows_A='x'"));
  EXPECT_EQ(Flag(&IClient::HasUnfilledRequiredFields), "false");
}

}  // namespace
}  // namespace velandoc
