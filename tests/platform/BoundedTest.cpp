#include <Hal/Reg.h>
#include <Keel/ConditionStat.h>
#include <Vel/AttrLog.h>
#include <Vel/Bounded.h>
#include <Vel/Exception.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

template <typename T>
void expectBound( int64_t bound, char const * text ) {
   for ( int64_t number = 0; number <= bound; ++number ) {
      T value;
      value.valueIs( number );
      EXPECT_EQ( value, T( number ) );
      EXPECT_EQ( value.value(), number );
   }
   using Limits = std::numeric_limits<int64_t>;
   for ( int64_t number : { bound + 1, int64_t( 255 ), int64_t( 256 ), int64_t( -1 ), Limits::min(),
                            Limits::max() } ) {
      EXPECT_THROW( static_cast<void>( T( number ) ), Vel::RangeException ) << number;
      T value( 1 );
      try {
         value.valueIs( number );
         ADD_FAILURE() << number;
      } catch ( Vel::RangeException const & error ) {
         EXPECT_STREQ( error.what(), text );
         EXPECT_EQ( value, T( 1 ) ) << "a refused number changes nothing";
      }
   }
}

TEST( Bounded, NumberThatDoesNotFitIsRefusedWithTypeAndBound ) {
   expectBound<Vel::U1>( 1, "U1::value < 0 or > 0x01 not allowed" );
   expectBound<Vel::U2>( 3, "U2::value < 0 or > 0x03 not allowed" );
   expectBound<Vel::U3>( 7, "U3::value < 0 or > 0x07 not allowed" );
   expectBound<Vel::U4>( 15, "U4::value < 0 or > 0x0f not allowed" );
}

TEST( Bounded, RegisterBitFields ) {
   Hal::Reg16 reg( 0xa26e );
   struct {
      unsigned high, low;
      uint16_t field;
   } const fields[] = { { 15, 0, 0xa26e }, { 15, 15, 1 }, { 0, 0, 0 },
                        { 15, 12, 0xa },   { 7, 4, 6 },   { 14, 1, 0x1137 } };
   for ( auto const & [high, low, field] : fields ) {
      EXPECT_EQ( reg.bits( high, low ), field );
      auto const inverted = static_cast<uint16_t>( ~field & ( ( 2u << ( high - low ) ) - 1 ) );
      Hal::Reg16 changed = reg;
      changed.bitsIs( high, low, inverted );
      EXPECT_EQ( changed.bits( high, low ), inverted );
      changed.bitsIs( high, low, field );
      EXPECT_EQ( changed, reg ) << "the other bits are as they were";
   }
   EXPECT_THROW( reg.bitsIs( 7, 4, 16 ), Vel::RangeException );
   EXPECT_EQ( reg, Hal::Reg16( 0xa26e ) );
   reg.bitIs( 0, true );
   reg.bitIs( 15, false );
   EXPECT_EQ( reg.value(), 0x226f );
   EXPECT_TRUE( Hal::Reg8( 0x81 ).bit( 7 ) && !Hal::Reg8( 0x81 ).bit( 6 ) );
   EXPECT_DEATH( static_cast<void>( Hal::Reg8().bits( 8, 0 ) ), "assertion failed" );
   EXPECT_DEATH( static_cast<void>( Hal::Reg16().bit( 16 ) ), "assertion failed" );
   EXPECT_DEATH( static_cast<void>( Hal::Reg8().bits( 2, 3 ) ), "assertion failed" );
}

TEST( ConditionStat, CountsOnsetsAndDatesChanges ) {
   Keel::ConditionStat stat;
   struct {
      bool observed;
      double now;
      Keel::ConditionStat expected;
   } const story[] = {
      { false, 1.0, { false, 0, 0.0 } }, { true, 2.0, { true, 1, 2.0 } },
      { true, 3.0, { true, 1, 2.0 } },   { false, 4.5, { false, 1, 4.5 } },
      { false, 5.0, { false, 1, 4.5 } }, { true, 6.0, { true, 2, 6.0 } },
   };
   for ( auto const & [observed, now, expected] : story ) {
      stat.observedIs( observed, now );
      EXPECT_EQ( stat, expected ) << now;
   }
}

} // namespace
