#include "tools/xcvr/Commands.h"
#include "tools/xcvr/Monitors.h"
#include "tools/xcvr/StatusReport.h"

#include <fmt/format.h>

namespace XcvrTool {

namespace {

Report reportOf( Module const & module ) {
   Xcvr::XcvrNewStatus const & status = module.status();
   Report report;
   module.form( report );
   addMediaType( report, status );
   addProduct( report, status );
   addItem( report, status );
   module.origin( report );
   module.medium( report );
   module.features( report );
   addCapabilities( report, status );
   module.condition( report );
   addMonitors( report, status );
   addChecksums( report, module.checksums() );
   return report;
}

} // namespace

std::string showText( Module const & module, Style const & style ) {
   std::vector<Reading> const readings = readingsOf( module.status(), module.missingLanes() );
   Report report = reportOf( module );
   if ( readings.empty() && module.domAdvertised() ) {
      bool const isRead = module.status().domInfoValid( Xcvr::LaneId() );
      report.push_back(
         { .label = "Monitors",
           .text = isRead ? "not calibrated"
                          : fmt::format( "advertised, but the image lacks {}", module.domPlace() ),
           .alarming = true } );
   }
   return textForm( report, style ) +
          ( readings.empty() ? "" : '\n' + monitorTable( readings, style ) );
}

Json showJson( Module const & module, Json & units ) {
   Json object = { { "file", utf8( module.image().file ) },
                   { "family", std::string( stringValue( module.status().xcvrType() ).view() ) } };
   addJson( reportOf( module ), object, units );
   return object;
}

} // namespace XcvrTool
