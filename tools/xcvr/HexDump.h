#pragma once

#include "tools/xcvr/InputText.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace XcvrTool {

/// Appends the bytes of `text`, a part of `line`: hex digits in pairs, run together or apart by
/// blanks and commas, with or without 0x. In front may stand the offset of the first one ("00:",
/// "0000:", "0x00:"), which has to be the number of bytes already there. Throws InputProblem on
/// anything else. Returns whether there was an offset.
bool appendHexBytes( Line const & line, std::string_view text, std::string & bytes );

/// How many bytes the lines of a dump have, to see whether the last one is cut.
class LineWidths {
 public:
   void add( Line const & line, std::size_t bytes ) {
      widest_ = std::max( widest_, bytes );
      last_ = bytes;
      lastLine_ = line.number;
   }
   /// The number of a last line with fewer bytes than another one; 0 if it has not.
   [[nodiscard]] std::size_t shortLine() const { return last_ < widest_ ? lastLine_ : 0; }

 private:
   std::size_t widest_ = 0;
   std::size_t last_ = 0;
   std::size_t lastLine_ = 0;
};

struct HexDump {
   std::string bytes;
   LineWidths widths; // in a dump with offsets; another one may have lines of any width
};

/// The bytes of a hex dump, in whichever of these forms it is:
///
///     ethtool      0x0000:   03 04 07 10 …            below a line "Offset  Values"
///     hexdump -C   00000000  03 04 07 10 …  |....|    "*": the line before, repeated
///     od -Ax -tx1  000000 03 04 07 10 …               likewise
///     xxd          00000000: 0304 0710 …  ....        groups of any width
///     i2cdump      00: 03 04 07 10 …    ????          below a line "0  1  2  3 …"
///     plain hex    03 04 07 10, 03040710, 0x03, 0x04
///
/// A whole line, or what follows the bytes, may be a "#" comment. Dumps of i2cdump may follow each
/// other (devices 50h and 51h), each below its own head line; their bytes are joined.
/// Throws InputProblem on anything else, and when repeated lines make more than `limit` bytes.
HexDump readHexDump( std::string_view text, std::size_t limit );

} // namespace XcvrTool
