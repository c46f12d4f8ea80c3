// The pages of a CMIS module as they come from a module, which may say anything: an input is the lower
// page (128 bytes, or what there is) and behind it pages 00h, 01h, 02h, 10h and 11h. Whatever they hold,
// every operation answers within its bounds.
#include "fuzz/Require.h"

#include <Vel/AttrLog.h>
#include <Xcvr/XcvrOsfp.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

using namespace Xcvr;

struct Place {
   OsfpBank bank;
   OsfpPage page;
};
constexpr Place places[] = {
   { OsfpBank::bankNa, OsfpPage::lowerPage00 }, { OsfpBank::bankNa, OsfpPage::upperPage00 },
   { OsfpBank::bankNa, OsfpPage::upperPage01 }, { OsfpBank::bankNa, OsfpPage::upperPage02 },
   { OsfpBank::bank0, OsfpPage::upperPage10 },  { OsfpBank::bank0, OsfpPage::upperPage11 },
};

/// Counts what is told of the decoded contents, but for the monitors, whose time goes on.
struct Watcher : OsfpDecodedEepromContents::Notifiee {
   void onVendorSn() override { ++told; }
   void onModuleTypeIdentifier() override { ++told; }
   void onApplication() override { ++told; }
   void onDomThreshold() override { ++told; }
   void onChecksum() override { ++told; }
   void onRxLos() override { ++told; }
   void onRxOutputAmplitude() override { ++told; }
   int told = 0;
};

void checkDecoded( CmisStatus const & status ) {
   OsfpDecodedEepromContents const & decoded = *status.decodedEepromContents();
   for ( auto const & [code, application] : decoded.applicationMap() ) {
      require( code >= 1 && code <= 15 );
      require( application.hostInterface() != OsfpApplication::endOfList );
      require( !application.hostInterfaceName().empty() );
      require( !application.mediaInterfaceName( decoded.moduleType() ).empty() );
   }
   for ( auto const & [page, valid] : decoded.checksumValidMap() ) {
      require( valid == ( decoded.checksum( page ) == decoded.checksumCalculated( page ) ) );
   }
   auto const type = static_cast<uint32_t>( decoded.moduleType() );
   require( ( decoded.detectedMediaType() == xcvrUnknown ) == ( type == 0 || type > 5 ) );
   require( decoded.vendorName().size() <= 16 );
}

void checkStatus( CmisStatus const & status ) {
   require( status.mediaType() == status.decodedEepromContents()->detectedMediaType() );
   static_cast<void>( status.bitrateKbps() );
   static_cast<void>( status.capabilities() );
   static_cast<void>( status.powerClass() );
   static_cast<void>( status.moduleState() );
   static_cast<void>( status.electricalPathAttenuation() );
   require( status.laserWavelength() <= 65535 * 50 );
   for ( uint8_t lane = 0; lane < 10; ++lane ) {
      DomInfo const info = status.domInfo( LaneId( lane ) );
      require( info.temperature() < 128 && info.txBias() <= 65535 * 0.002 * 4 );
      require( info.txPower() < std::numeric_limits<double>::infinity() );
      require( status.rxOutputAmplitude( LaneId( lane ) ).val() < 16 );
      static_cast<void>( status.dataPathState( LaneId( lane ) ) );
   }
   require( status.domAggPower().aggTxPower() < 20 );
   DomThreshold const limits = status.domThreshold();
   require( DomThreshold( stringValue( limits ) ) == limits );
   VendorInfo const vendor = status.vendorInfo();
   Vel::NboAttrLog log;
   vendor.velWrite( log );
   require( VendorInfo( log ) == vendor );
}

void checkFields( OsfpRawEepromContents const & raw ) {
   for ( MemoryField const & field : cmisFields() ) {
      require( raw.has( field ) || raw.number( field ) == 0 );
      static_cast<void>( raw.fieldInUse( field ) );
   }
}

void checkControlSet( OsfpEepromParser const & parser ) {
   Vel::String const & image = parser.writeShadow()->activeControlSet();
   if ( image.empty() ) {
      return;
   }
   Vel::Ptr<OsfpControlSet> const set = osfpControlSetFactory( image );
   for ( uint8_t lane = 0; lane < osfpLanes; ++lane ) {
      OsfpTuningParamValue const tuning = set->tuning( OsfpLane( lane ) );
      set->tuningIs( OsfpLane( lane ), tuning );
      require( set->tuning( OsfpLane( lane ) ) == tuning );
      require( set->laneApSel( OsfpLane( lane ) ) & 1 );
   }
   require( set->image().size() == OsfpControlSet::imageSize );
   require( set->apSelString().size() == osfpLanes );
}

/// `end` cuts every page; one of no bytes is not there.
void check( std::string_view image, size_t end ) {
   Vel::Ptr<CmisStatus> const status = osfpStatusFactory( "Ethernet1" );
   for ( Place const & place : places ) {
      std::string_view const page = image.substr( 0, CmisTable::pageSize );
      image.remove_prefix( page.size() );
      if ( !page.empty() && end > 0 ) {
         status->rawEepromContents()->memoryIs( OsfpBankAndPage( place.bank, place.page ),
                                                page.substr( 0, end ) );
      }
   }
   status->presenceIs( xcvrPresent );
   status->lastDomUpdateTimeIs( 1 );
   status->parseEeprom();
   Watcher watcher;
   watcher.notifierIs( status->decodedEepromContents() );
   status->parseEeprom();
   require( watcher.told == 0 );
   checkDecoded( *status );
   checkStatus( *status );
   checkFields( *status->rawEepromContents() );
   checkControlSet( *status->eepromParser() );
   // Every page, there or not.
   OsfpEepromParser & parser = *status->eepromParser();
   parser.parseUpperPage01();
   parser.parseDom();
   parser.parseLaneFlags( true );
   parser.parseLaneTuning();
   checkStatus( *status );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string_view const image( reinterpret_cast<char const *>( data ), size );
   check( image, CmisTable::pageSize );
   // The same with pages that end early, where the last byte says.
   check( image, size > 0 ? data[size - 1] % CmisTable::pageSize : 0 );
   return 0;
}
