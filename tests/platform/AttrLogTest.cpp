#include "tests/platform/Hex.h"
#include "tests/platform/SampleTypes.h"
#include "tests/support/AllocationCount.h"

#include <Vel/Define.h>

#include <gmock/gmock.h>

#include <bit>
#include <string>

namespace Sample {
namespace {

using Vel::AttrLogException;
using Vel::NboAttrLog;

// The records of filledAll and filledMaps, one group a field.
constexpr char const allRecord[] = "01 ff ffff 8000 01234567 ffffffffffffffff fff0000000000000 "
                                   "00000009 69742773205c20610a 00000008 7fff00000007 0f";
constexpr char const mapsRecord[] = "00000002 000100 090001 "
                                    "00000002 00000000000000000000 0000000162ffff00000007 "
                                    "00000001 03000000057468726565";

template <typename T>
std::string record( T const & value ) {
   NboAttrLog log;
   log.write( value );
   return std::string( log.bytes() );
}

TEST( AttrLog, FieldsInNetworkOrderWithoutHeads ) {
   EXPECT_EQ( hex( record( filledAll() ) ), hex( unhex( allRecord ) ) );
   EXPECT_EQ( hex( record( filledMaps() ) ), hex( unhex( mapsRecord ) ) );
   EXPECT_EQ( hex( record( Maps() ) ), "00 00 00 00 00 00 00 00 00 00 00 00" );
   for ( uint64_t bits :
         { 0x8000000000000000UL, 1UL, 0x7ff8000000000123UL, 0xfff4000000000001UL } ) {
      NboAttrLog log( record( std::bit_cast<double>( bits ) ) );
      EXPECT_EQ( std::bit_cast<uint64_t>( log.read<double>() ), bits ) << "every bit of a double";
   }
}

TEST( AttrLog, ValuesFollowEachOther ) {
   NboAttrLog log;
   for ( int round = 0; round < 2; ++round, log.clear() ) {
      for ( uint16_t i = 0; i < 1000; ++i ) {
         log.write( i );
         log.write( filledAll() );
         log.write( filledMaps() );
      }
      NboAttrLog received( log.bytes() );
      for ( uint16_t i = 0; i < 1000; ++i ) {
         ASSERT_EQ( received.read<uint16_t>(), i );
         ASSERT_EQ( All( received ), filledAll() );
         ASSERT_EQ( Maps( received ), filledMaps() );
      }
      EXPECT_EQ( received.position(), received.bytes().size() );
      EXPECT_THROW( static_cast<void>( received.read<uint8_t>() ), AttrLogException );
      received.positionIs( 2 );
      EXPECT_EQ( received.read<uint8_t>(), 1 ) << "the flag of the first one";
      received.positionIs( 1u << 31 );
      EXPECT_EQ( received.position(), received.bytes().size() );
   }
}

/// Why T cannot be read from bytes, and behind how many of them; the log must stay where it was.
template <typename T>
std::pair<std::string, std::size_t> refusal( std::string const & bytes ) {
   NboAttrLog log( "X" + bytes );
   EXPECT_EQ( log.read<uint8_t>(), 'X' );
   AllocationCount const count;
   try {
      ADD_FAILURE() << T( log );
   } catch ( AttrLogException const & error ) {
      EXPECT_LT( count.bytes(), 2000U ) << "it allocated what the log claims to hold";
      EXPECT_EQ( log.position(), 1U );
      return { error.what(), error.position() - 1 };
   }
   return {};
}

TEST( AttrLog, TruncatedItIsRefusedAndStaysWhereItWas ) {
   std::string const all = unhex( allRecord ), maps = unhex( mapsRecord );
   for ( std::size_t size = 0; size < all.size(); ++size ) {
      EXPECT_LE( refusal<All>( all.substr( 0, size ) ).second, size );
      EXPECT_LE( refusal<Maps>( maps.substr( 0, size % maps.size() ) ).second, size );
   }
}

/// A record of T that is good up to some bytes: those are refused, before anything is believed.
template <typename T>
void expectRefused( std::string const & good, std::string const & bad, char const * problem ) {
   auto const [why, at] = refusal<T>( unhex( good + bad ) + std::string( 100, '\0' ) );
   EXPECT_THAT( why, testing::HasSubstr( problem ) ) << bad;
   EXPECT_EQ( at, unhex( good ).size() ) << bad;
}

TEST( AttrLog, HostileContentIsRefusedBeforeItIsBelieved ) {
   std::string const record = allRecord;
   std::string const toLabel = record.substr( 0, record.find( "00000009" ) );
   std::string const toMode = record.substr( 0, record.find( "00000008" ) );
   char const *noMode = "no Sample::Mode has code", *again = "a key that was given before";
   expectRefused<All>( "", "02", "neither 0 nor 1 for a bool" );
   expectRefused<All>( toMode, "00000001", noMode );                  // in a gap
   expectRefused<All>( toMode, "00000009", noMode );                  // beyond all
   expectRefused<All>( toMode + "000000080000", "00000006", noMode ); // in a nested value
   // The length of a text is good; what follows is too little.
   expectRefused<All>( toLabel + "ffffffff", "", "truncated" );
   expectRefused<Maps>( "ffffffff 000000", "00", again ); // 4 Gi entries
   expectRefused<Maps>( "00000003 070000 080000", "070001", again );
   expectRefused<Maps>( "00000000 00000003 00000001 61 ffff00000007", "00000001 61", again );
   expectRefused<Maps>( "00000000 00000000 00000001", "10", "out of range" );
}

} // namespace
} // namespace Sample
