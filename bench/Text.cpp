// The string form: printing and parsing a record of 24 doubles, of which 10 are powers in dBm with
// all their digits, 13 short decimals and one a time stamp.
#include "bench/Bench.h"

#include <Xcvr/XcvrTypes.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#if XCVR_BENCH_NLOHMANN
#include <nlohmann/json.hpp>
#endif

namespace Bench {
namespace {

using Xcvr::DomThreshold;

double milliwattsToDbm( double milliwatts ) {
   return 10 * std::log10( milliwatts );
}

constexpr std::size_t fieldCount = 24;

std::array<double, fieldCount> const example = {
   // clang-format off
   75, -5, 70, 0, 3.63, 2.97, 3.465, 3.135, 10.5, 2.5, 8.8, 3,
   milliwattsToDbm( 1.2589 ), milliwattsToDbm( 0.0724 ), milliwattsToDbm( 0.7943 ), milliwattsToDbm( 0.1445 ),
   milliwattsToDbm( 1.0471 ), milliwattsToDbm( 0.0309 ), milliwattsToDbm( 0.9 ), milliwattsToDbm( 0.0776 ),
   milliwattsToDbm( 2.5119 ), milliwattsToDbm( 0.0355 ),
   -12.5, 1716899421.482913,
   // clang-format on
};

// The literals of the string form, each in front of its value, and the one behind the last.
constexpr std::string_view literals[] = {
   "Value('Xcvr::DomThreshold', ** {'tempHighAlarm': ",
   ", 'tempLowAlarm': ",
   ", 'tempHighWarn': ",
   ", 'tempLowWarn': ",
   ", 'voltageHighAlarm': ",
   ", 'voltageLowAlarm': ",
   ", 'voltageHighWarn': ",
   ", 'voltageLowWarn': ",
   ", 'txBiasHighAlarm': ",
   ", 'txBiasLowAlarm': ",
   ", 'txBiasHighWarn': ",
   ", 'txBiasLowWarn': ",
   ", 'txPowerHighAlarm': ",
   ", 'txPowerLowAlarm': ",
   ", 'txPowerHighWarn': ",
   ", 'txPowerLowWarn': ",
   ", 'rxPowerHighAlarm': ",
   ", 'rxPowerLowAlarm': ",
   ", 'rxPowerHighWarn': ",
   ", 'rxPowerLowWarn': ",
   ", 'totalRxPowerHighAlarm': ",
   ", 'totalRxPowerLowAlarm': ",
   ", 'totalRxPowerHighWarn': ",
   ", 'totalRxPowerLowWarn': ",
   "})",
};

template <std::size_t i>
[[gnu::always_inline]] inline char * printLiteral( char * to ) {
   std::memcpy( to, literals[i].data(), literals[i].size() );
   return to + literals[i].size();
}

/// The floor: copies of literals and std::to_chars into a buffer that is large enough.
template <std::size_t... i>
[[gnu::noinline]] char * floorPrint( char * to, std::array<double, fieldCount> const & fields,
                                     std::index_sequence<i...> ) {
   ( ( to = printLiteral<i>( to ), to = std::to_chars( to, to + 32, fields[i] ).ptr ), ... );
   return printLiteral<fieldCount>( to );
}

/// The floor: comparisons with literals and std::from_chars.
template <std::size_t... i>
[[gnu::noinline]] bool floorParse( std::string_view text, std::array<double, fieldCount> & fields,
                                   std::index_sequence<i...> ) {
   char const * at = text.data();
   char const * const end = at + text.size();
   auto const takes = [&at]( std::string_view literal ) __attribute__( ( always_inline ) ) {
      bool const same = std::memcmp( at, literal.data(), literal.size() ) == 0;
      at += literal.size();
      return same;
   };
   auto const takesDouble = [&at, end ]( double & field ) __attribute__( ( always_inline ) ) {
      auto const [next, error] = std::from_chars( at, end, field );
      at = next;
      return error == std::errc{};
   };
   return ( ( takes( literals[i] ) && takesDouble( fields[i] ) ) && ... ) &&
          takes( literals[fieldCount] );
}

constexpr auto allFields = std::make_index_sequence<fieldCount>();

Vel::String exampleText() {
   char buffer[2048];
   char const * const end = floorPrint( buffer, example, allFields );
   return { buffer, static_cast<std::size_t>( end - buffer ) };
}

void modelPrint( benchmark::State & state ) {
   DomThreshold const record( exampleText() );
   measure( state, [&] { benchmark::DoNotOptimize( stringValue( record ) ); } );
   if ( stringValue( record ) != exampleText() ) {
      state.SkipWithError( "the text differs from the floor's" );
   }
}

void floorPrint( benchmark::State & state ) {
   char buffer[2048];
   measure( state, [&] { benchmark::DoNotOptimize( floorPrint( buffer, example, allFields ) ); } );
}

void modelParse( benchmark::State & state ) {
   Vel::String const text = exampleText();
   DomThreshold record;
   measure( state, [&] {
      record = DomThreshold( text );
      benchmark::DoNotOptimize( record );
   } );
   if ( record.totalRxPowerLowWarn() != example.back() ) {
      state.SkipWithError( "the record differs from the one printed" );
   }
}

void floorParse( benchmark::State & state ) {
   Vel::String const text = exampleText();
   std::array<double, fieldCount> fields{};
   measure( state, [&] {
      benchmark::DoNotOptimize( floorParse( text, fields, allFields ) );
      benchmark::DoNotOptimize( fields );
   } );
   if ( fields != example ) {
      state.SkipWithError( "the record differs from the one printed" );
   }
}

#if XCVR_BENCH_NLOHMANN
/// The name in a literal: , 'name':
std::string fieldName( std::string_view literal ) {
   literal.remove_suffix( 3 );
   return std::string( literal.substr( literal.rfind( '\'' ) + 1 ) );
}

nlohmann::json exampleJson() {
   nlohmann::json record;
   for ( std::size_t i = 0; i < fieldCount; ++i ) {
      record[fieldName( literals[i] )] = example[i];
   }
   return record;
}

void nlohmannPrint( benchmark::State & state ) {
   nlohmann::json const record = exampleJson();
   measure( state, [&] { benchmark::DoNotOptimize( record.dump() ); } );
}

void nlohmannParse( benchmark::State & state ) {
   std::string const text = exampleJson().dump();
   measure( state, [&] { benchmark::DoNotOptimize( nlohmann::json::parse( text ) ); } );
}
#define BENCH_NLOHMANN( run ) { "nlohmann-json", run },
#else
#define BENCH_NLOHMANN( run )
#endif

// clang-format off
Figure const figures[] = {
   { "text/print", { 0.95, 1 },
     { { "model", modelPrint }, { "floor", floorPrint }, BENCH_NLOHMANN( nlohmannPrint ) } },
   { "text/parse", { 1.15, 0 },
     { { "model", modelParse }, { "floor", floorParse }, BENCH_NLOHMANN( nlohmannParse ) } },
};
// clang-format on

} // namespace
} // namespace Bench
