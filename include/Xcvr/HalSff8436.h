#pragma once

#include <Vel/Enum.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <span>
#include <string_view>

// The memory of a QSFP, QSFP+ or QSFP28 module (SFF-8636, and SFF-8436 before it): the lower page,
// which is always visible, and behind it one of the upper pages.
namespace Xcvr {

/// A page of SFF-8436 memory, of 128 bytes. The codes number the pages of a module's status.
VEL_ENUM( Sff8436PageId,
   eepromPage00Lower,  // status, flags, monitors, controls
   eepromPage00Upper,  // identification
   eepromPage02Upper,  // the user's text
   eepromPage03Upper,  // thresholds, signal controls
   eepromPage20hUpper, // enhanced monitors
   eepromPage21hUpper, // their thresholds
   maxQsfpPages, sff8436PageInvalid );
using enum Sff8436PageId;

/// What a module's transmitter is (upper page 00h byte 147 bits 7-4). From `copperUnequalized` on
/// the medium is copper.
VEL_ENUM( Sff8436DeviceTechnology,
   vcsel850nm, vcsel1310nm, vcsel1550nm, fp1310nm, dfb1310nm, dfb1550nm, eml1310nm, eml1550nm,
   otherTechnology, dfb1490nm,
   copperUnequalized, copperPassiveEqualized, copperNearAndFarEndActive, copperFarEndActive,
   copperNearEndActive, copperLinearActive );

/// Copper without an equaliser, or with a passive one.
constexpr bool isPassiveCopper( Sff8436DeviceTechnology technology ) {
   return technology == Sff8436DeviceTechnology::copperUnequalized ||
          technology == Sff8436DeviceTechnology::copperPassiveEqualized;
}

/// Every field of all pages, in the order of pages and addresses.
[[nodiscard]] XCVR_API std::span<MemoryField const> sff8436Fields();

/// The runs of bytes that hold only in some modules.
[[nodiscard]] XCVR_API std::span<MemoryCondition const> sff8436Conditions();

/// The field tables behind these functions, here so that accessors find their row while compiling.
/// An address on an upper page counts from the page's start: it is the module's byte less 128.
namespace Sff8436Table {

inline constexpr uint32_t pageSize = 128;
inline constexpr uint32_t upperPageStart = 128; // the module's byte of address 0 on an upper page

// Names of bits; reserved bits, and bits that revisions of the standard disagree on, have none.
// clang-format off
inline constexpr MemoryBit moduleStatusBits[] = {
   { 2, "flat memory" },
   { 1, "interrupt not asserted" },
   { 0, "data not ready" },
};

inline constexpr MemoryBit losBits[] = {
   { 7, "Tx4 LOS" },
   { 6, "Tx3 LOS" },
   { 5, "Tx2 LOS" },
   { 4, "Tx1 LOS" },
   { 3, "Rx4 LOS" },
   { 2, "Rx3 LOS" },
   { 1, "Rx2 LOS" },
   { 0, "Rx1 LOS" },
};

inline constexpr MemoryBit faultBits[] = {
   { 7, "Tx4 adaptive EQ fault" },
   { 6, "Tx3 adaptive EQ fault" },
   { 5, "Tx2 adaptive EQ fault" },
   { 4, "Tx1 adaptive EQ fault" },
   { 3, "Tx4 fault" },
   { 2, "Tx3 fault" },
   { 1, "Tx2 fault" },
   { 0, "Tx1 fault" },
};

inline constexpr MemoryBit lolBits[] = {
   { 7, "Tx4 CDR loss of lock" },
   { 6, "Tx3 CDR loss of lock" },
   { 5, "Tx2 CDR loss of lock" },
   { 4, "Tx1 CDR loss of lock" },
   { 3, "Rx4 CDR loss of lock" },
   { 2, "Rx3 CDR loss of lock" },
   { 1, "Rx2 CDR loss of lock" },
   { 0, "Rx1 CDR loss of lock" },
};

inline constexpr MemoryBit temperatureFlagBits[] = {
   { 7, "temperature high alarm" },
   { 6, "temperature low alarm" },
   { 5, "temperature high warning" },
   { 4, "temperature low warning" },
   { 1, "TC readiness changed" },
   { 0, "initialisation complete" },
};

inline constexpr MemoryBit voltageFlagBits[] = {
   { 7, "voltage high alarm" },
   { 6, "voltage low alarm" },
   { 5, "voltage high warning" },
   { 4, "voltage low warning" },
};

// Four flags a lane, the first lane highest.
inline constexpr MemoryBit rxPowerFlagBits[] = {
   { 15, "Rx power 1 high alarm" },
   { 14, "Rx power 1 low alarm" },
   { 13, "Rx power 1 high warning" },
   { 12, "Rx power 1 low warning" },
   { 11, "Rx power 2 high alarm" },
   { 10, "Rx power 2 low alarm" },
   { 9, "Rx power 2 high warning" },
   { 8, "Rx power 2 low warning" },
   { 7, "Rx power 3 high alarm" },
   { 6, "Rx power 3 low alarm" },
   { 5, "Rx power 3 high warning" },
   { 4, "Rx power 3 low warning" },
   { 3, "Rx power 4 high alarm" },
   { 2, "Rx power 4 low alarm" },
   { 1, "Rx power 4 high warning" },
   { 0, "Rx power 4 low warning" },
};

inline constexpr MemoryBit txBiasFlagBits[] = {
   { 15, "Tx bias 1 high alarm" },
   { 14, "Tx bias 1 low alarm" },
   { 13, "Tx bias 1 high warning" },
   { 12, "Tx bias 1 low warning" },
   { 11, "Tx bias 2 high alarm" },
   { 10, "Tx bias 2 low alarm" },
   { 9, "Tx bias 2 high warning" },
   { 8, "Tx bias 2 low warning" },
   { 7, "Tx bias 3 high alarm" },
   { 6, "Tx bias 3 low alarm" },
   { 5, "Tx bias 3 high warning" },
   { 4, "Tx bias 3 low warning" },
   { 3, "Tx bias 4 high alarm" },
   { 2, "Tx bias 4 low alarm" },
   { 1, "Tx bias 4 high warning" },
   { 0, "Tx bias 4 low warning" },
};

inline constexpr MemoryBit txPowerFlagBits[] = {
   { 15, "Tx power 1 high alarm" },
   { 14, "Tx power 1 low alarm" },
   { 13, "Tx power 1 high warning" },
   { 12, "Tx power 1 low warning" },
   { 11, "Tx power 2 high alarm" },
   { 10, "Tx power 2 low alarm" },
   { 9, "Tx power 2 high warning" },
   { 8, "Tx power 2 low warning" },
   { 7, "Tx power 3 high alarm" },
   { 6, "Tx power 3 low alarm" },
   { 5, "Tx power 3 high warning" },
   { 4, "Tx power 3 low warning" },
   { 3, "Tx power 4 high alarm" },
   { 2, "Tx power 4 low alarm" },
   { 1, "Tx power 4 high warning" },
   { 0, "Tx power 4 low warning" },
};

inline constexpr MemoryBit txDisableBits[] = {
   { 3, "Tx4 disable" },
   { 2, "Tx3 disable" },
   { 1, "Tx2 disable" },
   { 0, "Tx1 disable" },
};

inline constexpr MemoryBit powerControlBits[] = {
   { 7, "software reset" },
   { 3, "power class 8 enabled" },
   { 2, "power classes 5 to 7 enabled" },
   { 1, "low power mode" },
   { 0, "power mode set by software" },
};

inline constexpr MemoryBit cdrControlBits[] = {
   { 7, "Tx4 CDR on" },
   { 6, "Tx3 CDR on" },
   { 5, "Tx2 CDR on" },
   { 4, "Tx1 CDR on" },
   { 3, "Rx4 CDR on" },
   { 2, "Rx3 CDR on" },
   { 1, "Rx2 CDR on" },
   { 0, "Rx1 CDR on" },
};

inline constexpr MemoryBit pinControlBits[] = {
   { 1, "LPMode pin is TxDis" },
   { 0, "IntL pin is LOSL" },
};

inline constexpr MemoryBit lowerPropertyBits[] = {
   { 3, "far side managed" },
};

inline constexpr MemoryBit identifierExtendedBits[] = {
   { 5, "power class 8" },
   { 4, "CLEI code" },
   { 3, "Tx CDR" },
   { 2, "Rx CDR" },
};

inline constexpr MemoryBit complianceBits[] = {
   // byte 131: 10 and 40 gigabit Ethernet
   { 63, "extended compliance" },
   { 62, "10GBASE-LRM" },
   { 61, "10GBASE-LR" },
   { 60, "10GBASE-SR" },
   { 59, "40GBASE-CR4" },
   { 58, "40GBASE-SR4" },
   { 57, "40GBASE-LR4" },
   { 56, "40G active cable" },
   // bytes 132 to 134: SONET, SAS, gigabit Ethernet
   { 50, "OC-48 long reach" },
   { 49, "OC-48 intermediate reach" },
   { 48, "OC-48 short reach" },
   { 47, "SAS 24G" },
   { 46, "SAS 12G" },
   { 45, "SAS 6G" },
   { 35, "1000BASE-T" },
   { 34, "1000BASE-CX" },
   { 33, "1000BASE-LX" },
   { 32, "1000BASE-SX" },
   // bytes 135 and 136: Fibre Channel distance and technology
   { 31, "FC very long distance" },
   { 30, "FC short distance" },
   { 29, "FC intermediate distance" },
   { 28, "FC long distance" },
   { 27, "FC medium distance" },
   { 25, "FC longwave laser (LC)" },
   { 24, "FC electrical inter-enclosure" },
   { 23, "FC electrical intra-enclosure" },
   { 22, "FC shortwave laser without OFC" },
   { 21, "FC shortwave laser with OFC" },
   { 20, "FC longwave laser (LL)" },
   // bytes 137 and 138: Fibre Channel media and speed
   { 15, "FC twin axial pair" },
   { 14, "FC twisted pair" },
   { 13, "FC miniature coax" },
   { 12, "FC video coax" },
   { 11, "FC multimode 62.5 um" },
   { 10, "FC multimode 50 um" },
   { 9, "FC multimode 50 um OM3" },
   { 8, "FC single mode" },
   { 7, "FC 1200 MB/s" },
   { 6, "FC 800 MB/s" },
   { 5, "FC 1600 MB/s" },
   { 4, "FC 400 MB/s" },
   { 3, "FC 3200 MB/s" },
   { 2, "FC 200 MB/s" },
   { 0, "FC 100 MB/s" },
};

inline constexpr MemoryBit rateSelectBits[] = {
   { 1, "rate select version 2" },
   { 0, "rate select version 1" },
};

inline constexpr MemoryBit deviceTechBits[] = {
   { 3, "active wavelength control" },
   { 2, "cooled transmitter" },
   { 1, "APD detector" },
   { 0, "tunable transmitter" },
};

inline constexpr MemoryBit infinibandBits[] = {
   { 5, "HDR" },
   { 4, "EDR" },
   { 3, "FDR" },
   { 2, "QDR" },
   { 1, "DDR" },
   { 0, "SDR" },
};

inline constexpr MemoryBit optionBits[] = {
   { 22, "LPMode/TxDis configurable" },
   { 21, "IntL/RxLOSL configurable" },
   { 20, "Tx adaptive EQ freeze" },
   { 19, "Tx input EQ auto-adaptive" },
   { 18, "Tx input EQ fixed" },
   { 17, "Rx output emphasis" },
   { 16, "Rx output amplitude" },
   { 15, "Tx CDR control" },
   { 14, "Rx CDR control" },
   { 13, "Tx CDR loss of lock" },
   { 12, "Rx CDR loss of lock" },
   { 11, "Rx squelch disable" },
   { 10, "Rx output disable" },
   { 9, "Tx squelch disable" },
   { 8, "Tx squelch" },
   { 7, "page 02h" },
   { 6, "page 01h" },
   { 5, "rate select" },
   { 4, "Tx disable" },
   { 3, "Tx fault" },
   { 2, "Tx squelch on average power" },
   { 1, "Tx LOS" },
   { 0, "pages 20h and 21h" },
};

inline constexpr MemoryBit diagsMonitoringTypeBits[] = {
   { 5, "temperature monitor" },
   { 4, "supply voltage monitor" },
   { 3, "received power is average power" },
   { 2, "Tx power monitor" },
};

inline constexpr MemoryBit enhancedOptionBits[] = {
   { 4, "initialisation complete flag" },
   { 3, "extended rate select" },
   { 2, "application select table" },
   { 1, "TC readiness flag" },
   { 0, "software reset" },
};

inline constexpr MemoryBit squelchBits[] = {
   { 7, "Rx4 squelch disable" },
   { 6, "Rx3 squelch disable" },
   { 5, "Rx2 squelch disable" },
   { 4, "Rx1 squelch disable" },
   { 3, "Tx4 squelch disable" },
   { 2, "Tx3 squelch disable" },
   { 1, "Tx2 squelch disable" },
   { 0, "Tx1 squelch disable" },
};

inline constexpr MemoryBit outputBits[] = {
   { 7, "Rx4 output disable" },
   { 6, "Rx3 output disable" },
   { 5, "Rx2 output disable" },
   { 4, "Rx1 output disable" },
   { 3, "Tx4 adaptive EQ" },
   { 2, "Tx3 adaptive EQ" },
   { 1, "Tx2 adaptive EQ" },
   { 0, "Tx1 adaptive EQ" },
};

inline constexpr MemoryBit statisticsBits[] = {
   { 7, "reset error statistics" },
};

using enum MemoryKind;
inline constexpr std::string_view lower = "lower";
inline constexpr std::string_view upper00h = "00h";
inline constexpr std::string_view upper02h = "02h";
inline constexpr std::string_view upper03h = "03h";
inline constexpr std::string_view upper20h = "20h";
inline constexpr std::string_view upper21h = "21h";
inline constexpr bool shared = true;

// The number in a field times its scale is in its unit. Monitors are calibrated by the module.
// Fields of four half bytes have one a lane, the first lane highest.
inline constexpr MemoryField fields[] = {
   // name, page, first byte, width, kind, unit, scale, bits, shared
   { "lowerIdentifier", lower, 0, 1, u8 },
   { "revisionCompliance", lower, 1, 1, u8 },
   { "moduleStatus", lower, 2, 1, bits, "", 1, moduleStatusBits },
   { "losFlags", lower, 3, 1, bits, "", 1, losBits },
   { "faultFlags", lower, 4, 1, bits, "", 1, faultBits },
   { "lolFlags", lower, 5, 1, bits, "", 1, lolBits },
   { "temperatureFlags", lower, 6, 1, bits, "", 1, temperatureFlagBits },
   { "voltageFlags", lower, 7, 1, bits, "", 1, voltageFlagBits },
   { "rxPowerFlags", lower, 9, 2, bits, "", 1, rxPowerFlagBits },
   { "txBiasFlags", lower, 11, 2, bits, "", 1, txBiasFlagBits },
   { "txPowerFlags", lower, 13, 2, bits, "", 1, txPowerFlagBits },
   { "temperature", lower, 22, 2, s16be, "°C", 1 / 256. },
   { "supplyVoltage", lower, 26, 2, u16be, "V", 0.0001 },
   { "rxPower1", lower, 34, 2, u16be, "mW", 0.0001 },
   { "rxPower2", lower, 36, 2, u16be, "mW", 0.0001 },
   { "rxPower3", lower, 38, 2, u16be, "mW", 0.0001 },
   { "rxPower4", lower, 40, 2, u16be, "mW", 0.0001 },
   { "txBias1", lower, 42, 2, u16be, "mA", 0.002 },
   { "txBias2", lower, 44, 2, u16be, "mA", 0.002 },
   { "txBias3", lower, 46, 2, u16be, "mA", 0.002 },
   { "txBias4", lower, 48, 2, u16be, "mA", 0.002 },
   { "txPower1", lower, 50, 2, u16be, "mW", 0.0001 },
   { "txPower2", lower, 52, 2, u16be, "mW", 0.0001 },
   { "txPower3", lower, 54, 2, u16be, "mW", 0.0001 },
   { "txPower4", lower, 56, 2, u16be, "mW", 0.0001 },
   { "txDisable", lower, 86, 1, bits, "", 1, txDisableBits },
   // Two bits a lane, the first lane lowest.
   { "rxRateSelect", lower, 87, 1, u8 },
   { "txRateSelect", lower, 88, 1, u8 },
   { "powerControl", lower, 93, 1, bits, "", 1, powerControlBits },
   { "cdrControl", lower, 98, 1, bits, "", 1, cdrControlBits },
   { "pinControl", lower, 99, 1, bits, "", 1, pinControlBits },
   { "losMasks", lower, 100, 1, bits, "", 1, losBits },
   { "faultMasks", lower, 101, 1, bits, "", 1, faultBits },
   { "lolMasks", lower, 102, 1, bits, "", 1, lolBits },
   { "temperatureMasks", lower, 103, 1, u8 },
   { "voltageMasks", lower, 104, 1, u8 },
   { "maxPower", lower, 107, 1, u8, "W", 0.1 },
   { "propagationDelay", lower, 108, 2, u16be, "ns", 10 },
   { "lowerProperties", lower, 110, 1, bits, "", 1, lowerPropertyBits },
   { "laneImplementation", lower, 113, 1, u8 },
   { "pageSelect", lower, 127, 1, u8 },

   { "identifier", upper00h, 0, 1, u8 },
   { "identifierExtended", upper00h, 1, 1, bits, "", 1, identifierExtendedBits },
   { "connector", upper00h, 2, 1, u8 },
   { "compliance", upper00h, 3, 8, bits, "", 1, complianceBits },
   // The first of them alone, which decides most; a page may end behind it.
   { "complianceEth10And40G", upper00h, 3, 1, u8, "", 1, {}, shared },
   { "encoding", upper00h, 11, 1, u8 },
   { "bitrateNominal", upper00h, 12, 1, u8, "MBd", 100 },
   { "extendedRateSelectCompliance", upper00h, 13, 1, bits, "", 1, rateSelectBits },
   { "lengthSmf", upper00h, 14, 1, u8, "km" },
   { "lengthOm3", upper00h, 15, 1, u8, "m", 2 },
   { "lengthOm2", upper00h, 16, 1, u8, "m" },
   { "lengthOm1", upper00h, 17, 1, u8, "m" },
   { "lengthCableOrOm4", upper00h, 18, 1, u8, "m" },
   // The same byte of a transmitter of 850 nm: in a module for multimode fibre, and in a cable.
   { "lengthOm4", upper00h, 18, 1, u8, "m", 2, {}, shared },
   { "lengthActiveCable", upper00h, 18, 1, u8, "m", 1, {}, shared },
   { "deviceTech", upper00h, 19, 1, bits, "", 1, deviceTechBits },
   { "vendorName", upper00h, 20, 16, text },
   { "infiniband", upper00h, 36, 1, bits, "", 1, infinibandBits },
   { "vendorOui", upper00h, 37, 3, bytes },
   { "vendorPn", upper00h, 40, 16, text },
   { "vendorRev", upper00h, 56, 2, text },
   { "laserWavelength", upper00h, 58, 2, u16be, "nm", 0.05 },
   // A copper cable has no wavelength and keeps its attenuation in the bytes of it and of its
   // tolerance.
   { "attenuation2p5GHz", upper00h, 58, 1, u8, "dB", 1, {}, shared },
   { "attenuation5GHz", upper00h, 59, 1, u8, "dB", 1, {}, shared },
   { "wavelengthTolerance", upper00h, 60, 2, u16be, "nm", 0.005 },
   { "attenuation7GHz", upper00h, 60, 1, u8, "dB", 1, {}, shared },
   { "attenuation12p9GHz", upper00h, 61, 1, u8, "dB", 1, {}, shared },
   { "maxCaseTemp", upper00h, 62, 1, u8, "°C" },
   { "baseChecksum", upper00h, 63, 1, u8 },
   { "complianceExtended", upper00h, 64, 1, u8 },
   { "options", upper00h, 65, 3, bits, "", 1, optionBits },
   { "vendorSn", upper00h, 68, 16, text },
   { "dateCode", upper00h, 84, 8, text },
   { "diagsMonitoringType", upper00h, 92, 1, bits, "", 1, diagsMonitoringTypeBits },
   { "enhancedOptions", upper00h, 93, 1, bits, "", 1, enhancedOptionBits },
   { "bitrateExtended", upper00h, 94, 1, u8, "MBd", 250 },
   { "extendedChecksum", upper00h, 95, 1, u8 },
   { "vendorSpecific", upper00h, 96, 32, bytes },

   { "userText", upper02h, 0, 128, text, "", 1, {}, shared },
   { "cleiCode", upper02h, 0, 10, text },

   { "tempHighAlarm", upper03h, 0, 2, s16be, "°C", 1 / 256. },
   { "tempLowAlarm", upper03h, 2, 2, s16be, "°C", 1 / 256. },
   { "tempHighWarn", upper03h, 4, 2, s16be, "°C", 1 / 256. },
   { "tempLowWarn", upper03h, 6, 2, s16be, "°C", 1 / 256. },
   { "voltageHighAlarm", upper03h, 16, 2, u16be, "V", 0.0001 },
   { "voltageLowAlarm", upper03h, 18, 2, u16be, "V", 0.0001 },
   { "voltageHighWarn", upper03h, 20, 2, u16be, "V", 0.0001 },
   { "voltageLowWarn", upper03h, 22, 2, u16be, "V", 0.0001 },
   { "rxPowerHighAlarm", upper03h, 48, 2, u16be, "mW", 0.0001 },
   { "rxPowerLowAlarm", upper03h, 50, 2, u16be, "mW", 0.0001 },
   { "rxPowerHighWarn", upper03h, 52, 2, u16be, "mW", 0.0001 },
   { "rxPowerLowWarn", upper03h, 54, 2, u16be, "mW", 0.0001 },
   { "txBiasHighAlarm", upper03h, 56, 2, u16be, "mA", 0.002 },
   { "txBiasLowAlarm", upper03h, 58, 2, u16be, "mA", 0.002 },
   { "txBiasHighWarn", upper03h, 60, 2, u16be, "mA", 0.002 },
   { "txBiasLowWarn", upper03h, 62, 2, u16be, "mA", 0.002 },
   { "txPowerHighAlarm", upper03h, 64, 2, u16be, "mW", 0.0001 },
   { "txPowerLowAlarm", upper03h, 66, 2, u16be, "mW", 0.0001 },
   { "txPowerHighWarn", upper03h, 68, 2, u16be, "mW", 0.0001 },
   { "txPowerLowWarn", upper03h, 70, 2, u16be, "mW", 0.0001 },
   { "txInputEqualization", upper03h, 106, 2, bytes },
   { "rxOutputEmphasis", upper03h, 108, 2, bytes },
   { "rxOutputAmplitude", upper03h, 110, 2, bytes },
   { "squelchControl", upper03h, 112, 1, bits, "", 1, squelchBits },
   { "outputControl", upper03h, 113, 1, bits, "", 1, outputBits },

   // 24 parameters, each with its own meaning: four flags, four masks, a value, and two bytes of
   // configuration, which are its threshold set (bits 15-12), whether it belongs to a lane (bit 10)
   // and to which (9-8), and its type (7-0).
   { "parameterFlags", upper20h, 0, 12, bytes },
   { "parameterMasks", upper20h, 12, 12, bytes },
   { "parameter1Value", upper20h, 24, 2, u16be },
   { "parameter2Value", upper20h, 26, 2, u16be },
   { "parameter3Value", upper20h, 28, 2, u16be },
   { "parameter4Value", upper20h, 30, 2, u16be },
   { "parameter5Value", upper20h, 32, 2, u16be },
   { "parameter6Value", upper20h, 34, 2, u16be },
   { "parameter7Value", upper20h, 36, 2, u16be },
   { "parameter8Value", upper20h, 38, 2, u16be },
   { "parameter9Value", upper20h, 40, 2, u16be },
   { "parameter10Value", upper20h, 42, 2, u16be },
   { "parameter11Value", upper20h, 44, 2, u16be },
   { "parameter12Value", upper20h, 46, 2, u16be },
   { "parameter13Value", upper20h, 48, 2, u16be },
   { "parameter14Value", upper20h, 50, 2, u16be },
   { "parameter15Value", upper20h, 52, 2, u16be },
   { "parameter16Value", upper20h, 54, 2, u16be },
   { "parameter17Value", upper20h, 56, 2, u16be },
   { "parameter18Value", upper20h, 58, 2, u16be },
   { "parameter19Value", upper20h, 60, 2, u16be },
   { "parameter20Value", upper20h, 62, 2, u16be },
   { "parameter21Value", upper20h, 64, 2, u16be },
   { "parameter22Value", upper20h, 66, 2, u16be },
   { "parameter23Value", upper20h, 68, 2, u16be },
   { "parameter24Value", upper20h, 70, 2, u16be },
   { "parameter1Config", upper20h, 72, 2, bytes },
   { "parameter2Config", upper20h, 74, 2, bytes },
   { "parameter3Config", upper20h, 76, 2, bytes },
   { "parameter4Config", upper20h, 78, 2, bytes },
   { "parameter5Config", upper20h, 80, 2, bytes },
   { "parameter6Config", upper20h, 82, 2, bytes },
   { "parameter7Config", upper20h, 84, 2, bytes },
   { "parameter8Config", upper20h, 86, 2, bytes },
   { "parameter9Config", upper20h, 88, 2, bytes },
   { "parameter10Config", upper20h, 90, 2, bytes },
   { "parameter11Config", upper20h, 92, 2, bytes },
   { "parameter12Config", upper20h, 94, 2, bytes },
   { "parameter13Config", upper20h, 96, 2, bytes },
   { "parameter14Config", upper20h, 98, 2, bytes },
   { "parameter15Config", upper20h, 100, 2, bytes },
   { "parameter16Config", upper20h, 102, 2, bytes },
   { "parameter17Config", upper20h, 104, 2, bytes },
   { "parameter18Config", upper20h, 106, 2, bytes },
   { "parameter19Config", upper20h, 108, 2, bytes },
   { "parameter20Config", upper20h, 110, 2, bytes },
   { "parameter21Config", upper20h, 112, 2, bytes },
   { "parameter22Config", upper20h, 114, 2, bytes },
   { "parameter23Config", upper20h, 116, 2, bytes },
   { "parameter24Config", upper20h, 118, 2, bytes },
   { "laneMapping", upper20h, 120, 2, bytes },
   { "statisticsControl", upper20h, 122, 1, bits, "", 1, statisticsBits },

   // Thresholds in the unit of the parameters that name the set, in the order of page 03h.
   { "thresholdSet0", upper21h, 0, 8, bytes },
   { "thresholdSet1", upper21h, 8, 8, bytes },
   { "thresholdSet2", upper21h, 16, 8, bytes },
   { "thresholdSet3", upper21h, 24, 8, bytes },
   { "thresholdSet4", upper21h, 32, 8, bytes },
   { "thresholdSet5", upper21h, 40, 8, bytes },
   { "thresholdSet6", upper21h, 48, 8, bytes },
   { "thresholdSet7", upper21h, 56, 8, bytes },
   { "thresholdSet8", upper21h, 64, 8, bytes },
   { "thresholdSet9", upper21h, 72, 8, bytes },
   { "thresholdSet10", upper21h, 80, 8, bytes },
   { "thresholdSet11", upper21h, 88, 8, bytes },
   { "thresholdSet12", upper21h, 96, 8, bytes },
   { "thresholdSet13", upper21h, 104, 8, bytes },
   { "thresholdSet14", upper21h, 112, 8, bytes },
   { "thresholdSet15", upper21h, 120, 8, bytes },
};

inline constexpr MemoryCondition conditions[] = {
   // page, first and last byte, field, bit, value, negated, row, last value
   // A passive copper cable monitors nothing.
   { lower, 3, 14, "deviceTech", "", 0xa0, true, "", 0xbf },
   { lower, 22, 57, "deviceTech", "", 0xa0, true, "", 0xbf },
   { lower, 13, 14, "diagsMonitoringType", "Tx power monitor" },
   { lower, 50, 57, "diagsMonitoringType", "Tx power monitor" },
   { upper00h, 18, 18, "deviceTech", "", 0x00, true, "lengthCableOrOm4", 0x0f },
   { upper00h, 18, 18, "deviceTech", "", 0x00, false, "lengthOm4", 0x0f },
   { upper00h, 18, 18, "connector", "", 0x23, true, "lengthOm4" },
   { upper00h, 18, 18, "deviceTech", "", 0x00, false, "lengthActiveCable", 0x0f },
   { upper00h, 18, 18, "connector", "", 0x23, false, "lengthActiveCable" },
   { upper00h, 58, 60, "deviceTech", "", 0xa0, true, "laserWavelength", 0xff },
   { upper00h, 58, 60, "deviceTech", "", 0xa0, true, "wavelengthTolerance", 0xff },
   { upper00h, 58, 58, "deviceTech", "", 0xa0, false, "attenuation2p5GHz", 0xff },
   { upper00h, 59, 59, "deviceTech", "", 0xa0, false, "attenuation5GHz", 0xff },
   { upper00h, 60, 60, "deviceTech", "", 0xa0, false, "attenuation7GHz", 0xff },
   { upper00h, 61, 61, "deviceTech", "", 0xa0, false, "attenuation12p9GHz", 0xff },
   { upper00h, 94, 94, "bitrateNominal", "", 0xff },
   { upper02h, 0, 127, "options", "page 02h" },
   { upper02h, 0, 0, "identifierExtended", "CLEI code", 0, true, "userText" },
   { upper02h, 0, 0, "identifierExtended", "CLEI code", 0, false, "cleiCode" },
   { upper02h, 0, 127, "moduleStatus", "flat memory", 0, true },
   { upper03h, 0, 127, "moduleStatus", "flat memory", 0, true },
   { upper20h, 0, 127, "options", "pages 20h and 21h" },
   { upper20h, 0, 127, "moduleStatus", "flat memory", 0, true },
   { upper21h, 0, 127, "options", "pages 20h and 21h" },
   { upper21h, 0, 127, "moduleStatus", "flat memory", 0, true },
   { upper03h, 64, 71, "diagsMonitoringType", "Tx power monitor" },
   { upper03h, 106, 107, "options", "Tx input EQ fixed" },
   { upper03h, 108, 109, "options", "Rx output emphasis" },
   { upper03h, 110, 111, "options", "Rx output amplitude" },
};
// clang-format on

/// The row of that name; a name that the table lacks does not compile.
consteval MemoryField const & row( std::string_view name ) {
   return memoryField( fields, name );
}

/// The place of a named bit of a field; a name that the table lacks does not compile.
consteval MemoryBitPlace bit( std::string_view field, std::string_view name ) {
   return memoryBit( row( field ), name );
}

} // namespace Sff8436Table

} // namespace Xcvr
