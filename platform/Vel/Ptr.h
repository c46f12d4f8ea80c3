#pragma once

#include <Vel/Api.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace Vel {

/// Base of everything held by `Ptr`. The count is not atomic: one reactor thread uses an object.
class VEL_API PtrInterface {
 public:
   PtrInterface() = default;
   PtrInterface( PtrInterface const & ) = delete;
   PtrInterface & operator=( PtrInterface const & ) = delete;
   virtual ~PtrInterface();

   /// How many pointers hold the object; 0 for one that lives on the stack or in another object.
   [[nodiscard]] uint32_t refCount() const { return refs_; }

 private:
   template <typename>
   friend class Ptr;
   friend class Hold;
   mutable uint32_t refs_ = 0;
};

/// Counted pointer to a `PtrInterface`; null by default. The object goes with its last pointer.
template <typename T>
class Ptr {
 public:
   using element_type = T;

   Ptr() = default;
   Ptr( std::nullptr_t ) {}
   Ptr( T * object ) : object_( object ) { acquire(); }
   Ptr( Ptr const & other ) : object_( other.object_ ) { acquire(); }
   Ptr( Ptr && other ) noexcept : object_( std::exchange( other.object_, nullptr ) ) {}
   template <typename U>
   requires( std::is_convertible_v<U *, T *> ) Ptr( Ptr<U> const & other )
      : object_( other.get() ) {
      acquire();
   }
   ~Ptr() { release(); }

   Ptr & operator=( Ptr other ) noexcept {
      std::swap( object_, other.object_ );
      return *this;
   }

   [[nodiscard]] T * get() const { return object_; }
   T * operator->() const { return object_; }
   T & operator*() const { return *object_; }
   explicit operator bool() const { return object_ != nullptr; }

   friend bool operator==( Ptr const & a, Ptr const & b ) { return a.object_ == b.object_; }
   friend bool operator==( Ptr const & a, T const * b ) { return a.object_ == b; }
   friend bool operator==( Ptr const & a, std::nullptr_t ) { return a.object_ == nullptr; }

 private:
   void acquire() const {
      if ( object_ ) {
         ++object_->refs_;
      }
   }
   void release() const {
      if ( object_ && --object_->refs_ == 0 ) {
         delete object_;
      }
   }

   T * object_ = nullptr;
};

/// The pointer as a `T` when the object is one, else null.
template <typename T, typename U>
Ptr<T> dynamicPtr( Ptr<U> const & pointer ) {
   return Ptr<T>( dynamic_cast<T *>( pointer.get() ) );
}

/// Keeps a counted object alive through a scope. An object that no pointer holds (it lives on the
/// stack, or is being constructed or destroyed) is left alone.
class Hold {
 public:
   explicit Hold( PtrInterface const & object ) : object_( object ), counted_( object.refs_ != 0 ) {
      object_.refs_ += counted_;
   }
   Hold( Hold const & ) = delete;
   Hold & operator=( Hold const & ) = delete;
   ~Hold() {
      if ( counted_ && --object_.refs_ == 0 ) [[unlikely]] {
         delete &object_;
      }
   }

 private:
   PtrInterface const & object_;
   bool counted_;
};

} // namespace Vel
