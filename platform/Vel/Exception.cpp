#include <Vel/Exception.h>

namespace Vel {

namespace {

std::string at( std::size_t position, std::string_view lead, std::string_view text ) {
   return std::string( lead ) + std::to_string( position ) + ": " + std::string( text );
}

} // namespace

ParseException::ParseException( std::size_t position, std::string_view expected )
   : Exception( at( position, "string form, byte ", std::string( "expected " ) += expected ) ),
     position_( position ), expected_( expected ) {}

AttrLogException::AttrLogException( std::size_t position, std::string_view problem )
   : Exception( at( position, "attribute log, byte ", problem ) ), position_( position ) {}

// Defined here so that one library holds each type's identity for catch clauses.
Exception::~Exception() = default;
NoImplementationException::~NoImplementationException() = default;
RangeException::~RangeException() = default;
ParseException::~ParseException() = default;
AttrLogException::~AttrLogException() = default;

} // namespace Vel
