#pragma once

#include <string>
#include <string_view>
#include <vector>

// How texts come out, whichever command prints them.
namespace XcvrTool {

/// Results fit into this width wherever a single word does.
inline constexpr std::size_t lineWidth = 100;

/// What a person in front of a terminal gets beyond plain text.
struct Style {
   bool terminal = false;
   bool colour = false;

   [[nodiscard]] std::string heading( std::string_view text ) const;
   [[nodiscard]] std::string warning( std::string_view text ) const;
   [[nodiscard]] std::string alarm( std::string_view text ) const;
   /// The text between a terminal's code for its looks and the one that ends them.
   [[nodiscard]] std::string rendered( std::string_view text, std::string_view code ) const;
};

/// A text of module memory without the padding behind it: blanks, or the zeros of some vendors.
[[nodiscard]] std::string_view unpadded( std::string_view text );

/// Bytes of module memory for a terminal: what is not printable ASCII becomes "_".
[[nodiscard]] std::string printable( std::string_view bytes );

/// The name of a file for people: control characters, and what is no UTF-8, become "?"; an empty
/// name is shown as "".
[[nodiscard]] std::string shownFileName( std::string_view name );

/// Any bytes as UTF-8, which JSON has to be: what is valid UTF-8 stays, any other byte becomes the
/// character of the same number.
[[nodiscard]] std::string utf8( std::string_view bytes );

/// The texts with ", " between them; "none" if there are none.
[[nodiscard]] std::string joined( std::vector<std::string> const & texts );

/// The text in lines of at most `width`, broken behind commas or, where there is none, at blanks; a
/// longer word stays whole. At least one line.
[[nodiscard]] std::vector<std::string> wrapped( std::string_view text, std::size_t width );

} // namespace XcvrTool
