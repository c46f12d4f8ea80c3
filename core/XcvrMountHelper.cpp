#include <Xcvr/XcvrMountHelper.h>

namespace Xcvr {

void Mounter::doMountXcvrStatus( Vel::Ptr<Statedb::MountGroup> const & mountGroup,
                                 Vel::Ptr<Statedb::Mount> const & mount ) {
   mountGroup->mountIs( mount );
   doMountXcvrStatusImplicits( mountGroup );
}

void Mounter::doMountXcvrStatusImplicits( Vel::Ptr<Statedb::MountGroup> const & mountGroup ) {
   struct {
      char const * path;
      char const * typeName;
   } const implicits[] = {
      { "hardware/xcvr/attenuation", "Xcvr::ModelToAttenuation" },
      { "hardware/xcvr/xgc", "Xcvr::Xgc" },
   };
   for ( auto const & implicit : implicits ) {
      if ( !mountGroup->mountHas( implicit.path ) ) {
         mountGroup->mountIs( new Statedb::Mount( implicit.path, implicit.typeName ) );
      }
   }
}

} // namespace Xcvr
