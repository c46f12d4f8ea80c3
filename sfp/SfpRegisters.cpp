#include <Xcvr/XcvrSfpStatus.h>

#include <Vel/Define.h>

#include <algorithm>
#include <cstring>

namespace Xcvr {

VEL_VALUE_DEFINE( XcvrSff8472DomRegisterData )

bool Sff8472Registers::erase( key_type key ) {
   if ( !contains( key ) ) {
      return false;
   }
   Page & home = pageIs( deviceOf( key ) );
   --home.count;
   home.bytes[byteOf( key )] = 0;
   home.held[byteOf( key )] = 0;
   return true;
}

size_t Sff8472Registers::size() const {
   size_t result = 0;
   for ( Page const & page : pages_ ) {
      result += page.count;
   }
   return result;
}

Sff8472Registers::Page & Sff8472Registers::newPage( uint8_t device ) {
   auto const place = std::ranges::upper_bound( pages_, device, {}, &Page::device );
   return *pages_.insert( place, Page{ .device = device } );
}

void Sff8472Registers::Iterator::search() {
   for ( size_t const end = registers_.pages_.size() * pageSize; at_ < end;
         at_ = ( at_ / pageSize + 1 ) * pageSize ) {
      uint8_t const * const held = registers_.pages_[at_ / pageSize].held.data();
      size_t const from = at_ % pageSize;
      if ( void const * const found = std::memchr( held + from, 0xff, pageSize - from ) ) {
         at_ += static_cast<size_t>( static_cast<uint8_t const *>( found ) - ( held + from ) );
         return;
      }
   }
}

} // namespace Xcvr
