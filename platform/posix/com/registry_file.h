// The two files that the registry lies in: found, read, changed under a lock.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/posix/com/registry_tree.h"

namespace velandoc {

enum class Hive { kMachine, kUser };

/// The hive's file in UTF-8, whether it is there or not; empty if the user has no home.
COM_EXPORT std::string HivePath(Hive hive);

/// Makes one change of all that the calling thread changes in the hive from here to EndHiveChanges.
/// Until then this thread alone sees it, and others who want to change the hive wait. Nothing is
/// begun on failure: the errors of LoadHive and ChangeHive, and ERROR_BUSY for a thread that is at
/// it already.
COM_EXPORT DWORD BeginHiveChanges(Hive hive);

/// Puts the thread's changes into the file: all of them or, with the error that is returned, none.
/// Nothing was begun: 0.
COM_EXPORT DWORD EndHiveChanges();

/// The hive as the file holds it now. A missing file is an empty hive. ERROR_BADDB for a file that
/// can't be understood, ERROR_ACCESS_DENIED or ERROR_CANTREAD for one that can't be read.
DWORD LoadHive(Hive hive, std::shared_ptr<const RegistryKey>& root);

/// Lets `change` work on a copy of the hive and, if it returns 0, puts the result into the file's
/// place: whole and on disk, or not at all. Its result or the file's error is returned. No other
/// writer comes between; one that holds the lock for more than ten seconds gives
/// ERROR_SHARING_VIOLATION.
DWORD ChangeHive(Hive hive, const std::function<DWORD(RegistryKey& root)>& change);

}  // namespace velandoc
