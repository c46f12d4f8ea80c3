#include <Xcvr/HalSff8436.h>

#include "core/MemoryMapCheck.h"

#include <Vel/Define.h>

namespace Xcvr {

VEL_ENUM_DEFINE( Sff8436PageId )
VEL_ENUM_DEFINE( Sff8436DeviceTechnology )

using namespace Sff8436Table;

static_assert( memoryMapFault( fields, pageSize ).empty() );
static_assert( memoryConditionsFault( conditions, fields ).empty() );

std::span<MemoryField const> sff8436Fields() {
   return fields;
}

std::span<MemoryCondition const> sff8436Conditions() {
   return conditions;
}

} // namespace Xcvr
