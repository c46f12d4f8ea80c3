#pragma once

#include <Vel/Enum.h>
#include <Vel/ForEach.h>
#include <Vel/String.h>
#include <Vel/Types.h>

#include <cstdint>
#include <utility>

namespace Vel {

class NboAttrLog;

/// Marks the constructor of a value type that takes its fields, each made where it is to stay, one
/// after the other from `source.take<Type>()`, and then calls `source.taken()`.
struct Taken {};

/// Mixes the hash of one more field into a value's hash.
constexpr std::size_t hashMix( std::size_t seed, std::size_t field ) {
   return ( seed ^ field ) * 0x9e3779b97f4a7c15u ^ seed >> 29;
}

/// A type declared with VEL_VALUE or VEL_BOUNDED_VALUE.
template <typename T>
concept ModelValue = requires {
   typename T::VelValueTag;
};

} // namespace Vel

/// Declares a value type's fields, first in its class body, one row a field:
///
///    class ItuTuningConfig {
///       VEL_VALUE( ItuTuningConfig,
///          ( channel, uint32_t ),     // ITU channel number
///          ( grid, uint32_t ) );      // grid spacing, MHz
///    };
///
/// This gives a default constructor (all fields zero, false, empty, the first enumerator), one from
/// all fields, `field()` and `fieldIs( v )`, equality over all fields in this order, and
///   explicit T( Vel::String const & )     from the string form; throws Vel::ParseException
///   explicit T( Vel::NboAttrLog & )       from an attribute log; throws Vel::AttrLogException
///   stringValue( v ), operator<<          the string form, fields in this order
/// Fields are numbers, bool, Vel::String, model enumerations, model values and std::map of them.
/// The text of a type with a map is refused by its constructor (fatal); Vel::fromStringForm reads
/// it. Needs VEL_VALUE_DEFINE( T ) from <Vel/Define.h> once, in the same namespace.
#define VEL_VALUE( T, ... ) VEL_VALUE_( T, VEL_EACH_OF( __VA_ARGS__ ), __VA_ARGS__ )
#define VEL_VALUE_( T, EACH, ... )                                                                 \
 public:                                                                                           \
   T() = default;                                                                                  \
   VEL_VALUE_EXPLICIT_( __VA_ARGS__ )                                                              \
   T( VEL_LIST( EACH( VEL_VALUE_PARAM_, __VA_ARGS__ ) ) )                                          \
      : VEL_LIST( EACH( VEL_VALUE_INIT_, __VA_ARGS__ ) ) {}                                        \
   template <typename VelSource>                                                                   \
   [[gnu::always_inline]] T( Vel::Taken, VelSource && velFrom )                                    \
      : VEL_LIST( EACH( VEL_VALUE_TAKE_, __VA_ARGS__ ) ) {                                         \
      velFrom.taken();                                                                             \
   }                                                                                               \
   EACH( VEL_VALUE_FIELD_, __VA_ARGS__ )                                                           \
   VEL_VALUE_OPERATIONS_( T, EACH( VEL_VALUE_VISIT_, __VA_ARGS__ ) )

// A constructor from a single field must not convert on the quiet.
#define VEL_VALUE_EXPLICIT_( row, ... ) explicit( true __VA_OPT__( &&false ) )

#define VEL_VALUE_PARAM_( name, ... ) , __VA_ARGS__ name
#define VEL_VALUE_INIT_( name, ... ) , name##_( static_cast<__VA_ARGS__ &&>( name ) )
#define VEL_VALUE_TAKE_( name, ... ) , name##_( velFrom.template take<__VA_ARGS__>() )
#define VEL_VALUE_FIELD_( name, ... )                                                              \
 private:                                                                                          \
   __VA_ARGS__ name##_{};                                                                          \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] Vel::In<__VA_ARGS__> name() const {                                               \
      return name##_;                                                                              \
   }                                                                                               \
   void name##Is( Vel::In<__VA_ARGS__> velNew ) {                                                  \
      name##_ = velNew;                                                                            \
   }
// The label carries the separator too, so that the string form is one literal a field.
#define VEL_VALUE_VISIT_( name, ... ) visit( ", '" #name "': ", &VelSelf::name##_ );

#define VEL_VALUE_OPERATIONS_( T, ... )                                                            \
   using VelValueTag = T;                                                                          \
   explicit VEL_API T( Vel::String const & stringForm );                                           \
   explicit VEL_API T( Vel::NboAttrLog & log );                                                    \
   VEL_API void velWrite( Vel::NboAttrLog & log ) const;                                           \
   [[nodiscard]] VEL_API Vel::String velStringForm() const;                                        \
   /* Calls `visit( label, member )` for every field, in the order of declaration. */              \
   template <typename Visitor>                                                                     \
   [[gnu::always_inline]] static constexpr void velFields( Visitor && visit ) {                    \
      using VelSelf = T;                                                                           \
      __VA_ARGS__                                                                                  \
   }                                                                                               \
   friend bool operator==( T const &, T const & ) = default;                                       \
   [[nodiscard]] friend Vel::String stringValue( T const & v ) {                                   \
      return v.velStringForm();                                                                    \
   }                                                                                               \
   friend std::ostream & operator<<( std::ostream & out, T const & v ) {                           \
      return operator<<( out, v.velStringForm() );                                                 \
   }

/// In a value type's class body: makes it usable as a key, with `hash()` and the order of its
/// fields.
#define VEL_KEY( T )                                                                               \
 public:                                                                                           \
   [[nodiscard]] std::size_t hash() const {                                                        \
      std::size_t result = 0;                                                                      \
      T::velFields( [this, &result]( auto const &, auto field ) {                                  \
         result = Vel::hashMix( result, static_cast<std::size_t>( this->*field ) );                \
      } );                                                                                         \
      return result;                                                                               \
   }                                                                                               \
   friend auto operator<=>( T const &, T const & ) = default;

/// The row of a one-field value type of 0 to `bound`: `onOutside( text )` is called for any other
/// number, in the constructor as in the setter, with the fixed text "T::value < 0 or > bound not
/// allowed". A string form or attribute log that holds one throws as any other malformed input.
#define VEL_BOUNDED_VALUE( T, bound, onOutside )                                                   \
 public:                                                                                           \
   T() = default;                                                                                  \
   explicit T( int64_t value ) : value_( velChecked( value ) ) {}                                  \
   template <typename VelSource>                                                                   \
   [[gnu::always_inline]] T( Vel::Taken, VelSource && velFrom )                                    \
      : value_( velFrom.takeUpTo( bound ) ) {                                                      \
      velFrom.taken();                                                                             \
   }                                                                                               \
   [[nodiscard]] uint8_t value() const {                                                           \
      return value_;                                                                               \
   }                                                                                               \
   void valueIs( int64_t value ) {                                                                 \
      value_ = velChecked( value );                                                                \
   }                                                                                               \
   static constexpr uint8_t velBound = bound;                                                      \
   [[nodiscard]] std::size_t hash() const {                                                        \
      return Vel::hashMix( 0, value_ );                                                            \
   }                                                                                               \
   friend auto operator<=>( T const &, T const & ) = default;                                      \
   VEL_VALUE_OPERATIONS_( T, VEL_VALUE_VISIT_( value, uint8_t ) )                                  \
                                                                                                   \
 private:                                                                                          \
   uint8_t value_{};                                                                               \
   static uint8_t velChecked( int64_t value ) {                                                    \
      if ( value < 0 || value > ( bound ) ) [[unlikely]] {                                         \
         onOutside( #T "::value < 0 or > " #bound " not allowed" );                                \
      }                                                                                            \
      return static_cast<uint8_t>( value );                                                        \
   }
