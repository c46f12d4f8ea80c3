#pragma once

#include <Statedb/EntityManager.h>
#include <Xcvr/XcvrDirs.h>

#include <map>
#include <optional>
#include <vector>

namespace XcvrTool {

/// One set of slots in a tree, as the merged directory expects it: "fixed", those fixed to the system, or
/// "slice/NAME", those of a slice.
class SlotSet {
 public:
   using Statuses = std::map<Vel::Name, Vel::Ptr<Xcvr::XcvrNewStatus>>;
   SlotSet( Statedb::EntityManager & tree, Vel::Name const & set );
   /// Puts in a status, or one in another's place, for readers as a new generation.
   void statusIs( Vel::Ptr<Xcvr::XcvrNewStatus> const & status );
   void statusDel( Vel::Name const & slot ) { statuses_->entryDel( slot ); }
   /// Takes out the slots that are not listed.
   void othersDel( Statuses const & statuses );
   /// Puts in what is listed, once for each generation that is served; none while one is on its way.
   void statusesAre( Statuses const & statuses, std::optional<uint32_t> generation );

 private:
   void begin() { config_->generationIdIs( config_->generationId() + 1 ); }
   void end() { agent_->generationIdIs( config_->generationId() ); }

   Vel::Ptr<Xcvr::AllConfigDir> config_;
   Vel::Ptr<Xcvr::XcvrSliceStatus> agent_;
   Vel::Ptr<Vel::Dir> statuses_;
   std::optional<uint32_t> served_; // the generation that is in
};

} // namespace XcvrTool
