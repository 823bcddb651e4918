// What the command's exit codes mean. Scripts rely on them: a code keeps its meaning.
#pragma once

namespace velandoc {

enum ExitCode : int {
  kExitSuccess = 0,
  kExitNo = 1,              // asked and answered: at least one answer is "no"
  kExitUsage = 2,           // the command line is wrong; nothing was sent
  kExitNoComponent = 3,     // the component cannot be created
  kExitRegistration = 4,    // registering, unregistering or reading the registry failed
  kExitOutput = 5,          // the standard output cannot be written
  kExitFailure = 6,         // a call of the component failed
  kExitNotOpened = 7,       // no such document or file, or the document's server cannot be asked
  kExitIncomplete = 8,      // a part of the document or file did not arrive
  kExitUnknownName = 9,     // the document has no key or column of this name; nothing was written
  kExitHeldByCaller = 10,   // doc status: checked out to the caller
  kExitHeldByAnother = 11,  // doc status: checked out to somebody else
  kExitNoNode = 12,         // hdfs: no active name node, or a node that cannot be spoken to
  kExitLocalFile = 13,      // hdfs: a local file or folder cannot be read or written
  kExitExists = 14,         // hdfs: it is there already
};

}  // namespace velandoc
