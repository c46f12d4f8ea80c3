#pragma once

#include <Xcvr/XcvrConfig.h>

#include <type_traits>

// The diagnostic settings of a slot, which can replace the contents that were read from the module.
namespace Xcvr {

/// The active diagnostic configuration of the slot; null when none is.
template <typename Config>
[[gnu::always_inline]] inline auto const * activeDiagConfig( Config const & config ) {
   using Diag = std::remove_cvref_t<decltype( *config.diagConfigMap().begin()->second )>;
   for ( auto const & [name, diag] : config.diagConfigMap() ) {
      if ( diag->overrideIdEepromContentsActivationKey() == diagActivationKey ) {
         return static_cast<Diag const *>( diag.get() );
      }
   }
   return static_cast<Diag const *>( nullptr );
}

/// What a status decodes: the contents of an active override, else what was read. Here rather than
/// in an operation of the status, since an exported one is not inlined into its callers.
template <typename Status>
[[gnu::always_inline]] inline auto const & contentsOf( Status const & status ) {
   auto const * config = status.xcvrConfig();
   auto const * diag = config ? activeDiagConfig( *config ) : nullptr;
   return diag ? diag->overrideIdEepromContents() : status.actualIdEepromContents();
}

} // namespace Xcvr
