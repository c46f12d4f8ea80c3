#include <Vel/Enum.h>
#include <Vel/Exception.h>

#include <algorithm>
#include <charconv>

namespace Vel {

Enumerator const * EnumModel::byCode( uint32_t code ) const {
   if ( dense ) {
      return code < count ? enumerators + code : nullptr;
   }
   Enumerator const * found =
      std::find_if( begin(), end(), [code]( Enumerator const & e ) { return e.code == code; } );
   return found != end() ? found : nullptr;
}

Enumerator const * EnumModel::byName( std::string_view name ) const {
   Enumerator const * found =
      std::find_if( begin(), end(), [name]( Enumerator const & e ) { return e.name == name; } );
   return found != end() ? found : nullptr;
}

String EnumModel::stringValue( uint32_t code ) const {
   if ( Enumerator const * found = byCode( code ) ) {
      return found->name;
   }
   char digits[10];
   char const * end = std::to_chars( digits, digits + sizeof digits, code ).ptr;
   return { digits, static_cast<std::size_t>( end - digits ) };
}

uint32_t EnumModel::instance( std::string_view name ) const {
   if ( Enumerator const * found = byName( name ) ) {
      return found->code;
   }
   throw ParseException( 0, "a name of " + std::string( typeName ) );
}

} // namespace Vel
