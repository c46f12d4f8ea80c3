#pragma once

#include <cstddef>

/// What the whole program has asked of operator new since this object was made.
class AllocationCount {
 public:
   AllocationCount() : callsBefore_( totalCalls ), bytesBefore_( totalBytes ) {}
   [[nodiscard]] std::size_t calls() const { return totalCalls - callsBefore_; }
   [[nodiscard]] std::size_t bytes() const { return totalBytes - bytesBefore_; }

   static std::size_t totalCalls;
   static std::size_t totalBytes;

 private:
   std::size_t callsBefore_;
   std::size_t bytesBefore_;
};
