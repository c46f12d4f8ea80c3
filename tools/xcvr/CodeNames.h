#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// What the codes in module memory stand for. Codes that the standards reserve, or give another
// meaning in another revision, have no row. A few names end in what sets them apart from their
// neighbours rather than in the full words of the standard, so that they fit on a line.
namespace XcvrTool {

struct CodeName {
   std::uint8_t code;
   std::string_view name;
};

// clang-format off

/// SFF-8024, identifiers.
inline constexpr CodeName identifierNames[] = {
   { 0x00, "unknown or unspecified" },
   { 0x01, "GBIC" },
   { 0x02, "soldered to the board" },
   { 0x03, "SFP, SFP+ or SFP28" },
   { 0x04, "300-pin XBI" },
   { 0x05, "XENPAK" },
   { 0x06, "XFP" },
   { 0x07, "XFF" },
   { 0x08, "XFP-E" },
   { 0x09, "XPAK" },
   { 0x0a, "X2" },
   { 0x0b, "DWDM-SFP or DWDM-SFP+" },
   { 0x0c, "QSFP" },
   { 0x0d, "QSFP+ or later" },
   { 0x0e, "CXP" },
   { 0x0f, "mini multilane HD 4X" },
   { 0x10, "mini multilane HD 8X" },
   { 0x11, "QSFP28 or later" },
   { 0x12, "CXP2" },
   { 0x13, "CDFP style 1 or 2" },
   { 0x14, "mini multilane HD 4X fan-out cable" },
   { 0x15, "mini multilane HD 8X fan-out cable" },
   { 0x16, "CDFP style 3" },
   { 0x17, "microQSFP" },
   { 0x18, "QSFP-DD" },
   { 0x19, "OSFP" },
   { 0x1a, "SFP-DD" },
   { 0x1b, "DSFP" },
   { 0x1c, "x4 MiniLink or OCuLink" },
   { 0x1d, "x8 MiniLink" },
   { 0x1e, "QSFP+ or later with CMIS" },
   { 0x1f, "SFP-DD with CMIS" },
   { 0x20, "SFP+ with CMIS" },
   { 0x21, "OSFP-XD with CMIS" },
   { 0x22, "ELSFP with CMIS" },
   { 0x26, "XPO" },
};

/// SFF-8472, extended identifiers.
inline constexpr CodeName extIdentifierNames[] = {
   { 0x00, "GBIC definition not specified" },
   { 0x01, "GBIC, MOD_DEF 1" },
   { 0x02, "GBIC, MOD_DEF 2" },
   { 0x03, "GBIC, MOD_DEF 3" },
   { 0x04, "2-wire interface ID only" },
   { 0x05, "GBIC, MOD_DEF 5" },
   { 0x06, "GBIC, MOD_DEF 6" },
   { 0x07, "GBIC, MOD_DEF 7" },
};

/// SFF-8024, connectors.
inline constexpr CodeName connectorNames[] = {
   { 0x00, "unknown or unspecified" },
   { 0x01, "SC" },
   { 0x02, "Fibre Channel style 1 copper" },
   { 0x03, "Fibre Channel style 2 copper" },
   { 0x04, "BNC/TNC" },
   { 0x05, "Fibre Channel coax headers" },
   { 0x06, "FibreJack" },
   { 0x07, "LC" },
   { 0x08, "MT-RJ" },
   { 0x09, "MU" },
   { 0x0a, "SG" },
   { 0x0b, "optical pigtail" },
   { 0x0c, "MPO 1x12" },
   { 0x0d, "MPO 2x16" },
   { 0x20, "HSSDC II" },
   { 0x21, "copper pigtail" },
   { 0x22, "RJ45" },
   { 0x23, "no separable connector" },
   { 0x24, "MXC 2x16" },
   { 0x25, "CS" },
   { 0x26, "SN" },
   { 0x27, "MPO 2x12" },
   { 0x28, "MPO 1x16" },
};

/// SFF-8024, encodings as SFF-8636 numbers them.
inline constexpr CodeName qsfpEncodingNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "8B/10B" },
   { 0x02, "4B/5B" },
   { 0x03, "NRZ" },
   { 0x04, "SONET scrambled" },
   { 0x05, "64B/66B" },
   { 0x06, "Manchester" },
   { 0x07, "256B/257B" },
   { 0x08, "PAM4" },
};

/// SFF-8024, encodings as SFF-8472 numbers them.
inline constexpr CodeName encodingNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "8B/10B" },
   { 0x02, "4B/5B" },
   { 0x03, "NRZ" },
   { 0x04, "Manchester" },
   { 0x05, "SONET scrambled" },
   { 0x06, "64B/66B" },
   { 0x07, "256B/257B" },
   { 0x08, "PAM4" },
};

/// SFF-8472, rate identifiers.
inline constexpr CodeName rateIdentifierNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "4/2/1G rate select and application select" },
   { 0x02, "8/4/2G Rx rate select" },
   { 0x04, "8/4/2G Tx rate select" },
   { 0x06, "8/4/2G independent Rx and Tx rate select" },
   { 0x08, "16/8/4G Rx rate select" },
   { 0x0a, "16/8/4G independent Rx and Tx rate select" },
   { 0x0c, "32/16/8G independent Rx and Tx rate select" },
   { 0x0e, "10/8G rate select of the CDRs" },
   { 0x10, "64/32/16G independent Rx and Tx rate select" },
};

/// SFF-8024, extended specification compliance codes.
inline constexpr CodeName complianceExtendedNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "100G AOC or 25GAUI AOC, BER 5e-5" },
   { 0x02, "100GBASE-SR4 or 25GBASE-SR" },
   { 0x03, "100GBASE-LR4 or 25GBASE-LR" },
   { 0x04, "100GBASE-ER4 or 25GBASE-ER" },
   { 0x05, "100GBASE-SR10" },
   { 0x06, "100G CWDM4" },
   { 0x07, "100G PSM4" },
   { 0x08, "100G ACC or 25GAUI ACC, BER 5e-5" },
   { 0x0b, "100GBASE-CR4, 25GBASE-CR CA-25G-L or 50GBASE-CR2 with RS-FEC" },
   { 0x0c, "25GBASE-CR CA-25G-S or 50GBASE-CR2 with BASE-R FEC" },
   { 0x0d, "25GBASE-CR CA-25G-N or 50GBASE-CR2 without FEC" },
   { 0x0e, "10 Mb/s single pair Ethernet" },
   { 0x10, "40GBASE-ER4" },
   { 0x11, "4 x 10GBASE-SR" },
   { 0x12, "40G PSM4" },
   { 0x13, "G.959.1 P1I1-2D1" },
   { 0x14, "G.959.1 P1S1-2D2" },
   { 0x15, "G.959.1 P1L1-2D2" },
   { 0x16, "10GBASE-T with SFI" },
   { 0x17, "100G CLR4" },
   { 0x18, "100G AOC or 25GAUI AOC, BER 1e-12" },
   { 0x19, "100G ACC or 25GAUI ACC, BER 1e-12" },
   { 0x1a, "100GE-DWDM2" },
   { 0x1b, "100G 1550 nm WDM" },
   { 0x1c, "10GBASE-T short reach" },
   { 0x1d, "5GBASE-T" },
   { 0x1e, "2.5GBASE-T" },
   { 0x1f, "40G SWDM4" },
   { 0x20, "100G SWDM4" },
   { 0x21, "100G PAM4 BiDi" },
   { 0x22, "4WDM-10" },
   { 0x23, "4WDM-20" },
   { 0x24, "4WDM-40" },
   { 0x25, "100GBASE-DR, CAUI-4 without FEC" },
   { 0x26, "100GBASE-FR1, CAUI-4" },
   { 0x27, "100GBASE-LR1, CAUI-4" },
   { 0x28, "100GBASE-SR1, CAUI-4" },
   { 0x29, "100GBASE-SR1, 200GBASE-SR2 or 400GBASE-SR4" },
   { 0x2a, "100GBASE-FR1" },
   { 0x2b, "100GBASE-LR1" },
   { 0x30, "ACC with 50GAUI, 100GAUI-2 or 200GAUI-4, BER 1e-6" },
   { 0x31, "AOC with 50GAUI, 100GAUI-2 or 200GAUI-4, BER 1e-6" },
   { 0x32, "ACC with 50GAUI, 100GAUI-2 or 200GAUI-4, BER 2.6e-4" },
   { 0x33, "AOC with 50GAUI, 100GAUI-2 or 200GAUI-4, BER 2.6e-4" },
   { 0x3f, "100GBASE-CR1, 200GBASE-CR2 or 400GBASE-CR4" },
   { 0x40, "50GBASE-CR, 100GBASE-CR2 or 200GBASE-CR4" },
   { 0x41, "50GBASE-SR, 100GBASE-SR2 or 200GBASE-SR4" },
   { 0x42, "50GBASE-FR or 200GBASE-DR4" },
   { 0x43, "200GBASE-FR4" },
   { 0x44, "200G 1550 nm PSM4" },
   { 0x45, "50GBASE-LR" },
   { 0x46, "200GBASE-LR4" },
   { 0x47, "400GBASE-DR4" },
   { 0x48, "400GBASE-FR4" },
   { 0x49, "400GBASE-LR4-6" },
   { 0x4b, "400G-LR4-10" },
   { 0x7f, "256GFC-SW4" },
   { 0x80, "capable of 64GFC" },
   { 0x81, "capable of 128GFC" },
};

/// SFF-8472, the revision that a module complies with.
inline constexpr CodeName revisionNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "9.3" },
   { 0x02, "9.5" },
   { 0x03, "10.2" },
   { 0x04, "10.4" },
   { 0x05, "11.0" },
   { 0x06, "11.3" },
   { 0x07, "11.4" },
   { 0x08, "12.3" },
   { 0x09, "12.4" },
};

/// SFF-8472, the nominal bit rate where it is no number.
inline constexpr CodeName bitrateNominalNames[] = {
   { 0xff, "see bitrateHigh" },
};

/// SFF-8636, likewise.
inline constexpr CodeName qsfpBitrateNominalNames[] = {
   { 0xff, "see bitrateExtended" },
};

/// SFF-8636, the revision that a module complies with.
inline constexpr CodeName qsfpRevisionNames[] = {
   { 0x00, "unspecified" },
   { 0x01, "SFF-8436 up to 4.8" },
   { 0x02, "SFF-8436 up to 4.8, but for some bytes" },
   { 0x03, "SFF-8636 1.3" },
   { 0x04, "SFF-8636 1.4" },
   { 0x05, "SFF-8636 1.5" },
   { 0x06, "SFF-8636 2.0" },
   { 0x07, "SFF-8636 2.5 to 2.7" },
   { 0x08, "SFF-8636 2.8 to 2.10" },
};

/// SFF-8636, power classes 1 to 7 in two pairs of bits.
inline constexpr CodeName powerClassNames[] = {
   { 0x00, "power class 1" },
   { 0x40, "power class 2" },
   { 0x80, "power class 3" },
   { 0xc0, "power class 4" },
   { 0xc1, "power class 5" },
   { 0xc2, "power class 6" },
   { 0xc3, "power class 7" },
};

/// SFF-8636, transmitter technologies.
inline constexpr CodeName technologyNames[] = {
   { 0x00, "850 nm VCSEL" },
   { 0x10, "1310 nm VCSEL" },
   { 0x20, "1550 nm VCSEL" },
   { 0x30, "1310 nm FP" },
   { 0x40, "1310 nm DFB" },
   { 0x50, "1550 nm DFB" },
   { 0x60, "1310 nm EML" },
   { 0x70, "1550 nm EML" },
   { 0x80, "other technology" },
   { 0x90, "1490 nm DFB" },
   { 0xa0, "copper, unequalized" },
   { 0xb0, "copper, passive equalized" },
   { 0xc0, "copper, active near and far end" },
   { 0xd0, "copper, active far end" },
   { 0xe0, "copper, active near end" },
   { 0xf0, "copper, linear active" },
};

/// SFF-8636, power in the low power mode.
inline constexpr CodeName lowPowerNames[] = {
   { 0x10, "low power up to 1 W" },
   { 0x20, "low power up to 0.75 W" },
   { 0x30, "low power up to 0.5 W" },
};

/// SFF-8636, the lowest supply voltage.
inline constexpr CodeName minVoltageNames[] = {
   { 0x00, "3.3 V" },
   { 0x01, "2.5 V" },
   { 0x02, "1.8 V" },
};

/// CFP MSA, identifiers, connectors and Ethernet applications, with numbers of their own.
inline constexpr CodeName cfpIdentifierNames[] = {
   { 0x11, "CFP2" },
   { 0x14, "CFPx: analogue coherent" },
   { 0x19, "CFP2-DCO" },
};

inline constexpr CodeName cfpConnectorNames[] = {
   { 0x01, "SC" },
   { 0x07, "LC" },
   { 0x09, "MPO" },
};

inline constexpr CodeName cfpApplicationNames[] = {
   { 0x00, "undefined" },
   { 0x01, "100GBASE-LR4" },
   { 0x02, "100GBASE-ER4" },
   { 0x03, "100GBASE-SR10" },
   { 0x11, "100G DWDM coherent" },
};

/// CMIS, revisions.
inline constexpr CodeName cmisRevisionNames[] = {
   { 0x30, "CMIS 3.0" },
   { 0x40, "CMIS 4.0" },
   { 0x50, "CMIS 5.0" },
   { 0x51, "CMIS 5.1" },
   { 0x52, "CMIS 5.2" },
   { 0x53, "CMIS 5.3" },
};

/// CMIS, what a module is made for.
inline constexpr CodeName moduleTypeNames[] = {
   { 0x00, "undefined" },
   { 0x01, "optical, multimode fibre" },
   { 0x02, "optical, single-mode fibre" },
   { 0x03, "passive copper" },
   { 0x04, "active cable" },
   { 0x05, "BASE-T" },
};

/// CMIS, transmitter technologies.
inline constexpr CodeName mediaTechnologyNames[] = {
   { 0x00, "850 nm VCSEL" },
   { 0x01, "1310 nm VCSEL" },
   { 0x02, "1550 nm VCSEL" },
   { 0x03, "1310 nm FP" },
   { 0x04, "1310 nm DFB" },
   { 0x05, "1550 nm DFB" },
   { 0x06, "1310 nm EML" },
   { 0x07, "1550 nm EML" },
   { 0x08, "other technology" },
   { 0x09, "1490 nm DFB" },
   { 0x0a, "copper, unequalized" },
   { 0x0b, "copper, passive equalized" },
   { 0x0c, "copper, active near and far end" },
   { 0x0d, "copper, active far end" },
   { 0x0e, "copper, active near end" },
   { 0x0f, "copper, linear active" },
   { 0x10, "C-band tunable laser" },
   { 0x11, "L-band tunable laser" },
};

/// CMIS, why a module is in its fault state.
inline constexpr CodeName faultCauseNames[] = {
   { 0x00, "none, or not told" },
   { 0x01, "TEC runaway" },
   { 0x02, "data memory corrupted" },
   { 0x03, "program memory corrupted" },
   { 0x04, "transmitter fault" },
   { 0x05, "receiver fault" },
   { 0x06, "temperature" },
};

/// CMIS, power classes in the highest three bits.
inline constexpr CodeName cmisPowerClassNames[] = {
   { 0x00, "power class 1" },
   { 0x20, "power class 2" },
   { 0x40, "power class 3" },
   { 0x60, "power class 4" },
   { 0x80, "power class 5" },
   { 0xa0, "power class 6" },
   { 0xc0, "power class 7" },
   { 0xe0, "power class 8" },
};

/// CMIS, the state of a module in bits 3-1.
inline constexpr CodeName moduleStateNames[] = {
   { 0x02, "low power" },
   { 0x04, "powering up" },
   { 0x06, "ready" },
   { 0x08, "powering down" },
   { 0x0a, "fault" },
};

/// CMIS, the speed of the management bus.
inline constexpr CodeName busSpeedNames[] = {
   { 0x00, "bus up to 400 kHz" },
   { 0x04, "bus up to 1 MHz" },
};

/// CMIS, the largest code of Tx input equalization.
inline constexpr CodeName maxTxEqNames[] = {
   { 0x01, "Tx EQ up to 1" },
   { 0x02, "Tx EQ up to 2" },
   { 0x03, "Tx EQ up to 3" },
   { 0x04, "Tx EQ up to 4" },
   { 0x05, "Tx EQ up to 5" },
   { 0x06, "Tx EQ up to 6" },
   { 0x07, "Tx EQ up to 7" },
   { 0x08, "Tx EQ up to 8" },
   { 0x09, "Tx EQ up to 9" },
   { 0x0a, "Tx EQ up to 10" },
   { 0x0b, "Tx EQ up to 11" },
   { 0x0c, "Tx EQ up to 12" },
   { 0x0d, "Tx EQ up to 13" },
   { 0x0e, "Tx EQ up to 14" },
   { 0x0f, "Tx EQ up to 15" },
};

struct CodeNames {
   std::string_view field; // its name in the field table
   std::span<CodeName const> names;
   std::string_view page = {}; // of the field, where families number a field differently
};

/// The fields that hold a code, if only instead of some numbers.
inline constexpr CodeNames codeNames[] = {
   { "identifier", cfpIdentifierNames, "8000h" },
   { "connector", cfpConnectorNames, "8000h" },
   { "ethernetApplicationCode", cfpApplicationNames },
   { "identifier", identifierNames },
   { "lowerIdentifier", identifierNames },
   { "extIdentifier", extIdentifierNames },
   { "connector", connectorNames },
   { "encoding", encodingNames, "a0h" },
   { "encoding", qsfpEncodingNames, "00h" },
   { "bitrateNominal", bitrateNominalNames, "a0h" },
   { "bitrateNominal", qsfpBitrateNominalNames, "00h" },
   { "rateIdentifier", rateIdentifierNames },
   { "complianceExtended", complianceExtendedNames },
   { "revision", revisionNames, "a0h" },
   { "revision", cmisRevisionNames, "lower" },
   { "identifierExtended", identifierNames, "00h" }, // of CMIS; that of SFF-8636 are bits
   { "moduleType", moduleTypeNames },
   { "mediaTechnology", mediaTechnologyNames },
   { "faultCause", faultCauseNames },
   { "powerClass", cmisPowerClassNames },
   { "revisionCompliance", qsfpRevisionNames },
};

/// A code among the bits of a field.
struct BitCode {
   std::string_view field;
   std::uint8_t mask;
   std::span<CodeName const> names; // of what the mask leaves
};

inline constexpr BitCode bitCodes[] = {
   { "identifierExtended", 0xc3, powerClassNames },
   { "deviceTech", 0xf0, technologyNames },
   { "lowerProperties", 0xf0, lowPowerNames },
   { "lowerProperties", 0x07, minVoltageNames },
   { "moduleState", 0x0e, moduleStateNames },
   { "memoryAndSpeed", 0x0c, busSpeedNames },
   { "rxAmplitudeAndMaxTxEq", 0x0f, maxTxEqNames },
};
// clang-format on

/// The names for the codes in a field; none for a field that holds no code.
constexpr std::span<CodeName const> codeNamesOf( std::string_view field, std::string_view page ) {
   for ( CodeNames const & row : codeNames ) {
      if ( row.field == field && ( row.page.empty() || row.page == page ) ) {
         return row.names;
      }
   }
   return {};
}

/// What a code stands for; empty if nothing is known.
constexpr std::string_view codeName( std::span<CodeName const> names, std::uint8_t code ) {
   for ( CodeName const & known : names ) {
      if ( known.code == code ) {
         return known.name;
      }
   }
   return {};
}

} // namespace XcvrTool
