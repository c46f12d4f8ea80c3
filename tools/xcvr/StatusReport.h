#pragma once

#include "tools/xcvr/Module.h"
#include "tools/xcvr/Report.h"

// What every slot's status answers, whatever its family.
namespace XcvrTool {

void addMediaType( Report & report, Xcvr::XcvrNewStatus const & status );
/// What kind of product it is, and which item of it.
void addProduct( Report & report, Xcvr::XcvrNewStatus const & status );
void addItem( Report & report, Xcvr::XcvrNewStatus const & status );
void addCapabilities( Report & report, Xcvr::XcvrNewStatus const & status );
void addChecksums( Report & report, std::vector<Checksum> const & checksums );
/// Monitored values and thresholds, for programs: people get them as a table.
void addMonitors( Report & report, Xcvr::XcvrNewStatus const & status );

/// "page a0h, stored 0x63, computed 0x64"
[[nodiscard]] std::string checksumText( Checksum const & checksum );

} // namespace XcvrTool
