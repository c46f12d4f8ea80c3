#include "tools/xcvr/Module.h"

#include "tools/xcvr/SfpModule.h"

#include <algorithm>

namespace XcvrTool {

namespace {

struct Family {
   ImageFamily family;
   std::unique_ptr<Module> ( *module )( ModuleImage image );
};

constexpr Family families[] = {
   { ImageFamily::sfp, sfpModule },
};

} // namespace

std::string_view Module::page( std::string_view label ) const {
   std::string const * bytes = image_.page( label );
   return bytes ? std::string_view( *bytes ) : std::string_view();
}

std::unique_ptr<Module> moduleOf( ModuleImage image ) {
   return std::ranges::find( families, image.family, &Family::family )
      ->module( std::move( image ) );
}

} // namespace XcvrTool
