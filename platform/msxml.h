// The DOM that the web-service layer reads and writes: MSXML 6 on Windows, the same interfaces over
// libxml2 on Linux. Objects come from CoCreateInstance(CLSID_DOMDocument60).
#pragma once

#include "platform/com.h"

#ifdef _WIN32
#include "platform/windows/msxml_ids.h"
#else
#include "platform/posix/msxml/msxml.h"
#endif
