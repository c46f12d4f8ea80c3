#pragma once

#include <Vel/Ptr.h>

#include <cstdint>

namespace Vel {

class Entity;

/// An observer of one entity: base of every `T::NotifieeConst` and `T::Notifiee`.
///
/// It is a node in the entity's list of observers, so attaching and detaching allocate nothing. It
/// does not keep the entity alive: when the entity goes, the observer is detached. Observers are
/// told in the order in which they were attached. A handler may do anything: write the same
/// attribute again, attach or detach itself or others, destroy observers, drop the last pointer to
/// the entity. An observer that is attached while a change is being told is not told of that change
/// any more, one that is detached is not told either. Where a handler throws, the later observers
/// are not told of that change and the exception reaches the writer.
class VEL_API NotifieeBase : public PtrInterface {
 public:
   NotifieeBase() = default;
   ~NotifieeBase() override { detach(); }

   /// Delivery on or off; on from the start. Off keeps the place among the observers.
   void isRegisteredNotifieeIs( bool registered ) {
      registered_ = registered;
      told_ = registered ? uint16_t( attributes_ ) : uint16_t( 0 );
   }

 protected:
   [[nodiscard]] Entity const * velNotifier() const { return notifier_; }
   /// `attributes` is how many attributes the observer has handlers for: those of the entity type
   /// that it was written for, which may be a base of the entity's own.
   void velNotifierIs( Entity const * entity, uint16_t attributes );

 private:
   friend class Entity;
   friend class ObserverList;
   void detach();

   // What a delivery reads comes first, beside the count of pointers.
   uint16_t told_ = 0; // told of attributes below this number
   uint16_t attributes_ : 15 = 0;
   bool registered_ : 1 = true;
   NotifieeBase * next_ = nullptr;     // null at the end
   uint64_t order_ = 0;                // of attachment; rises along the list
   NotifieeBase * previous_ = nullptr; // of the first one: the last one
   Entity const * notifier_ = nullptr;
};

/// The observers of one entity.
class VEL_API ObserverList {
 public:
   ObserverList() = default;
   ObserverList( ObserverList const & ) = delete;
   ObserverList & operator=( ObserverList const & ) = delete;
   ~ObserverList();

   [[nodiscard]] bool empty() const { return first_ == nullptr; }

   /// How often the list has changed; a later change counts as more.
   [[nodiscard]] uint64_t changes() const { return changes_; }

   /// Calls `tell` for each observer that is told of attribute `id`, as `NotifieeBase` describes.
   /// The list must outlive the call.
   template <typename Tell>
   [[gnu::always_inline]] void deliver( uint16_t id, Tell const & tell ) {
      uint64_t const changes = changes_;
      NotifieeBase * at = first_;
      if ( !at ) {
         return;
      }
      uint64_t order;
      do {
         order = at->order_;
         NotifieeBase * const next = at->next_; // read here, as `at` may go during the call
         if ( at->told_ > id ) [[likely]] {
            tell( at );
         }
         at = next;
         // Only while the list has not changed is `next` known to be there still. With `&&` g++ lays
         // the loop out for the list to end at each observer, which costs a tenth.
      } while ( int( at != nullptr ) & int( changes_ == changes ) );
      if ( changes_ != changes ) [[unlikely]] {
         deliverAfter( order, changes, id, tell );
      }
   }
   /// The same to those attached after the list's change `order` and up to its change `latest`. Of a
   /// change that is told in several steps, each step goes to the observers of its beginning.
   template <typename Tell>
   [[gnu::noinline]] void deliverAfter( uint64_t order, uint64_t latest, uint16_t id,
                                        Tell const & tell ) {
      uint64_t known = changes_;
      for ( NotifieeBase * at = after( order ); at && at->order_ <= latest; ) {
         order = at->order_;
         if ( at->told_ > id ) {
            tell( at );
         }
         if ( changes_ == known ) {
            at = at->next_;
         } else {
            known = changes_;
            at = after( order );
         }
      }
   }
   /// The same for a list of one observer, which may go during the call; false, and nothing told,
   /// for any other list.
   template <typename Tell>
   [[gnu::always_inline]] bool deliverToOnly( uint16_t id, Tell const & tell ) {
      NotifieeBase * const only = first_;
      if ( !only || only->next_ ) [[unlikely]] {
         return false;
      }
      if ( only->told_ > id ) [[likely]] {
         tell( only );
      }
      return true;
   }

 private:
   friend class NotifieeBase;
   void add( NotifieeBase * observer );
   void remove( NotifieeBase * observer );
   [[nodiscard]] NotifieeBase * after( uint64_t order ) const;

   NotifieeBase * first_ = nullptr;
   uint64_t changes_ = 0; // how often the list has changed
};

/// Gives the observers of entity type T their typed `notifier`. `T` is const for read-only ones. An
/// observer that is attached through the `notifierIs` of a base class, to an entity of that base,
/// must ask the base class for its notifier.
template <typename T, typename Base>
class NotifieeOf : public Base {
 public:
   /// The entity observed; null before one is attached, and after it is gone.
   [[nodiscard]] T * notifier() const {
      return const_cast<T *>( static_cast<T const *>( this->velNotifier() ) );
   }
   /// Attaches to an entity, leaving the one before; null detaches.
   void notifierIs( T * entity ) { this->velNotifierIs( entity, T::velAttrEnd ); }
   void notifierIs( Ptr<T> const & entity ) { notifierIs( entity.get() ); }
   void notifierIs( std::nullptr_t ) { notifierIs( static_cast<T *>( nullptr ) ); }
};

} // namespace Vel
