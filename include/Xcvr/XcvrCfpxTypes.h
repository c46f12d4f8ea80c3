#pragma once

#include <Hal/Reg.h>
#include <Vel/Enum.h>
#include <Vel/Value.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>

// The types of CFP2, CFPx and CFP2-DCO modules (CFP MSA management interface specification).
namespace Xcvr {

/// A table of a module's 16-bit register addresses, named after its first one.
VEL_ENUM( CfpMsaMisTableId,
   // Identification.
   table8000, table8080, table8100, table8180, table8420,
   // Control, status and monitors of a CFP2.
   tableA000, tableA200, tableA280, tableA300, tableA400,
   // The same of a CFPx or CFP2-DCO, and its coherent and analogue registers.
   tableB000, tableB100, tableB180, tableB200, tableB280, tableB300, tableB380, tableB400,
   tableB480, tableB500, tableB580, tableB600, tableB680, tableB700, tableB800, tableB880,
   tableB900, tableB980, tableBA00, tableBA80, tableBB00, tableBB80,
   // The network side of a CFP2-DCO.
   table9000, table9080, table9100, table9180, table9200, table9280,
   maxCfpTables, tableInvalid );
using enum CfpMsaMisTableId;

/// What a module is (register 8000h). Any other code is carried as it is.
VEL_ENUM( CfpMsaMisIdentifier,
   identifierCfp2 = 17, identifierCfpx = 20, identifierCfp2Dco = 25 );
using enum CfpMsaMisIdentifier;

/// The Ethernet application of a module (register 8003h). Any other code is carried as it is.
VEL_ENUM( CfpMsaMisEthAppCode,
   ethAppCodeUndefined, ethAppCode100GBaseLr4, ethAppCode100GBaseEr4, ethAppCode100GBaseSr10,
   ethAppCode100GDwdmCoherent = 17 );
using enum CfpMsaMisEthAppCode;

// Registers of the analogue part of a CFPx. Their bits are the maker's; here they are words.

/// Modulation format (BB06h).
class HalCfpxModFormatSel : public Hal::Reg16 {
 public:
   using Reg16::Reg16;
};
/// Transmit driver outputs that are on (BB54h).
class HalCfpxTxRfEnabledStatus : public Hal::Reg16 {
 public:
   using Reg16::Reg16;
};
/// Transmit driver control (BB5Fh).
class HalCfpxTxDriverCtrl : public Hal::Reg16 {
 public:
   using Reg16::Reg16;
};
/// Receiver control (BB8Dh).
class HalCfpxRxSubsystemCtrl : public Hal::Reg16 {
 public:
   using Reg16::Reg16;
};

/// The tuning to be written to a CFPx or CFP2-DCO.
class XCVR_API CfpxTuneConfig {
   VEL_VALUE( CfpxTuneConfig,
      // Its channel is counted from the module's first frequency; 0 for none.
      ( frequency, HwTuningConfig ),
      ( txPower, double ) ); // dBm; minus infinity for none
};

/// The tuning in a module's registers.
class XCVR_API CfpxTuneStatus {
   VEL_VALUE( CfpxTuneStatus,
      // Its channel is counted from the module's first frequency; 0 for none.
      ( frequency, HwTuningConfig ),
      ( txFrequency, uint32_t ),       // MHz, with the fine tuning; 0 for none
      ( txPower, double ),             // as set, dBm
      ( rxAttenuation, double ),       // dB
      ( maxRxAttenuation, double ) ); // dB
};

} // namespace Xcvr
