#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace Xcvr {

/// The sum of the bytes, taken as signed 8-bit numbers, of at most a page of 256 bytes. Eight at a
/// time: compilers leave the plain loop scalar at -O2, which takes several times as long.
inline int signedByteSum( std::string_view bytes ) {
   constexpr uint64_t signBits = 0x8080808080808080, evenBytes = 0x00ff00ff00ff00ff;
   // A signed byte is the byte with its sign bit flipped, minus 128. Four 16-bit lanes sum up the
   // flipped bytes; within a page none of them, nor the sum of the four, exceeds 16 bits.
   uint64_t lanes = 0;
   size_t at = 0;
   for ( ; at + 8 <= bytes.size(); at += 8 ) {
      uint64_t word;
      std::memcpy( &word, bytes.data() + at, sizeof word );
      word ^= signBits;
      lanes += ( word & evenBytes ) + ( word >> 8 & evenBytes );
   }
   int sum = static_cast<int>( lanes * 0x0001000100010001 >> 48 ) - static_cast<int>( at ) * 128;
   for ( ; at < bytes.size(); ++at ) {
      sum += static_cast<signed char>( bytes[at] );
   }
   return sum;
}

} // namespace Xcvr
