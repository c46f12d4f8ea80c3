#include "core/MemoryMapCheck.h"

#include <Xcvr/HalCmis.h>

namespace Xcvr {

using namespace CmisTable;

static_assert( memoryMapFault( fields, pageSize ).empty() );
static_assert( memoryConditionsFault( conditions, fields ).empty() );

std::span<MemoryField const> cmisFields() {
   return fields;
}

std::span<MemoryCondition const> cmisConditions() {
   return conditions;
}

} // namespace Xcvr
