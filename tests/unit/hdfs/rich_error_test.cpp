#include "hdfs/rich_error.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_error_services.h"
#include "tests/support/thread_error.h"

namespace velandoc {
namespace {

using testing::MakeErrorInfo;
using testing::ScriptedErrorServices;
using testing::TakeThreadError;
using testing::ThreadError;

constexpr GUID kClient = {0x5EBD1685, 0xDEAC, 0x437B, {0xA0, 0x90, 1, 2, 3, 4, 5, 6}};

TEST(RichError, CarriesDescriptionSourceAndTheClientsClass) {
  SetRichError(OLESTR("no such file"), kUploadSource, kClient);
  const ThreadError error = TakeThreadError();
  ASSERT_TRUE(error.isThere);
  EXPECT_EQ(error.description, "no such file");
  EXPECT_EQ(error.source, "HDFS Client Upload");
  EXPECT_TRUE(IsEqualGUID(error.guid, kClient));
}

TEST(RichError, TheSourceIsARowOfTheStringTable) {
  const struct {
    WORD id;
    const char* text;
  } rows[] = {
      {100, "Velandoc"},
      {kUnknownConnectionError, "Unknown connection error with server."},
      {kConnectSource, "HDFS Client Connect"},
      {kReadError, "Error reading HDFS file from network."},
      {kUploadSource, "HDFS Client Upload"},
      {kCreateFolderSource, "HDFS CreateFolder"},
      {99, ""},
      {106, ""},
  };
  for (const auto& row : rows) {
    SetRichError(OLESTR("d"), row.id, kClient);
    EXPECT_EQ(TakeThreadError().source, row.text);
  }
}

TEST(RichError, TakesTheEarlierOnesPlace) {
  SetRichError(OLESTR("first"), kUploadSource, kClient);
  SetRichError(OLESTR("second"), kConnectSource, kClient);
  EXPECT_EQ(TakeThreadError().description, "second");
  EXPECT_FALSE(TakeThreadError().isThere);
}

TEST(RichError, WhereNoneCanBeMadeTheThreadsErrorStaysAsItIs) {
  ScriptedErrorServices services;
  services.createResult = E_OUTOFMEMORY;
  const PortScope<ErrorServices> scope(services);
  SetErrorInfo(0, nullptr);
  SetRichError(OLESTR("d"), kConnectSource, kClient);
  EXPECT_FALSE(TakeThreadError().isThere);
  SetErrorInfo(0, MakeErrorInfo(OLESTR("earlier")).Get());
  SetRichError(OLESTR("d"), kConnectSource, kClient);
  EXPECT_EQ(TakeThreadError().description, "earlier");
}

}  // namespace
}  // namespace velandoc
