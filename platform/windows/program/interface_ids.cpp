// The identifiers that the interface compiler's header declares, defined once for the programs.
#include "platform/com.h"
// Makes the declarations behind it definitions.
#include <initguid.h>
#include <velandoc_idl.h>
