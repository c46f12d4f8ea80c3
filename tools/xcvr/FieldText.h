#pragma once

#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The value of one field of module memory as people read it.
namespace XcvrTool {

/// A number with as many decimals as steps of `scale` show, and its unit.
[[nodiscard]] std::string numberText( double number, double scale, std::string_view unit );

/// A code in hex with what it stands for, as far as that is known: "0x07 (LC)".
[[nodiscard]] std::string codeText( Xcvr::MemoryField const & field, std::uint8_t code );

/// Bytes in hex with a separator between them.
[[nodiscard]] std::string hexBytes( std::string_view bytes, std::string_view separator );

/// What the bits of a field say: the names of the codes among them, then of those that are set;
/// "bit 9" for one that has none.
[[nodiscard]] std::vector<std::string> setBits( Xcvr::PageView page,
                                                Xcvr::MemoryField const & field );

/// The value of a field: a code with its name, a number with its unit, a text in quotes, set bits by
/// name. A field that is not wholly on the page is "cut off".
[[nodiscard]] std::string fieldText( Xcvr::PageView page, Xcvr::MemoryField const & field );

} // namespace XcvrTool
