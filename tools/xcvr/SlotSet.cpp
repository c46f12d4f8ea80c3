#include "tools/xcvr/SlotSet.h"

#include "tools/xcvr/StatusPaths.h"

namespace XcvrTool {

SlotSet::SlotSet( Statedb::EntityManager & tree, Vel::Name const & set ) {
   Vel::Name const name = Statedb::lastName( set );
   config_ = Xcvr::allConfigDirFactory( name );
   agent_ = Xcvr::xcvrSliceStatusFactory( name );
   statuses_ = Vel::dirFactory( name );
   config_->readyIs( true );
   tree.entityIs( StatusPaths::config( set ), config_ );
   tree.entityIs( StatusPaths::status( set ), statuses_ );
   tree.entityIs( StatusPaths::agent( set ), agent_ );
}

void SlotSet::statusIs( Vel::Ptr<Xcvr::XcvrNewStatus> const & status ) {
   begin();
   statuses_->entryIs( status );
   end();
}

void SlotSet::othersDel( Statuses const & statuses ) {
   std::vector<Vel::Name> others;
   for ( auto const & entry : statuses_->entryMap() ) {
      auto const listed = statuses.find( entry.first );
      if ( listed == statuses.end() || !( listed->second == entry.second ) ) {
         others.push_back( entry.first );
      }
   }
   for ( Vel::Name const & slot : others ) {
      statusDel( slot );
   }
}

void SlotSet::statusesAre( Statuses const & statuses, std::optional<Version> const & version ) {
   if ( std::exchange( served_, version ) == version ) {
      return; // what has come since belongs to the next one, and may lack its values
   }
   begin();
   if ( version ) {
      for ( auto const & [slot, status] : statuses ) {
         statuses_->entryIs( status );
      }
      end();
   }
}

} // namespace XcvrTool
