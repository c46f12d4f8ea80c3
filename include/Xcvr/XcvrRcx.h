#pragma once

#include <Vel/Bounded.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrStatus.h>

namespace Xcvr {

/// Configuration of an RCX slot.
class XCVR_API RcxConfig : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( RcxConfig, XcvrConfig );
};

/// The configurations of a cell's RCX slots.
class XCVR_API RcxCellConfig : public Vel::Entity {
 public:
   explicit RcxCellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( RcxCellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, RcxConfig ) );
};

/// Status of an RCX slot, whose identity is fixed by the system: no module memory is read.
class XCVR_API RcxNewStatus : public XcvrNewStatus {
 public:
   explicit RcxNewStatus( Vel::Name name ) : XcvrNewStatus( std::move( name ), XcvrType::rcx ) {}
   VEL_ENTITY( RcxNewStatus, XcvrNewStatus,
      ( Reference, xcvrConfig, onXcvrConfig, RcxConfig const ),
      // One bit a position: present; requires RS-FEC.
      ( Plain, modulePresentBitmap, onModulePresentBitmap, Vel::U4 ),
      ( Plain, rsFecRequiredBitmap, onRsFecRequiredBitmap, Vel::U4 ),
      // The agent has initialised the slot.
      ( Plain, initialized, onInitialized, bool ),
      ( Plain, ready, onReady, bool ) );

   /// Always xcvr100GBaseCr4.
   [[nodiscard]] MediaType mediaType() const override;
   /// Four channels while the electrical interface is xcvr25GLinear, else nothing.
   [[nodiscard]] Capabilities capabilities() const override;
   /// Part number "RCx", all else "N/A".
   [[nodiscard]] VendorInfo vendorInfo() const override;
};

XCVR_API Vel::Ptr<RcxConfig> rcxConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<RcxCellConfig> rcxCellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<RcxNewStatus> rcxNewStatusFactory( Vel::Name name );

} // namespace Xcvr
