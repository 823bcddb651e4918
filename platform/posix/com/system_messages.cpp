#include "platform/posix/com/system_messages.h"

namespace velandoc {
namespace {

struct ResultRow {
  HRESULT result;
  std::u16string_view text;
};

constexpr ResultRow kResults[] = {
    {S_OK, u"The operation ended well."},
    {E_NOTIMPL, u"Not implemented"},
    {E_NOINTERFACE, u"No such interface supported"},
    {E_POINTER, u"Invalid pointer"},
    {E_ABORT, u"Operation aborted"},
    {E_FAIL, u"Unspecified error"},
    {E_UNEXPECTED, u"Catastrophic failure"},
    {CLASS_E_NOAGGREGATION, u"Class does not support aggregation"},
    {CLASS_E_CLASSNOTAVAILABLE, u"The class is not served by its library"},
    {REGDB_E_READREGDB, u"The registry file can't be read"},
    {REGDB_E_CLASSNOTREG, u"Class not registered"},
    {CO_E_NOTINITIALIZED, u"COM has not been initialised on this thread"},
    {CO_E_CLASSSTRING, u"Invalid class name"},
    {CO_E_DLLNOTFOUND, u"The library of the class was not found"},
    {DISP_E_MEMBERNOTFOUND, u"Member not found."},
    {DISP_E_PARAMNOTFOUND, u"An argument that is needed was left out."},
    {DISP_E_TYPEMISMATCH, u"Type mismatch."},
    {DISP_E_UNKNOWNNAME, u"Unknown name."},
    {DISP_E_BADVARTYPE, u"The type of an argument is not served."},
    {DISP_E_EXCEPTION, u"The member ended with an error of its own."},
    {DISP_E_OVERFLOW, u"Out of range."},
    {DISP_E_BADPARAMCOUNT, u"Invalid number of parameters."},
    {STG_E_INVALIDFUNCTION, u"The stream cannot do that."},
    {STG_E_FILENOTFOUND, u"The file was not found."},
    {STG_E_PATHNOTFOUND, u"The folder was not found."},
    {STG_E_ACCESSDENIED, u"Access to the file is denied."},
    {STG_E_INVALIDPOINTER, u"The stream was given a null pointer."},
    {STG_E_SEEKERROR, u"The stream cannot be set to this position."},
    {STG_E_WRITEFAULT, u"Writing to the disk failed."},
    {STG_E_READFAULT, u"Reading from the disk failed."},
    {STG_E_FILEALREADYEXISTS, u"A file of this name is there already."},
    {STG_E_MEDIUMFULL, u"The disk is full."},
};

struct ErrorRow {
  DWORD error;
  std::u16string_view text;
};

constexpr ErrorRow kErrors[] = {
    {ERROR_FILE_NOT_FOUND, u"The file was not found."},
    {ERROR_PATH_NOT_FOUND, u"The folder was not found."},
    {ERROR_ACCESS_DENIED, u"Access is denied."},
    {ERROR_INVALID_HANDLE, u"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, u"Not enough memory."},
    {ERROR_INVALID_DATA, u"The data is invalid."},
    {14, u"Not enough memory."},  // ERROR_OUTOFMEMORY, the one inside E_OUTOFMEMORY
    {ERROR_WRITE_FAULT, u"Writing to the device failed."},
    {ERROR_SHARING_VIOLATION, u"The file is in use by another program."},
    {ERROR_NOT_SUPPORTED, u"The request is not supported."},
    {ERROR_FILE_EXISTS, u"A file of this name is there already."},
    {ERROR_INVALID_PARAMETER, u"The parameter is incorrect."},
    {ERROR_DISK_FULL, u"The disk is full."},
    {ERROR_INSUFFICIENT_BUFFER, u"The data area passed along is too small."},
    {ERROR_MORE_DATA, u"There is more data to be had."},
    {ERROR_NO_MORE_ITEMS, u"There are no more items."},
    {ERROR_CANCELLED, u"The operation was cancelled by the user."},
};

constexpr DWORD kFacilityMask = 0xFFFF0000;
constexpr DWORD kWin32Facility = 0x80070000;

}  // namespace

std::u16string_view SystemMessage(DWORD code) {
  for (const ResultRow& row : kResults) {
    if (row.result == static_cast<HRESULT>(code)) return row.text;
  }
  const DWORD error = (code & kFacilityMask) == kWin32Facility ? code & ~kFacilityMask : code;
  for (const ErrorRow& row : kErrors) {
    if (row.error == error) return row.text;
  }
  return {};
}

}  // namespace velandoc
