#include <Vel/Define.h>
#include <Xcvr/XcvrMediaTypes.h>

namespace Xcvr {
namespace {

constexpr bool optical = true;
constexpr bool electrical = false;

// clang-format off
constexpr MediaTypeInfo mediaTypes[] = {
   // media type, display text, bit rate in kbit/s, interface to the switch, medium
   { xcvrUnknown, "Unknown", 10000000, xcvr10GLimiting, electrical },
   { xcvr25GUnknown, "Unknown25G", 25000000, xcvr25GLimiting, electrical },
   { xcvr100GUnknown, "Unknown100G", 100000000, xcvr25GLimiting, electrical },
   { xcvr400GCopperUnknown, "UnknownCopper400G", 400000000, xcvr50GLinear, electrical },
   { xcvr400GOpticalUnknown, "UnknownOptical400G", 400000000, xcvr50GLimiting, optical },
   { xcvr10GBaseSr, "10GBASE-SR", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseAr, "10GBASE-AR", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseLr, "10GBASE-LR", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseLrLite, "10GBASE-LRL", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseLrm, "10GBASE-LRM", 10000000, xcvr10GLinear, optical },
   { xcvr10GBaseCr, "10GBASE-CR", 10000000, xcvr10GLinear, electrical },
   { xcvr2p5GBaseT, "2.5GBASE-T", 2500000, xcvr10GLinear, electrical },
   { xcvr5GBaseT, "5GBASE-T", 5000000, xcvr10GLinear, electrical },
   { xcvr10GBaseT, "10GBASE-T", 10000000, xcvr10GLinear, electrical },
   { xcvr25GBaseCr, "25GBASE-CR", 25000000, xcvr25GLinear, electrical },
   { xcvr25GBaseCrS, "25GBASE-CR", 25000000, xcvr25GLinear, electrical },
   { xcvr25GBaseCrN, "25GBASE-CR", 25000000, xcvr25GLinear, electrical },
   { xcvr25GBaseSr, "25GBASE-SR", 25000000, xcvr25GLimiting, optical },
   { xcvr25GBaseAr, "25GBASE-AR", 25000000, xcvr25GLimiting, optical },
   { xcvr25GBaseArN, "25GBASE-AR", 25000000, xcvr25GLimiting, optical },
   { xcvr25GBaseLr, "25GBASE-LR", 25000000, xcvr25GLimiting, optical },
   { xcvr25GBaseLrLite, "25GBASE-LRL", 25000000, xcvr25GLimiting, optical },
   { xcvr100BaseLx10, "100BASE-LX10", 100000, xcvr1GSgmiiBaseX, optical },
   { xcvr1000BaseSx, "1000BASE-SX", 1000000, xcvr1GSgmiiBaseX, optical },
   { xcvr1000BaseLx, "1000BASE-LX", 1000000, xcvr1GSgmiiBaseX, optical },
   { xcvr1000BaseT, "1000BASE-T", 1000000, xcvr1GSgmiiBaseT, electrical },
   { xcvr1000BaseBx10D, "1000BASE-BX10-D", 1000000, xcvr1GSgmiiBaseX, optical },
   { xcvr1000BaseBx10U, "1000BASE-BX10-U", 1000000, xcvr1GSgmiiBaseX, optical },
   { xcvr10GBaseSrLite, "10GBASE-SRL", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseMfg, "10GBASE-MFG", 10000000, xcvr10GLinear, electrical },
   { xcvr10GBaseEr, "10GBASE-ER", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseZr, "10GBASE-ZR", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseDwdmEr, "10G-DW%02u%02uER", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseDwdmZr, "10G-DW%02u%02uZR", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseDwdmZt, "10GBASE-DWDM", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseErbdU, "10GBASE-ERBD-U", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseErbdD, "10GBASE-ERBD-D", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseErlbdU, "10GBASE-ERLBD-U", 10000000, xcvr10GLimiting, optical },
   { xcvr10GBaseErlbdD, "10GBASE-ERLBD-D", 10000000, xcvr10GLimiting, optical },
   { xcvr100BaseFx, "100BASE-FX", 100000, xcvr100MMiiBaseFx, optical },
   { xcvr40GBaseSr4, "40GBASE-SR4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseSrbd, "40GBASE-SRBD", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseSr4d, "40GBASE-SR4D", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseAr4, "40GBASE-AR4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBasePlr4, "40GBASE-PLR4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBasePlrl4, "40GBASE-PLRL4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBasePsm4, "40GBASE-PSM4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseXsr4, "40GBASE-XSR4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseLr4, "40GBASE-LR4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseLrl4, "40GBASE-LRL4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseUniv, "40GBASE-UNIV", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseCr4, "40GBASE-CR4", 40000000, xcvr10GLinear, electrical },
   { xcvr40GBaseEr4, "40GBASE-ER4", 40000000, xcvr10GLimiting, optical },
   { xcvr40GBaseMfg, "40GBASE-MFG", 40000000, xcvr10GLinear, electrical },
   { xcvr50GBaseCr2L, "50GBASE-CR2", 50000000, xcvr25GLinear, electrical },
   { xcvr50GBaseCr2S, "50GBASE-CR2", 50000000, xcvr25GLinear, electrical },
   { xcvr50GBaseCr2N, "50GBASE-CR2", 50000000, xcvr25GLinear, electrical },
   { xcvr10GBaseCrActive, "10GBASE-CRA", 10000000, xcvr10GLimiting, electrical },
   { xcvr100GBaseSr10, "100GBASE-SR10", 100000000, xcvr10GLimiting, optical },
   { xcvr100GBaseXsr10, "100GBASE-XSR10", 100000000, xcvr10GLimiting, optical },
   { xcvr100GBaseSr4, "100GBASE-SR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseLr4, "100GBASE-LR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseEr4, "100GBASE-ER4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GDwdmCoherent, "100G-DWDM", 100000000, xcvr25GLimiting, optical },
   { xcvr100GDwdmCoherentE, "100G-DWDM-E", 100000000, xcvr25GLinear, optical },
   { xcvr100GBaseCr4, "100GBASE-CR4", 100000000, xcvr25GLinear, electrical },
   { xcvr100GBaseAr4, "100GBASE-AR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseLrl4, "100GBASE-LRL4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBasePsm4, "100GBASE-PSM4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseClr4, "100GBASE-CLR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseCwdm4, "100GBASE-CWDM4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GEDwdm2, "100GE-DWDM2", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseCr4S, "100GBASE-CR4", 100000000, xcvr25GLinear, electrical },
   { xcvr100GBaseCr4N, "100GBASE-CR4", 100000000, xcvr25GLinear, electrical },
   { xcvr100GBaseAr4N, "100GBASE-AR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseSwdm4, "100GBASE-SWDM4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseSrbd, "100GBASE-SRBD", 100000000, xcvr25GLimiting, optical },
   { xcvr100GDwdmDco, "100G-DWDM-DCO", 100000000, xcvr25GLimiting, optical },
   { xcvr2x100GBaseMfg, "2X100GBASE-MFG", 100000000, xcvr25GLimiting, electrical },
   { xcvr100GBaseErl4, "100GBASE-ERL4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseMfg, "100GBASE-MFG", 100000000, xcvr25GLinear, electrical },
   { xcvr100GBaseXsr4, "100GBASE-XSR4", 100000000, xcvr25GLimiting, optical },
   { xcvr100GBaseDr, "100GBASE-DR", 100000000, xcvr25GLimiting, optical },
   { xcvr400GBaseCr8, "400GBASE-CR8", 400000000, xcvr50GLinear, electrical },
   { xcvr200GBaseCr8, "200GBASE-CR8", 200000000, xcvr25GLinear, electrical },
   { xcvr400GBaseAr8, "400GBASE-AR8", 400000000, xcvr50GLimiting, optical },
   { xcvr400GBaseSr8, "400GBASE-SR8", 400000000, xcvr50GLimiting, optical },
   { xcvr400GBaseLr8, "400GBASE-LR8", 400000000, xcvr50GLimiting, optical },
   { xcvr400GBase2Fr4, "400GBASE-2FR4", 400000000, xcvr50GLimiting, optical },
   { xcvr400GBaseFr4, "400GBASE-FR4", 400000000, xcvr50GLimiting, optical },
   { xcvr400GBaseDr4, "400GBASE-DR4", 400000000, xcvr50GLimiting, optical },
};
// clang-format on

/// The table has a row for every media type, at the place of its code.
constexpr bool isComplete() {
   for ( uint32_t code = 0; code < std::size( mediaTypes ); ++code ) {
      if ( static_cast<uint32_t>( mediaTypes[code].mediaType ) != code ||
           mediaTypes[code].text.empty() || mediaTypes[code].bitrateKbps == 0 ) {
         return false;
      }
   }
   return std::size( mediaTypes ) == Vel::Internal::enumerators<MediaType>.size();
}
static_assert( isComplete() );

} // namespace

std::span<MediaTypeInfo const> mediaTypeInfos() {
   return mediaTypes;
}

MediaTypeInfo const * mediaTypeInfo( MediaType mediaType ) {
   auto const code = static_cast<uint32_t>( mediaType );
   return code < std::size( mediaTypes ) ? &mediaTypes[code] : nullptr;
}

} // namespace Xcvr
