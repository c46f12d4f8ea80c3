#pragma once

#include <Vel/String.h>
#include <Xcvr/HalOsfp.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

// The interface codes of SFF-8024 by which a CMIS module advertises its applications.
namespace Xcvr {

/// A code table: that of host electrical interfaces, or that of the media interfaces of one type of
/// module.
enum class InterfaceTable : uint8_t {
   hostElectrical,
   multimodeMedia,
   singleModeMedia,
   copperCableMedia,
   activeCableMedia,
   baseTMedia,
};

struct InterfaceCode {
   uint8_t code;
   std::string_view name;
   /// What a module is whose first application has this code: only what the code names exactly.
   /// xcvrUnknown stands for the table's unknown kind.
   MediaType mediaType = xcvrUnknown;
};

/// The table in the order of codes. Reserved codes, and codes that sources disagree on, have no
/// row.
[[nodiscard]] XCVR_API std::span<InterfaceCode const> interfaceCodes( InterfaceTable table );
/// Null for a code without a row.
[[nodiscard]] XCVR_API InterfaceCode const * interfaceCode( InterfaceTable table, uint8_t code );
/// For people; a code without a row, or without a table, is its number, such as "0x5c".
[[nodiscard]] XCVR_API Vel::String interfaceName( std::optional<InterfaceTable> table,
                                                  uint8_t code );
/// The media type of a code; for one that names none exactly, and for one without a row, the
/// table's unknown kind.
[[nodiscard]] XCVR_API MediaType interfaceMediaType( InterfaceTable table, uint8_t code );
/// The table of a module's media interface codes; none for a module type that has none.
[[nodiscard]] XCVR_API std::optional<InterfaceTable>
mediaInterfaceTable( OsfpModuleTypeEncoding type );

} // namespace Xcvr
