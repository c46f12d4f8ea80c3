#include <Keel/ConditionStat.h>
#include <Units/Celsius.h>
#include <Vel/Define.h>
#include <Vel/TypeRegistry.h>
#include <Xcvr/XcvrTypes.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace Xcvr {
namespace {

using Vel::fromStringForm;
using Vel::NboAttrLog;

template <typename T>
std::string record( T const & value ) {
   NboAttrLog log;
   log.write( value );
   return std::string( log.bytes() );
}

/// What others know of a type: the size of an empty record and the fields in their order, or the names
/// and codes of an enumeration.
template <typename T>
std::string layout() {
   std::string text = "\n" + std::string( Vel::typeName<T>() );
   Vel::TypeInfo const * const type = Vel::TypeRegistry::type( Vel::typeName<T>() );
   if constexpr ( std::is_enum_v<T> ) {
      for ( Vel::Enumerator const & each : *type->enumeration ) {
         EXPECT_EQ( type->enumeration->byCode( each.code ), &each );
         text += " " + std::string( each.name ) + " " + std::to_string( each.code );
      }
   } else {
      text += " " + std::to_string( record( T() ).size() );
      for ( Vel::FieldModel const & field : *type->value ) {
         text += " " + std::string( field.name );
      }
   }
   return text;
}
template <typename... T>
std::string layouts() {
   return ( layout<T>() + ... );
}

// Processes of different versions read each other's records and texts, and a change of any of this breaks
// them. Whoever means to do so takes the new number from here.
TEST( XcvrTypes, TheRegistryKnowsEveryTypeAsOthersRelyOnIt ) {
   std::string const all =
      layouts<ChannelId, LaneId, ChannelDesc, VendorInfo, XcvrState, XcvrManagerCapabilities,
              Capabilities, EepromDescriptor, DomInfo, DomAggPower, DomCapabilities, DomThreshold,
              EnhancedDomCapabilities, EnhancedDomSensorCategory, EnhancedDomThreshold,
              XcvrEventStats, LaneEventStats, GridSpacingCapabilities, TuningCapabilities,
              TuningParamCapabilities, ItuTuningConfig, HwTuningConfig, ResolvedTuningStatus,
              TuningValue, LaneTuningParameter, PerformanceMonitoringPeriodConfig,
              Keel::ConditionStat, XcvrType, XcvrPresence, DomCalibration, SensorCategory,
              SerdesSpeed, LaserWavelengthPrecision, ElectricalInterface, PowerClass, MediaType,
              XcvrState::Reason>();
   uint64_t hash = 0xcbf29ce484222325; // FNV-1a
   for ( char c : all ) {
      hash = ( hash ^ static_cast<uint8_t>( c ) ) * 0x100000001b3;
   }
   EXPECT_EQ( hash, 0xdc2b691d6a234a28 ) << all;
   EXPECT_EQ( Vel::TypeRegistry::type( "DomInfo" ), nullptr );
   EXPECT_EQ( velEnumModel( MediaType() ).count, 91U );
   EXPECT_EQ( MediaTypeInstance( "xcvr100GBaseCwdm4" ), MediaType( 70 ) );
}

template <typename T>
void expectForm( T const & value, std::string const & expected ) {
   EXPECT_EQ( stringValue( value ), expected );
   EXPECT_EQ( fromStringForm<T>( expected ), value );
   NboAttrLog log( record( value ) );
   EXPECT_EQ( T( log ), value );
}

TEST( XcvrTypes, StringFormsAsOtherProgramsReadThem ) {
   expectForm( XcvrState( true, XcvrState::badEepromChecksum ),
               "Value('Xcvr::XcvrState', ** {'enabled': True, 'reason': badEepromChecksum})" );
   expectForm( Units::Celsius( -1.5 ), "Value('Units::Celsius', ** {'value': -1.5})" );
   EepromDescriptor pages( 2, 4, {} );
   pages.pageSizeBytesIs( 3, 128 );
   pages.pageSizeBytesIs( 0, 255 );
   pages.pageSizeBytesIs( 0, 256 );
   pages.pageSizeBytesIs( 1, 9 );
   pages.pageSizeBytesDel( 1 );
   EXPECT_EQ( pages.pageSizeBytes( 3 ), 128 );
   EXPECT_EQ( pages.pageSizeBytes( 1 ), 0 );
   expectForm( pages, "Value('Xcvr::EepromDescriptor', ** {'eepromPages': 2, "
                      "'maxEepromPages': 4, 'pageSizeBytes': {0: 256, 3: 128}})" );
   EXPECT_DEATH( static_cast<void>( EepromDescriptor( stringValue( pages ) ) ),
                 "!\"No String constructor for EepromDescriptor - has collection\"" );
}

TEST( XcvrTypes, AChannelOutOfRangeIsFatalButInTextOrLogAnOrdinaryError ) {
   char const * const refused = "ChannelId::value < 0 or > 23 not allowed";
   ChannelId channel( 23 );
   for ( int64_t value : { int64_t( -1 ), int64_t( 24 ), int64_t( 256 ), int64_t( 1 ) << 32 } ) {
      EXPECT_DEATH( static_cast<void>( ChannelId( value ) ), refused );
      EXPECT_DEATH( channel.valueIs( value ), refused );
      EXPECT_THROW( ChannelId( Vel::String( "Value('Xcvr::ChannelId', ** {'value': " +
                                            std::to_string( value ) + "})" ) ),
                    Vel::ParseException );
   }
   NboAttrLog log( "\x17\x18" );
   EXPECT_EQ( ChannelId( log ), ChannelId( 23 ) );
   EXPECT_THROW( static_cast<void>( ChannelId( log ) ), Vel::AttrLogException );
}

} // namespace
} // namespace Xcvr
