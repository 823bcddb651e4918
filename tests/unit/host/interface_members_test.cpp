// Every member of the automation interfaces, as hosts and scripts know it.
#include "tests/unit/host/interface_members.h"

#include <gtest/gtest.h>

#include "velandoc_idl.h"

namespace velandoc {
namespace {

using testing::DescribeMembers;
using testing::MemberText;

const std::vector<MemberText> kServerCheck = {
    {"1 method Check(BSTR ServerName)", "BOOL IsServer", ""},
};

const std::vector<MemberText> kClient = {
    {"1 method InitFromUNC(BSTR UNCPath)", "BOOL Success", ""},
    {"2 method InitFromURL(BSTR URLPath)", "BOOL Success", ""},
    {"3 get URL()", "BSTR pVal", ""},
    {"4 get WebURL()", "BSTR pVal", ""},
    {"5 get ListID()", "BSTR pVal", ""},
    {"6 get ContentTypeID()", "BSTR pVal", ""},
    {"7 get DocID()", "BSTR pVal", ""},
    {"8 method CheckOut()", "BOOL Success", ""},
    {"9 method CheckIn(BSTR Comment, INT CheckInType)", "BOOL Success", ""},
    {"10 method UndoCheckOut()", "INT RetCode", ""},
    {"11 get CheckOutTime()", "I8 pVal", ""},
    {"12 method GetCheckOutStatus()", "INT Status", ""},
    {"13 get SharePointCheckoutUser()", "BSTR pVal", ""},
    {"14 get ModifiedSinceCheckOut()", "BOOL pVal", ""},
    {"15 get FrontPageMetaInfo(BSTR MetaTag)", "VARIANT pVal", ""},
    {"16 get TimeLastModified()", "I8 pVal", ""},
    {"17 method IsInitialCreation()", "BOOL Flag", ""},
    {"18 method ShouldAskForCheckIn()", "BOOL Flag", ""},
    {"19 get ModifiedTimeUTCOA()", "R8 pVal", ""},
    {"20 method HasUnfilledFields()", "BOOL Flag", ""},
    {"21 method HasFields()", "BOOL Flag", ""},
    {"22 method HasUnfilledRequiredFields()", "BOOL Flag", ""},
    {"23 method EditFields()", "BOOL HasUnfilledFields", ""},
};

// 9 and 13 are nobody's. Two properties have the put before the get; of those the library tells the
// put's names alone, which are none.
const std::vector<MemberText> kHdfsClient = {
    {"1 get Port()", "UI2 pVal", "property Port"},
    {"1 put Port(UI2)", "", "property Port"},
    {"2 get ServerName()", "BSTR pVal", "property ServerName"},
    {"2 put ServerName(BSTR)", "", "property ServerName"},
    {"3 get HdfsPath()", "BSTR pVal", "property HdfsPath"},
    {"3 put HdfsPath(BSTR)", "", "property HdfsPath"},
    {"4 method Download(BOOL RandomName = 0, BSTR LocalPath = '')", "BSTR SavedPath",
     "method Download"},
    {"5 put BaseUrl(BSTR)", "", "property BaseUrl"},
    {"5 get BaseUrl()", "BSTR", "property BaseUrl"},
    {"6 method Stream()", "IStream* pVal", "method Stream"},
    {"7 method DownloadPreview(I4 NumberOfLines = 1000)", "BSTR SavedPath",
     "method DownloadPreview"},
    {"8 put UserName(BSTR)", "", "property UserName"},
    {"8 get UserName()", "BSTR", "property UserName"},
    {"10 method VerifyServer(BSTR URL, VARIANT UserName?)", "BOOL bRet", "method VerifyServer"},
    {"11 get Secure()", "BOOL pVal", "property Secure"},
    {"11 put Secure(BOOL)", "", "property Secure"},
    {"12 get URL()", "BSTR pVal", "property Url"},
    {"14 get ConnectionError()", "IConnectionError* pVal", "property ConnectionError"},
    {"15 get Op()", "BSTR pVal", "property Op"},
    {"15 put Op(BSTR)", "", "property Op"},
    {"16 method GetText()", "BSTR Text", "method GetText"},
    {"17 get Options()", "INT pVal", "property Options"},
    {"17 put Options(INT)", "", "property Options"},
    {"18 method Upload(VARIANT FileNameOrStream, BOOL OverwriteFlag = -1, BSTR OctalPermissions = "
     "'')",
     "", "method Upload"},
    {"19 method Delete(BOOL Recursive = 0)", "BOOL Success", "method Delete"},
    {"20 method Rename(BSTR NewName)", "BOOL Succes", "method Rename"},
    {"21 method CreateFolder(BSTR OctalPermissions = '')", "BOOL Success", "method CreateFolder"},
};

const std::vector<MemberText> kConnectionError = {
    {"1 get HttpCode()", "I4 HttpCode", ""},
    {"2 get Message()", "BSTR Message", ""},
};

/// An INT is a 32-bit number like any other where the type library is not kept.
std::string WithoutInt(std::string text) {
  for (std::size_t at = 0; (at = text.find("INT", at)) != std::string::npos; ++at) {
    text.replace(at, 3, "I4");
  }
  return text;
}

void Compare(REFIID iid, const std::vector<MemberText>& told) {
  const std::vector<MemberText> found = DescribeMembers(iid);
  ASSERT_EQ(found.size(), told.size());
  for (std::size_t i = 0; i < told.size(); ++i) {
    if (testing::KeepsHelpAndResultNames()) {
      EXPECT_EQ(found[i].member, told[i].member);
      EXPECT_EQ(found[i].result, told[i].result) << told[i].member;
      EXPECT_EQ(found[i].help, told[i].help) << told[i].member;
    } else {
      EXPECT_EQ(found[i].member, WithoutInt(told[i].member));
      EXPECT_EQ(found[i].result, WithoutInt(told[i].result.substr(0, told[i].result.find(' '))))
          << told[i].member;
    }
  }
}

TEST(InterfaceMembersTest, ServerCheck) { Compare(IID_IServerCheck, kServerCheck); }
TEST(InterfaceMembersTest, Client) { Compare(IID_IClient, kClient); }
TEST(InterfaceMembersTest, HdfsClient) { Compare(IID_IHdfsClient, kHdfsClient); }
TEST(InterfaceMembersTest, ConnectionError) { Compare(IID_IConnectionError, kConnectionError); }

}  // namespace
}  // namespace velandoc
