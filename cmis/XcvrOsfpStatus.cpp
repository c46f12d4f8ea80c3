#include "core/AttenuationTable.h"
#include "core/DomNeutral.h"

#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrOsfpStatus.h>

namespace Xcvr {

VEL_ENTITY_DEFINE( OsfpParamConfig, osfpParamConfigFactory )
VEL_ENTITY_DEFINE( CmisConfig, cmisConfigFactory )
VEL_ENTITY_DEFINE( OsfpCellConfig, osfpCellConfigFactory )
VEL_ENTITY_DEFINE( CmisStatus )
VEL_ENTITY_DEFINE( OsfpStatus, osfpStatusFactory )
VEL_ENTITY_DEFINE( QsfpDdStatus, qsfpDdStatusFactory )

namespace {

using CmisTable::mask;
using CmisTable::row;

Vel::TraceHandle trace( "XcvrOsfp" );

} // namespace

// Contents

CmisStatus::CmisStatus( Vel::Name name, XcvrType xcvrType )
   : XcvrNewStatus( std::move( name ), xcvrType ),
     parser_( osfpEepromParserFactory( rawEepromContentsIs(), decodedEepromContentsIs() ) ) {}

// While the contents are being replaced, the parser still has the old ones.
OsfpRawEepromContents const & CmisStatus::raw() const {
   auto const contents = rawEepromContents();
   return contents ? *contents : *parser_->rawEeprom();
}
OsfpDecodedEepromContents const & CmisStatus::decoded() const {
   auto const contents = decodedEepromContents();
   return contents ? *contents : *parser_->parsedEeprom();
}

void CmisStatus::parseEeprom() {
   VEL_TRACE_SCOPE( trace );
   // Contents that were put in place of those it knows, by an agent or on a replica, get a new parser.
   auto const pagesNow = rawEepromContentsIs();
   auto const decodedNow = decodedEepromContentsIs();
   if ( parser_->rawEeprom() != pagesNow || parser_->parsedEeprom() != decodedNow ) {
      parser_ = osfpEepromParserFactory( pagesNow, decodedNow );
   }
   auto const parser = parser_; // an observer may clear the contents
   OsfpRawEepromContents const & pages = *parser->rawEeprom();
   bool const lower = pages.has( row( "identifier" ) );
   if ( lower ) {
      parser->parseLowerPage();
   }
   if ( pages.has( row( "identifierExtended" ) ) ) {
      parser->parseUpperPage00();
   }
   if ( pages.has( row( "hardwareRevisionMajor" ) ) ) {
      parser->parseUpperPage01();
   }
   if ( pages.has( row( "tempHighAlarm" ) ) ) {
      parser->parseUpperPage02();
   }
   if ( pages.has( row( "laneTxDisable" ) ) ) {
      parser->parseUpperPage10();
   }
   if ( pages.has( row( "dataPathStates" ) ) ) {
      parser->parseLaneFlags( false );
      parser->parseLaneTuning();
   }
   if ( pages.has( row( "activeControlSet" ) ) ) {
      parser->parseUpperPage11();
   }
   if ( lower && pages.has( row( "rxPower7" ) ) ) {
      parser->parseDom();
   }
}

void CmisStatus::clearIdEepromContents() {
   VEL_TRACE_SCOPE( trace );
   auto const contents = rawEepromContentsIs();
   contents->memoryDelAll();
   contents->lastValidDataIs( 0 );
   decodedEepromContentsDel();
   parser_ = osfpEepromParserFactory( contents, decodedEepromContentsIs() );
}

void CmisStatus::idEepromContentsIs( uint8_t page, Vel::String const & contents ) {
   VEL_TRACE_SCOPE( trace );
   auto const pages = rawEepromContentsIs();
   auto const store = [&]( OsfpBank bank, OsfpPage to, Vel::String const & bytes ) {
      pages->memoryIs( OsfpBankAndPage( bank, to ), bytes );
   };
   constexpr uint8_t firstBanked = 0x10;
   if ( page == 0 ) {
      store( OsfpBank::bankNa, OsfpPage::lowerPage00, contents.substr( 0, CmisTable::pageSize ) );
      store( OsfpBank::bankNa, OsfpPage::upperPage00, contents.substr( CmisTable::pageSize ) );
   } else {
      store( page < firstBanked ? OsfpBank::bankNa : OsfpBank::bank0, static_cast<OsfpPage>( page ),
             contents );
   }
}

EepromDescriptor CmisStatus::idEepromInfo() const {
   VEL_TRACE_SCOPE( trace );
   constexpr uint16_t size = CmisTable::pageSize;
   EepromDescriptor result( 1, 5, { { uint8_t( 0x00 ), uint16_t( 2 * size ) } } );
   if ( !decoded().flatMem() ) {
      for ( uint8_t page : std::initializer_list<uint8_t>{ 0x01, 0x02, 0x10, 0x11 } ) {
         result.pageSizeBytesIs( page, size );
      }
      result.eepromPagesIs( 5 );
   }
   return result;
}

void CmisStatus::updateLastValidTime( Vel::Seconds time ) {
   VEL_TRACE_SCOPE( trace );
   rawEepromContentsIs()->lastValidDataIs( time );
}

OsfpModuleState CmisStatus::moduleState() const {
   VEL_TRACE_SCOPE( trace );
   return static_cast<OsfpModuleState>( raw().number( row( "moduleState" ) ) >> 1 & 7 );
}

OsfpDataPathState CmisStatus::dataPathState( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   if ( lane.value() >= osfpLanes ) {
      return dataPathStateUnknown;
   }
   auto const states = static_cast<uint32_t>( raw().number( row( "dataPathStates" ) ) );
   return static_cast<OsfpDataPathState>(
      OsfpLaneBitmaskCtrlReg32( __builtin_bswap32( states ) ).laneVal( OsfpLane( lane.value() ) ) );
}

// Identity

VendorInfo CmisStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   OsfpDecodedEepromContents const & from = decoded();
   return { from.vendorName(), from.vendorPn(), from.vendorSn(), from.vendorRev(),
            from.dateCode() };
}

MediaType CmisStatus::detectedMediaType() const {
   VEL_TRACE_SCOPE( trace );
   return decoded().detectedMediaType();
}

MediaType CmisStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return overrideMediaType() != xcvrUnknown ? overrideMediaType() : detectedMediaType();
}

Capabilities CmisStatus::capabilities() const {
   VEL_TRACE_SCOPE( trace );
   OsfpDecodedEepromContents const & from = decoded();
   Capabilities result;
   result.maxChannelsIs( osfpLanes );
   result.tunableWavelengthIs( from.implControlsAdvertisement() &
                               mask( "implControlsAdvertisement", "tunable transmitter" ) );
   result.lineSideChannelsIs( from.moduleTypeIdentifier().mediaLaneCount() );
   return result;
}

PowerClass CmisStatus::powerClass() const {
   VEL_TRACE_SCOPE( trace );
   unsigned const code = decoded().modulePower() >> 13;
   return code > 6 || !raw().has( row( "modulePower" ) )
             ? xcvrPowerClassUnknown
             : static_cast<PowerClass>( static_cast<uint32_t>( xcvrPowerClass1 ) + code );
}

uint32_t CmisStatus::laserWavelength() const {
   VEL_TRACE_SCOPE( trace );
   OsfpModuleTypeEncoding const type = decoded().moduleType();
   if ( type != osfpTypeOpticalMmf && type != osfpTypeOpticalSmf ) {
      return 0;
   }
   constexpr uint32_t picometres = 50; // of a count
   return static_cast<uint32_t>( raw().number( row( "wavelength" ) ) ) * picometres;
}

LaserWavelengthPrecision CmisStatus::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   return laserWavelength() != 0 ? laserWavelengthPrecisionPm : laserWavelengthPrecisionUnknown;
}

bool CmisStatus::disablePolling() const {
   VEL_TRACE_SCOPE( trace );
   return decoded().flatMem();
}

Units::Decibels CmisStatus::electricalPathAttenuation() const {
   VEL_TRACE_SCOPE( trace );
   OsfpDecodedEepromContents const & from = decoded();
   if ( from.moduleType() != osfpTypePassiveCu ) {
      return Units::Decibels( 0.0 );
   }
   return attenuationOfModel( attnTable(), from )
      .value_or(
         Units::Decibels( static_cast<double>( raw().number( row( "attenuation12p9GHz" ) ) ) ) );
}

// Monitors

DomCapabilities CmisStatus::domCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   uint16_t const monitors = decoded().implMonitorsAdvertisement().value();
   bool const txPower = monitors & mask( "implMonitorsAdvertisement", "Tx power" );
   bool const rxPower = monitors & mask( "implMonitorsAdvertisement", "Rx power" );
   return { ( monitors & mask( "implMonitorsAdvertisement", "temperature" ) ) != 0,
            ( monitors & mask( "implMonitorsAdvertisement", "supply voltage" ) ) != 0,
            ( monitors & mask( "implMonitorsAdvertisement", "Tx bias" ) ) != 0,
            txPower,
            rxPower,
            false,
            txPower,
            rxPower };
}

bool CmisStatus::domInfoValid( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   OsfpDecodedEepromContents const & from = decoded();
   return presence() == xcvrPresent && domCapabilities() != DomCapabilities() &&
          from.domInfoHas( lane ) && lastDomUpdateTime() > lastPresenceChange();
}

DomInfo CmisStatus::domInfo( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   if ( !domInfoValid( lane ) ) {
      return unreadableDomInfo( 0 );
   }
   DomInfo const info = decoded().domInfo( lane );
   DomCapabilities const has = domCapabilities();
   auto const valueIf = []( bool advertised, double value ) {
      return advertised ? value : unreadable;
   };
   return { info.updateTime(),
            info.calibration(),
            valueIf( has.temperature(), info.temperature() ),
            valueIf( has.voltage(), info.voltage() ),
            valueIf( has.txBias(), info.txBias() ),
            valueIf( has.txPower(), info.txPower() ),
            valueIf( has.rxPower(), info.rxPower() ),
            info.totalRxPower() };
}

DomAggPower CmisStatus::domAggPower() const {
   VEL_TRACE_SCOPE( trace );
   DomAggPower result( 0, domCalibrationUnknown, unreadable, unreadable );
   double txWatts = 0, rxWatts = 0;
   for ( uint8_t lane = 0; lane < osfpLanes; ++lane ) {
      if ( domInfoValid( LaneId( lane ) ) ) {
         DomInfo const info = domInfo( LaneId( lane ) );
         result.updateTimeIs( info.updateTime() );
         result.calibrationIs( info.calibration() );
         txWatts += dbmToWatts( info.txPower() );
         rxWatts += dbmToWatts( info.rxPower() );
      }
   }
   result.aggTxPowerIs( wattsToDbm( txWatts ) );
   result.aggRxPowerIs( wattsToDbm( rxWatts ) );
   return result;
}

bool CmisStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   return presence() == xcvrPresent && domCapabilities() != DomCapabilities() &&
          lastDomThresholdsUpdateTime() > 0 && idEepromValid();
}

DomThreshold CmisStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   // Parsed together with the page's checksum.
   return decoded().checksumHas( OsfpPage::upperPage02 ) ? decoded().domThreshold()
                                                         : unreadableDomThreshold();
}

// Signal tuning

TuningValue CmisStatus::tuningValue( LaneId lane,
                                     OsfpDecodedEepromContents::LaneCodes const & codes ) const {
   constexpr MemoryField controlSet = row( "activeControlSet" );
   if ( lane.value() >= osfpLanes || !codes.contains( ChannelId( lane.value() ) ) ||
        !raw().has( controlSet ) ) {
      return {};
   }
   // From the page: a replica has no parser that ran.
   Vel::String const page = raw().memory( { OsfpBank::bank0, OsfpPage::upperPage11 } );
   bool const explicitControl = PageView( page.view() ).u8( controlSet.at + lane.value() ) & 1;
   return { true, codes.at( ChannelId( lane.value() ) ), !explicitControl };
}

TuningValue CmisStatus::rxOutputAmplitude( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   return tuningValue( lane, decoded().rxOutputAmplitudeMap() );
}

TuningValue CmisStatus::rxOutputPreEmphasis( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   return tuningValue( lane, decoded().rxOutputPreEmphasisMap() );
}

TuningValue CmisStatus::txInputEqualization( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   return tuningValue( lane, decoded().txInputEqualizationMap() );
}

} // namespace Xcvr
