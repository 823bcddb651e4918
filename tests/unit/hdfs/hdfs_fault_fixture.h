// Runs an operation of an HDFS client with the N-th call of a port failing, for every N.
#pragma once

#include "tests/support/fault_code_page.h"
#include "tests/support/fault_error_services.h"
#include "tests/support/fault_file_system.h"
#include "tests/unit/hdfs/hdfs_host_test.h"
#include "tests/unit/hdfs/hdfs_operations.h"

namespace velandoc::testing {

/// `Base` is a client's fixture, `ServiceAnswer` what its scripted service plays.
template <class Base, class ServiceAnswer>
class HdfsFaultTest : public Base {
 protected:
  /// What must be closed when a call has ended.
  virtual int OpenHandles() const = 0;
  /// In front of each run, with no answer left of the one before.
  virtual void Prepare() {}

  HRESULT Run(const HdfsOperation& operation) {
    this->m_files.files.clear();
    this->m_platform.answers.clear();
    Prepare();
    for (const HdfsAnswer& answer : operation.answers) {
      this->m_platform.answers.push_back(AnswerOf<ServiceAnswer>(answer));
    }
    const HRESULT result = operation.run(*this->m_client.Get());
    this->m_platform.answers.clear();
    return result;
  }

  /// `makeFault` makes the port in which call number `failAt` fails; `check` gets the result, the
  /// number of a run for messages, and whether a call failed. Ends behind the first run in which
  /// none did. In each run all that was opened is closed, and a failed operation leaves no file.
  template <class Port, class MakeFault, class Check>
  void FailEachCall(const HdfsOperation& operation, MakeFault makeFault, Check check) {
    constexpr int kMaxCalls = 60;
    for (int failAt = 1;; ++failAt) {
      const std::string where = std::string(operation.name) + " " + std::to_string(failAt);
      ASSERT_LT(failAt, kMaxCalls) << where;
      auto fault = makeFault(failAt);
      const PortScope<Port> scope(fault);
      const HRESULT result = Run(operation);
      EXPECT_EQ(OpenHandles(), 0) << where;
      EXPECT_EQ(this->m_files.OpenCount(), 0U) << where;
      if (FAILED(result)) {
        EXPECT_EQ(this->m_files.files.size(), 0U) << where;
      }
      check(result, where, fault.Failed());
      if (!fault.Failed()) break;
    }
  }

  /// Each failing call of the local files fails its operation. How many there were.
  int FailEachCallOfTheFiles() {
    int failures = 0;
    for (const HdfsOperation& operation : HdfsOperations()) {
      FailEachCall<FileSystem>(
          operation,
          [&](int failAt) { return FaultFileSystem(this->m_files, failAt, ERROR_DISK_FULL); },
          [&](HRESULT result, const std::string& where, bool hasFailed) {
            EXPECT_EQ(FAILED(result), hasFailed) << where;
            if (hasFailed) ++failures;
          });
    }
    return failures;
  }

  /// Where a request is answered so, what goes wrong in telling it changes neither result nor
  /// status.
  void FailEachCallOfTelling(const std::vector<HdfsAnswer>& answers) {
    for (HdfsOperation operation : HdfsOperations()) {
      operation.answers = answers;
      const HRESULT expected = Run(operation);
      const std::string status = StatusTold();
      FailEachCall<ErrorServices>(
          operation, [&](int failAt) { return FaultErrorServices(this->m_services, failAt); },
          [&](HRESULT result, const std::string& where, bool) {
            EXPECT_EQ(result, expected) << where;
            EXPECT_EQ(StatusTold(), status) << where;
          });
      // A URL that finds no bytes may fail its request; words that find none do not.
      CodePage& codePage = CurrentPort<CodePage>();
      FailEachCall<CodePage>(
          operation, [&](int failAt) { return FaultCodePage(codePage, failAt); },
          [&](HRESULT result, const std::string& where, bool) {
            EXPECT_TRUE(result == expected || result == E_FAIL) << where;
          });
    }
  }

 private:
  std::string StatusTold() {
    const std::string error = this->Error();
    return error.substr(0, error.find(' '));
  }
};

}  // namespace velandoc::testing
