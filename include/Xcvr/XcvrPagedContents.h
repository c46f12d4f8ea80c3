#pragma once

#include <Vel/String.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>

namespace Xcvr {

/// How the contents value of a module family reads the fields of its pages, inlined into its
/// accessors. `Contents` supplies `pageOf( field )`, the page that holds a field, `textOfEmptyPage`,
/// and `traceUnreadable( field )`, which is told of every field that does not lie on its page.
template <typename Contents>
class PagedContents {
 protected:
   [[nodiscard]] uint8_t u8( MemoryField const & field ) const {
      return pageToRead( field ).u8( field.at );
   }
   [[nodiscard]] uint16_t u16( MemoryField const & field ) const {
      return pageToRead( field ).u16be( field.at );
   }
   /// An unsigned number of up to eight bytes.
   [[nodiscard]] uint64_t number( MemoryField const & field ) const {
      return pageToRead( field ).unsignedBe( field.at, field.width );
   }
   /// Inlined always, so that the copy is one of constant width.
   [[nodiscard, gnu::always_inline]] Vel::String text( MemoryField const & field ) const {
      PageView const page = contents().pageOf( field );
      return page.has( field.at, field.width ) ? Vel::String( page.text( field.at, field.width ) )
                                               : shortText( field );
   }

 private:
   friend bool operator==( PagedContents const &, PagedContents const & ) = default;

   [[nodiscard]] Contents const & contents() const {
      return static_cast<Contents const &>( *this );
   }
   [[nodiscard]] PageView pageToRead( MemoryField const & field ) const {
      PageView const page = contents().pageOf( field );
      if ( !page.has( field.at, field.width ) ) [[unlikely]] {
         Contents::traceUnreadable( field );
      }
      return page;
   }
   [[nodiscard, gnu::cold, gnu::noinline]] Vel::String
   shortText( MemoryField const & field ) const {
      Contents::traceUnreadable( field );
      PageView const page = contents().pageOf( field );
      return page.empty() ? Contents::textOfEmptyPage : page.text( field.at, field.width );
   }
};

} // namespace Xcvr
