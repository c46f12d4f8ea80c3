#include <Xcvr/HalSff8472.h>

#include "core/MemoryMapCheck.h"

#include <Vel/Define.h>

#include <iterator>

namespace Xcvr {

VEL_ENUM_DEFINE( Sff8472PageId )
VEL_MEMBER_ENUM_DEFINE( Sff8472, RegisterId )
VEL_VALUE_DEFINE( Sff8472TransceiverCompliance )
VEL_VALUE_DEFINE( Sff8472PassiveAttenuation )
VEL_VALUE_DEFINE( Sff8472ActiveAttenuation )

namespace {

using namespace Sff8472Table;

static_assert( memoryMapFault( fields, pageSize ).empty() );
static_assert( memoryConditionsFault( conditions, fields ).empty() );

/// Which byte of its row a register is, by the ending of its name.
struct RegisterEnding {
   std::string_view text;
   bool isFromEnd; // counted from the end of the row
   uint32_t offset;
};

// "SecondMsb" before "Msb", in which it ends too; without an ending it is the only byte.
constexpr RegisterEnding registerEndings[] = { { "SecondMsb", false, 1 },
                                               { "SecondLsb", true, 2 },
                                               { "Msb", false, 0 },
                                               { "Lsb", true, 1 },
                                               { "", false, 0 } };

/// The key of a register by the place of its row; 0 when page A2h has no such row.
constexpr uint32_t keyInTable( std::string_view name ) {
   for ( RegisterEnding const & ending : registerEndings ) {
      if ( name.ends_with( ending.text ) ) {
         name.remove_suffix( ending.text.size() );
         size_t const index = memoryFieldIndex( fields, name );
         if ( index == std::size( fields ) || fields[index].page != a2h ) {
            return 0;
         }
         MemoryField const & field = fields[index];
         return 0xA200 +
                ( ending.isFromEnd ? field.end() - ending.offset : field.at + ending.offset );
      }
   }
   return 0;
}

/// Every register identifier lies where its row says. A second name of a key has no row.
constexpr bool registerIdsMatchTable() {
   auto const & ids = Vel::Internal::enumerators<Sff8472::RegisterId>;
   for ( size_t i = 0; i < ids.size(); ++i ) {
      bool const secondName = i > 0 && ids[i - 1].code == ids[i].code;
      if ( !secondName && ids[i].code != keyInTable( ids[i].name ) ) {
         return false;
      }
   }
   return true;
}
static_assert( registerIdsMatchTable() );

} // namespace

std::span<MemoryField const> sff8472Fields() {
   return fields;
}

std::span<MemoryCondition const> sff8472Conditions() {
   return conditions;
}

} // namespace Xcvr
