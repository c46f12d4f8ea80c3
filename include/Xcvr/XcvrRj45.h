#pragma once

#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrStatus.h>

namespace Xcvr {

/// Configuration of a fixed copper port.
class XCVR_API Rj45Config : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( Rj45Config, XcvrConfig,
      // Media type that the configuration declares for the port.
      ( Plain, localMediaType, onLocalMediaType, MediaType ) );
};

/// The configurations of a cell's copper ports.
class XCVR_API Rj45CellConfig : public Vel::Entity {
 public:
   explicit Rj45CellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Rj45CellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, Rj45Config ) );
};

/// Status of a fixed copper port: it has no module memory, so the agent writes what it is.
class XCVR_API Rj45NewStatus : public XcvrNewStatus {
 public:
   explicit Rj45NewStatus( Vel::Name name ) : XcvrNewStatus( std::move( name ), XcvrType::rj45 ) {}
   VEL_ENTITY( Rj45NewStatus, XcvrNewStatus,
      ( Plain, localMediaType, onLocalMediaType, MediaType ),
      ( Plain, localVendorInfo, onLocalVendorInfo, VendorInfo ),
      // The agent has filled the status.
      ( Plain, ready, onReady, bool ),
      ( Reference, xcvrConfig, onXcvrConfig, Rj45Config ) );

   [[nodiscard]] MediaType mediaType() const override;
   [[nodiscard]] VendorInfo vendorInfo() const override;
};

XCVR_API Vel::Ptr<Rj45Config> rj45ConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<Rj45CellConfig> rj45CellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<Rj45NewStatus> rj45NewStatusFactory( Vel::Name name );

} // namespace Xcvr
