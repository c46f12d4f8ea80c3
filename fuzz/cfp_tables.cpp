// The register tables of a CFP2, CFPx or CFP2-DCO as an agent may have filled them: any table, at any
// first address, of any register width and length. An input is a row of tables, each of five bytes and
// its contents: id, first address (high byte first; with bit 6 set the standard address and width of
// the id), register width, and half the length. Whatever they hold, every operation answers within its bounds.
#include "fuzz/Require.h"

#include <Xcvr/XcvrCfp2.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

using namespace Xcvr;
using Contents = CfpMsaMisIdEepromContents;

class Input {
 public:
   Input( uint8_t const * data, size_t size )
      : rest_( reinterpret_cast<char const *>( data ), size ) {}
   [[nodiscard]] bool empty() const { return rest_.empty(); }
   [[nodiscard]] uint8_t byte() { return static_cast<uint8_t>( bytes( 1 )[0] ); }
   /// What there is of them; of none a zero byte.
   [[nodiscard]] std::string_view bytes( size_t count ) {
      std::string_view const taken = rest_.substr( 0, count );
      rest_.remove_prefix( taken.size() );
      return taken.empty() && count == 1 ? std::string_view( "", 1 ) : taken;
   }

 private:
   std::string_view rest_;
};

void readTables( Input & input, Contents & contents ) {
   while ( !input.empty() ) {
      auto const id = static_cast<CfpMsaMisTableId>( input.byte() );
      uint8_t const high = input.byte(), low = input.byte(), width = input.byte();
      bool const standard = high & 0x40;
      uint16_t const first =
         standard ? cfpFirstAddress( id ) : static_cast<uint16_t>( high << 8 | low );
      size_t const length = input.byte() * 2u + ( high & 1 );
      std::string_view const bytes = input.bytes( length );
      auto const table = contents.memoryIs( id, first, standard ? cfpRegisterWidth( id ) : width );
      require( ( table == nullptr ) == ( id >= maxCfpTables ) );
      if ( table ) {
         table->contentsIs( bytes );
      }
   }
}

/// Every register of the register table, and fields of every width, by the primitives.
void checkPrimitives( Contents const & contents ) {
   for ( CfpRegister const & row : cfpRegisters() ) {
      CfpMsaMisMemoryTable const * table = contents.table( row.table );
      for ( unsigned lane = 0; lane < 256; lane += 15 ) {
         FieldDescriptor field = row.field;
         field.address = static_cast<uint16_t>( field.address + lane );
         for ( unsigned width : { unsigned{ row.field.width }, lane % 20, lane } ) {
            field.width = static_cast<uint8_t>( width );
            uint32_t const limit = width < 16 ? 1u << width : 0x10000;
            require( getU8FromTable( field, table ) < limit );
            require( getU16FromTable( field, table ) < limit );
            require( getStringFromU8Table( field, table ).size() <= width / 8 * 2 );
         }
      }
   }
}

void checkMediaType( Contents const & contents ) {
   requireMediaTypeOfARule( contents, cfpMediaTypeRules() );
}

void checkChecksums( Contents const & contents ) {
   for ( uint32_t id = 0; id <= static_cast<uint32_t>( tableInvalid ); ++id ) {
      auto const table = static_cast<CfpMsaMisTableId>( id );
      if ( contents.checksumValid( table ) ) {
         require( contents.memoryHas( table ) && table <= table8180 );
         require( contents.checksum( table ) == contents.checksumCalculated( table ) );
      }
   }
}

void checkAccessors( Contents const & contents ) {
   bool const flag = contents.isIn( cfpxAndDcoModules );
   require( !flag || ( contents.rxLosStatus() <= 1 && contents.txFaultStatus() <= 1 ) );
   require( contents.networkLanes() < 16 && contents.hostLanes() < 16 );
   require( !contents.isIn( cfpxModules ) || contents.networkLaneBitRateMax() == 0 );
   require( contents.vendorRev().size() <= 2 );
   require( contents.minFrequency() <= 65535 * 1000 + 3276 );
   require( contents.txRfDriverType() < 4 );
   static_cast<void>( contents.isOclaroLinear() || contents.isAcaciaLinear() );
   for ( unsigned lane = 0; lane < 256; ++lane ) {
      auto const n = static_cast<uint8_t>( lane );
      require( lane < 16 ||
               ( contents.txBias( n ) | contents.txPower( n ) | contents.rxPower( n ) |
                 contents.temperature( n ) | contents.txInputEqualization( n ) ) == 0 );
      require( contents.rxOutputPreEmphasis( n ) < 16 );
      static_cast<void>( contents.txPowerCfpx( n ) + contents.rxPowerCfpx( n ) );
      require( std::abs( contents.txSkew( n ) ) < 3277 && std::abs( contents.rxSkew( n ) ) < 3277 );
   }
}

/// A monitor is a number or minus infinity.
void requireMonitor( double value ) {
   require( value < std::numeric_limits<double>::infinity() );
}

void checkStatus( Cfp2DcoNewStatus & status ) {
   for ( uint8_t lane = 0; lane < 17; ++lane ) {
      DomInfo const info = status.domInfo( LaneId( lane ) );
      require( status.domInfoValid( LaneId( lane ) ) == ( info.updateTime() != 0 ) );
      for ( double value : { info.temperature(), info.voltage(), info.txBias(), info.txPower(),
                             info.rxPower() } ) {
         requireMonitor( value );
      }
      static_cast<void>( status.txInputEqualization( LaneId( lane ) ) );
      static_cast<void>( status.rxOutputPreEmphasis( LaneId( lane ) ) );
   }
   DomThreshold const threshold = status.domThreshold();
   DomThreshold::velFields(
      [&]( auto const &, double DomThreshold::*limit ) { requireMonitor( threshold.*limit ); } );
   requireMonitor( status.domAggPower().aggTxPower() );
   requireMonitor( status.dcoMonitors().osnr() );
   require( status.idEepromInfo().eepromPages() <= static_cast<uint8_t>( maxCfpTables ) );
   static_cast<void>( status.vendorInfo() );
   static_cast<void>( status.capabilities() );
   static_cast<void>( status.powerClass() );
   static_cast<void>( status.isFreqTuningPending() );
   static_cast<void>( status.isPowerTuningPending() );
   status.updateLaneStatus();
   require( status.laneStatusMap().size() == status.networkLanes() );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   Vel::Ptr<Cfp2DcoNewStatus> const status = cfp2DcoNewStatusFactory( "Ethernet1" );
   status->presenceIs( xcvrPresent );
   status->lastDomUpdateTimeIs( 1 );
   Vel::Ptr<Contents> const contents = status->actualIdEepromContentsIs();
   Input input( data, size );
   readTables( input, *contents );
   checkPrimitives( *contents );
   checkMediaType( *contents );
   checkChecksums( *contents );
   checkAccessors( *contents );
   checkStatus( *status );
   return 0;
}
