#pragma once

#include <Vel/Api.h>
#include <Vel/Types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace Vel {

namespace Internal {
struct LogCursor;
}

/// An attribute log: values one after another, without heads, in network byte order.
///
///    bool              one byte, 0 or 1
///    integer           as wide as it is
///    double, Seconds   eight bytes of IEEE 754
///    enumeration       its code in four bytes
///    String            its length in four bytes, then its bytes
///    map               the number of entries in four bytes, then key and value of each
///    value             its fields in place, in the order of declaration
///
/// `write( v )` appends; `explicit T( NboAttrLog & )` of a value type and `read<T>()` take the next
/// value and throw AttrLogException for a log that is truncated or holds what T cannot; the log then
/// stays where it was. Needs <Vel/Define.h> for anything but value types.
class VEL_API NboAttrLog {
 public:
   NboAttrLog() = default;
   /// A log to read, from bytes received.
   explicit NboAttrLog( std::string_view bytes );
   NboAttrLog( NboAttrLog const & ) = delete;
   NboAttrLog & operator=( NboAttrLog const & ) = delete;

   template <typename T>
   void write( T const & v );
   template <typename T>
   [[nodiscard]] T read();

   /// All bytes of the log, read or not.
   [[nodiscard]] std::string_view bytes() const {
      return { reinterpret_cast<char const *>( bytes_.get() ), size_ };
   }
   /// Where the next read begins.
   [[nodiscard]] std::size_t position() const { return position_; }
   void positionIs( std::size_t position ) { position_ = position < size_ ? position : size_; }
   /// Empties the log; its memory stays for the next record.
   void clear() { size_ = position_ = 0; }

   /// For the codec: the bytes from `size` on are dropped; the four at `at` become `number`.
   void sizeIs( std::size_t size ) { size_ = size; }
   void numberIs( std::size_t at, uint32_t number );
   /// For the codec: the place of the next read.
   [[nodiscard]] Internal::LogCursor cursor() const;
   /// For the codec: room for `count` more bytes, which are part of the log from now on.
   [[nodiscard]] uint8_t * append( std::size_t count ) {
      if ( capacity_ - size_ < count ) [[unlikely]] {
         grow( count );
      }
      uint8_t * start = bytes_.get() + size_;
      size_ += count;
      return start;
   }

 private:
   void grow( std::size_t count );

   std::unique_ptr<uint8_t[]> bytes_;
   std::size_t size_ = 0;
   std::size_t capacity_ = 0;
   std::size_t position_ = 0;
};

} // namespace Vel
