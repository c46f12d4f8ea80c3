#pragma once

#include <Xcvr/XcvrConfig.h>

#include <type_traits>

// The diagnostic settings of a slot, which can replace the contents that were read from the module.
namespace Xcvr {

/// The contents that an active diagnostic configuration of the slot sets; null when none is.
template <typename Contents, typename Config>
Contents const * activeOverride( Config const & config ) {
   for ( auto const & [name, diag] : config.diagConfigMap() ) {
      if ( diag->overrideIdEepromContentsActivationKey() == diagActivationKey ) {
         return &diag->overrideIdEepromContents();
      }
   }
   return nullptr;
}

/// What a status decodes: the contents of an active override, else what was read. Here rather than in
/// an operation of the status, since an exported one is not inlined into its callers.
template <typename Status>
[[gnu::always_inline]] inline auto const & contentsOf( Status const & status ) {
   using Contents = std::remove_cvref_t<decltype( status.actualIdEepromContents() )>;
   auto const * config = status.xcvrConfig();
   Contents const * overriding = config ? activeOverride<Contents>( *config ) : nullptr;
   return overriding ? *overriding : status.actualIdEepromContents();
}

} // namespace Xcvr
