// An observer of one slot: it is told when a module is inserted, read, in alarm and removed, and asks
// the status what the module is. A hardware agent would write the status; here the example does.
#include <Xcvr/XcvrSfpPlus.h>

#include <cstdio>

using namespace Xcvr;

namespace {

/// Prints a line for everything that happens in the slot.
class SlotReactor : public SfpNewStatus::NotifieeConst {
 public:
   void onPresence() override {
      say( notifier()->presence() == xcvrPresent ? "inserted" : "removed" );
   }
   void onReady() override {
      if ( notifier()->ready() ) {
         say( std::string( notifier()->mediaTypeString() ) + " of " +
              trimmed( notifier()->vendorInfo().vendorName() ) );
      }
   }
   void onLastDomUpdateTime() override {
      LaneId const lane( 0 );
      if ( !notifier()->domInfoValid( lane ) ) {
         return;
      }
      DomInfo const monitors = notifier()->domInfo( lane );
      char text[80];
      std::snprintf( text, sizeof text, "%.1f C, receives %.1f dBm", monitors.temperature(),
                     monitors.rxPower() );
      say( text );
      if ( notifier()->domThresholdValid() &&
           monitors.temperature() > notifier()->domThreshold().tempHighWarn() ) {
         say( "warning: too hot" );
      }
      if ( notifier()->domFlags().rxPowerLowAlarm() ) {
         say( "alarm: hardly any light" );
      }
   }

 private:
   static std::string trimmed( Vel::String const & padded ) {
      std::string text( padded );
      return text.erase( text.find_last_not_of( ' ' ) + 1 );
   }
   void say( std::string const & what ) const {
      std::printf( "%s: %s\n", std::string( notifier()->name() ).c_str(), what.c_str() );
   }
};

/// The memory of a 10GBASE-SR module.
XcvrSff8472IdEepromContents module() {
   using Sff8472Table::bit;
   using Sff8472Table::row;
   Vel::String a0h( 256, '\0' ), a2h( 256, '\0' );
   a0h.byteIs( row( "identifier" ).at, 3 );
   a0h.byteIs( row( "lengthOm3" ).at, 30 ); // 300 m
   for ( MemoryBitPlace const set :
         { bit( "compliance", "10GBASE-SR" ), bit( "diagsMonitoringType", "digital diagnostics" ),
           bit( "diagsMonitoringType", "internally calibrated" ),
           bit( "enhancedOptions", "alarm and warning flags" ) } ) {
      a0h.byteIs( set.at, static_cast<uint8_t>( a0h[set.at] | set.mask ) );
   }
   a2h.byteIs( row( "domTempHighWarn" ).at, 70 );
   XcvrSff8472IdEepromContents contents( a0h, a2h, 0 );
   contents.vendorNameIs( "Example Optics" );
   return contents;
}

constexpr uint16_t alarmFlagsLsb = 0xA271; // page A2h, byte 113
constexpr uint8_t rxPowerLow = 0x40;

/// Bytes of page A2h as a poll of the module reads them.
void poll( SfpNewStatus & slot, Vel::Seconds now, uint8_t celsius, uint8_t tenthsOfMicrowatt,
           uint8_t alarms ) {
   slot.registerDataIs( XcvrSff8472DomRegisterData( Sff8472::domTemperatureMsb, celsius ) );
   slot.registerDataIs( XcvrSff8472DomRegisterData( Sff8472::domRxPowerLsb, tenthsOfMicrowatt ) );
   slot.registerDataIs( XcvrSff8472DomRegisterData( alarmFlagsLsb, alarms ) );
   slot.lastDomUpdateTimeIs( now ); // last: the readings are there when the reactor is told
}

} // namespace

int main() {
   Vel::Ptr<SfpNewStatus> const slot = sfpNewStatusFactory( "Ethernet1" );
   SlotReactor reactor;
   reactor.notifierIs( slot );

   slot->lastPresenceChangeIs( 1 );
   slot->presenceIs( xcvrPresent );
   slot->actualIdEepromContentsIs( module() );
   slot->idEepromValidIs( true );
   slot->lastDomThresholdsUpdateTimeIs( 1 );
   slot->readyIs( true );
   poll( *slot, 2, 35, 200, 0 );
   poll( *slot, 3, 71, 200, 0 );
   poll( *slot, 4, 36, 1, rxPowerLow );
   slot->readyIs( false );
   slot->idEepromValidIs( false );
   slot->clearIdEepromContents();
   slot->registerDataDelAll();
   slot->lastPresenceChangeIs( 5 );
   slot->presenceIs( xcvrNotPresent );
}
