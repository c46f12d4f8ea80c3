#include "tools/xcvr/Watch.h"

#include "tools/xcvr/Commands.h"
#include "tools/xcvr/StatusImage.h"
#include "tools/xcvr/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace XcvrTool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestWait( 20 );         // for an agent that does not answer
constexpr std::chrono::milliseconds longestPause( 1000 ); // of `watch` for one that is changing
constexpr int roundMs = 100;
constexpr char noModules[] = "no slot has a module at present";

std::string slotName( Vel::Name const & name ) {
   return shownFileName( name.view() );
}

std::unique_ptr<Module> moduleOfSlot( Xcvr::XcvrNewStatus const & status ) {
   return moduleOf( imageOf( status ) );
}

std::string summaryOf( Xcvr::XcvrNewStatus const & status ) {
   try {
      return moduleSummary( moduleOfSlot( status )->status() );
   } catch ( ImageError const & ) {
      return fmt::format( "{} without memory that can be read here",
                          stringValue( status.xcvrType() ).view() );
   }
}

void complainOfLate( Readers const & readers,
                     std::function<void( std::string const & )> const & complain,
                     char const * advice ) {
   for ( std::string const & socket : readers.late() ) {
      complain( fmt::format( "{}: not all is there that the agent should serve ({} s); {}",
                             shownFileName( socket ), longestWait.count(), advice ) );
   }
}

} // namespace

bool forEachRemoteModule( std::vector<std::string> const & sockets,
                          std::function<void( std::string const & )> const & complain,
                          std::function<void( Module const & )> const & visit ) {
   Readers readers( sockets, complain );
   Clock::time_point const last = Clock::now() + longestWait;
   do {
      readers.turn( roundMs );
   } while ( !readers.late().empty() && Clock::now() < last );
   bool isGood = readers.allComplete();
   complainOfLate( readers, complain, "try again later" );
   auto const published = readers.published();
   if ( published.empty() && isGood ) {
      complain( noModules );
   }
   for ( auto const & status : published ) {
      try {
         visit( *moduleOfSlot( *status ) );
      } catch ( ImageError const & error ) {
         complain( error.what() );
         isGood = false;
      }
   }
   return isGood;
}

/// What `show` says of the slot, and the attributes that every status has.
Watch::Facts Watch::factsOf( Xcvr::XcvrNewStatus const & status ) {
   Facts facts;
   for ( Vel::AttrInfo const & attribute : Xcvr::XcvrNewStatus::velTypeModel() ) {
      if ( attribute.kind == Vel::AttrKind::plain || attribute.kind == Vel::AttrKind::counter ||
           attribute.kind == Vel::AttrKind::values ) {
         facts[std::string( attribute.name )] = printable( attribute.text( status ).view() );
      }
   }
   try {
      Json units = Json::object();
      Json const shown = showJson( *moduleOfSlot( status ), units ).flatten();
      units = units.flatten();
      for ( auto const & [place, value] : shown.items() ) {
         std::string const unit = units.value( place, "" );
         facts[place.substr( 1 )] =
            ( value.is_number_float() ? fmt::format( "{:g}", value.get<double>() )
                                      : value.dump( -1, ' ', true ) ) +
            ( unit.empty() || value.is_null() ? "" : " " + unit );
      }
   } catch ( ImageError const & ) {
      // No more is known of it.
   }
   return facts;
}

std::vector<std::string> Watch::changesTo( std::vector<Status> const & published ) {
   std::vector<std::string> lines;
   std::set<Vel::Name> there;
   for ( Status const & status : published ) {
      there.insert( status->name() );
   }
   std::erase_if( tags_, [&]( auto const & known ) {
      bool const isGone = !there.contains( known.first );
      if ( isGone ) {
         lines.push_back( slotName( known.first ) + ": withdrawn" );
         slots_.erase( known.second );
      }
      return isGone;
   } );
   for ( Status const & status : published ) {
      uint32_t & tag = tags_[status->name()];
      Slot & slot = slots_[tag ? tag : ( tag = ++lastTag_ )];
      if ( !( slot.status == status ) ) {
         if ( slot.status ) {
            lines.push_back( slotName( status->name() ) + ": withdrawn" ); // it was another one
            slot.facts.clear();
         }
         slot.status = status;
         slot.adaptor = Vel::NboAttrLogSa::attached( *status, flow_, tag );
      }
   }
   std::set<uint32_t> changed;
   while ( flow_->pending() ) {
      static_cast<void>( flow_->piece() ); // which says what has changed, not how
      changed.insert( flow_->tag() );
   }
   for ( Status const & status : published ) {
      uint32_t const tag = tags_[status->name()];
      if ( changed.contains( tag ) ) {
         tell( slots_[tag], lines );
      }
   }
   return lines;
}

void Watch::tell( Slot & slot, std::vector<std::string> & lines ) {
   std::string const name = slotName( slot.status->name() );
   Facts const before = std::exchange( slot.facts, factsOf( *slot.status ) );
   if ( before.empty() ) {
      lines.push_back( fmt::format( "{}: appeared: {}", name, summaryOf( *slot.status ) ) );
      return;
   }
   auto const valueIn = []( Facts const & facts, std::string const & fact ) {
      auto const found = facts.find( fact );
      return found != facts.end() ? found->second : "none";
   };
   Facts all = before;
   all.insert( slot.facts.begin(), slot.facts.end() );
   for ( auto const & [fact, value] : all ) {
      std::string const old = valueIn( before, fact );
      if ( std::string const now = valueIn( slot.facts, fact ); now != old ) {
         lines.push_back( fmt::format( "{}: {}: {} -> {}", name, fact, old, now ) );
      }
   }
}

void runWatch( std::vector<std::string> const & sockets, Console const & console ) {
   Readers readers( sockets, console.complain );
   Watch watch;
   Clock::time_point lastSettled = Clock::now();
   Clock::time_point lastInTime = lastSettled;
   bool isLateTold = false;
   bool isFirst = true;
   while ( true ) {
      // All that has come makes one step; an agent that changes its generation is waited for.
      Clock::time_point const last = Clock::now() + longestPause;
      for ( int wait = roundMs; readers.turn( wait ) && Clock::now() < last; wait = 0 ) {
      }
      if ( readers.isSettled() || Clock::now() - lastSettled > longestPause ) {
         auto const published = readers.published();
         for ( std::string const & line : watch.changesTo( published ) ) {
            console.print( line );
         }
         if ( readers.allComplete() && std::exchange( isFirst, false ) && published.empty() ) {
            console.complain( noModules );
         }
         lastSettled = Clock::now();
      }
      if ( readers.late().empty() ) {
         lastInTime = Clock::now();
         isLateTold = false;
      } else if ( Clock::now() - lastInTime > longestWait && !std::exchange( isLateTold, true ) ) {
         complainOfLate( readers, console.complain, "look whether it is stopped" );
      }
   }
}

} // namespace XcvrTool
