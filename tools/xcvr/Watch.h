#pragma once

#include "tools/xcvr/Agent.h"
#include "tools/xcvr/Module.h"
#include "tools/xcvr/Readers.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

// What the commands make of the merged directory of agents.
namespace XcvrTool {

/// Calls `visit` with the module of each slot of the merged directory, once all is there. Complains of
/// agents that cannot be reached, and of slots that cannot be read; says whether there were none.
bool forEachRemoteModule( std::vector<std::string> const & sockets,
                          std::function<void( std::string const & )> const & complain,
                          std::function<void( Module const & )> const & visit );

/// Tells the changes of a directory, one line a change.
class Watch {
 public:
   using Status = Vel::Ptr<Xcvr::XcvrNewStatus const>;
   /// The lines that lead from the directory of the call before, at first an empty one, to this one.
   [[nodiscard]] std::vector<std::string> changesTo( std::vector<Status> const & published );

 private:
   using Facts = std::map<std::string, std::string>;
   struct Slot {
      Status status;
      Vel::Ptr<Vel::NboAttrLogSa> adaptor; // sees every change of the status
      Facts facts;
   };
   [[nodiscard]] static Facts factsOf( Xcvr::XcvrNewStatus const & status );
   static void tell( Slot & slot, std::vector<std::string> & lines );

   Vel::Ptr<Vel::FlowOut> const flow_{ new Vel::FlowOut };
   std::map<uint32_t, Slot> slots_;     // by the tag of the adaptor
   std::map<Vel::Name, uint32_t> tags_; // of what is published
   uint32_t lastTag_ = 0;
};

/// `xcvr watch`: prints the merged directory and then its changes, until the program is ended.
[[noreturn]] void runWatch( std::vector<std::string> const & sockets, Console const & console );

} // namespace XcvrTool
