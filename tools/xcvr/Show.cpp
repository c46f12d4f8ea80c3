#include "tools/xcvr/Commands.h"
#include "tools/xcvr/SfpReport.h"

namespace XcvrTool {

std::string showText( ModuleImage const & image, Style const & style ) {
   return textForm( sfpReport( image ), style );
}

Json showJson( ModuleImage const & image, Json & units ) {
   Json module = { { "file", utf8( image.file ) },
                   { "family", std::string( stringValue( Xcvr::XcvrType::sfpPlus ).view() ) } };
   addJson( sfpReport( image ), module, units );
   return module;
}

} // namespace XcvrTool
