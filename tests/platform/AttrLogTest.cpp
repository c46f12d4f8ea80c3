#include "tests/platform/SampleTypes.h"
#include "tests/support/AllocationCount.h"

#include <Vel/Define.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <string>

namespace Sample {
namespace {

using Vel::AttrLogException;
using Vel::NboAttrLog;

std::string hex( std::string_view bytes ) {
   std::string text;
   for ( char c : bytes ) {
      auto const byte = static_cast<unsigned char>( c );
      for ( int digit : { byte >> 4, byte & 15 } )
         text += "0123456789abcdef"[digit];
   }
   return text;
}

std::string unhex( std::string_view text ) {
   std::string bytes;
   for ( ; !text.empty(); text.remove_prefix( text[0] == ' ' ? 1 : 2 ) )
      if ( text[0] != ' ' )
         bytes += static_cast<char>( std::stoi( std::string( text.substr( 0, 2 ) ), nullptr, 16 ) );
   return bytes;
}

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
   EXPECT_EQ( hex( record( Maps() ) ), "000000000000000000000000" );
   EXPECT_EQ( hex( record( 1.0 ) ), "3ff0000000000000" );
   EXPECT_EQ( hex( record( Mode::on ) ), "00000007" );
}

TEST( AttrLog, ValuesFollowEachOther ) {
   NboAttrLog log;
   for ( int round = 0; round < 2; ++round ) {
      for ( uint16_t i = 0; i < 1000; ++i ) {
         All value = filledAll();
         value.wordIs( i );
         log.write( value );
         log.write( filledMaps() );
         log.write( i );
      }
      NboAttrLog received( log.bytes() );
      for ( uint16_t i = 0; i < 1000; ++i ) {
         All value = filledAll();
         value.wordIs( i );
         ASSERT_EQ( All( received ), value );
         ASSERT_EQ( Maps( received ), filledMaps() );
         ASSERT_EQ( received.read<uint16_t>(), i );
      }
      EXPECT_EQ( received.position(), received.bytes().size() );
      EXPECT_THROW( static_cast<void>( received.read<uint8_t>() ), AttrLogException );
      received.positionIs( 2 );
      EXPECT_EQ( received.read<uint16_t>(), 0 );
      received.positionIs( 1u << 31 );
      EXPECT_EQ( received.position(), received.bytes().size() );
      log.clear();
      EXPECT_EQ( log.bytes(), "" );
   }
}

TEST( AttrLog, DoublesKeepEveryBit ) {
   for ( uint64_t bits :
         { 0x8000000000000000UL, 1UL, 0x7ff8000000000123UL, 0xfff4000000000001UL } ) {
      NboAttrLog log;
      log.write( std::bit_cast<double>( bits ) );
      EXPECT_EQ( std::bit_cast<uint64_t>( log.read<double>() ), bits );
   }
}

template <typename T>
void expectRefusedTruncated( std::string const & bytes ) {
   for ( std::size_t size = 0; size < bytes.size(); ++size ) {
      NboAttrLog log( "X" + bytes.substr( 0, size ) );
      EXPECT_EQ( log.read<uint8_t>(), 'X' );
      try {
         FAIL() << size << ": " << T( log );
      } catch ( AttrLogException const & error ) {
         EXPECT_LE( error.position(), 1 + size );
         EXPECT_EQ( log.position(), 1U );
      }
   }
}

TEST( AttrLog, TruncatedItIsRefusedAndStaysWhereItWas ) {
   expectRefusedTruncated<All>( unhex( allRecord ) );
   expectRefusedTruncated<Maps>( unhex( mapsRecord ) );
}

/// A record from which some bytes, at the ^, are what T cannot hold.
struct HostileRecord {
   char const * what;
   std::string before, bad; // hexadecimal
   char const * problem;
};

template <typename T>
void expectRefused( HostileRecord const & hostile ) {
   SCOPED_TRACE( hostile.what );
   std::string const before = unhex( hostile.before );
   NboAttrLog log( before + unhex( hostile.bad ) + std::string( 100, '\0' ) );
   AllocationCount const count;
   try {
      FAIL() << T( log );
   } catch ( AttrLogException const & error ) {
      EXPECT_LT( count.bytes(), 2000U ) << "it allocated what the log claims to hold";
      EXPECT_EQ( error.position(), before.size() );
      EXPECT_NE( std::string( error.what() ).find( hostile.problem ), std::string::npos )
         << error.what();
      EXPECT_EQ( log.position(), 0U );
   }
}

TEST( AttrLog, HostileContentIsRefusedBeforeItIsBelieved ) {
   std::string const record = allRecord;
   std::string const toLabel = record.substr( 0, record.find( "00000009" ) );
   std::string const toMode = record.substr( 0, record.find( "00000008" ) );
   std::string const toNibble = record.substr( 0, record.rfind( "0f" ) );
   char const *noMode = "no Sample::Mode has code", *truncated = "truncated",
              *again = "a key that was given before";
   HostileRecord const hostile[] = {
      { "a bool of 2", "", "02", "neither 0 nor 1 for a bool" },
      { "a bool of 255", "", "ff", "neither 0 nor 1 for a bool" },
      { "an enumeration code in a gap", toMode, "00000001", noMode },
      { "an enumeration code beyond all", toMode, "00000009", noMode },
      { "an enumeration code with a high byte", toMode, "08000008", noMode },
      { "an enumeration code in a nested value", toMode + "000000080000", "00000006", noMode },
      { "a bounded number out of range", toNibble, "10", "out of range" },
   };
   for ( HostileRecord const & one : hostile )
      expectRefused<All>( one );
   // The length's own bytes are good; what follows them is too little.
   expectRefused<All>( { "a text of 4 GiB", toLabel + "ffffffff", "", truncated } );
   expectRefused<All>( { "a text of 2 GiB", toLabel + "7fffffff", "", truncated } );
   expectRefused<All>( { "a text of a byte too many", toLabel + "00000065", "", truncated } );

   HostileRecord const hostileMaps[] = {
      { "4 Gi entries", "ffffffff 000000", "00", again },
      { "a key twice", "00000003 070000 080000", "070001", again },
      { "a text key twice", "00000000 00000003 00000001 61 ffff00000007", "00000001 61", again },
      { "a bounded key out of range", "00000000 00000000 00000001", "10", "out of range" },
   };
   for ( HostileRecord const & one : hostileMaps )
      expectRefused<Maps>( one );
}

} // namespace
} // namespace Sample
