#pragma once

#include <Vel/String.h>
#include <Xcvr/XcvrMemoryMap.h>
#include <Xcvr/XcvrTypes.h>

#include <algorithm>
#include <cstdint>

namespace Xcvr {

/// How the contents value of a module family reads the fields of its pages, inlined into its
/// accessors. `Contents` supplies `pageOf( field )`, the page that holds a field,
/// `textOfEmptyPage`, and `traceUnreadable( field )`, which is told of every field that does not
/// lie on its page.
template <typename Contents>
class PagedContents {
 protected:
   // Inlined always, so that what is known of the field is constant.
   [[nodiscard, gnu::always_inline]] uint8_t u8( MemoryField const & field ) const {
      return pageToRead( field ).u8( field.at );
   }
   [[nodiscard, gnu::always_inline]] uint16_t u16( MemoryField const & field ) const {
      return pageToRead( field ).u16be( field.at );
   }
   /// An unsigned number of up to eight bytes.
   [[nodiscard]] uint64_t number( MemoryField const & field ) const {
      return pageToRead( field ).unsignedBe( field.at, field.width );
   }
   [[nodiscard, gnu::always_inline]] Vel::String text( MemoryField const & field ) const {
      PageView const page = contents().pageOf( field );
      return page.has( field.at, field.width ) ? Vel::String( page.text( field.at, field.width ) )
                                               : shortText( field );
   }
   /// The five texts that identify a module, which lie on one page, behind one check of it.
   [[nodiscard, gnu::always_inline]] VendorInfo
   vendorTexts( MemoryField const & name, MemoryField const & pn, MemoryField const & sn,
                MemoryField const & rev, MemoryField const & dateCode ) const {
      PageView const page = contents().pageOf( name );
      uint32_t const length =
         std::max( { name.end(), pn.end(), sn.end(), rev.end(), dateCode.end() } );
      if ( !page.has( 0, length ) ) [[unlikely]] {
         return shortVendorTexts( name, pn, sn, rev, dateCode );
      }
      return VendorInfo(
         Vel::Taken(), TextsInPlace{ page.first( length ), { &name, &pn, &sn, &rev, &dateCode } } );
   }

 private:
   // What `Vel::Taken` asks of a source.
   struct TextsInPlace {
      PageView page;
      MemoryField const * fields[5];
      static_assert( sizeof( VendorInfo ) == 5 * sizeof( Vel::String ) );
      std::size_t next = 0;

      template <typename>
      [[gnu::always_inline]] Vel::String take() {
         MemoryField const & field = *fields[next++];
         return page.text( field.at, field.width );
      }
      void taken() const {}
   };

   friend bool operator==( PagedContents const &, PagedContents const & ) = default;

   [[nodiscard]] Contents const & contents() const {
      return static_cast<Contents const &>( *this );
   }
   [[nodiscard, gnu::always_inline]] PageView pageToRead( MemoryField const & field ) const {
      PageView const page = contents().pageOf( field );
      if ( !page.has( field.at, field.width ) ) [[unlikely]] {
         Contents::traceUnreadable( field );
      }
      return page;
   }
   [[nodiscard, gnu::cold, gnu::noinline]] VendorInfo
   shortVendorTexts( MemoryField const & name, MemoryField const & pn, MemoryField const & sn,
                     MemoryField const & rev, MemoryField const & dateCode ) const {
      return { text( name ), text( pn ), text( sn ), text( rev ), text( dateCode ) };
   }
   [[nodiscard, gnu::cold, gnu::noinline]] Vel::String
   shortText( MemoryField const & field ) const {
      Contents::traceUnreadable( field );
      PageView const page = contents().pageOf( field );
      return page.empty() ? Contents::textOfEmptyPage : page.text( field.at, field.width );
   }
};

} // namespace Xcvr
