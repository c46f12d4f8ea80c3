#pragma once

#include "tools/xcvr/SlotSet.h"
#include "tools/xcvr/Text.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

// An agent whose hardware are files: the image of a module is the module.
namespace XcvrTool {

/// Where a long-running command prints and complains, a line each.
struct Console {
   std::function<void( std::string const & line )> print;
   std::function<void( std::string const & line )> complain;
};

/// A slot and the file that is its module.
class FileSlot {
 public:
   FileSlot( std::string name, std::string file ) : name_( name ), file_( std::move( file ) ) {}
   /// Looks whether the file has changed. A change counts when the next look finds it unchanged since,
   /// or later if the image looks cut: a file that is being written is left alone.
   void look( SlotSet & set, Console const & console );

 private:
   /// What tells a version of the file from another; none while it is not there.
   struct Version {
      dev_t device;
      ino_t number;
      off_t size;
      timespec time;
      friend bool operator==( Version const & a, Version const & b ) {
         return a.device == b.device && a.number == b.number && a.size == b.size &&
                a.time.tv_sec == b.time.tv_sec && a.time.tv_nsec == b.time.tv_nsec;
      }
   };
   [[nodiscard]] std::optional<Version> version() const;
   void read( SlotSet & set, Console const & console );
   void write( SlotSet & set, Xcvr::XcvrNewStatus const & read, Console const & console );
   void remove( SlotSet & set, Console const & console );

   Vel::Name name_;
   std::string file_;
   std::optional<Version> seen_; // by the last look
   std::optional<Version> done_; // whose content is in the status, or was refused
   bool isAgain_ = false;        // it was not read after all
   std::chrono::steady_clock::time_point changedAt_;
   std::string complaint_; // what was last said of the file
   Vel::Ptr<Xcvr::XcvrNewStatus> status_;
   uint32_t presenceChanges_ = 0;
};

struct AgentOptions {
   std::string socket;
   std::vector<std::string> slots; // NAME=FILE
   std::string slice;              // empty: the fixed slots
};

/// What is wrong with the options; empty for nothing.
[[nodiscard]] std::string problemOf( AgentOptions const & options );

/// `xcvr agent`: serves the slots until SIGINT, SIGTERM or SIGHUP. Throws SocketError.
void runAgent( AgentOptions const & options, Console const & console );

} // namespace XcvrTool
