#pragma once

#include <Vel/Assert.h>
#include <Vel/AttrLogCodec.h>
#include <Vel/StringForm.h>
#include <Vel/TypeRegistry.h>

#include <algorithm>
#include <array>
#include <ostream>

/// What a .cpp includes to define the model types that its headers declare: VEL_ENUM_DEFINE( E ),
/// VEL_MEMBER_ENUM_DEFINE( Class, E ), VEL_VALUE_DEFINE( T ) and, in <Vel/DefineEntity.h>,
/// VEL_ENTITY_DEFINE.
namespace Vel::Internal {

/// Reads an enumeration's declaration, `a, b = 0x10, c`, at compile time. An error in it, such as a
/// number that is neither decimal nor hexadecimal, fails the build at the throw.
struct EnumeratorReader {
   std::string_view rest;
   uint32_t next = 0;

   constexpr Enumerator take() {
      std::string_view item = rest.substr( 0, rest.find( ',' ) );
      rest.remove_prefix( std::min( item.size() + 1, rest.size() ) );
      std::size_t const equals = item.find( '=' );
      if ( equals != std::string_view::npos ) {
         next = number( trimmed( item.substr( equals + 1 ) ) );
         item = item.substr( 0, equals );
      }
      return { trimmed( item ), next++ };
   }
   static constexpr std::string_view trimmed( std::string_view text ) {
      constexpr std::string_view blanks = " \t\n";
      std::size_t const first = text.find_first_not_of( blanks );
      return first == std::string_view::npos
                ? std::string_view()
                : text.substr( first, text.find_last_not_of( blanks ) - first + 1 );
   }
   static constexpr uint32_t number( std::string_view text ) {
      uint32_t const base = text.starts_with( "0x" ) ? 16 : 10;
      if ( base == 10 && text.size() > 1 && text[0] == '0' ) {
         throw "an octal number";
      }
      uint32_t value = 0;
      for ( char c : text.substr( base == 16 ? 2 : 0 ) ) {
         std::size_t const digit = std::string_view( "0123456789abcdefABCDEF" ).find( c );
         uint32_t const weight = static_cast<uint32_t>( digit < 16 ? digit : digit - 6 );
         if ( digit == std::string_view::npos || weight >= base ) {
            throw "an enumerator's number is decimal or 0x hexadecimal";
         }
         value = value * base + weight;
      }
      return value;
   }
};

template <typename E>
inline constexpr auto enumerators = [] {
   constexpr std::string_view declared = velEnumerators( E{} );
   // A comma behind the last enumerator ends an empty item, which is none.
   constexpr std::string_view list =
      declared.substr( 0, declared.find_last_not_of( ", \t\n" ) + 1 );
   std::array<Enumerator, std::count( list.begin(), list.end(), ',' ) + 1> table{};
   EnumeratorReader reader{ list };
   for ( Enumerator & e : table ) {
      e = reader.take();
   }
   return table;
}();

template <typename E>
inline constexpr EnumModel enumModel = [] {
   auto const & table = enumerators<E>;
   bool dense = true;
   for ( uint32_t i = 0; i < table.size(); ++i ) {
      dense = dense && table[i].code == i;
   }
   return EnumModel{ typeName<E>(), table.data(), static_cast<uint32_t>( table.size() ), dense };
}();

template <typename T>
inline constexpr auto valueFields = [] {
   constexpr std::size_t count = [] {
      std::size_t fields = 0;
      T::velFields( [&fields]( auto const &, auto ) { ++fields; } );
      return fields;
   }();
   std::array<FieldModel, count> table{};
   FieldModel * at = table.data();
   T::velFields( [&at]<std::size_t N, typename F>( char const( &label )[N], F T::* ) {
      constexpr std::size_t lead = sizeof ", '" - 1, trail = sizeof "': " - 1;
      *at++ = { { label + lead, N - 1 - lead - trail }, typeName<F>() };
   } );
   return table;
}();

template <typename T>
inline constexpr ValueModel valueModel{ typeName<T>(), valueFields<T>.data(),
                                        valueFields<T>.size() };

} // namespace Vel::Internal

#define VEL_ENUM_DEFINE( E ) VEL_ENUM_DEFINE_( E, E, E##Instance, VEL_UNIQUE_( velRegistered ) )
#define VEL_MEMBER_ENUM_DEFINE( Class, E )                                                         \
   VEL_ENUM_DEFINE_( Class::E, E, Class::E##Instance, VEL_UNIQUE_( velRegistered ) )

#define VEL_UNIQUE_( name ) VEL_FOR_EACH_CAT_( name, __COUNTER__ )

#define VEL_ENUM_DEFINE_( E, Short, Instance, registered )                                         \
   Vel::EnumModel const & velEnumModel( E ) {                                                      \
      return Vel::Internal::enumModel<E>;                                                          \
   }                                                                                               \
   Vel::String stringValue( E value ) {                                                            \
      return velEnumModel( value ).stringValue( static_cast<uint32_t>( value ) );                  \
   }                                                                                               \
   E Instance( Vel::String const & name ) {                                                        \
      return static_cast<E>( Vel::Internal::enumModel<E>.instance( name ) );                       \
   }                                                                                               \
   std::ostream & operator<<( std::ostream & out, E value ) {                                      \
      return out << stringValue( value );                                                          \
   }                                                                                               \
   static Vel::TypeRegistration const registered( Vel::Internal::enumModel<E> );

#define VEL_VALUE_DEFINE( T ) VEL_VALUE_DEFINE_( T, T, VEL_UNIQUE_( velRegistered ) )

#define VEL_VALUE_DEFINE_( T, Constructor, registered )                                            \
   T::Constructor( Vel::String const & stringForm ) : Constructor() {                              \
      VEL_ASSERT_TEXT( !Vel::Internal::hasCollection<T>,                                           \
                       "!\"No String constructor for " #T " - has collection\"" );                 \
      Vel::fromStringForm( stringForm, *this );                                                    \
   }                                                                                               \
   T::Constructor( Vel::NboAttrLog & log )                                                         \
      : Constructor( Vel::Taken(), Vel::Internal::LogReading<T>( log ) ) {}                        \
   void T::velWrite( Vel::NboAttrLog & log ) const {                                               \
      Vel::Internal::encode( log.append( Vel::Internal::encodedSize( *this ) ), *this );           \
   }                                                                                               \
   Vel::String T::velStringForm() const {                                                          \
      return Vel::stringForm( *this );                                                             \
   }                                                                                               \
   static Vel::TypeRegistration const registered( Vel::Internal::valueModel<T> );
