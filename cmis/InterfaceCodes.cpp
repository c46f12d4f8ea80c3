#include <Xcvr/XcvrInterfaceCodes.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

namespace Xcvr {
namespace {

// clang-format off

// Of a passive cable, which has no media code of its own to tell it by, the host code decides.
constexpr InterfaceCode hostElectricalCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "1000BASE-CX" },
   { 0x02, "XAUI" },
   { 0x03, "XFI" },
   { 0x04, "SFI" },
   { 0x05, "25GAUI C2M" },
   { 0x06, "XLAUI C2M" },
   { 0x07, "XLPPI" },
   { 0x08, "LAUI-2 C2M" },
   { 0x09, "50GAUI-2 C2M" },
   { 0x0a, "50GAUI-1 C2M" },
   { 0x0b, "CAUI-4 C2M" },
   { 0x0c, "100GAUI-4 C2M" },
   { 0x0d, "100GAUI-2 C2M" },
   { 0x0e, "200GAUI-8 C2M" },
   { 0x0f, "200GAUI-4 C2M" },
   { 0x10, "400GAUI-16 C2M" },
   { 0x11, "400GAUI-8 C2M" },
   { 0x13, "10GBASE-CX4" },
   { 0x14, "25GBASE-CR CA-25G-L", xcvr25GBaseCr },
   { 0x15, "25GBASE-CR CA-25G-S", xcvr25GBaseCrS },
   { 0x16, "25GBASE-CR CA-25G-N", xcvr25GBaseCrN },
   { 0x17, "40GBASE-CR4", xcvr40GBaseCr4 },
   { 0x18, "50GBASE-CR" },
   { 0x19, "100GBASE-CR10" },
   { 0x1a, "100GBASE-CR4", xcvr100GBaseCr4 },
   { 0x1b, "100GBASE-CR2" },
   { 0x1c, "200GBASE-CR4" },
   { 0x1d, "400GBASE-CR8", xcvr400GBaseCr8 },
   { 0x1e, "200GBASE-CR1" },
   { 0x1f, "400GBASE-CR2" },
   { 0x20, "LEI-100G-PAM4-1" },
   { 0x21, "LEI-200G-PAM4-2" },
   { 0x22, "LEI-400G-PAM4-4" },
   { 0x23, "LEI-800G-PAM4-8" },
   { 0x25, "8GFC" },
   { 0x26, "10GFC" },
   { 0x27, "16GFC" },
   { 0x28, "32GFC" },
   { 0x29, "64GFC" },
   { 0x2a, "128GFC (4 lanes)" },
   { 0x2b, "256GFC" },
   { 0x2c, "InfiniBand SDR" },
   { 0x2d, "InfiniBand DDR" },
   { 0x2e, "InfiniBand QDR" },
   { 0x2f, "InfiniBand FDR" },
   { 0x30, "InfiniBand EDR" },
   { 0x31, "InfiniBand HDR" },
   { 0x32, "InfiniBand NDR" },
   { 0x33, "CPRI E.96" },
   { 0x34, "CPRI E.99" },
   { 0x35, "CPRI E.119" },
   { 0x36, "CPRI E.238" },
   { 0x37, "OTL3.4" },
   { 0x38, "OTL4.10" },
   { 0x39, "OTL4.4" },
   { 0x3a, "OTLC.4" },
   { 0x3b, "FOIC1.4" },
   { 0x3c, "FOIC1.2" },
   { 0x3d, "FOIC2.8" },
   { 0x3e, "FOIC2.4" },
   { 0x3f, "FOIC4.16" },
   { 0x40, "FOIC4.8" },
   { 0x41, "CAUI-4 C2M without FEC" },
   { 0x42, "CAUI-4 C2M with RS-FEC" },
   { 0x43, "50GBASE-CR2 with RS-FEC", xcvr50GBaseCr2L },
   { 0x44, "50GBASE-CR2 with BASE-R FEC", xcvr50GBaseCr2S },
   { 0x45, "50GBASE-CR2 without FEC", xcvr50GBaseCr2N },
   { 0x46, "100GBASE-CR1" },
   { 0x47, "200GBASE-CR2" },
   { 0x48, "400GBASE-CR4" },
   { 0x49, "800GBASE-CR8" },
   { 0x4a, "128GFC" },
   { 0x4b, "100GAUI-1-S C2M" },
   { 0x4c, "100GAUI-1-L C2M" },
   { 0x4d, "200GAUI-2-S C2M" },
   { 0x4e, "200GAUI-2-L C2M" },
   { 0x4f, "400GAUI-4-S C2M" },
   { 0x50, "400GAUI-4-L C2M" },
   { 0x51, "800GAUI-8-S C2M" },
   { 0x52, "800GAUI-8-L C2M" },
   { 0x53, "OTL4.2" },
   { 0x57, "800GBASE-CR4" },
   { 0x58, "1.6TBASE-CR8" },
   { 0x80, "200GAUI-1 C2M" },
   { 0x81, "400GAUI-2 C2M" },
   { 0x82, "800GAUI-4 C2M" },
   { 0x83, "1.6TAUI-8 C2M" },
   { 0x90, "RTLR" },
   { 0x91, "RTLR" },
   { 0x92, "RTLR" },
   { 0x93, "RTLR" },
   { 0x94, "RTLR" },
   { 0x95, "RTLR" },
   { 0x96, "RTLR" },
   { 0x97, "RTLR" },
   { 0xa0, "InfiniBand XDR" },
   { 0xff, "end of list" },
};

constexpr InterfaceCode multimodeCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "10GBASE-SW" },
   { 0x02, "10GBASE-SR", xcvr10GBaseSr },
   { 0x03, "25GBASE-SR", xcvr25GBaseSr },
   { 0x04, "40GBASE-SR4", xcvr40GBaseSr4 },
   { 0x05, "40GE SWDM4" },
   { 0x06, "40GE BiDi", xcvr40GBaseSrbd },
   { 0x07, "50GBASE-SR" },
   { 0x08, "100GBASE-SR10", xcvr100GBaseSr10 },
   { 0x09, "100GBASE-SR4", xcvr100GBaseSr4 },
   { 0x0a, "100GE SWDM4", xcvr100GBaseSwdm4 },
   { 0x0b, "100GE BiDi", xcvr100GBaseSrbd },
   { 0x0c, "100GBASE-SR2" },
   { 0x0d, "100GBASE-SR1" },
   { 0x0e, "200GBASE-SR4" },
   { 0x0f, "400GBASE-SR16" },
   { 0x10, "400GBASE-SR8", xcvr400GBaseSr8 },
   { 0x11, "400GBASE-SR4" },
   { 0x12, "800GBASE-SR8" },
   { 0x13, "8GFC-MM" },
   { 0x14, "10GFC-MM" },
   { 0x15, "16GFC-MM" },
   { 0x16, "32GFC-MM" },
   { 0x17, "64GFC-MM" },
   { 0x18, "128GFC-MM4" },
   { 0x19, "256GFC-MM4" },
   { 0x1a, "400GBASE-SR4.2" },
   { 0x1b, "200GBASE-SR2" },
   { 0x1c, "128GFC-MM" },
   { 0x1d, "100GBASE-VR1" },
   { 0x1e, "200GBASE-VR2" },
   { 0x1f, "400GBASE-VR4" },
   { 0x20, "800GBASE-VR8" },
   { 0x21, "800G-VR4.2" },
   { 0x22, "800G-SR4.2" },
   { 0x23, "1.6T-VR8.2" },
   { 0x24, "1.6T-SR8.2" },
};

constexpr InterfaceCode singleModeCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "10GBASE-LW" },
   { 0x02, "10GBASE-EW" },
   { 0x03, "10G-ZW" },
   { 0x04, "10GBASE-LR", xcvr10GBaseLr },
   { 0x05, "10GBASE-ER", xcvr10GBaseEr },
   { 0x06, "10G-ZR", xcvr10GBaseZr },
   { 0x07, "25GBASE-LR", xcvr25GBaseLr },
   { 0x08, "25GBASE-ER" },
   { 0x09, "40GBASE-LR4", xcvr40GBaseLr4 },
   { 0x0a, "40GBASE-FR" },
   { 0x0b, "50GBASE-FR" },
   { 0x0c, "50GBASE-LR" },
   { 0x0d, "100GBASE-LR4", xcvr100GBaseLr4 },
   { 0x0e, "100GBASE-ER4", xcvr100GBaseEr4 },
   { 0x0f, "100G PSM4", xcvr100GBasePsm4 },
   { 0x10, "100G CWDM4", xcvr100GBaseCwdm4 },
   { 0x11, "100G 4WDM-10" },
   { 0x12, "100G 4WDM-20" },
   { 0x13, "100G 4WDM-40" },
   { 0x14, "100GBASE-DR", xcvr100GBaseDr },
   { 0x15, "100GBASE-FR1" },
   { 0x16, "100GBASE-LR1" },
   { 0x17, "200GBASE-DR4" },
   // Not exact: 400GBASE-2FR4 is the kind of module that carries this interface twice, and nothing
   // else says so.
   { 0x18, "200GBASE-FR4", xcvr400GBase2Fr4 },
   { 0x19, "200GBASE-LR4" },
   { 0x1a, "400GBASE-FR8" },
   { 0x1b, "400GBASE-LR8", xcvr400GBaseLr8 },
   { 0x1c, "400GBASE-DR4", xcvr400GBaseDr4 },
   { 0x1d, "400GBASE-FR4", xcvr400GBaseFr4 },
   { 0x1e, "400G-LR4-10" },
   { 0x1f, "8GFC-SM" },
   { 0x20, "10GFC-SM" },
   { 0x21, "16GFC-SM" },
   { 0x22, "32GFC-SM" },
   { 0x23, "64GFC-SM" },
   { 0x24, "128GFC-PSM4" },
   { 0x26, "128GFC-CWDM4" },
   { 0x2c, "4I1-9D1F" },
   { 0x2d, "4L1-9C1F" },
   { 0x2e, "4L1-9D1F" },
   { 0x2f, "C4S1-9D1F" },
   { 0x30, "C4S1-4D1F" },
   { 0x31, "4I1-4D1F" },
   { 0x32, "8R1-4D1F" },
   { 0x33, "8I1-4D1F" },
   { 0x34, "100G CWDM4-OCP" },
   { 0x38, "10G-SR", xcvr10GBaseSr },
   { 0x39, "10G-LR", xcvr10GBaseLr },
   { 0x3a, "25G-SR", xcvr25GBaseSr },
   { 0x3b, "25G-LR", xcvr25GBaseLr },
   { 0x3c, "10G-LR-BiDi" },
   { 0x3d, "25G-LR-BiDi" },
   { 0x3e, "400ZR, DWDM, amplified" },
   { 0x3f, "400ZR, single wavelength, unamplified" },
   { 0x40, "50GBASE-ER" },
   { 0x41, "200GBASE-ER4" },
   { 0x42, "400GBASE-ER8" },
   { 0x43, "400GBASE-LR4-6" },
   { 0x44, "100GBASE-ZR" },
   { 0x45, "128GFC-SM" },
   { 0x46, "ZR400-OFEC-16QAM" },
   { 0x47, "ZR300-OFEC-8QAM" },
   { 0x48, "ZR200-OFEC-QPSK" },
   { 0x49, "ZR100-OFEC-QPSK" },
   { 0x4a, "100G-LR1-20" },
   { 0x4b, "100G-ER1-30" },
   { 0x4c, "100G-ER1-40" },
   { 0x4d, "400GBASE-ZR" },
   { 0x4e, "10GBASE-BR" },
   { 0x4f, "25GBASE-BR" },
   { 0x50, "50GBASE-BR" },
   { 0x51, "FOIC1.4-DO" },
   { 0x52, "FOIC2.8-DO" },
   { 0x53, "FOIC4.8-DO" },
   { 0x54, "FOIC2.4-DO" },
   { 0x55, "400GBASE-DR4-2" },
   { 0x56, "800GBASE-DR8" },
   { 0x57, "800GBASE-DR8-2" },
   { 0x6c, "800ZR-A" },
   { 0x6d, "800ZR-B" },
   { 0x6e, "800ZR-C" },
   { 0x73, "200GBASE-DR1" },
   { 0x74, "200GBASE-DR1-2" },
   { 0x75, "400GBASE-DR2" },
   { 0x76, "400GBASE-DR2-2" },
   { 0x77, "800GBASE-DR4" },
   { 0x78, "800GBASE-DR4-2" },
   { 0x7a, "800GBASE-FR4" },
   { 0x7b, "800GBASE-LR4" },
   { 0x7f, "1.6TBASE-DR8" },
   { 0x80, "1.6TBASE-DR8-2" },
   { 0x8f, "100G-DR1-LPO" },
   { 0x90, "200G-DR2-LPO" },
   { 0x91, "400G-DR4-LPO" },
   { 0x92, "800G-DR8-LPO" },
};

constexpr InterfaceCode copperCableCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "copper cable" },
   { 0xbf, "passive loopback module" },
};

constexpr InterfaceCode activeCableCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "active cable, BER < 1e-12", xcvr400GBaseAr8 },
   { 0x02, "active cable, BER < 5e-5", xcvr400GBaseAr8 },
   { 0x03, "active cable, BER < 2.6e-4", xcvr400GBaseAr8 },
   { 0x04, "active cable, BER < 1e-6", xcvr400GBaseAr8 },
   { 0xbf, "active loopback module" },
};

constexpr InterfaceCode baseTCodes[] = {
   { 0x00, "undefined" },
   { 0x01, "1000BASE-T", xcvr1000BaseT },
   { 0x02, "2.5GBASE-T", xcvr2p5GBaseT },
   { 0x03, "5GBASE-T", xcvr5GBaseT },
   { 0x04, "10GBASE-T", xcvr10GBaseT },
   { 0x05, "25GBASE-T" },
   { 0x06, "40GBASE-T" },
   { 0x07, "50GBASE-T" },
};

struct Table {
   std::span<InterfaceCode const> codes;
   MediaType unknown; // what a module is that the table does not name
};

// In the order of InterfaceTable.
constexpr Table tables[] = {
   { hostElectricalCodes, xcvr400GCopperUnknown },
   { multimodeCodes, xcvr400GOpticalUnknown },
   { singleModeCodes, xcvr400GOpticalUnknown },
   { copperCableCodes, xcvr400GCopperUnknown },
   { activeCableCodes, xcvr400GOpticalUnknown },
   { baseTCodes, xcvr400GCopperUnknown },
};
// clang-format on

static_assert( std::ranges::all_of( tables, []( Table const & table ) {
   return std::ranges::adjacent_find( table.codes, std::greater_equal(), &InterfaceCode::code ) ==
          table.codes.end();
} ) );

/// The media type of every code, found without a search: a module is parsed over and over.
constexpr auto mediaTypes = [] {
   std::array<std::array<uint8_t, 256>, std::size( tables )> result{};
   for ( size_t i = 0; i < std::size( tables ); ++i ) {
      result[i].fill( static_cast<uint8_t>( tables[i].unknown ) );
      for ( InterfaceCode const & row : tables[i].codes ) {
         if ( row.mediaType != xcvrUnknown ) {
            result[i][row.code] = static_cast<uint8_t>( row.mediaType );
         }
      }
   }
   return result;
}();

Table const & tableOf( InterfaceTable table ) {
   return tables[static_cast<size_t>( table )];
}

} // namespace

std::span<InterfaceCode const> interfaceCodes( InterfaceTable table ) {
   return tableOf( table ).codes;
}

InterfaceCode const * interfaceCode( InterfaceTable table, uint8_t code ) {
   auto const codes = tableOf( table ).codes;
   auto const found = std::ranges::lower_bound( codes, code, {}, &InterfaceCode::code );
   return found != codes.end() && found->code == code ? &*found : nullptr;
}

Vel::String interfaceName( std::optional<InterfaceTable> table, uint8_t code ) {
   if ( InterfaceCode const * row = table ? interfaceCode( *table, code ) : nullptr ) {
      return row->name;
   }
   char text[8];
   int const size = std::snprintf( text, sizeof text, "0x%02x", code );
   return { text, static_cast<size_t>( size ) };
}

MediaType interfaceMediaType( InterfaceTable table, uint8_t code ) {
   return static_cast<MediaType>( mediaTypes[static_cast<size_t>( table )][code] );
}

std::optional<InterfaceTable> mediaInterfaceTable( OsfpModuleTypeEncoding type ) {
   switch ( type ) {
   case osfpTypeOpticalMmf:
      return InterfaceTable::multimodeMedia;
   case osfpTypeOpticalSmf:
      return InterfaceTable::singleModeMedia;
   case osfpTypePassiveCu:
      return InterfaceTable::copperCableMedia;
   case osfpTypeActiveCable:
      return InterfaceTable::activeCableMedia;
   case osfpTypeBaseT:
      return InterfaceTable::baseTMedia;
   case osfpTypeUndefined:
      break;
   }
   return std::nullopt;
}

} // namespace Xcvr
