#include <Vel/Define.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOsfpControlSet.h>

namespace Xcvr {

VEL_VALUE_DEFINE( OsfpTuningParamValue )

namespace {

Vel::TraceHandle trace( "HalOsfp" );

/// A register of the image: its addresses are not those of module memory, so it has no page.
OsfpRegAddr inImage( OsfpAddr addr, uint8_t size ) {
   return { OsfpBank::bankNa, OsfpPage::upperPageInvalid, addr, size };
}
OsfpRegAddr const txInputAdaptiveEqEnable = inImage( 8, 1 );
OsfpRegAddr const txInputEqualization = inImage( 11, 4 );
OsfpRegAddr const rxOutputPreEmphasis = inImage( 17, 4 );
OsfpRegAddr const rxOutputPostEmphasis = inImage( 21, 4 );
OsfpRegAddr const rxOutputAmplitude = inImage( 25, 4 );
OsfpControlSetAddress const apSels( OsfpBank::bankNa, OsfpPage::upperPageInvalid, 0 );

} // namespace

Vel::Ptr<OsfpControlSet> osfpControlSetFactory( Vel::String const & image ) {
   return Vel::Ptr<OsfpControlSet>( new OsfpControlSet( image ) );
}

// Bytes

bool OsfpControlSet::byteIs( uint8_t offset, uint8_t value ) {
   VEL_ASSERT_TEXT( offset < image_.size(), "offset < image.size()" );
   if ( byte( offset ) == value ) {
      return false;
   }
   image_.byteIs( offset, value );
   return true;
}

uint32_t OsfpControlSet::getU32FromControlSetString( uint8_t offset ) const {
   VEL_TRACE_SCOPE( trace );
   uint32_t value = 0;
   for ( unsigned i = 4; i-- > 0; ) {
      value = value << 8 | static_cast<uint32_t>( static_cast<int8_t>( byte( offset + i ) ) );
   }
   return value;
}

bool OsfpControlSet::setU32ToControlSetString( uint8_t offset, uint32_t value ) {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT_TEXT( offset + 4u <= image_.size(), "offset + 4 <= image.size()" );
   bool changed = false;
   for ( uint8_t i = 0; i < 4; ++i ) {
      changed |=
         byteIs( static_cast<uint8_t>( offset + i ), static_cast<uint8_t>( value >> 8 * i ) );
   }
   return changed;
}

// Signal tuning

bool OsfpControlSet::tuningU4Is( OsfpRegAddr const & reg, OsfpLane lane, uint8_t code ) {
   VEL_TRACE_SCOPE( trace );
   OsfpLaneBitmaskCtrlReg32 const old( getU32FromControlSetString( reg.addr() ) );
   OsfpLaneBitmaskCtrlReg32 fields = old;
   fields.laneValIs( lane, Vel::U4( code ) );
   // Written even when nothing is to change: what the sign extension added is stored by this.
   setU32ToControlSetString( reg.addr(), fields.value() );
   return fields != old;
}

bool OsfpControlSet::tuningU1Is( OsfpRegAddr const & reg, OsfpLane lane, Vel::U1 bit ) {
   VEL_TRACE_SCOPE( trace );
   OsfpLaneBitmaskCtrlReg8 lanes( byte( reg.addr() ) );
   lanes.laneValIs( lane, bit.value() );
   return byteIs( reg.addr(), lanes.value() );
}

bool OsfpControlSet::txInputAdaptiveEqEnableIs( OsfpLane lane, Vel::U1 enable ) {
   VEL_TRACE_SCOPE( trace );
   return tuningU1Is( txInputAdaptiveEqEnable, lane, enable );
}

bool OsfpControlSet::txInputEqualizationIs( OsfpLane lane, uint8_t code ) {
   VEL_TRACE_SCOPE( trace );
   return tuningU4Is( txInputEqualization, lane, code );
}

bool OsfpControlSet::rxOutputPreEmphasisIs( OsfpLane lane, uint8_t code ) {
   VEL_TRACE_SCOPE( trace );
   return tuningU4Is( rxOutputPreEmphasis, lane, code );
}

bool OsfpControlSet::rxOutputPostEmphasisIs( OsfpLane lane, uint8_t code ) {
   VEL_TRACE_SCOPE( trace );
   return tuningU4Is( rxOutputPostEmphasis, lane, code );
}

bool OsfpControlSet::rxOutputAmplitudeIs( OsfpLane lane, uint8_t code ) {
   VEL_TRACE_SCOPE( trace );
   return tuningU4Is( rxOutputAmplitude, lane, code );
}

bool OsfpControlSet::tuningIs( OsfpLane lane, OsfpTuningParamValue const & tuning ) {
   VEL_TRACE_SCOPE( trace );
   // All values are looked at before the first is written.
   Vel::U1 const enable( tuning.txInputAdaptiveEqEnable() );
   for ( uint8_t code : { tuning.txInputEqualization(), tuning.rxOutputPostEmphasis(),
                          tuning.rxOutputPreEmphasis(), tuning.rxOutputAmplitude() } ) {
      static_cast<void>( Vel::U4( code ) );
   }
   bool changed = txInputAdaptiveEqEnableIs( lane, enable );
   changed |= txInputEqualizationIs( lane, tuning.txInputEqualization() );
   changed |= rxOutputPostEmphasisIs( lane, tuning.rxOutputPostEmphasis() );
   changed |= rxOutputPreEmphasisIs( lane, tuning.rxOutputPreEmphasis() );
   changed |= rxOutputAmplitudeIs( lane, tuning.rxOutputAmplitude() );
   explicitTuningControlIs( lane, Vel::U1( 1 ) );
   applyTuningIs( lane, Vel::U1( changed ) );
   return changed;
}

OsfpTuningParamValue OsfpControlSet::tuning( OsfpLane lane ) const {
   VEL_TRACE_SCOPE( trace );
   auto const code = [&]( OsfpRegAddr const & reg ) {
      return static_cast<uint8_t>( byte( reg.addr() + lane.value() / 2u ) >> lane.value() % 2 * 4 &
                                   0xf );
   };
   return { OsfpLaneBitmaskCtrlReg8( byte( txInputAdaptiveEqEnable.addr() ) ).laneVal( lane ),
            code( txInputEqualization ), code( rxOutputPostEmphasis ), code( rxOutputPreEmphasis ),
            code( rxOutputAmplitude ) };
}

// Applications

uint8_t OsfpControlSet::laneApSel( OsfpLane lane ) const {
   VEL_TRACE_SCOPE( trace );
   return byte( apSels.laneApSelCode( lane ).addr() );
}

bool OsfpControlSet::laneApSelIs( OsfpLane lane, uint8_t apSel ) {
   VEL_TRACE_SCOPE( trace );
   return byteIs( apSels.laneApSelCode( lane ).addr(), apSel );
}

bool OsfpControlSet::applicationCodeIs( OsfpLane lane, Vel::U4 code ) {
   VEL_TRACE_SCOPE( trace );
   return laneApSelIs( lane,
                       static_cast<uint8_t>( code.value() << 4 | ( laneApSel( lane ) & 0x0f ) ) );
}

bool OsfpControlSet::dataPathCodeIs( OsfpLane lane, Vel::U3 code ) {
   VEL_TRACE_SCOPE( trace );
   return laneApSelIs( lane,
                       static_cast<uint8_t>( ( laneApSel( lane ) & 0xf1 ) | code.value() << 1 ) );
}

bool OsfpControlSet::explicitTuningControlIs( OsfpLane lane, Vel::U1 on ) {
   VEL_TRACE_SCOPE( trace );
   return laneApSelIs( lane, static_cast<uint8_t>( ( laneApSel( lane ) & 0xfe ) | on.value() ) );
}

bool OsfpControlSet::applyTuningIs( OsfpLane lane, Vel::U1 apply ) {
   VEL_TRACE_SCOPE( trace );
   OsfpLaneBitmaskCtrlReg8 lanes = applyControl_;
   lanes.laneValIs( lane, apply.value() );
   return applyControlIs( lanes.value() );
}

bool OsfpControlSet::applyControlIs( uint8_t lanes ) {
   VEL_TRACE_SCOPE( trace );
   bool const changed = applyControl_.value() != lanes;
   applyControl_.valueIs( lanes );
   return changed;
}

Vel::String OsfpControlSet::apSelString() const {
   VEL_TRACE_SCOPE( trace );
   Vel::String result = image_.substr( 0, osfpLanes ); // of a short image what there is
   for ( std::size_t lane = 0; lane < result.size(); ++lane ) {
      result.byteIs( lane, static_cast<uint8_t>( result[lane] & ~1 ) );
   }
   return result;
}

} // namespace Xcvr
