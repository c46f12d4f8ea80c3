// The directory of statuses: an entry that goes and comes back, among 100,000.
#include "bench/Bench.h"

#include <Xcvr/Xcvr.h>

#include <algorithm>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace Bench {
namespace {

using namespace Xcvr;

using Status = Vel::Ptr<XcvrNewStatus const>;

/// The statuses in random order, as slots come and go.
std::vector<Status> const & statuses() {
   static auto const all = [] {
      std::vector<Status> made;
      for ( unsigned i = 0; i < 100'000; ++i ) {
         std::string const name =
            "Ethernet" + std::to_string( i / 36 ) + "/" + std::to_string( i % 36 );
         made.emplace_back( new XcvrNewStatus( std::string_view( name ), XcvrType::sfpPlus ) );
      }
      std::shuffle( made.begin(), made.end(), std::minstd_rand( 1 ) );
      return made;
   }();
   return all;
}

struct Observer : AllNewStatusDir::NotifieeConst {
   void onXcvrStatus( Vel::Name const & ) override { ++told; }
   std::size_t told = 0;
};

template <std::size_t observers>
struct Directory {
   Directory() {
      for ( Observer & one : watching ) {
         one.notifierIs( dir );
      }
   }
   void insert( Status const & status ) { dir->xcvrStatusIs( status ); }
   void erase( Status const & status ) { dir->xcvrStatusDel( status->name() ); }
   [[nodiscard]] bool complete() const {
      bool told = true;
      for ( Observer const & one : watching ) {
         told = told && one.told > statuses().size();
      }
      return told && dir->xcvrStatusMap().size() == statuses().size();
   }
   Vel::Ptr<AllNewStatusDir> dir = allNewStatusDirFactory( "allStatus" );
   std::vector<Observer> watching = std::vector<Observer>( observers );
};

/// Not a floor, but what one would take without the library.
struct UnorderedMap {
   void insert( Status const & status ) { map.emplace( std::string( status->name() ), status ); }
   void erase( Status const & status ) { map.erase( std::string( status->name() ) ); }
   [[nodiscard]] bool complete() const { return map.size() == statuses().size(); }
   std::unordered_map<std::string, Status> map;
};

template <typename Subject>
void eraseAndInsert( benchmark::State & state ) {
   Subject subject;
   for ( Status const & status : statuses() ) {
      subject.insert( status );
   }
   std::size_t next = 0;
   measure( state, [&] {
      Status const & status = statuses()[next++ % statuses().size()];
      subject.erase( status );
      subject.insert( status );
   } );
   if ( !subject.complete() ) {
      state.SkipWithError( "an entry was lost, or an observer not told" );
   }
}

Figure const figures[] = {
   { "directory/0-observers",
     { 0.5, 0 },
     { { "model", eraseAndInsert<Directory<0>> },
       { "unordered_map", eraseAndInsert<UnorderedMap> } } },
   { "directory/1-observer",
     { {}, 0 },
     { { "model", eraseAndInsert<Directory<1>> },
       { "unordered_map", eraseAndInsert<UnorderedMap> } } },
};

} // namespace
} // namespace Bench
