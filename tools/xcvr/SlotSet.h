#pragma once

#include <Statedb/EntityManager.h>
#include <Xcvr/XcvrDirs.h>

#include <map>
#include <optional>
#include <set>
#include <string>
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
   /// Takes out the slots that are not listed, or with another status.
   void othersDel( Statuses const & statuses );
   /// What is served as a whole: a generation, of an agent, without the slots that another one has.
   struct Version {
      std::string agent;
      uint32_t generation;
      std::set<Vel::Name> others;
      friend bool operator==( Version const &, Version const & ) = default;
   };
   /// Puts in what is listed, once for each version that is served; none while one is on its way.
   void statusesAre( Statuses const & statuses, std::optional<Version> const & version );

 private:
   void begin() { config_->generationIdIs( config_->generationId() + 1 ); }
   void end() { agent_->generationIdIs( config_->generationId() ); }

   Vel::Ptr<Xcvr::AllConfigDir> config_;
   Vel::Ptr<Xcvr::XcvrSliceStatus> agent_;
   Vel::Ptr<Vel::Dir> statuses_;
   std::optional<Version> served_; // that is in
};

} // namespace XcvrTool
