#pragma once

#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace XcvrTest {

/// The pages of a module's image, written through the field table of its family. A name that the table
/// lacks throws.
class ModulePages {
 public:
   using Labels = std::span<std::string_view const>;

   /// Pages of zeros, but for blank texts.
   ModulePages( std::span<Xcvr::MemoryField const> fields, Labels labels, size_t pageSize );

   void valueIs( std::string_view field, double value );
   void rawIs( std::string_view field, uint64_t number );
   void textIs( std::string_view field, std::string_view text );
   void bitIs( std::string_view field, std::string_view bit );
   void checksumBrokenIs( std::string_view field );
   void pageIs( std::string_view label, std::string_view bytes ) { pages_.at( label ) = bytes; }

   [[nodiscard]] std::string const & page( std::string_view label ) const {
      return pages_.at( label );
   }
   /// The bytes of a page with the sum of the bytes from `first` up to a stored checksum in that, one
   /// off for the checksum that is to be broken.
   void sumUp( std::string & page, size_t first, std::string_view stored ) const;

 private:
   [[nodiscard]] Xcvr::MemoryField const & fieldNamed( std::string_view name ) const;
   [[nodiscard]] std::string & pageOf( Xcvr::MemoryField const & field ) {
      return pages_.at( field.page );
   }

   std::span<Xcvr::MemoryField const> fields_;
   std::map<std::string_view, std::string> pages_;
   std::string brokenChecksum_;
};

/// The setters of a family's builder, each of which returns the builder.
template <typename Builder>
class ImageBuilder {
 public:
   /// A number in the field's unit.
   Builder & value( std::string_view field, double value ) {
      pages_.valueIs( field, value );
      return builder();
   }
   /// A number as stored.
   Builder & raw( std::string_view field, uint64_t number ) {
      pages_.rawIs( field, number );
      return builder();
   }
   Builder & text( std::string_view field, std::string_view text ) {
      pages_.textIs( field, text );
      return builder();
   }
   Builder & bit( std::string_view field, std::string_view bit ) {
      pages_.bitIs( field, bit );
      return builder();
   }
   /// Stores a checksum that is one off; the field is one of the stored checksums.
   Builder & checksumBroken( std::string_view field ) {
      pages_.checksumBrokenIs( field );
      return builder();
   }
   /// All bytes of a page.
   Builder & pageIs( std::string_view label, std::string_view bytes ) {
      pages_.pageIs( label, bytes );
      return builder();
   }

 protected:
   ImageBuilder( std::span<Xcvr::MemoryField const> fields, ModulePages::Labels labels,
                 size_t pageSize )
      : pages_( fields, labels, pageSize ) {}

   [[nodiscard]] ModulePages const & pages() const { return pages_; }

 private:
   [[nodiscard]] Builder & builder() { return static_cast<Builder &>( *this ); }

   ModulePages pages_;
};

} // namespace XcvrTest
