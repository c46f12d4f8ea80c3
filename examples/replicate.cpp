// A slot's status in two processes, here in one: the agent writes it, a reader has a replica and is told
// of each change. A second reader falls behind, which costs the agent nothing and the reader only what
// is superseded. docs/attribute-log.md tells what travels.
#include <Vel/Flow.h>
#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <cstdio>

using namespace Xcvr;

namespace {

constexpr uint16_t temperatureMsb = 0xA260; // page A2h, byte 96

/// The agent's end of a flow, and the replica at the other one, with an observer that prints.
class Reader : public SfpNewStatus::NotifieeConst {
 public:
   Reader( char const * name, Vel::Ptr<SfpNewStatus> const & slot )
      : name_( name ), adaptor_( SfpNewStatus::velNboAttrLogSaIs( slot, flow_ ) ) {
      notifierIs( replica_ );
   }
   /// Between processes, each piece would be sent as it is and applied as a whole where it arrives.
   void takeAll() {
      std::size_t bytes = 0;
      while ( flow_->pending() ) {
         Vel::NboAttrLog log( flow_->piece() );
         replica_->doHandleAttrDeserialization( log );
         bytes += log.bytes().size();
      }
      std::printf( "%s: took %zu bytes\n", name_, bytes );
   }

   void onPresence() override {
      std::printf( "%s: %s\n", name_,
                   notifier()->presence() == xcvrPresent ? "inserted" : "removed" );
   }
   void onLastDomUpdateTime() override {
      uint8_t const msb = notifier()->registerData( temperatureMsb ).data();
      std::printf( "%s: %.0f C at %.0f s\n", name_, decodeDomICTemperature( msb, 0 ),
                   notifier()->lastDomUpdateTime() );
   }

 private:
   char const * name_;
   Vel::Ptr<Vel::FlowOut> flow_{ new Vel::FlowOut };
   Vel::Ptr<Vel::NboAttrLogSa> adaptor_; // watches the slot for as long as it lives
   Vel::Ptr<SfpNewStatus> replica_ = sfpNewStatusFactory( "Ethernet1" );
};

void poll( SfpNewStatus & slot, int second ) {
   auto const celsius = static_cast<uint8_t>( 25 + second % 50 );
   slot.registerDataIs( XcvrSff8472DomRegisterData( temperatureMsb, celsius ) );
   slot.lastDomUpdateTimeIs( second ); // last: who hears of it finds the reading
}

} // namespace

int main() {
   Vel::Ptr<SfpNewStatus> const slot = sfpNewStatusFactory( "Ethernet1" );
   slot->presenceIs( xcvrPresent );
   Reader prompt( "prompt", slot ), slow( "slow", slot );
   prompt.takeAll(); // the image: all that there is
   slow.takeAll();
   for ( int second = 1; second <= 3; ++second ) {
      poll( *slot, second );
      prompt.takeAll();
   }
   for ( int second = 4; second <= 3600; ++second ) {
      poll( *slot, second );
   }
   slow.takeAll(); // the last reading of an hour: what came between is of no use any more
   slot->presenceIs( xcvrNotPresent );
   slow.takeAll();
}
