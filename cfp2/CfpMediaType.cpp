// The media type decision of CFP2, CFPx and CFP2-DCO modules: one table of rules.
#include "core/MediaTypeRules.h"

#include <Vel/Trace.h>
#include <Xcvr/XcvrCfp2Contents.h>

namespace Xcvr {
namespace {

using CfpTable::access;
using Contents = CfpMsaMisIdEepromContents;

Vel::TraceHandle trace( "XcvrCfp2" );

/// What the rules ask of a module, most of it read once.
struct Subject {
   explicit Subject( Contents const * module )
      : contents( module ), identifier( module->identifier() ),
        code( module->ethernetApplicationCode() ) {}

   Contents const * contents;
   CfpMsaMisIdentifier identifier;
   CfpMsaMisEthAppCode code;
};

// Each predicate says one thing about the module; what an earlier rule has settled is not asked again.

/// Known by vendor and part number, compared whole with their padding, whatever else it says.
bool isManufacturingModule( Subject const & module ) {
   return module.contents->view( access( "vendorName" ) ) == "MULTILANE SAL   " &&
          module.contents->view( access( "vendorPn" ) ) == "ML4030-DCO-2    ";
}
bool isNotCfp2( Subject const & module ) {
   return module.identifier != identifierCfp2 && module.identifier != identifierCfpx &&
          module.identifier != identifierCfp2Dco;
}
template <CfpMsaMisEthAppCode code>
bool hasCode( Subject const & module ) {
   return module.code == code;
}
bool isSr10( Subject const & module ) {
   return hasCode<ethAppCode100GBaseSr10>( module ) && module.contents->mmfFiberLengthMax() < 30;
}
bool isDco( Subject const & module ) {
   return module.identifier == identifierCfp2Dco;
}
bool isCoherentDco( Subject const & module ) {
   return hasCode<ethAppCode100GDwdmCoherent>( module ) && isDco( module );
}
template <uint8_t driverType>
bool isCoherent( Subject const & module ) {
   return hasCode<ethAppCode100GDwdmCoherent>( module ) &&
          module.contents->txRfDriverType() == driverType;
}
bool hasOtherCode( Subject const & module ) {
   return !hasCode<ethAppCodeUndefined>( module );
}
bool always( Subject const & ) {
   return true;
}

struct CfpMediaTypeRule {
   std::string_view why;
   bool ( *matches )( Subject const & );
   MediaType mediaType;
};

constexpr CfpMediaTypeRule rules[] = {
   { "vendor and part number of a manufacturing module", isManufacturingModule, xcvr2x100GBaseMfg },
   { "identifier of no CFP2, CFPx or CFP2-DCO", isNotCfp2, xcvrUnknown },
   { "application 100GBASE-SR10, less than 300 m of multimode fibre", isSr10, xcvr100GBaseSr10 },
   { "application 100GBASE-SR10, 300 m of multimode fibre or more", hasCode<ethAppCode100GBaseSr10>,
     xcvr100GBaseXsr10 },
   { "application 100GBASE-LR4", hasCode<ethAppCode100GBaseLr4>, xcvr100GBaseLr4 },
   { "application 100GBASE-ER4", hasCode<ethAppCode100GBaseEr4>, xcvr100GBaseEr4 },
   { "coherent application of a CFP2-DCO", isCoherentDco, xcvr100GDwdmDco },
   { "coherent application, driver type 0", isCoherent<0>, xcvr100GDwdmCoherent },
   { "coherent application, linear driver", isCoherent<1>, xcvr100GDwdmCoherentE },
   { "another application or another driver type", hasOtherCode, xcvrUnknown },
   { "CFP2-DCO without an application", isDco, xcvr100GDwdmDco },
   { "no application", always, xcvrUnknown },
};

} // namespace

std::span<MediaTypeRule const> cfpMediaTypeRules() {
   return publishedRules<rules>;
}

MediaType CfpMsaMisIdEepromContents::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return firstMatch<rules>( Subject( this ) ).mediaType;
}

MediaTypeDecision CfpMsaMisIdEepromContents::mediaTypeDecision() const {
   VEL_TRACE_SCOPE( trace );
   return Xcvr::mediaTypeDecision<rules>( firstMatch<rules>( Subject( this ) ) );
}

} // namespace Xcvr
