#pragma once

#include <Vel/Api.h>

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace Vel {

/// Base of the framework's exceptions; what() is the text given.
class VEL_API Exception : public std::exception {
 public:
   explicit Exception( std::string text ) : text_( std::move( text ) ) {}
   ~Exception() override;
   [[nodiscard]] char const * what() const noexcept override { return text_.c_str(); }

 private:
   std::string text_;
};

/// An operation that a derived type must supply was called on a base that lacks it.
class VEL_API NoImplementationException : public Exception {
 public:
   NoImplementationException() : Exception( "Not implemented in base class" ) {}
   ~NoImplementationException() override;
};

/// A number outside the range of its type.
class VEL_API RangeException : public Exception {
 public:
   using Exception::Exception;
   ~RangeException() override;
};

/// A text that is not the string form it should be.
class VEL_API ParseException : public Exception {
 public:
   /// `position` counts bytes from the start of the text; `expected` names what should stand there.
   ParseException( std::size_t position, std::string_view expected );
   ~ParseException() override;
   [[nodiscard]] std::size_t position() const { return position_; }
   [[nodiscard]] std::string const & expected() const { return expected_; }

 private:
   std::size_t position_;
   std::string expected_;
};

/// An attribute log that is truncated or holds what its reader's type cannot.
class VEL_API AttrLogException : public Exception {
 public:
   /// `position` counts bytes from the start of the log.
   AttrLogException( std::size_t position, std::string_view problem );
   ~AttrLogException() override;
   [[nodiscard]] std::size_t position() const { return position_; }

 private:
   std::size_t position_;
};

} // namespace Vel
