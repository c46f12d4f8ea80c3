// One directory of all transceivers, of a system with a fixed port and two slices, each with an agent of
// its own. An agent's statuses are there while it has caught up with its configuration, and gone with
// the agent. docs/aggregation.md has the rules.
#include <Xcvr/XcvrAllStatusDirSm.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <cstdio>

using namespace Xcvr;

namespace {

/// What a slice's agent mounts and writes.
struct Slice {
   Slice( char const * id, std::initializer_list<char const *> ports )
      : config( allConfigDirFactory( id ) ), agent( xcvrSliceStatusFactory( id ) ),
        statuses( Vel::dirFactory( id ) ) {
      config->generationIdIs( 1 );
      for ( char const * port : ports ) {
         statuses->entryIs( sfpNewStatusFactory( port ) );
      }
   }
   Vel::Ptr<AllConfigDir> config;
   Vel::Ptr<XcvrSliceStatus> agent;
   Vel::Ptr<Vel::Dir> statuses;
};

/// A line for every status that is published or withdrawn.
class Printer : public AllNewStatusDir::NotifieeConst {
 public:
   void onXcvrStatus( Vel::Name const & port ) override {
      std::printf( "   %c %s\n", notifier()->xcvrStatusHas( port ) ? '+' : '-',
                   std::string( port ).c_str() );
   }
};

} // namespace

int main() {
   auto const sliceStatusDir = Vel::dirFactory( "sliceStatus" );
   auto const agentStatusDir = Vel::dirFactory( "agentStatus" );
   auto const sliceConfigDir = Vel::dirFactory( "slice" ), configDir = Vel::dirFactory( "config" );
   configDir->entryIs( sliceConfigDir );
   Slice const fixed( "fixed", { "Ethernet1" } );
   Slice const three( "3", { "Ethernet3/1" } ), four( "4", { "Ethernet4/1" } );
   for ( Slice const * slice : { &three, &four } ) {
      sliceConfigDir->entryIs( slice->config );
      agentStatusDir->entryIs( slice->agent );
      sliceStatusDir->entryIs( slice->statuses );
   }
   auto const singleton = xcvrAllStatusDirSingletonFactory( "singleton" );
   singleton->sliceStatusDirIs( sliceStatusDir );
   singleton->fixedStatusDirIs( fixed.statuses );
   singleton->baseConfigDirIs( configDir );
   singleton->fixedConfigDirIs( fixed.config );
   singleton->agentStatusDirIs( agentStatusDir );
   singleton->fixedAgentStatusIs( fixed.agent );
   singleton->doStartSm();
   Printer printer;
   printer.notifierIs( singleton->allStatusDir() );

   std::puts( "the agents have caught up" );
   for ( Slice const * slice : { &fixed, &three, &four } ) {
      slice->agent->generationIdIs( 1 );
   }
   std::puts( "slice 3 is configured anew" );
   three.config->generationIdIs( 2 );
   std::puts( "its agent has caught up" );
   three.agent->generationIdIs( 2 );
   std::puts( "a port is added to slice 4, and its agent says so" );
   four.statuses->entryIs( sfpNewStatusFactory( "Ethernet4/2" ) );
   four.config->generationIdIs( 2 );
   four.agent->generationIdIs( 2 );
   std::puts( "the agent of slice 3 goes" );
   agentStatusDir->entryDel( "3" );
}
