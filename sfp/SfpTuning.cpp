// The wavelength tuning of an SFP slot.
#include "core/DiagOverride.h"
#include "core/Tuning.h"
#include "sfp/A2hBytes.h"

#include <Vel/Trace.h>
#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrOptics.h>

namespace Xcvr {
namespace {

using Sff8472Table::row;

Vel::TraceHandle trace( "XcvrSfpPlus" );

/// The tuning registers, in MHz, exactly: the capabilities are cut to whole GHz.
struct TuningRegisters {
   explicit TuningRegisters( PageView page )
      : first( page.u16be( row( "tuningFirstFrequencyTHz" ).at ) * 1000000u +
               page.u16be( row( "tuningFirstFrequencyGHz" ).at ) * 100u ),
        spacing( page.u16be( row( "tuningGridSpacingGHz" ).at ) * 100u ),
        channel( page.u16be( row( "tuningChannel" ).at ) ) {}

   /// Where the module is tuned to; 0 for nowhere.
   [[nodiscard]] uint32_t frequency() const {
      return channel != 0 && spacing != 0 ? decodeItuFrequency( first, channel, spacing ) : 0;
   }
   /// The module's number of a frequency, counted from its first; 0 when it has none.
   [[nodiscard]] uint32_t channelOf( uint32_t wanted ) const {
      return channelOnGrid( first, spacing, wanted );
   }

   uint32_t first;
   uint32_t spacing;
   uint16_t channel;
};

TuningRegisters tuningRegisters( SfpNewStatus const & status ) {
   A2hBytes const a2h( status, contentsOf( status ) );
   return TuningRegisters( a2h.page() );
}

/// The spacings that a module with one of them in MHz supports: its own and the coarser ones, but
/// never 33 GHz; none of any other. The registers' spacing comes cut to whole GHz, so the last two
/// rows are never met: intended, modules of finer grids are driven as if they had none.
GridSpacingCapabilities gridSpacings( uint32_t mhz ) {
   switch ( mhz ) {
   case 100000:
      return { true, false, false, false, false, false };
   case 50000:
      return { true, true, false, false, false, false };
   case 25000:
      return { true, true, false, true, false, false };
   case 12500:
      return { true, true, false, true, true, false };
   case 6250:
      return { true, true, false, true, true, true };
   default:
      return {};
   }
}

} // namespace

uint16_t SfpNewStatus::hwChannel() const {
   VEL_TRACE_SCOPE( trace );
   return tuningRegisters( *this ).channel;
}

TuningCapabilities SfpNewStatus::tuningCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   A2hBytes const a2h( *this, contentsOf( *this ) );
   PageView const page = a2h.page();
   auto const frequency = [page]( MemoryField const & thz ) {
      return ghzFreqToMhz( decodeTuningFrequency( page.u8( thz.at ), page.u8( thz.at + 1u ),
                                                  page.u8( thz.at + 2u ),
                                                  page.u8( thz.at + 3u ) ) );
   };
   constexpr uint32_t spacing = row( "tuningGridSpacingGHz" ).at;
   return { TuningConstants::baseFrequencyCBand, frequency( row( "tuningFirstFrequencyTHz" ) ),
            frequency( row( "tuningLastFrequencyTHz" ) ),
            gridSpacings( ghzFreqToMhz(
               decodeTuningGridSpacing( page.u8( spacing ), page.u8( spacing + 1 ) ) ) ),
            0 };
}

void SfpNewStatus::updateHwTuningConfig() {
   VEL_TRACE_SCOPE( trace );
   TuningRegisters const registers = tuningRegisters( *this );
   uint32_t const channel = registers.channelOf( wantedFrequency( ituTuningConfig() ) );
   // No fine tuning: an SFP has no range for it.
   hwTuningConfigIs( channel != 0 ? HwTuningConfig( channel, registers.spacing, 0 )
                                  : HwTuningConfig() );
}

bool SfpNewStatus::isFreqTuningPending() {
   VEL_TRACE_SCOPE( trace );
   if ( !capabilities().tunableWavelength() ) {
      return false;
   }
   Vel::Ptr<TuningConfig const> const config = resolveConfiguredTuning( *this, xgc() );
   updateHwTuningConfig();
   TuningRegisters const registers = tuningRegisters( *this );
   uint32_t const operational = registers.frequency();
   resolvedTuningStatusIs( resolvedTuning( *this, config.get(), operational ) );
   return registers.channel != hwTuningConfig().hwChannel() ||
          operational != wantedFrequency( ituTuningConfig() );
}

} // namespace Xcvr
