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
      if ( !statuses.contains( entry.first ) ) {
         others.push_back( entry.first );
      }
   }
   for ( Vel::Name const & slot : others ) {
      statusDel( slot );
   }
}

void SlotSet::statusesAre( Statuses const & statuses, bool isWhole ) {
   std::vector<Vel::Ptr<Xcvr::XcvrNewStatus>> coming;
   for ( auto const & [slot, status] : statuses ) {
      if ( statuses_->entry( slot ).get() != status.get() ) {
         coming.push_back( status );
      }
   }
   bool const wasWhole = config_->generationId() == agent_->generationId();
   if ( !coming.empty() || ( wasWhole && !isWhole ) ) {
      begin();
   }
   for ( auto const & status : coming ) {
      statuses_->entryIs( status );
   }
   if ( isWhole ) {
      end();
   }
}

} // namespace XcvrTool
