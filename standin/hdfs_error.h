// How HDFS refuses: a RemoteException with a Java class, a message and a status.
#pragma once

#include <stdexcept>
#include <string>

#include "standin/response.h"

namespace velandoc::standin {

enum class HdfsFault {
  kAccessControl,
  kFileAlreadyExists,
  kFileNotFound,
  kIllegalArgument,
  kInvalidPath,
  kInvalidToken,
  kIo,
  kParentNotDirectory,
  kPathIsNotEmptyDirectory,
  kPathTooLong,
  kSafeMode,
  kStandby,
};

class HdfsError : public std::runtime_error {
 public:
  HdfsError(HdfsFault fault, const std::string& message)
      : std::runtime_error(message), m_fault(fault) {}

  HdfsFault Fault() const { return m_fault; }

 private:
  HdfsFault m_fault;
};

Response HdfsErrorAnswer(const HdfsError& error);

}  // namespace velandoc::standin
