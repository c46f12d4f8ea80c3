#pragma once

#include <Xcvr/XcvrStatus.h>

#include <optional>

namespace Xcvr {

/// What the attenuation table, which may be null, has for a module: under its vendor name and part
/// number with their padding, "-" between them.
template <typename Contents>
std::optional<Units::Decibels> attenuationOfModel( ModelToAttenuation const * table,
                                                   Contents const & contents ) {
   if ( table ) {
      auto const & models = table->attenuationMap();
      auto const found = models.find( contents.vendorName() + "-" + contents.vendorPn() );
      if ( found != models.end() ) {
         return found->second;
      }
   }
   return std::nullopt;
}

} // namespace Xcvr
