#pragma once

#include <Statedb/Mount.h>
#include <Vel/Dir.h>

#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace Statedb {

/// Follows the entity at a path below a directory: tells when it comes, goes, or becomes another one,
/// and when the way there changes while there is none.
class VEL_API PathWatch {
 public:
   PathWatch( Vel::Ptr<Vel::Dir> root, Vel::Name path, std::function<void()> then );
   PathWatch( PathWatch const & ) = delete;
   PathWatch & operator=( PathWatch const & ) = delete;
   ~PathWatch();
   [[nodiscard]] Vel::Ptr<Vel::Entity> const & entity() const { return entity_; }

 private:
   class Step;
   void look();

   Vel::Ptr<Vel::Dir> root_;
   Vel::Name path_;
   std::function<void()> then_;
   Vel::Ptr<Vel::Entity> entity_;
   std::vector<std::unique_ptr<Step>> steps_; // one a directory on the way
};

/// Follows the mounts of a group: tells of each that is there or comes, and of its end when it leaves or
/// is replaced, before the next one begins. Whoever is told may change the group, or end the watch.
class VEL_API GroupWatch : public MountGroup::NotifieeConst,
                           public std::enable_shared_from_this<GroupWatch> {
 public:
   using Tell = std::function<void( Vel::Ptr<Mount> const & mount )>;
   GroupWatch( Vel::Ptr<MountGroup> group, Tell begin, Tell end );
   /// Tells of those that are there.
   void beginAll();
   /// Tells of the end of all, and of nothing from then on.
   void endAll();
   void onMount( Vel::Name const & path ) override;
   [[nodiscard]] Vel::Ptr<MountGroup> const & group() const { return group_; }

 private:
   Vel::Ptr<MountGroup> group_;
   Tell begin_;
   Tell end_;
   std::map<Vel::Name, Vel::Ptr<Mount>> mounts_; // that have begun
};

/// The state database of one process: a tree of directories, and the mounts of it.
class VEL_API EntityManager {
 public:
   EntityManager();
   ~EntityManager();
   EntityManager( EntityManager const & ) = delete;
   EntityManager & operator=( EntityManager const & ) = delete;

   [[nodiscard]] Vel::Ptr<Vel::Dir> const & root() const { return root_; }
   /// What is at a path; null when nothing is. The empty path is the root.
   [[nodiscard]] Vel::Ptr<Vel::Entity> entity( Vel::Name const & path ) const;
   /// Puts an entity at a path, whose last name must be the entity's own, and makes the directories
   /// that lead there; false where something else is there or on the way, or a name is empty.
   bool entityIs( Vel::Name path, Vel::Ptr<Vel::Entity> entity );
   /// Takes out what is at a path. The directories stay.
   void entityDel( Vel::Name const & path );

   /// Whether what is made for a mount that writes stays when the mount ends, or goes with it.
   enum class WhatIsMade : bool { stays, goes };
   /// Serves the mounts of a group from this tree, those that are there and those that come, while the
   /// manager lives or until `mountGroupDel`.
   void mountGroupIs( Vel::Ptr<MountGroup> const & group,
                      WhatIsMade whatIsMade = WhatIsMade::stays );
   void mountGroupDel( Vel::Ptr<MountGroup> const & group );

 private:
   class Group;
   class Served;
   [[nodiscard]] bool writtenByAnother( Served const & mount ) const;
   void writerLeft( Vel::Name const & path );

   Vel::Ptr<Vel::Dir> root_;
   std::vector<std::shared_ptr<Group>> groups_;
};

/// Whether a path is one: no name in it is empty. The empty path is that of the root.
[[nodiscard]] VEL_API bool isPath( Vel::Name const & path );
/// The last name of a path.
[[nodiscard]] VEL_API Vel::Name lastName( Vel::Name const & path );
/// Whether an entity is of a type or of one derived from it.
[[nodiscard]] VEL_API bool isOfType( Vel::Entity const & entity, std::string_view typeName );

} // namespace Statedb
