#pragma once

#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrCfpxTypes.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

// The registers of a CFP2, CFPx or CFP2-DCO module (CFP MSA management interface specification).
namespace Xcvr {

/// Where a field of a register lies.
struct FieldDescriptor {
   uint16_t address; // of the register
   uint8_t width;    // in bits: 8 a whole byte, 16 a whole word; of a text, eight a character
   uint8_t offset;   // the lowest bit
};

/// How a register is read.
enum class CfpRegisterKind : uint8_t {
   byte,       // by getU8FromTable
   word,       // by getU16FromTable
   signedWord, // the same, a signed number
   text,       // by getStringFromU8Table
   bytes,      // a code of several bytes, which no accessor reads
};

/// A set of modules, by their identifiers.
enum CfpModules : uint8_t {
   noCfpModules = 0,
   cfp2Modules = 1, // whatever is neither of the others
   cfpxModules = 2,
   dcoModules = 4,
   notCfpxModules = cfp2Modules | dcoModules,
   cfpxAndDcoModules = cfpxModules | dcoModules,
   allCfpModules = cfp2Modules | cfpxModules | dcoModules,
};

[[nodiscard]] constexpr CfpModules cfpModulesOf( CfpMsaMisIdentifier identifier ) {
   return identifier == identifierCfpx      ? cfpxModules
          : identifier == identifierCfp2Dco ? dcoModules
                                            : cfp2Modules;
}

/// One register of the family, or the first of a row of registers with one a lane. A name that stands
/// twice has one place in some modules and another in others.
struct CfpRegister {
   std::string_view name; // that of the accessor
   CfpMsaMisTableId table;
   FieldDescriptor field;
   CfpRegisterKind kind;
   CfpModules modules = allCfpModules; // that have the register; of others it reads as 0
   uint8_t lanes = 1;
   std::string_view unit = {}; // of number × scale, in every module; empty where there is none
   double scale = 1;
   std::span<MemoryBit const> bits = {}; // of the field, highest first
};

/// Every register that the accessors know, in the order of tables and addresses.
[[nodiscard]] XCVR_API std::span<CfpRegister const> cfpRegisters();

/// The first register address of a table; 0 for what is no table.
[[nodiscard]] XCVR_API uint16_t cfpFirstAddress( CfpMsaMisTableId table );
/// The table of that first address; `tableInvalid` for none.
[[nodiscard]] XCVR_API CfpMsaMisTableId cfpTableAt( uint16_t firstAddress );
/// What names the table in a module image: "A000h"; empty for what is no table.
[[nodiscard]] XCVR_API std::string_view cfpTableLabel( CfpMsaMisTableId table );
/// Bits of a register of the table: 8 in the identification tables, 16 in all others.
[[nodiscard]] constexpr uint8_t cfpRegisterWidth( CfpMsaMisTableId table ) {
   return table <= table8420 ? 8 : 16;
}

/// The register table behind these functions, here so that accessors find their row while compiling.
namespace CfpTable {

inline constexpr uint16_t tableRegisters = 0x80;

// By the codes of CfpMsaMisTableId.
inline constexpr uint16_t firstAddresses[] = {
   0x8000, 0x8080, 0x8100, 0x8180, 0x8420, 0xA000, 0xA200, 0xA280, 0xA300, 0xA400,
   0xB000, 0xB100, 0xB180, 0xB200, 0xB280, 0xB300, 0xB380, 0xB400, 0xB480, 0xB500,
   0xB580, 0xB600, 0xB680, 0xB700, 0xB800, 0xB880, 0xB900, 0xB980, 0xBA00, 0xBA80,
   0xBB00, 0xBB80, 0x9000, 0x9080, 0x9100, 0x9180, 0x9200, 0x9280,
};
static_assert( std::size( firstAddresses ) == static_cast<size_t>( maxCfpTables ) );

// clang-format off
inline constexpr MemoryBit moduleStateBits[] = {
   { 8, "high power down" },
   { 7, "Tx turn off" },
   { 6, "fault" },
   { 5, "ready" },
   { 4, "Tx turn on" },
   { 3, "Tx off" },
   { 2, "high power up" },
   { 1, "low power" },
   { 0, "initialize" },
};
inline constexpr MemoryBit tuningBits[] = {
   { 15, "6.25 GHz grid" },
   { 14, "12.5 GHz grid" },
   { 13, "25 GHz grid" },
   { 12, "33 GHz grid" },
   { 11, "50 GHz grid" },
   { 10, "100 GHz grid" },
};

using enum CfpRegisterKind;

inline constexpr CfpRegister registers[] = {
   // name, table, { address, width, offset }, kind, modules, lanes, unit, scale, bits
   //
   // The units of fibre lengths, fine tuning and set power are the usual ones; no public document
   // confirms them.

   // Identification.
   { "identifier", table8000, { 0x8000, 8, 0 }, byte },
   { "identifierExtended", table8000, { 0x8001, 8, 0 }, byte },
   { "connector", table8000, { 0x8002, 8, 0 }, byte },
   { "ethernetApplicationCode", table8000, { 0x8003, 8, 0 }, byte },
   { "networkLanes", table8000, { 0x8009, 4, 4 }, byte },
   { "hostLanes", table8000, { 0x8009, 4, 0 }, byte },
   { "networkLaneBitRateMax", table8000, { 0x800B, 8, 0 }, byte, notCfpxModules, 1, "Gb/s", 0.2 },
   { "smfFiberLengthMax", table8000, { 0x800D, 8, 0 }, byte, allCfpModules, 1, "km", 1 },
   { "mmfFiberLengthMax", table8000, { 0x800E, 8, 0 }, byte, notCfpxModules, 1, "m", 10 },
   { "minWavelength", table8000, { 0x8012, 16, 0 }, word, allCfpModules, 1, "nm", 0.025 },
   { "maxWavelength", table8000, { 0x8014, 16, 0 }, word, allCfpModules, 1, "nm", 0.025 },
   { "vendorName", table8000, { 0x8021, 128, 0 }, text },
   { "vendorOui", table8000, { 0x8031, 24, 0 }, bytes },
   { "vendorPn", table8000, { 0x8034, 128, 0 }, text },
   { "vendorSn", table8000, { 0x8044, 128, 0 }, text },
   { "dateCode", table8000, { 0x8054, 64, 0 }, text },
   { "mgmtRevSupported", table8000, { 0x8069, 8, 0 }, byte },
   { "hardwareVersion", table8000, { 0x806A, 16, 0 }, bytes },  // major, minor
   { "firmwareVersionA", table8000, { 0x806C, 16, 0 }, bytes }, // the same
   { "voltageSupported", table8000, { 0x806F, 1, 1 }, byte },
   { "tempSupported", table8000, { 0x806F, 1, 0 }, byte },
   { "rxPowerSupported", table8000, { 0x8070, 1, 3 }, byte },
   { "txPowerSupported", table8000, { 0x8070, 1, 2 }, byte },
   { "txBiasSupported", table8000, { 0x8070, 1, 1 }, byte },
   { "timeHighPowerUpMax", table8000, { 0x8072, 8, 0 }, byte },
   { "timeTxTurnOnMax", table8000, { 0x8073, 8, 0 }, byte },
   { "firmwareVersionB", table8000, { 0x807B, 16, 0 }, bytes },
   { "checksum8000", table8000, { 0x807F, 8, 0 }, byte },

   // Thresholds. Those of bias and transmit power have other units in CFPx and CFP2-DCO modules.
   { "tempHighAlarm", table8080, { 0x8080, 16, 0 }, signedWord, allCfpModules, 1, "°C", 1 / 256. },
   { "tempHighWarn", table8080, { 0x8082, 16, 0 }, signedWord, allCfpModules, 1, "°C", 1 / 256. },
   { "tempLowWarn", table8080, { 0x8084, 16, 0 }, signedWord, allCfpModules, 1, "°C", 1 / 256. },
   { "tempLowAlarm", table8080, { 0x8086, 16, 0 }, signedWord, allCfpModules, 1, "°C", 1 / 256. },
   { "voltageHighAlarm", table8080, { 0x8088, 16, 0 }, word, allCfpModules, 1, "V", 0.0001 },
   { "voltageHighWarn", table8080, { 0x808A, 16, 0 }, word, allCfpModules, 1, "V", 0.0001 },
   { "voltageLowWarn", table8080, { 0x808C, 16, 0 }, word, allCfpModules, 1, "V", 0.0001 },
   { "voltageLowAlarm", table8080, { 0x808E, 16, 0 }, word, allCfpModules, 1, "V", 0.0001 },
   { "txBiasHighAlarm", table8080, { 0x80A8, 16, 0 }, word },
   { "txBiasHighWarn", table8080, { 0x80AA, 16, 0 }, word },
   { "txBiasLowWarn", table8080, { 0x80AC, 16, 0 }, word },
   { "txBiasLowAlarm", table8080, { 0x80AE, 16, 0 }, word },
   { "txPowerHighAlarm", table8080, { 0x80B0, 16, 0 }, word },
   { "txPowerHighWarn", table8080, { 0x80B2, 16, 0 }, word },
   { "txPowerLowWarn", table8080, { 0x80B4, 16, 0 }, word },
   { "txPowerLowAlarm", table8080, { 0x80B6, 16, 0 }, word },
   { "rxPowerHighAlarm", table8080, { 0x80C0, 16, 0 }, word, allCfpModules, 1, "mW", 0.0001 },
   { "rxPowerHighWarn", table8080, { 0x80C2, 16, 0 }, word, allCfpModules, 1, "mW", 0.0001 },
   { "rxPowerLowWarn", table8080, { 0x80C4, 16, 0 }, word, allCfpModules, 1, "mW", 0.0001 },
   { "rxPowerLowAlarm", table8080, { 0x80C6, 16, 0 }, word, allCfpModules, 1, "mW", 0.0001 },
   { "checksum8080", table8080, { 0x80FF, 8, 0 }, byte },

   // The checksum of table 8100h is the first register of the next table: intended, leave it there.
   { "checksum8100", table8180, { 0x8180, 8, 0 }, byte },
   { "mmfFiberLengthMax", table8180, { 0x8181, 8, 0 }, byte, cfpxModules, 1, "m", 10 },
   // A byte read of sixteen bits, which that read refuses: the rate of a CFPx is 0. Intended.
   { "networkLaneBitRateMax", table8180, { 0x8184, 16, 0 }, byte, cfpxModules },
   { "minFrequencyTHz", table8180, { 0x818A, 16, 0 }, word, allCfpModules, 1, "THz", 1 },
   { "minFrequencyGHz", table8180, { 0x818C, 16, 0 }, word, allCfpModules, 1, "GHz", 0.05 },
   { "maxFrequencyTHz", table8180, { 0x818E, 16, 0 }, word, allCfpModules, 1, "THz", 1 },
   { "maxFrequencyGHz", table8180, { 0x8190, 16, 0 }, word, allCfpModules, 1, "GHz", 0.05 },
   { "txFineTuneRange", table8180, { 0x8194, 16, 0 }, word, allCfpModules, 1, "MHz", 1 },
   { "tuningCapabilities", table8180, { 0x8196, 16, 0 }, word, allCfpModules, 1, "", 1, tuningBits },
   { "checksum8180", table8180, { 0x81FF, 8, 0 }, byte },

   { "vendorRevFirst", table8420, { 0x8420, 8, 0 }, byte },
   { "vendorRevSecond", table8420, { 0x8421, 8, 0 }, byte },

   // Status and monitors of a CFP2. A CFP2-DCO has some of them here, some in the tables of a CFPx.
   { "globalAlarmSummary", tableA000, { 0xA018, 16, 0 }, word, notCfpxModules },
   { "networkLaneAWSummary", tableA000, { 0xA019, 16, 0 }, word, notCfpxModules },
   { "networkLaneFSSummary", tableA000, { 0xA01A, 16, 0 }, word, notCfpxModules },
   { "hostLaneFSSummary", tableA000, { 0xA01B, 16, 0 }, word, notCfpxModules },
   { "temperature", tableA000, { 0xA02F, 16, 0 }, signedWord, cfp2Modules, 1, "°C", 1 / 256. },
   { "voltage", tableA000, { 0xA030, 16, 0 }, word, cfp2Modules, 1, "V", 0.0001 },
   { "networkLaneFaultStatus", tableA200, { 0xA210, 16, 0 }, word, notCfpxModules, 16 },
   { "txBias", tableA280, { 0xA2A0, 16, 0 }, word, notCfpxModules, 16, "mA", 0.002 },
   { "txPower", tableA280, { 0xA2B0, 16, 0 }, word, allCfpModules, 16, "mW", 0.0001 },
   { "rxPower", tableA280, { 0xA2D0, 16, 0 }, word, allCfpModules, 16, "mW", 0.0001 },
   { "hostLaneFaultStatus", tableA400, { 0xA400, 16, 0 }, word, notCfpxModules, 16 },
   { "txInputEqualization", tableA400, { 0xA440, 8, 8 }, word, allCfpModules, 16 },
   { "rxOutputPreEmphasis", tableA400, { 0xA440, 4, 0 }, word, allCfpModules, 16 },

   // Status, monitors and tuning of a CFPx or CFP2-DCO.
   { "moduleGeneralControl", tableB000, { 0xB010, 16, 0 }, word, cfpxAndDcoModules },
   { "moduleState", tableB000, { 0xB016, 16, 0 }, word, cfpxAndDcoModules, 1, "", 1, moduleStateBits },
   { "globalAlarmSummary", tableB000, { 0xB018, 16, 0 }, word, cfpxModules },
   { "networkLaneAWSummary", tableB000, { 0xB019, 16, 0 }, word, cfpxModules },
   { "networkLaneFSSummary", tableB000, { 0xB01A, 16, 0 }, word, cfpxModules },
   { "hostLaneFSSummary", tableB000, { 0xB01B, 16, 0 }, word, cfpxModules },
   { "moduleGeneralStatus", tableB000, { 0xB01D, 16, 0 }, word, cfpxAndDcoModules },
   { "moduleFaultStatus", tableB000, { 0xB01E, 16, 0 }, word, cfpxAndDcoModules },
   { "vendorSpecificFAWS", tableB000, { 0xB021, 16, 0 }, word, cfpxAndDcoModules },
   { "moduleGeneralStatusLatched", tableB000, { 0xB023, 16, 0 }, word, cfpxAndDcoModules },
   { "moduleFaultStatusLatched", tableB000, { 0xB024, 16, 0 }, word, cfpxAndDcoModules },
   { "vendorSpecificFAWSLatched", tableB000, { 0xB027, 16, 0 }, word, cfpxAndDcoModules },
   { "temperature", tableB000, { 0xB02F, 16, 0 }, signedWord, cfpxAndDcoModules, 1, "°C", 1 / 256. },
   { "voltage", tableB000, { 0xB030, 16, 0 }, word, cfpxAndDcoModules, 1, "V", 0.001 },
   { "moduleExtendedFunctionStatusLatched", tableB000, { 0xB054, 16, 0 }, word },
   { "networkLaneVendorSpecificFAWS", tableB100, { 0xB100, 16, 0 }, word },
   { "networkLaneVendorSpecificFAWSLatched", tableB100, { 0xB110, 16, 0 }, word },
   { "txBias", tableB300, { 0xB320, 16, 0 }, word, cfpxModules, 16, "mA", 0.002 },
   { "txChannel", tableB400, { 0xB400, 16, 0 }, word },
   { "txPowerConfig", tableB400, { 0xB410, 16, 0 }, signedWord, allCfpModules, 1, "dBm", 0.01 },
   { "txFineTuneFreq", tableB400, { 0xB430, 16, 0 }, signedWord, allCfpModules, 1, "MHz", 1 },
   { "txPowerCfpx", tableB480, { 0xB4A0, 16, 0 }, signedWord, allCfpModules, 16, "dBm", 0.01 },
   { "rxPowerCfpx", tableB480, { 0xB4E0, 16, 0 }, signedWord, allCfpModules, 16, "dBm", 0.01 },

   // The line of a CFP2-DCO. Units here are those of the same quantities in CMIS, since no public
   // document has any for these registers; what CMIS lacks has none.
   { "rxChromDispersionHigh", tableB800, { 0xB800, 16, 0 }, word },
   { "rxChromDispersionLow", tableB800, { 0xB810, 16, 0 }, word }, // not adjacent: intended
   { "rxDiffGroupDelay", tableB880, { 0xB880, 16, 0 }, word },
   { "rxStateOfPolarization", tableB900, { 0xB900, 16, 0 }, word },
   { "rxQFactor", tableB980, { 0xB980, 16, 0 }, word },
   { "rxCarrierFreqOffset", tableB980, { 0xB9C0, 16, 0 }, signedWord, allCfpModules, 1, "MHz", 1 },
   { "rxSnr", tableBA00, { 0xBA00, 16, 0 }, word, allCfpModules, 1, "dB", 0.1 },

   // The analogue part of a CFPx. The channels of the transmit skew are interleaved on purpose:
   // channel 1 has the third register, channel 2 the second.
   { "txSkew0", tableBA80, { 0xBAE0, 16, 0 }, signedWord },
   { "txSkew2", tableBA80, { 0xBAE1, 16, 0 }, signedWord },
   { "txSkew1", tableBA80, { 0xBAE2, 16, 0 }, signedWord },
   { "txSkew3", tableBA80, { 0xBAE3, 16, 0 }, signedWord },
   { "rxSkew1", tableBA80, { 0xBAEA, 16, 0 }, signedWord },
   { "rxSkew3", tableBA80, { 0xBAEB, 16, 0 }, signedWord },
   { "txHvSwap", tableBB00, { 0xBB00, 1, 15 }, word },
   { "txIqSwap", tableBB00, { 0xBB00, 2, 13 }, word },
   { "txSkewAvailable", tableBB00, { 0xBB00, 1, 9 }, word },
   { "txRfDriverType", tableBB00, { 0xBB04, 2, 14 }, word },
   { "modFormatSel", tableBB00, { 0xBB06, 16, 0 }, word, cfpxModules },
   { "txRfEnabledStatus", tableBB00, { 0xBB54, 16, 0 }, word, cfpxModules },
   { "txDriverCtrl", tableBB00, { 0xBB5F, 16, 0 }, word, cfpxModules },
   { "rxHvSwap", tableBB80, { 0xBB8A, 1, 15 }, word },
   { "rxIqSwap", tableBB80, { 0xBB8A, 2, 13 }, word },
   { "rxSkewAvailable", tableBB80, { 0xBB8A, 1, 9 }, word },
   { "rxSubsystemCtrl", tableBB80, { 0xBB8D, 16, 0 }, word, cfpxModules },
   { "maxRxAttenuation", tableBB80, { 0xBB95, 16, 0 }, word, allCfpModules, 1, "dB", 0.01 },
   { "currRxAttenuation", tableBB80, { 0xBB97, 16, 0 }, word, allCfpModules, 1, "dB", 0.01 },
   { "perChannelRxPower", tableBB80, { 0xBBF4, 16, 0 }, word },

   // The network side of a CFP2-DCO.
   { "txTurnUpState", table9000, { 0x9008, 16, 0 }, word },
   { "rxTurnUpState", table9000, { 0x9009, 16, 0 }, word },
   { "networkBerHigh", table9000, { 0x9050, 16, 0 }, word },
   { "networkBerLow", table9000, { 0x9051, 16, 0 }, word },
   { "netFecUncBlkCountHigh", table9000, { 0x9058, 16, 0 }, word },
   { "netFecUncBlkCountLow", table9000, { 0x9059, 16, 0 }, word },
   { "laserAge", table9100, { 0x9104, 16, 0 }, word },
   { "laserFaultCode", table9100, { 0x9105, 16, 0 }, word },
   { "networkOsnrEstimate", table9100, { 0x9130, 16, 0 }, word, allCfpModules, 1, "dB", 0.1 },
   { "netLaneRxChannelPower", table9100, { 0x9176, 16, 0 }, signedWord, allCfpModules, 1, "dBm", 0.01 },
   { "clientIntfPcsAlarmStatus", table9200, { 0x9238, 16, 0 }, word, allCfpModules, 2 },
   { "clientIntfPcsAlarmStatusLatched", table9200, { 0x923A, 16, 0 }, word, allCfpModules, 2 },
};
// clang-format on

/// One place of a register, for the modules that have it there.
struct Place {
   CfpMsaMisTableId table = tableInvalid;
   FieldDescriptor field = {};
   CfpModules modules = noCfpModules;
   CfpRegisterKind kind = CfpRegisterKind::byte;
};

/// The places of a register: one or two.
struct Access {
   std::string_view name;
   Place places[2];
   uint8_t lanes;

   /// Whether all modules have it in one place.
   [[nodiscard]] constexpr bool anywhere() const { return places[0].modules == allCfpModules; }
   /// Where some module has it: no place when it lacks the register.
   [[nodiscard]] constexpr Place placeIn( CfpModules module ) const {
      return places[0].modules & module   ? places[0]
             : places[1].modules & module ? places[1]
                                          : Place();
   }
};

/// The places of the register of that name; a name that the table lacks does not compile.
consteval Access access( std::string_view name ) {
   Access result{};
   size_t count = 0;
   for ( CfpRegister const & row : registers ) {
      if ( row.name == name ) {
         result.places[count++] = { row.table, row.field, row.modules, row.kind };
         result.name = row.name;
         result.lanes = row.lanes;
      }
   }
   return count != 0 ? result : throw "no such register";
}

} // namespace CfpTable

} // namespace Xcvr
