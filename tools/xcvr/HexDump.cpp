#include "tools/xcvr/HexDump.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace XcvrTool {

namespace {

constexpr std::size_t npos = std::string_view::npos;
constexpr char separators[] = " \t,";
constexpr char hexDigits[] = "0123456789abcdefABCDEF";
constexpr char hexLineCharacters[] = "0123456789abcdefABCDEFxX, \t";
constexpr char dumpAgain[] = "the dump looks cut or edited: make it again";

/// "line 3, column 7": where `part`, which points into the line, begins.
std::string columnText( Line const & line, std::string_view part ) {
   auto const column = part.data() - line.text.data() + 1;
   return lineText( line ) + ", column " + std::to_string( column );
}

std::string characterText( char character ) {
   bool const isPrintable = character >= ' ' && character <= '~';
   return isPrintable ? std::string( "'" ) + character + "'"
                      : "byte " + hexText( static_cast<std::uint8_t>( character ), 2 ) + "h";
}

std::string offsetText( std::size_t offset ) {
   return "0x" + hexText( offset, 4 );
}

bool isHex( std::string_view text ) {
   return text.find_first_not_of( hexDigits ) == npos;
}

std::string_view withoutPrefix( std::string_view token ) {
   return token.starts_with( "0x" ) || token.starts_with( "0X" ) ? token.substr( 2 ) : token;
}

/// Takes the next token off the front of the text; it is empty at the end.
std::string_view takeToken( std::string_view & text ) {
   text.remove_prefix( std::min( text.find_first_not_of( separators ), text.size() ) );
   std::string_view const token = text.substr( 0, text.find_first_of( separators ) );
   text.remove_prefix( token.size() );
   return token;
}

/// The number that one to eight hex digits make.
std::optional<std::size_t> hexNumber( std::string_view digits ) {
   if ( digits.empty() || digits.size() > 8 || !isHex( digits ) )
      return std::nullopt;
   std::size_t value = 0;
   std::from_chars( digits.data(), digits.data() + digits.size(), value, 16 );
   return value;
}

/// Takes an offset and its colon off the front of the text, if they are there.
std::optional<std::size_t> takeColonOffset( std::string_view & text ) {
   std::size_t const colon = text.find( ':' );
   if ( colon == npos )
      return std::nullopt;
   auto const offset = hexNumber( withoutPrefix( trimmed( text.substr( 0, colon ) ) ) );
   if ( offset )
      text.remove_prefix( colon + 1 );
   return offset;
}

void checkOffset( Line const & line, std::size_t offset, std::size_t due ) {
   if ( offset != due )
      throw InputProblem(
         "offset " + offsetText( offset ) + " stands where " + offsetText( due ) + " is due",
         lineText( line ), "give all lines from offset 0 on, each once and in order" );
}

void appendToken( Line const & line, std::string_view token, std::string & bytes ) {
   // What i2cdump prints for a byte that the module did not give.
   if ( token == "XX" )
      throw InputProblem( "the byte at offset " + offsetText( bytes.size() ) +
                             " could not be read from the module (XX)",
                          columnText( line, token ), "read the module again" );
   std::string_view const digits = withoutPrefix( token );
   if ( std::size_t const bad = digits.find_first_not_of( hexDigits ); bad != npos )
      throw InputProblem( characterText( digits[bad] ) + " is no hex digit",
                          columnText( line, digits.substr( bad ) ),
                          "write each byte as two hex digits, and comments behind a #" );
   if ( digits.empty() || digits.size() % 2 != 0 )
      throw InputProblem( "a hex digit is missing, a byte has two", columnText( line, token ),
                          dumpAgain );
   for ( std::size_t at = 0; at < digits.size(); at += 2 )
      bytes += static_cast<char>( *hexNumber( digits.substr( at, 2 ) ) );
}

void appendTokens( Line const & line, std::string_view text, std::string & bytes ) {
   for ( auto token = takeToken( text ); !token.empty(); token = takeToken( text ) )
      appendToken( line, token, bytes );
}

/// Reads a hex dump line by line. The first line with bytes shows how all of them are laid out.
class DumpReader {
 public:
   explicit DumpReader( std::size_t limit ) : limit_( limit ) {}

   void read( Line const & line );
   HexDump end() const;

 private:
   enum class Offsets { none, colon, bare };

   bool isHeadLine( std::string_view content );
   void layoutFrom( Line const & line );
   static Offsets offsetsOf( Line const & line );
   std::string_view hexPart( std::string_view text ) const;
   std::optional<std::size_t> takeOffset( Line const & line, std::string_view & text ) const;
   void repeatUpTo( Line const & line, std::size_t end );

   std::size_t limit_;
   std::string bytes_;
   std::string lastLine_; // bytes of the line before, for "*"
   LineWidths widths_;
   std::optional<Line> repetition_; // a "*" whose end is not yet known
   bool layoutIsKnown_ = false;
   Offsets offsets_ = Offsets::none;
   std::size_t asciiColumn_ = npos; // where the ASCII column begins
   std::size_t base_ = 0;           // number of bytes in front of the one with offset 0
};

/// The lines that dump programs print above the bytes.
bool DumpReader::isHeadLine( std::string_view content ) {
   if ( content.starts_with( "0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f" ) ) {
      // i2cdump reads one device of 256 bytes; behind a whole one the next device begins.
      if ( bytes_.size() % 256 == 0 )
         base_ = bytes_.size();
      return true;
   }
   bool const isRule = content.find_first_not_of( "- \t" ) == npos;
   return isRule || ( content.starts_with( "Offset" ) && content.ends_with( "Values" ) );
}

/// Where the ASCII column of a line begins: behind at least two blanks, and with at most one
/// character for each byte in front of it (fewer where blanks at the end were lost). Bytes taken
/// for it by mistake would be missed at once, as the next line's offset would not fit.
std::size_t asciiColumnOf( std::string_view text, std::string_view afterOffset ) {
   std::string_view const hex = trimmed( afterOffset );
   std::size_t const gap = hex.find( "  " );
   if ( gap == npos )
      return npos;
   std::string_view const ascii = trimmed( hex.substr( gap ) );
   auto const blanksBetween = std::ranges::count( hex.substr( 0, gap ), ' ' );
   std::size_t const bytes = ( gap - static_cast<std::size_t>( blanksBetween ) ) / 2;
   bool const isAscii = ascii.size() <= bytes && !ascii.starts_with( '#' );
   return isAscii ? static_cast<std::size_t>( ascii.data() - text.data() ) : npos;
}

DumpReader::Offsets DumpReader::offsetsOf( Line const & line ) {
   std::string_view rest = line.text;
   if ( takeColonOffset( rest ) )
      return Offsets::colon;
   // "00000000  03 04": a byte has fewer digits.
   std::string_view const first = takeToken( rest );
   std::string_view const second = takeToken( rest );
   if ( first.size() <= 2 || first.find_first_not_of( '0' ) != npos || second.empty() )
      return Offsets::none;
   if ( second.size() > 2 && isHex( second ) )
      throw InputProblem( "words of " + std::to_string( second.size() ) +
                             " digits, whose byte order is not certain",
                          columnText( line, second ), "dump single bytes, with hexdump -C" );
   return Offsets::bare;
}

void DumpReader::layoutFrom( Line const & line ) {
   offsets_ = offsetsOf( line );
   std::string_view afterOffset = line.text;
   if ( takeColonOffset( afterOffset ) )
      asciiColumn_ = asciiColumnOf( line.text, afterOffset );
   std::string_view hex = hexPart( line.text );
   takeColonOffset( hex );
   if ( hex.find_first_not_of( hexLineCharacters ) != npos )
      throw InputProblem( "text, but no module image", lineText( line ), acceptedForms );
   layoutIsKnown_ = true;
}

/// The line without its ASCII column and comment. hexdump -C marks its column with a "|".
std::string_view DumpReader::hexPart( std::string_view text ) const {
   return withoutComment( text.substr( 0, std::min( asciiColumn_, text.find( '|' ) ) ) );
}

std::optional<std::size_t> DumpReader::takeOffset( Line const & line,
                                                   std::string_view & text ) const {
   std::optional<std::size_t> const offset =
      offsets_ == Offsets::bare ? hexNumber( takeToken( text ) ) : takeColonOffset( text );
   if ( !offset && offsets_ != Offsets::none )
      throw InputProblem( "no offset in front of the bytes, as the lines above have it",
                          lineText( line ), dumpAgain );
   return offset;
}

void DumpReader::repeatUpTo( Line const & line, std::size_t end ) {
   if ( lastLine_.empty() || end < bytes_.size() || end > limit_ ||
        ( end - bytes_.size() ) % lastLine_.size() != 0 )
      throw InputProblem( "the lines that \"*\" stands for cannot end at offset " +
                             offsetText( end - base_ ),
                          lineText( line ), dumpAgain );
   while ( bytes_.size() < end )
      bytes_ += lastLine_;
   repetition_.reset();
}

void DumpReader::read( Line const & line ) {
   std::string_view const content = trimmed( line.text );
   if ( content.empty() || content.starts_with( '#' ) || isHeadLine( content ) )
      return;
   if ( content == "*" && layoutIsKnown_ ) {
      if ( offsets_ == Offsets::none )
         throw InputProblem( "\"*\" stands for lines that only offsets could count",
                             lineText( line ),
                             "dump without leaving lines out (-v), or with offsets" );
      repetition_ = line;
      return;
   }
   if ( !layoutIsKnown_ )
      layoutFrom( line );
   std::string_view hex = hexPart( line.text );
   if ( auto const offset = takeOffset( line, hex ) ) {
      if ( repetition_ )
         repeatUpTo( line, base_ + *offset );
      checkOffset( line, *offset, bytes_.size() - base_ );
   }
   std::size_t const before = bytes_.size();
   appendTokens( line, hex, bytes_ );
   lastLine_ = bytes_.substr( before );
   // A dump may end with an offset alone, that of its end.
   if ( offsets_ != Offsets::none && !lastLine_.empty() )
      widths_.add( line, lastLine_.size() );
}

HexDump DumpReader::end() const {
   if ( repetition_ )
      throw InputProblem(
         "the dump ends with \"*\", which does not say how many lines it stands for",
         lineText( *repetition_ ), dumpAgain );
   return { bytes_, widths_ };
}

} // namespace

bool appendHexBytes( Line const & line, std::string_view text, std::string & bytes ) {
   auto const offset = takeColonOffset( text );
   if ( offset )
      checkOffset( line, *offset, bytes.size() );
   appendTokens( line, text, bytes );
   return offset.has_value();
}

HexDump readHexDump( std::string_view text, std::size_t limit ) {
   DumpReader reader( limit );
   Lines lines( text );
   while ( auto const line = lines.next() )
      reader.read( *line );
   return reader.end();
}

} // namespace XcvrTool
