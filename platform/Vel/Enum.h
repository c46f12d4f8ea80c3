#pragma once

#include <Vel/String.h>

#include <cstdint>

namespace Vel {

/// A named code of an enumeration.
struct Enumerator {
   std::string_view name;
   uint32_t code;
};

/// What the framework knows of an enumeration: its qualified name and its enumerators as declared.
struct EnumModel {
   std::string_view typeName;
   Enumerator const * enumerators;
   uint32_t count;
   bool dense; // the codes are 0, 1, 2, … in order

   [[nodiscard]] Enumerator const * begin() const { return enumerators; }
   [[nodiscard]] Enumerator const * end() const { return enumerators + count; }
   /// The first enumerator of that code, or null.
   [[nodiscard]] VEL_API Enumerator const * byCode( uint32_t code ) const;
   /// The enumerator of that name, or null.
   [[nodiscard]] VEL_API Enumerator const * byName( std::string_view name ) const;
   /// The name of the code; a code that has none gives its decimal number.
   [[nodiscard]] VEL_API String stringValue( uint32_t code ) const;
   /// The code of the name; throws ParseException when there is none.
   [[nodiscard]] VEL_API uint32_t instance( std::string_view name ) const;
};

/// An enumeration declared with VEL_ENUM or VEL_MEMBER_ENUM.
template <typename E>
concept ModelEnum = requires( E e ) {
   { velEnumModel( e ) } -> std::same_as<EnumModel const &>;
};

} // namespace Vel

/// Declares `enum class E : uint32_t`, at namespace scope, from its enumerators, each with an
/// optional `= number` (decimal or 0x hexadecimal; two names of one code are allowed, the first
/// then is its string form). With it come
///   Vel::String stringValue( E )            the name of the value
///   E EInstance( Vel::String const & )      the value of the name; throws Vel::ParseException
///   operator<<                              writes the name
/// Needs VEL_ENUM_DEFINE( E ) once, in the same namespace.
#define VEL_ENUM( E, ... )                                                                         \
   enum class E : uint32_t { __VA_ARGS__ };                                                        \
   constexpr std::string_view velEnumerators( E ) {                                                \
      return #__VA_ARGS__;                                                                         \
   }                                                                                               \
   VEL_API Vel::EnumModel const & velEnumModel( E );                                               \
   [[nodiscard]] VEL_API Vel::String stringValue( E value );                                       \
   [[nodiscard]] VEL_API E E##Instance( Vel::String const & name );                                \
   VEL_API std::ostream & operator<<( std::ostream & out, E value );

/// The same for an enumeration inside a class; the instance function is a static member of it.
/// Needs VEL_MEMBER_ENUM_DEFINE( Class, E ) once.
#define VEL_MEMBER_ENUM( E, ... )                                                                  \
   enum class E : uint32_t { __VA_ARGS__ };                                                        \
   friend VEL_API Vel::EnumModel const & velEnumModel( E );                                        \
   friend VEL_API Vel::String stringValue( E value );                                              \
   [[nodiscard]] static VEL_API E E##Instance( Vel::String const & name );                         \
   friend VEL_API std::ostream & operator<<( std::ostream & out, E value );                        \
   friend constexpr std::string_view velEnumerators( E ) {                                         \
      return #__VA_ARGS__;                                                                         \
   }
