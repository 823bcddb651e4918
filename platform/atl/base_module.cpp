#include "platform/atl/base_module.h"

CAtlBaseModule& AtlBaseModule() {
  static CAtlBaseModule module;
  return module;
}
