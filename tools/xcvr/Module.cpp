#include "tools/xcvr/Module.h"

#include "tools/xcvr/Families.h"
#include "tools/xcvr/FieldText.h"
#include "tools/xcvr/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace XcvrTool {

namespace {

struct Family {
   XcvrType family;
   std::unique_ptr<Module> ( *module )( ModuleImage image );
};

constexpr Family families[] = {
   { XcvrType::sfpPlus, sfpModule }, { XcvrType::qsfpPlus, qsfpModule },
   { XcvrType::qsfpDd, cmisModule }, { XcvrType::osfp, cmisModule },
   { XcvrType::cfp2, cfpModule },
};

} // namespace

std::string_view Module::page( std::string_view label ) const {
   std::string const * bytes = image_.page( label );
   return bytes ? std::string_view( *bytes ) : std::string_view();
}

std::string Module::valueOf( Xcvr::PageView bytes, Xcvr::MemoryField const & field ) const {
   return fieldText( bytes, field );
}

std::vector<std::string> familyNames() {
   std::vector<std::string> names;
   for ( Family const & family : families ) {
      names.emplace_back( familyName( family.family ) );
   }
   return names;
}

XcvrType familyOfName( std::string_view name ) {
   return std::ranges::find( families, name,
                             []( Family const & family ) { return familyName( family.family ); } )
      ->family;
}

std::unique_ptr<Module> moduleOf( ModuleImage image ) {
   auto const family = std::ranges::find( families, image.family, &Family::family );
   if ( family == std::end( families ) ) {
      throw ImageError( image.file,
                        fmt::format( "{} modules are not decoded by this version; give "
                                     "images of these kinds: {}",
                                     familyName( image.family ), joined( familyNames() ) ) );
   }
   return family->module( std::move( image ) );
}

} // namespace XcvrTool
