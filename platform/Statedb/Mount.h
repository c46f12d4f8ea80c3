#pragma once

#include <Vel/Entity.h>
#include <Vel/Enum.h>

#include <vector>

// What a process wants of the state database: mounts, in groups.
namespace Statedb {

VEL_ENUM( MountMode, read, write );

/// How far a mount is.
VEL_ENUM( MountState,
   waiting,     // nothing is at the path yet, or not any more
   mounted,     // `target` is the entity
   wrongType,   // what is at the path is of another type
   unknownType, // no such type, or for writing none that can be made
   taken,       // something else is where the mount's own entity should be, or another one writes
   refused ); // the other process lets nobody write; or no path, or too large a filter

/// Which children of the mounted entity are copied: all, or those of the names listed. A mount of
/// this process's own tree gives the entity itself, with all of them.
struct MountFilter {
   std::vector<Vel::Name> only;
   friend bool operator==( MountFilter const &, MountFilter const & ) = default;
};

/// One mount, named by its path: the names of directories and of an entity in the last of them, as in
/// "hardware/xcvr/xgc". For reading, the entity is followed: it may come, go and come again. For
/// writing it is made if need be. What another process serves has its place in the own tree at the
/// same path or, if given, at another one, so that the same path of several processes can be mounted.
class VEL_API Mount : public Vel::Entity {
 public:
   Mount( Vel::Name path, Vel::Name typeName, MountFilter filter = {},
          MountMode mode = MountMode::read, Vel::Name place = {} );
   VEL_ENTITY( Mount, Vel::Entity,
      ( Constant, typeName, Vel::Name ), // or of a base of the type
      ( Constant, mode, MountMode ),
      // Both are written by whoever serves the group; `target` is there whenever `mounted` is said.
      ( Plain, state, onState, MountState ),
      ( Reference, target, onTarget, Vel::Entity ) );

   [[nodiscard]] MountFilter const & filter() const { return filter_; }
   /// The path in this process's tree.
   [[nodiscard]] Vel::Name const & place() const { return place_.empty() ? name() : place_; }

   /// For whoever serves the group: the state, and what is mounted in the state `mounted`. The target is
   /// there before, and until after, it is said to be. Those who are told may have the last word.
   void servedIs( MountState state, Vel::Ptr<Vel::Entity> const & target );

 private:
   MountFilter filter_;
   Vel::Name place_;
};

/// The mounts of one purpose, by path. A path is mounted once in a group: a mount of a path that is
/// there replaces the earlier one, which ends before the new one begins. A mount ends when it
/// leaves the group, at any time, also while a reactor runs: its entity is then out of reach, and lives on
/// until the reactor is done.
class VEL_API MountGroup : public Vel::Entity {
 public:
   explicit MountGroup( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( MountGroup, Vel::Entity,
      ( Entries, mount, onMount, Mount ) );

   /// Whether every mount is `mounted`.
   [[nodiscard]] bool complete() const;
   /// The paths of the mounts, for whoever goes through them while handlers change the group.
   [[nodiscard]] std::vector<Vel::Name> paths() const;
};

} // namespace Statedb
