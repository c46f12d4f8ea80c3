// The directory of statuses, 100,000 of them: one that goes and comes back, a slice of 64 that does,
// and all of them into an empty directory and out of it.
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

/// A status, and its name as whoever withdraws it has it: of the library's kind, and as the other
/// contestant keeps it.
struct Item {
   Vel::Name name;
   std::string text;
   Status status;
};

/// The statuses in random order, as slots come and go.
std::vector<Item> const & items() {
   static auto const all = [] {
      std::vector<Item> made;
      for ( unsigned i = 0; i < 100'000; ++i ) {
         std::string const text =
            "Ethernet" + std::to_string( i / 36 ) + "/" + std::to_string( i % 36 );
         Vel::Name const name{ std::string_view( text ) };
         made.push_back( { name, text, Status( new XcvrNewStatus( name, XcvrType::sfpPlus ) ) } );
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
   void insert( Item const & item ) { dir->xcvrStatusIs( item.status ); }
   void erase( Item const & item ) { dir->xcvrStatusDel( item.name ); }
   [[nodiscard]] std::size_t size() const { return dir->xcvrStatusMap().size(); }
   [[nodiscard]] bool toldAll() const {
      bool told = true;
      for ( Observer const & one : watching ) {
         told = told && one.told > items().size();
      }
      return told;
   }
   Vel::Ptr<AllNewStatusDir> dir = allNewStatusDirFactory( "allStatus" );
   std::vector<Observer> watching = std::vector<Observer>( observers );
};

/// Not a floor, but what one would take without the library.
struct UnorderedMap {
   void insert( Item const & item ) {
      map.emplace( std::string( item.status->name() ), item.status );
   }
   void erase( Item const & item ) { map.erase( item.text ); }
   [[nodiscard]] std::size_t size() const { return map.size(); }
   static bool toldAll() { return true; }
   std::unordered_map<std::string, Status> map;
};

/// Takes `count` at a time out of the full directory and puts them back.
template <typename Subject, std::size_t count>
void outAndIn( benchmark::State & state ) {
   Subject subject;
   for ( Item const & item : items() ) {
      subject.insert( item );
   }
   std::size_t next = 0;
   measure( state, [&] {
      if ( next + count > items().size() ) {
         next = 0;
      }
      for ( std::size_t i = next; i < next + count; ++i ) {
         subject.erase( items()[i] );
      }
      for ( std::size_t i = next; i < next + count; ++i ) {
         subject.insert( items()[i] );
      }
      next += count;
   } );
   if ( subject.size() != items().size() || !subject.toldAll() ) {
      state.SkipWithError( "an entry was lost, or an observer not told" );
   }
}

template <typename Subject>
void fillAndEmpty( benchmark::State & state ) {
   Subject subject;
   std::size_t filled = 0;
   measure( state, [&] {
      for ( Item const & item : items() ) {
         subject.insert( item );
      }
      filled = subject.size();
      for ( Item const & item : items() ) {
         subject.erase( item );
      }
   } );
   if ( filled != items().size() || subject.size() != 0 || !subject.toldAll() ) {
      state.SkipWithError( "an entry was lost, or an observer not told" );
   }
}

Figure const figures[] = {
   { "directory/one",
     { 0.5, 0 },
     { { "model", outAndIn<Directory<0>, 1> }, { "unordered_map", outAndIn<UnorderedMap, 1> } } },
   { "directory/one/1-observer",
     { {}, 0 },
     { { "model", outAndIn<Directory<1>, 1> }, { "unordered_map", outAndIn<UnorderedMap, 1> } } },
   { "directory/slice-of-64",
     { 0.5, 0 },
     { { "model", outAndIn<Directory<0>, 64> }, { "unordered_map", outAndIn<UnorderedMap, 64> } } },
   { "directory/fill-and-empty",
     { 0.5, {} },
     { { "model", fillAndEmpty<Directory<0>> }, { "unordered_map", fillAndEmpty<UnorderedMap> } } },
};

} // namespace
} // namespace Bench
