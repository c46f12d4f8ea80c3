#include <Keel/ConditionStat.h>
#include <Units/Celsius.h>
#include <Vel/Define.h>
#include <Vel/TypeRegistry.h>
#include <Xcvr/XcvrTypes.h>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <sstream>
#include <string>

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

/// How many bytes the record of an empty value has.
template <typename... T>
std::map<std::string_view, std::size_t> const emptyRecordSizes = {
   { Vel::typeName<T>(), record( T() ).size() }... };

TEST( XcvrTypes, RegistryKnowsEveryTypeAsOthersRelyOnIt ) {
   std::map<std::string, std::string> expected;
   std::string name;
   std::istringstream words( contract );
   for ( std::string word; words >> word; ) {
      if ( word.ends_with( ':' ) ) {
         name = word.substr( 0, word.size() - 1 );
      } else {
         expected[name] += word + ' ';
      }
   }
   EXPECT_EQ( expected.size(), 36U );
   auto const & sizes = emptyRecordSizes<
      ChannelId, LaneId, ChannelDesc, VendorInfo, XcvrState, XcvrManagerCapabilities, Capabilities,
      EepromDescriptor, DomInfo, DomAggPower, DomCapabilities, DomThreshold,
      EnhancedDomCapabilities, EnhancedDomSensorCategory, EnhancedDomThreshold, XcvrEventStats,
      LaneEventStats, GridSpacingCapabilities, TuningCapabilities, TuningParamCapabilities,
      ItuTuningConfig, HwTuningConfig, ResolvedTuningStatus, TuningValue, LaneTuningParameter,
      PerformanceMonitoringPeriodConfig, Keel::ConditionStat>;
   for ( auto const & [typeName, contents] : expected ) {
      Vel::TypeInfo const * const type = Vel::TypeRegistry::type( typeName );
      ASSERT_NE( type, nullptr ) << typeName;
      std::string known;
      if ( type->value ) {
         known += std::to_string( sizes.at( typeName ) ) + ' ';
         for ( Vel::FieldModel const & field : *type->value ) {
            known += std::string( field.name ) + ' ';
         }
      } else {
         for ( Vel::Enumerator const & each : *type->enumeration ) {
            EXPECT_EQ( type->enumeration->byCode( each.code ), &each );
            known += std::string( each.name ) + ' ';
         }
      }
      EXPECT_EQ( known, contents ) << typeName;
   }
   EXPECT_EQ( Vel::TypeRegistry::type( "DomInfo" ), nullptr );
   EXPECT_EQ( velEnumModel( MediaType() ).count, 91U );
   std::pair<uint32_t, char const *> const codes[] = {
      { 0, "xcvrUnknown" },        { 5, "xcvr10GBaseSr" },      { 25, "xcvr1000BaseT" },
      { 32, "xcvr10GBaseDwdmEr" }, { 40, "xcvr40GBaseSr4" },    { 60, "xcvr100GBaseSr4" },
      { 70, "xcvr100GBaseCwdm4" }, { 78, "xcvr2x100GBaseMfg" }, { 90, "xcvr400GBaseDr4" } };
   for ( auto const & [code, text] : codes ) {
      EXPECT_EQ( stringValue( MediaType( code ) ), text );
      EXPECT_EQ( MediaTypeInstance( text ), MediaType( code ) );
   }
}

template <typename T>
void expectForm( T const & value, std::string const & expected ) {
   EXPECT_EQ( stringValue( value ), expected );
   EXPECT_EQ( fromStringForm<T>( expected ), value );
   NboAttrLog log( record( value ) );
   EXPECT_EQ( T( log ), value );
}

TEST( XcvrTypes, StringFormsAsOtherProgramsReadThem ) {
   constexpr double minusInfinity = -std::numeric_limits<double>::infinity();
   expectForm( XcvrState( true, XcvrState::badEepromChecksum ),
               "Value('Xcvr::XcvrState', ** {'enabled': True, 'reason': badEepromChecksum})" );
   expectForm( Units::Celsius( -1.5 ), "Value('Units::Celsius', ** {'value': -1.5})" );
   expectForm(
      DomInfo( 1574000000.5, domCalibrationExternal, -40, 3.3, 6.25, -2.5, minusInfinity, 1e-7 ),
      "Value('Xcvr::DomInfo', ** {'updateTime': 1574000000.5, "
      "'calibration': domCalibrationExternal, 'temperature': -40, 'voltage': 3.3, "
      "'txBias': 6.25, 'txPower': -2.5, 'rxPower': -inf, 'totalRxPower': 1e-07})" );
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
