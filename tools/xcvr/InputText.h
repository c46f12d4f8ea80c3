#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace XcvrTool {

/// What is wrong with an input, before its file is named: "what (where); what to do".
class InputProblem : public std::runtime_error {
 public:
   InputProblem( std::string const & what, std::string const & where, std::string const & next )
      : std::runtime_error( what + " (" + where + "); " + next ) {}
};

/// The next step for an input that looks like nothing that can be read.
inline constexpr char acceptedForms[] =
   "give a binary image, a hex dump (ethtool -m DEV hex on, hexdump -C, xxd, i2cdump, plain hex) "
   "or a labelled image ([a0h] or [lower] above hex bytes); text has to be ASCII or UTF-8";

/// One line of a text without its line end; the first one has number 1.
struct Line {
   std::string_view text;
   std::size_t number;
   bool hasEnd; // false for a last line that nothing ends: it may be cut
};

/// Walks the lines of a text, which end in LF or CR LF.
class Lines {
 public:
   explicit Lines( std::string_view text ) : rest_( text ) {}
   std::optional<Line> next();

 private:
   std::string_view rest_;
   std::size_t number_ = 0;
};

/// "line 3", for messages.
std::string lineText( Line const & line );

/// The number in lower-case hex, with zeros in front up to so many digits.
std::string hexText( std::size_t value, std::size_t digits );

/// The text without the blanks and tabs around it.
std::string_view trimmed( std::string_view text );

/// The text in front of a "#".
std::string_view withoutComment( std::string_view text );

} // namespace XcvrTool
