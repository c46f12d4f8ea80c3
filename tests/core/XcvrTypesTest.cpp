#include <Corenet/IntfId.h>
#include <Hal/Reg.h>
#include <Keel/ConditionStat.h>
#include <Units/Celsius.h>
#include <Units/Decibels.h>
#include <Vel/Bounded.h>
#include <Vel/Define.h>
#include <Vel/TypeRegistry.h>
#include <Xcvr/XcvrTypes.h>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Xcvr {
namespace {

using Vel::fromStringForm;
using Vel::NboAttrLog;

constexpr double minusInfinity = -std::numeric_limits<double>::infinity();

template <typename T>
std::string record( T const & value ) {
   NboAttrLog log;
   log.write( value );
   return std::string( log.bytes() );
}

// ---------------------------------------------------------------------------------------------
// What holds for every value type

/// Makes values of any type; neighbouring ones differ in every bool and most else.
class Variety {
 public:
   explicit Variety( unsigned seed ) : next_( seed ) {}

   template <typename T>
   T make() {
      ++next_;
      if constexpr ( std::is_same_v<T, double> ) {
         using Limits = std::numeric_limits<double>;
         constexpr double values[] = { -40.5,   minusInfinity, 0.1,  Limits::denorm_min(), 1e5,
                                       1 / 3.0, Limits::max(), -0.0, 1574000000.123456 };
         return values[next_ % std::size( values )];
      } else if constexpr ( std::is_same_v<T, bool> ) {
         return next_ % 2 == 1;
      } else if constexpr ( std::is_integral_v<T> ) {
         return static_cast<T>( next_ * 0x9e3779b9U );
      } else if constexpr ( std::is_same_v<T, Vel::String> ) {
         Vel::String text( next_ % 40, ' ' );
         for ( std::size_t at = 0; at < text.size(); ++at )
            text.byteIs( at, static_cast<uint8_t>( next_ * 7 + at ) );
         return text;
      } else if constexpr ( Vel::ModelEnum<T> ) {
         Vel::EnumModel const & model = velEnumModel( T() );
         return static_cast<T>( model.enumerators[next_ % model.count].code );
      } else if constexpr ( requires { T::velBound; } ) {
         return T( next_ % ( T::velBound + 1U ) );
      } else if constexpr ( Vel::ModelValue<T> ) {
         T value;
         T::velFields( [&]<typename F>( auto const &, F T::*field ) { value.*field = make<F>(); } );
         return value;
      } else {
         T map;
         for ( int i = 0; i < 3; ++i )
            map.emplace( make<typename T::key_type>(), make<typename T::mapped_type>() );
         return map;
      }
   }

 private:
   unsigned next_;
};

template <typename T>
std::vector<T> variousValues() {
   std::vector<T> values( 1 );
   for ( unsigned seed = 0; seed < 20; ++seed )
      values.push_back( Variety( seed ).make<T>() );
   return values;
}

template <typename T>
struct ValueType : testing::Test {};

using ValueTypes = testing::Types<
   ChannelId, LaneId, ChannelDesc, VendorInfo, XcvrState, XcvrManagerCapabilities, Capabilities,
   EepromDescriptor, DomInfo, DomAggPower, DomCapabilities, DomThreshold, EnhancedDomCapabilities,
   EnhancedDomSensorCategory, EnhancedDomThreshold, XcvrEventStats, LaneEventStats,
   GridSpacingCapabilities, TuningCapabilities, TuningParamCapabilities, ItuTuningConfig,
   HwTuningConfig, ResolvedTuningStatus, TuningValue, LaneTuningParameter,
   PerformanceMonitoringPeriodConfig, Keel::ConditionStat, Corenet::IntfId, Units::Celsius,
   Units::Decibels, Hal::Reg8, Hal::Reg16, Vel::U1, Vel::U2, Vel::U3, Vel::U4>;
TYPED_TEST_SUITE( ValueType, ValueTypes );

TYPED_TEST( ValueType, SurvivesStringFormAndLog ) {
   NboAttrLog log;
   for ( TypeParam const & value : variousValues<TypeParam>() ) {
      Vel::String const form = stringValue( value );
      EXPECT_EQ( fromStringForm<TypeParam>( form ), value ) << form;
      if constexpr ( !std::is_same_v<TypeParam, EepromDescriptor> ) {
         EXPECT_EQ( TypeParam( form ), value );
      }
      EXPECT_EQ( record( fromStringForm<TypeParam>( form ) ), record( value ) );
      log.write( value );
   }
   for ( TypeParam const & value : variousValues<TypeParam>() )
      EXPECT_EQ( TypeParam( log ), value ) << value;
   EXPECT_EQ( log.position(), log.bytes().size() );
}

TYPED_TEST( ValueType, DiffersInAnySingleField ) {
   TypeParam const value = Variety( 3 ).make<TypeParam>();
   TypeParam::velFields( [&value]<typename F>( char const * label, F TypeParam::*field ) {
      TypeParam other = value;
      EXPECT_TRUE( other == value );
      for ( unsigned seed = 0; other.*field == value.*field; ++seed )
         other.*field = Variety( seed ).make<F>();
      EXPECT_TRUE( other != value ) << label;
   } );
}

// ---------------------------------------------------------------------------------------------
// The contract with other processes

/// Types, each with the size of its empty record and its fields in order, or with its enumerators in
/// the order of their codes.
constexpr char const contract[] = R"(
Keel::ConditionStat: 13 active count lastChange
Xcvr::ChannelId: 1 value
Xcvr::LaneId: 1 value
Xcvr::ChannelDesc: 2 txId rxId
Xcvr::VendorInfo: 20 vendorName vendorPn vendorSn vendorRev vendorDateCode
Xcvr::XcvrState: 5 enabled reason
Xcvr::XcvrManagerCapabilities: 2 domDynamicValues domThresholds
Xcvr::Capabilities: 6 maxChannels tunableWavelength configurableTxPower configurableRxPower
   directRxPowerConfig lineSideChannels
Xcvr::EepromDescriptor: 6 eepromPages maxEepromPages pageSizeBytes
Xcvr::DomInfo: 60 updateTime calibration temperature voltage txBias txPower rxPower totalRxPower
Xcvr::DomAggPower: 28 updateTime calibration aggTxPower aggRxPower
Xcvr::DomCapabilities: 8 temperature voltage txBias txPower rxPower totalRxPower aggTxPower aggRxPower
Xcvr::DomThreshold: 192 tempHighAlarm tempLowAlarm tempHighWarn tempLowWarn
   voltageHighAlarm voltageLowAlarm voltageHighWarn voltageLowWarn
   txBiasHighAlarm txBiasLowAlarm txBiasHighWarn txBiasLowWarn
   txPowerHighAlarm txPowerLowAlarm txPowerHighWarn txPowerLowWarn
   rxPowerHighAlarm rxPowerLowAlarm rxPowerHighWarn rxPowerLowWarn
   totalRxPowerHighAlarm totalRxPowerLowAlarm totalRxPowerHighWarn totalRxPowerLowWarn
Xcvr::EnhancedDomCapabilities: 8 snr residualIsi pam4Transitions preFecBer uncorrectedBer tecCurrent
   laserFreqErr laserTempErr
Xcvr::EnhancedDomSensorCategory: 32 snr residualIsi pam4Transitions preFecBer uncorrectedBer
   tecCurrent laserFreqErr laserTempErr
Xcvr::EnhancedDomThreshold: 32 highAlarm lowAlarm highWarn lowWarn
Xcvr::XcvrEventStats: 64 presence presenceChanges lastPresenceChange resetCount lastReset
   interruptCount lastInterrupt badEepromChecksumEvents lastBadEepromChecksumEvent smbusFailCount
   lastSmbusFail
Xcvr::LaneEventStats: 242 currentRxLosState rxLosEvents lastRxLosEvent rxLosEventsSinceInsertion
   currentTxFaultState txFaultEvents lastTxFaultEvent txFaultEventsSinceInsertion txLos txCdrLol
   txAdaptiveInputEqFault txPowerHiAlarm txPowerLoAlarm txPowerHiWarn txPowerLoWarn txBiasHiAlarm
   txBiasLoAlarm txBiasHiWarn txBiasLoWarn rxCdrLol rxPowerHiAlarm rxPowerLoAlarm rxPowerHiWarn
   rxPowerLoWarn
Xcvr::GridSpacingCapabilities: 6 gridSpacing100000M gridSpacing50000M gridSpacing33000M
   gridSpacing25000M gridSpacing12500M gridSpacing6250M
Xcvr::TuningCapabilities: 22 baseFrequency firstFrequency lastFrequency gridSpacingCapabilities
   txFineTuneRange
Xcvr::TuningParamCapabilities: 3 rxAmplitudeSupported rxPreEmphasisSupported
   txInputEqualizationSupported
Xcvr::ItuTuningConfig: 13 channel grid frequency laserEnabled
Xcvr::HwTuningConfig: 10 hwChannel hwGrid hwFineTuneFreq
Xcvr::ResolvedTuningStatus: 50 configuredChannel configuredGrid configuredFrequency
   computedFrequency computedWavelength operationalChannel operationalGrid operationalFrequency
   operationalWavelength gridSpacingCapabilities
Xcvr::TuningValue: 3 valid val moduleDefault
Xcvr::LaneTuningParameter: 15 txInputEqualization rxOutputPreEmphasis rxOutputAmplitude
   txInputAdaptiveEqEnable rxOutputPostEmphasis
Xcvr::PerformanceMonitoringPeriodConfig: 8 valueInSeconds unit

Xcvr::XcvrType: unknown sfpPlus qsfpPlus rj45 mbo cfp2 rcx osfp qsfpDd
Xcvr::XcvrPresence: xcvrPresenceUnknown xcvrNotPresent xcvrPresent
Xcvr::DomCalibration: domCalibrationUnknown domCalibrationInternal domCalibrationExternal
Xcvr::SensorCategory: undefined slotSensor laneSensor
Xcvr::SerdesSpeed: serdesSpeedUnknown serdesSpeed10G serdesSpeed25G serdesSpeed50G
Xcvr::LaserWavelengthPrecision: laserWavelengthPrecisionUnknown laserWavelengthPrecisionNm
   laserWavelengthPrecisionPm
Xcvr::ElectricalInterface: xcvr100MMiiBaseFx xcvr1GSgmiiBaseX xcvr1GSgmiiBaseT xcvr10GLinear
   xcvr10GLimiting xcvr25GLinear xcvr25GLimiting xcvr50GLinear xcvr50GLimiting
Xcvr::PowerClass: xcvrPowerClassUnknown xcvrPowerClass1 xcvrPowerClass2 xcvrPowerClass3
   xcvrPowerClass4 xcvrPowerClass5 xcvrPowerClass6 xcvrPowerClass7
Xcvr::XcvrState::Reason: undecided unidentifiedXcvr badEepromChecksum unsupported
)";

template <typename... T>
std::map<std::string_view, std::size_t> emptyRecordSizes( testing::Types<T...> ) {
   return { { Vel::typeName<T>(), record( T() ).size() }... };
}

TEST( XcvrTypes, RegistryKnowsEveryTypeAsOthersRelyOnIt ) {
   std::map<std::string, std::string> expected;
   std::string name;
   std::istringstream words( contract );
   for ( std::string word; words >> word; ) {
      if ( word.ends_with( ':' ) )
         name = word.substr( 0, word.size() - 1 );
      else
         expected[name] += word + ' ';
   }
   EXPECT_EQ( expected.size(), 36U );
   auto const sizes = emptyRecordSizes( ValueTypes() );
   for ( auto const & [typeName, contents] : expected ) {
      Vel::TypeInfo const * const type = Vel::TypeRegistry::type( typeName );
      ASSERT_NE( type, nullptr ) << typeName;
      std::string known;
      if ( type->value ) {
         known += std::to_string( sizes.at( typeName ) ) + ' ';
         for ( Vel::FieldModel const & field : *type->value )
            known += std::string( field.name ) + ' ';
      } else {
         for ( uint32_t code = 0; code < type->enumeration->count; ++code )
            known += std::string( type->enumeration->stringValue( code ) ) + ' ';
      }
      EXPECT_EQ( known, contents ) << typeName;
   }
   EXPECT_EQ( Vel::TypeRegistry::type( "Xcvr::DomInfo" )->value->fields[1].typeName,
              "Xcvr::DomCalibration" );
   EXPECT_EQ( Vel::TypeRegistry::type( "DomInfo" ), nullptr );
}

template <typename... E>
void expectNameAndBack( E ( *... instance )( Vel::String const & ) ) {
   auto const expectInverse = []<typename Each>( Each ( *byName )( Vel::String const & ) ) {
      for ( Vel::Enumerator const & each : velEnumModel( Each() ) ) {
         EXPECT_EQ( stringValue( static_cast<Each>( each.code ) ), each.name );
         EXPECT_EQ( byName( each.name ), static_cast<Each>( each.code ) );
      }
      EXPECT_THROW( byName( "xcvr" ), Vel::ParseException );
   };
   ( expectInverse( instance ), ... );
}

TEST( XcvrTypes, EnumerationsByNameAndBack ) {
   expectNameAndBack( XcvrTypeInstance, XcvrPresenceInstance, DomCalibrationInstance,
                      SensorCategoryInstance, SerdesSpeedInstance, LaserWavelengthPrecisionInstance,
                      ElectricalInterfaceInstance, PowerClassInstance, TuningTypeInstance,
                      MediaTypeInstance, XcvrState::ReasonInstance );
   EXPECT_EQ( velEnumModel( MediaType() ).count, 91U );
   std::pair<uint32_t, char const *> const codes[] = {
      { 0, "xcvrUnknown" },        { 5, "xcvr10GBaseSr" },      { 25, "xcvr1000BaseT" },
      { 32, "xcvr10GBaseDwdmEr" }, { 40, "xcvr40GBaseSr4" },    { 60, "xcvr100GBaseSr4" },
      { 70, "xcvr100GBaseCwdm4" }, { 78, "xcvr2x100GBaseMfg" }, { 90, "xcvr400GBaseDr4" } };
   for ( auto const & [code, name] : codes )
      EXPECT_EQ( stringValue( MediaType( code ) ), name );
}

// ---------------------------------------------------------------------------------------------
// Single types

template <typename T>
void expectForm( T const & value, std::string const & expected ) {
   EXPECT_EQ( std::string( stringValue( value ) ), expected );
}

TEST( XcvrTypes, StringFormsAsOtherProgramsReadThem ) {
   expectForm( XcvrState( true, XcvrState::badEepromChecksum ),
               "Value('Xcvr::XcvrState', ** {'enabled': True, 'reason': badEepromChecksum})" );
   expectForm( ChannelDesc( 1, 255 ), "Value('Xcvr::ChannelDesc', ** {'txId': 1, 'rxId': 255})" );
   expectForm( ChannelId( 23 ), "Value('Xcvr::ChannelId', ** {'value': 23})" );
   expectForm( Vel::U4( 15 ), "Value('Vel::U4', ** {'value': 15})" );
   expectForm(
      DomInfo( 1574000000.5, domCalibrationExternal, -40, 3.3, 6.25, -2.5, minusInfinity, 1e-7 ),
      "Value('Xcvr::DomInfo', ** {'updateTime': 1574000000.5, "
      "'calibration': domCalibrationExternal, 'temperature': -40, 'voltage': 3.3, "
      "'txBias': 6.25, 'txPower': -2.5, 'rxPower': -inf, 'totalRxPower': 1e-07})" );

   std::string const none =
      "Value('Xcvr::TuningValue', ** {'valid': False, 'val': 0, 'moduleDefault': False})";
   expectForm( TuningValue(), none );
   expectForm(
      LaneTuningParameter( TuningValue( true, 200, true ), {}, {}, {}, {} ),
      "Value('Xcvr::LaneTuningParameter', ** {'txInputEqualization': Value('Xcvr::TuningValue', ** "
      "{'valid': True, 'val': 200, 'moduleDefault': True}), 'rxOutputPreEmphasis': " +
         none + ", 'rxOutputAmplitude': " + none + ", 'txInputAdaptiveEqEnable': " + none +
         ", 'rxOutputPostEmphasis': " + none + "})" );

   EepromDescriptor pages( 2, 4, {} );
   expectForm( pages, "Value('Xcvr::EepromDescriptor', ** {'eepromPages': 2, "
                      "'maxEepromPages': 4, 'pageSizeBytes': {}})" );
   pages.pageSizeBytesIs( 3, 128 );
   pages.pageSizeBytesIs( 0, 256 );
   expectForm( pages, "Value('Xcvr::EepromDescriptor', ** {'eepromPages': 2, "
                      "'maxEepromPages': 4, 'pageSizeBytes': {0: 256, 3: 128}})" );

   LaneEventStats stats;
   stats.txLosIs( { true, 2, 1574000000.25 } );
   EXPECT_NE(
      stringValue( stats ).find( ", 'txLos': Value('Keel::ConditionStat', ** {'active': True, "
                                 "'count': 2, 'lastChange': 1574000000.25}), 'txCdrLol': " ),
      Vel::String::npos );
}

TEST( XcvrTypes, EepromDescriptorKeepsASizeAPage ) {
   EepromDescriptor pages;
   pages.pageSizeBytesIs( 255, 65535 );
   pages.pageSizeBytesIs( 0, 128 );
   pages.pageSizeBytesIs( 0, 256 );
   EXPECT_EQ( pages.pageSizeBytes( 0 ), 256 );
   EXPECT_EQ( pages.pageSizeBytes( 255 ), 65535 );
   EXPECT_EQ( pages.pageSizeBytes( 1 ), 0 );
   pages.pageSizeBytesDel( 0 );
   EXPECT_EQ( pages, EepromDescriptor( 0, 0, { { 255, 65535 } } ) );
}

template <typename T>
void expectKey( std::vector<T> const & ascending ) {
   std::set<std::size_t> hashes;
   for ( std::size_t i = 0; i < ascending.size(); ++i ) {
      EXPECT_EQ( ascending[i].hash(), T( ascending[i] ).hash() );
      hashes.insert( ascending[i].hash() );
      if ( i > 0 ) {
         EXPECT_LT( ascending[i - 1], ascending[i] );
         EXPECT_GT( ascending[i], ascending[i - 1] );
      }
   }
   EXPECT_EQ( hashes.size(), ascending.size() );
}

TEST( XcvrTypes, KeysHaveHashAndOrder ) {
   std::vector<ChannelId> channels;
   for ( int value = 0; value < 24; ++value )
      channels.emplace_back( value );
   expectKey( channels );
   std::vector<LaneId> lanes;
   std::vector<ChannelDesc> descriptors;
   for ( int value = 0; value < 256; ++value ) {
      auto const byte = static_cast<uint8_t>( value );
      lanes.emplace_back( byte );
      for ( uint8_t rxId : std::initializer_list<uint8_t>{ 0, 1, 128, 255 } )
         descriptors.emplace_back( byte, rxId );
   }
   expectKey( lanes );
   expectKey( descriptors );
}

TEST( XcvrTypes, ChannelOutOfRangeInTextOrLogIsAnOrdinaryError ) {
   EXPECT_EQ( ChannelId( "Value('Xcvr::ChannelId', ** {'value': 23})" ), ChannelId( 23 ) );
   for ( char const * number : { "24", "255", "256", "-1" } )
      EXPECT_THROW(
         ChannelId( "Value('Xcvr::ChannelId', ** {'value': " + Vel::String( number ) + "})" ),
         Vel::ParseException );
   NboAttrLog log( "\x17\x18" );
   EXPECT_EQ( ChannelId( log ), ChannelId( 23 ) );
   EXPECT_THROW( static_cast<void>( ChannelId( log ) ), Vel::AttrLogException );
}

TEST( XcvrTypesDeathTest, ChannelOutOfRange ) {
   char const * const text = "ChannelId::value < 0 or > 23 not allowed";
   ChannelId channel( 23 );
   for ( int64_t value : { int64_t( -1 ), int64_t( 24 ), int64_t( 256 ), int64_t( 1 ) << 32 } ) {
      EXPECT_DEATH( static_cast<void>( ChannelId( value ) ), text );
      EXPECT_DEATH( channel.valueIs( value ), text );
   }
}

TEST( XcvrTypesDeathTest, CollectionFromText ) {
   Vel::String const form = stringValue( EepromDescriptor() );
   EXPECT_DEATH( static_cast<void>( EepromDescriptor( form ) ),
                 "!\"No String constructor for EepromDescriptor - has collection\"" );
}

} // namespace
} // namespace Xcvr
