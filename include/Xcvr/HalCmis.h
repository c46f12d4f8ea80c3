#pragma once

#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <span>
#include <string_view>

// The memory of OSFP and QSFP-DD modules (CMIS): the lower page, upper pages 00h (identity), 01h
// (advertisement) and 02h (thresholds), and pages 10h (lane control) and 11h (lane status), of which
// there is one a bank of eight lanes. Bytes of a page are numbered from 0, as they are read; the
// standard's tables number those of an upper page from 128. Lanes count from 0.
namespace Xcvr {

/// Every field of all pages, in the order of pages and addresses.
[[nodiscard]] XCVR_API std::span<MemoryField const> cmisFields();

/// The runs of bytes that hold only in some modules.
[[nodiscard]] XCVR_API std::span<MemoryCondition const> cmisConditions();

/// The field tables behind these functions, here so that accessors find their row while compiling.
namespace CmisTable {

/// Bytes of the lower page and of an upper page.
inline constexpr uint32_t pageSize = 128;

// Names of bits; reserved bits, and bits that revisions of the standard disagree on, have none.
// clang-format off
inline constexpr MemoryBit laneBits[] = {
   { 7, "lane 7" },
   { 6, "lane 6" },
   { 5, "lane 5" },
   { 4, "lane 4" },
   { 3, "lane 3" },
   { 2, "lane 2" },
   { 1, "lane 1" },
   { 0, "lane 0" },
};

inline constexpr MemoryBit memoryAndSpeedBits[] = {
   { 7, "flat memory" },
};

// Bits 3-1 are the module state.
inline constexpr MemoryBit moduleStateBits[] = {
   { 0, "interrupt not asserted" },
};

inline constexpr MemoryBit moduleEventBits[] = {
   { 7, "CDB 2 command complete" },
   { 6, "CDB 1 command complete" },
   { 2, "data path firmware error" },
   { 1, "module firmware error" },
   { 0, "module state changed" },
};

inline constexpr MemoryBit moduleFlagBits[] = {
   { 7, "voltage low warning" },
   { 6, "voltage high warning" },
   { 5, "voltage low alarm" },
   { 4, "voltage high alarm" },
   { 3, "temperature low warning" },
   { 2, "temperature high warning" },
   { 1, "temperature low alarm" },
   { 0, "temperature high alarm" },
};

inline constexpr MemoryBit aux1And2FlagBits[] = {
   { 7, "aux 2 low warning" },
   { 6, "aux 2 high warning" },
   { 5, "aux 2 low alarm" },
   { 4, "aux 2 high alarm" },
   { 3, "aux 1 low warning" },
   { 2, "aux 1 high warning" },
   { 1, "aux 1 low alarm" },
   { 0, "aux 1 high alarm" },
};

inline constexpr MemoryBit aux3AndCustomFlagBits[] = {
   { 7, "custom low warning" },
   { 6, "custom high warning" },
   { 5, "custom low alarm" },
   { 4, "custom high alarm" },
   { 3, "aux 3 low warning" },
   { 2, "aux 3 high warning" },
   { 1, "aux 3 low alarm" },
   { 0, "aux 3 high alarm" },
};

inline constexpr MemoryBit moduleControlBits[] = {
   { 7, "bank broadcast" },
   { 6, "low power allowed by pin" },
   { 5, "squelch reduces average power" },
   { 4, "low power requested" },
   { 3, "software reset" },
};

inline constexpr MemoryBit supportedPageBits[] = {
   { 7, "network path pages" },
   { 6, "VDM pages" },
   { 5, "diagnostics pages" },
   { 4, "coherent pages" },
   { 3, "page 05h" },
   { 2, "page 03h" },
};

inline constexpr MemoryBit moduleCharacteristicBits[] = {
   { 7, "cooled transmitter" },
   { 3, "timing page" },
   { 2, "aux 3 is a supply voltage" },
   { 1, "aux 2 is a TEC current" },
   { 0, "aux 1 is a TEC current" },
};

inline constexpr MemoryBit receiverCharacteristicBits[] = {
   { 7, "APD detector" },
   { 4, "received power is average power" },
   { 3, "Rx LOS by average power" },
   { 2, "Rx LOS is fast" },
   { 1, "Tx disable is fast" },
   { 0, "Tx disable is of the whole module" },
};

inline constexpr MemoryBit rxAmplitudeBits[] = {
   { 7, "Rx amplitude code 3" },
   { 6, "Rx amplitude code 2" },
   { 5, "Rx amplitude code 1" },
   { 4, "Rx amplitude code 0" },
};

inline constexpr MemoryBit controlBits[] = {
   { 15, "wavelength control" },
   { 14, "tunable transmitter" },
   { 11, "Tx force squelch" },
   { 10, "Tx auto squelch disable" },
   { 9, "Tx output disable" },
   { 8, "Tx polarity flip" },
   { 7, "bank broadcast" },
   { 2, "Rx auto squelch disable" },
   { 1, "Rx output disable" },
   { 0, "Rx polarity flip" },
};

inline constexpr MemoryBit flagBits[] = {
   { 11, "Tx adaptive input EQ fault" },
   { 10, "Tx CDR LOL" },
   { 9, "Tx LOS" },
   { 8, "Tx fault" },
   { 2, "Rx CDR LOL" },
   { 1, "Rx LOS" },
};

inline constexpr MemoryBit monitorBits[] = {
   { 13, "custom" },
   { 12, "aux 3" },
   { 11, "aux 2" },
   { 10, "aux 1" },
   { 9, "supply voltage" },
   { 8, "temperature" },
   { 4, "Tx bias times 4" },
   { 3, "Tx bias times 2" },
   { 2, "Rx power" },
   { 1, "Tx power" },
   { 0, "Tx bias" },
};

inline constexpr MemoryBit signalIntegrityBits[] = {
   { 12, "Tx EQ freeze" },
   { 11, "Tx adaptive EQ" },
   { 10, "Tx fixed EQ" },
   { 9, "Tx CDR bypass" },
   { 8, "Tx CDR" },
   { 5, "staged control set 1" },
   { 4, "Rx post-cursor" },
   { 3, "Rx pre-cursor" },
   { 2, "Rx amplitude" },
   { 1, "Rx CDR bypass" },
   { 0, "Rx CDR" },
};

using enum MemoryKind;
inline constexpr std::string_view lower = "lower";
inline constexpr std::string_view p00h = "00h";
inline constexpr std::string_view p01h = "01h";
inline constexpr std::string_view p02h = "02h";
inline constexpr std::string_view p10h = "10h";
inline constexpr std::string_view p11h = "11h";
inline constexpr bool shared = true;

// The number in a field times its scale is in its unit. What has four bits a lane begins with the low
// nibble of its first byte.
inline constexpr MemoryField fields[] = {
   // name, page, first byte, width, kind, unit, scale, bits, shared
   { "identifier", lower, 0, 1, u8 },
   { "revision", lower, 1, 1, u8 },
   { "memoryAndSpeed", lower, 2, 1, bits, "", 1, memoryAndSpeedBits },
   { "moduleState", lower, 3, 1, bits, "", 1, moduleStateBits },
   { "laneFlagSummary", lower, 4, 4, bytes },
   { "moduleEvents", lower, 8, 1, bits, "", 1, moduleEventBits },
   { "moduleFlags", lower, 9, 1, bits, "", 1, moduleFlagBits },
   { "aux1And2Flags", lower, 10, 1, bits, "", 1, aux1And2FlagBits },
   { "aux3AndCustomFlags", lower, 11, 1, bits, "", 1, aux3AndCustomFlagBits },
   { "customFlags", lower, 13, 1, u8 },
   { "temperature", lower, 14, 2, s16be, "°C", 1 / 256. },
   { "voltage", lower, 16, 2, u16be, "V", 0.0001 },
   // What these measure say the bits of moduleCharacteristics.
   { "aux1", lower, 18, 2, s16be },
   { "aux2", lower, 20, 2, s16be },
   { "aux3", lower, 22, 2, s16be },
   { "customMonitor", lower, 24, 2, s16be },
   { "moduleGlobalAndSquelchControls", lower, 26, 1, bits, "", 1, moduleControlBits },
   { "moduleFlagMasks", lower, 31, 4, bytes },
   { "cdbStatus1", lower, 37, 1, u8 },
   { "cdbStatus2", lower, 38, 1, u8 },
   { "activeFirmwareMajor", lower, 39, 1, u8 },
   { "activeFirmwareMinor", lower, 40, 1, u8 },
   { "faultCause", lower, 41, 1, u8 },
   { "moduleType", lower, 85, 1, u8 },
   // Host interface, media interface, lane counts (host in the high nibble), host lane assignment.
   { "application1", lower, 86, 4, bytes },
   { "application2", lower, 90, 4, bytes },
   { "application3", lower, 94, 4, bytes },
   { "application4", lower, 98, 4, bytes },
   { "application5", lower, 102, 4, bytes },
   { "application6", lower, 106, 4, bytes },
   { "application7", lower, 110, 4, bytes },
   { "application8", lower, 114, 4, bytes },
   { "bankSelect", lower, 126, 1, u8 },
   { "pageSelect", lower, 127, 1, u8 },

   { "identifierExtended", p00h, 0, 1, u8 },
   { "vendorName", p00h, 1, 16, text },
   { "vendorOui", p00h, 17, 3, bytes },
   { "vendorPn", p00h, 20, 16, text },
   { "vendorRev", p00h, 36, 2, text },
   { "vendorSn", p00h, 38, 16, text },
   { "dateCode", p00h, 54, 8, text },
   { "cleiCode", p00h, 62, 10, text },
   // The class minus 1 in bits 7-5, and the power; the decoded entity has both as one number.
   { "powerClass", p00h, 72, 1, u8 },
   { "modulePower", p00h, 72, 2, u16be, "", 1, {}, shared },
   { "maxPower", p00h, 73, 1, u8, "W", 0.25 },
   // Bits 5-0 are the length in 0.1, 1, 10 or 100 m, as bits 7-6 say.
   { "cableLength", p00h, 74, 1, u8 },
   { "connector", p00h, 75, 1, u8 },
   // Of a copper cable.
   { "attenuation5GHz", p00h, 76, 1, u8, "dB" },
   { "attenuation7GHz", p00h, 77, 1, u8, "dB" },
   { "attenuation12p9GHz", p00h, 78, 1, u8, "dB" },
   { "attenuation25p8GHz", p00h, 79, 1, u8, "dB" },
   { "mediaLanesMissing", p00h, 82, 1, bits, "", 1, laneBits },
   { "farEndConfiguration", p00h, 83, 1, u8 },
   { "mediaTechnology", p00h, 84, 1, u8 },
   { "checksumUpperPage00", p00h, 94, 1, u8 },

   { "inactiveFirmwareMajor", p01h, 0, 1, u8 },
   { "inactiveFirmwareMinor", p01h, 1, 1, u8 },
   { "hardwareRevisionMajor", p01h, 2, 1, u8 },
   { "hardwareRevisionMinor", p01h, 3, 1, u8 },
   // Bits 5-0 are the length in 0.1 or 1 km, as bits 7-6 say.
   { "lengthSmf", p01h, 4, 1, u8 },
   { "lengthOm5", p01h, 5, 1, u8, "m", 2 },
   { "lengthOm4", p01h, 6, 1, u8, "m", 2 },
   { "lengthOm3", p01h, 7, 1, u8, "m", 2 },
   { "lengthOm2", p01h, 8, 1, u8, "m" },
   { "wavelength", p01h, 10, 2, u16be, "nm", 0.05 },
   { "wavelengthTolerance", p01h, 12, 2, u16be, "nm", 0.005 },
   { "supportedPages", p01h, 14, 1, bits, "", 1, supportedPageBits },
   { "modSelWait", p01h, 15, 1, u8 },
   { "dataPathDurations", p01h, 16, 1, u8 },
   { "moduleCharacteristics", p01h, 17, 1, bits, "", 1, moduleCharacteristicBits },
   { "maxCaseTemperature", p01h, 18, 1, s8, "°C" },
   { "minCaseTemperature", p01h, 19, 1, s8, "°C" },
   { "propagationDelay", p01h, 20, 2, u16be, "ns", 10 },
   { "minVoltage", p01h, 22, 1, u8, "V", 0.02 },
   { "receiverCharacteristics", p01h, 23, 1, bits, "", 1, receiverCharacteristicBits },
   { "cdrPowerSaved", p01h, 24, 1, u8, "W", 0.01 },
   // Codes of Rx amplitude that the module has; in the low nibble the largest code of Tx equalisation.
   { "rxAmplitudeAndMaxTxEq", p01h, 25, 1, bits, "", 1, rxAmplitudeBits },
   // The largest codes: post-cursor in the high nibble, pre-cursor in the low one.
   { "maxRxEmphasis", p01h, 26, 1, u8 },
   { "implControlsAdvertisement", p01h, 27, 2, bits, "", 1, controlBits },
   { "implFlagsAdvertisement", p01h, 29, 2, bits, "", 1, flagBits },
   { "implMonitorsAdvertisement", p01h, 31, 2, bits, "", 1, monitorBits },
   { "implSignalIntegrityControl", p01h, 33, 2, bits, "", 1, signalIntegrityBits },
   { "cdbSupport", p01h, 35, 1, u8 },
   { "modulePowerDurations", p01h, 39, 1, u8 },
   { "txTurnDurations", p01h, 40, 1, u8 },
   // Of applications 1 to 15, a bit for each media lane at which one may start.
   { "mediaLaneAssignment", p01h, 48, 15, bytes },
   { "application9", p01h, 95, 4, bytes },
   { "application10", p01h, 99, 4, bytes },
   { "application11", p01h, 103, 4, bytes },
   { "application12", p01h, 107, 4, bytes },
   { "application13", p01h, 111, 4, bytes },
   { "application14", p01h, 115, 4, bytes },
   { "application15", p01h, 119, 4, bytes },
   { "checksumUpperPage01", p01h, 127, 1, u8 },

   { "tempHighAlarm", p02h, 0, 2, s16be, "°C", 1 / 256. },
   { "tempLowAlarm", p02h, 2, 2, s16be, "°C", 1 / 256. },
   // The voltage warnings are read from the bytes of the temperature warnings on purpose: the limits
   // that agents compare with, and those that operators know, are these. Do not "mend" them.
   { "tempHighWarn", p02h, 4, 2, s16be, "°C", 1 / 256. },
   { "voltageHighWarn", p02h, 4, 2, u16be, "V", 0.0001, {}, shared },
   { "tempLowWarn", p02h, 6, 2, s16be, "°C", 1 / 256. },
   { "voltageLowWarn", p02h, 6, 2, u16be, "V", 0.0001, {}, shared },
   { "voltageHighAlarm", p02h, 8, 2, u16be, "V", 0.0001 },
   { "voltageLowAlarm", p02h, 10, 2, u16be, "V", 0.0001 },
   // Where the standard has the voltage warnings; shown in dumps, never used.
   { "voltageHighWarnUnused", p02h, 12, 2, u16be, "V", 0.0001 },
   { "voltageLowWarnUnused", p02h, 14, 2, u16be, "V", 0.0001 },
   { "aux1HighAlarm", p02h, 16, 2, s16be },
   { "aux1LowAlarm", p02h, 18, 2, s16be },
   { "aux1HighWarn", p02h, 20, 2, s16be },
   { "aux1LowWarn", p02h, 22, 2, s16be },
   { "aux2HighAlarm", p02h, 24, 2, s16be },
   { "aux2LowAlarm", p02h, 26, 2, s16be },
   { "aux2HighWarn", p02h, 28, 2, s16be },
   { "aux2LowWarn", p02h, 30, 2, s16be },
   { "aux3HighAlarm", p02h, 32, 2, s16be },
   { "aux3LowAlarm", p02h, 34, 2, s16be },
   { "aux3HighWarn", p02h, 36, 2, s16be },
   { "aux3LowWarn", p02h, 38, 2, s16be },
   { "customHighAlarm", p02h, 40, 2, s16be },
   { "customLowAlarm", p02h, 42, 2, s16be },
   { "customHighWarn", p02h, 44, 2, s16be },
   { "customLowWarn", p02h, 46, 2, s16be },
   { "txPowerHighAlarm", p02h, 48, 2, u16be, "mW", 0.0001 },
   { "txPowerLowAlarm", p02h, 50, 2, u16be, "mW", 0.0001 },
   { "txPowerHighWarn", p02h, 52, 2, u16be, "mW", 0.0001 },
   { "txPowerLowWarn", p02h, 54, 2, u16be, "mW", 0.0001 },
   // Before the multiplier that the module states.
   { "txBiasHighAlarm", p02h, 56, 2, u16be, "mA", 0.002 },
   { "txBiasLowAlarm", p02h, 58, 2, u16be, "mA", 0.002 },
   { "txBiasHighWarn", p02h, 60, 2, u16be, "mA", 0.002 },
   { "txBiasLowWarn", p02h, 62, 2, u16be, "mA", 0.002 },
   { "rxPowerHighAlarm", p02h, 64, 2, u16be, "mW", 0.0001 },
   { "rxPowerLowAlarm", p02h, 66, 2, u16be, "mW", 0.0001 },
   { "rxPowerHighWarn", p02h, 68, 2, u16be, "mW", 0.0001 },
   { "rxPowerLowWarn", p02h, 70, 2, u16be, "mW", 0.0001 },
   { "checksumUpperPage02", p02h, 127, 1, u8 },

   { "dataPathDeinitRequest", p10h, 0, 1, bits, "", 1, laneBits },
   { "txPolarityFlip", p10h, 1, 1, bits, "", 1, laneBits },
   { "laneTxDisable", p10h, 2, 1, bits, "", 1, laneBits },
   { "txAutoSquelchDisable", p10h, 3, 1, bits, "", 1, laneBits },
   { "txForceSquelch", p10h, 4, 1, bits, "", 1, laneBits },
   { "txAdaptiveEqFreeze", p10h, 6, 1, bits, "", 1, laneBits },
   { "txAdaptiveEqStore", p10h, 7, 2, bytes },
   { "rxPolarityFlip", p10h, 9, 1, bits, "", 1, laneBits },
   { "rxOutputDisable", p10h, 10, 1, bits, "", 1, laneBits },
   { "rxAutoSquelchDisable", p10h, 11, 1, bits, "", 1, laneBits },
   { "applyDataPathInit", p10h, 15, 1, bits, "", 1, laneBits },
   { "applyImmediate", p10h, 16, 1, bits, "", 1, laneBits },
   // Staged control set 0.
   { "stagedApSel0", p10h, 17, 1, u8 },
   { "stagedApSel1", p10h, 18, 1, u8 },
   { "stagedApSel2", p10h, 19, 1, u8 },
   { "stagedApSel3", p10h, 20, 1, u8 },
   { "stagedApSel4", p10h, 21, 1, u8 },
   { "stagedApSel5", p10h, 22, 1, u8 },
   { "stagedApSel6", p10h, 23, 1, u8 },
   { "stagedApSel7", p10h, 24, 1, u8 },
   { "stagedTxInputAdaptiveEqEnable", p10h, 25, 1, bits, "", 1, laneBits },
   { "stagedTxEqRecall", p10h, 26, 2, bytes },
   { "stagedTxInputEqualization", p10h, 28, 4, bytes },
   { "stagedTxCdrEnable", p10h, 32, 1, bits, "", 1, laneBits },
   { "stagedRxCdrEnable", p10h, 33, 1, bits, "", 1, laneBits },
   { "stagedRxOutputPreEmphasis", p10h, 34, 4, bytes },
   { "stagedRxOutputPostEmphasis", p10h, 38, 4, bytes },
   { "stagedRxOutputAmplitude", p10h, 42, 4, bytes },

   { "dataPathStates", p11h, 0, 4, bytes },
   { "rxOutputValid", p11h, 4, 1, bits, "", 1, laneBits },
   { "txOutputValid", p11h, 5, 1, bits, "", 1, laneBits },
   { "dataPathStateChanged", p11h, 6, 1, bits, "", 1, laneBits },
   { "txFault", p11h, 7, 1, bits, "", 1, laneBits },
   { "txLos", p11h, 8, 1, bits, "", 1, laneBits },
   { "txCdrLol", p11h, 9, 1, bits, "", 1, laneBits },
   { "txAdaptiveInputEqFault", p11h, 10, 1, bits, "", 1, laneBits },
   { "txPowerHiAlarm", p11h, 11, 1, bits, "", 1, laneBits },
   { "txPowerLoAlarm", p11h, 12, 1, bits, "", 1, laneBits },
   { "txPowerHiWarn", p11h, 13, 1, bits, "", 1, laneBits },
   { "txPowerLoWarn", p11h, 14, 1, bits, "", 1, laneBits },
   { "txBiasHiAlarm", p11h, 15, 1, bits, "", 1, laneBits },
   { "txBiasLoAlarm", p11h, 16, 1, bits, "", 1, laneBits },
   { "txBiasHiWarn", p11h, 17, 1, bits, "", 1, laneBits },
   { "txBiasLoWarn", p11h, 18, 1, bits, "", 1, laneBits },
   { "rxLos", p11h, 19, 1, bits, "", 1, laneBits },
   { "rxCdrLol", p11h, 20, 1, bits, "", 1, laneBits },
   { "rxPowerHiAlarm", p11h, 21, 1, bits, "", 1, laneBits },
   { "rxPowerLoAlarm", p11h, 22, 1, bits, "", 1, laneBits },
   { "rxPowerHiWarn", p11h, 23, 1, bits, "", 1, laneBits },
   { "rxPowerLoWarn", p11h, 24, 1, bits, "", 1, laneBits },
   { "rxOutputStatusChanged", p11h, 25, 1, bits, "", 1, laneBits },
   { "txPower0", p11h, 26, 2, u16be, "mW", 0.0001 },
   { "txPower1", p11h, 28, 2, u16be, "mW", 0.0001 },
   { "txPower2", p11h, 30, 2, u16be, "mW", 0.0001 },
   { "txPower3", p11h, 32, 2, u16be, "mW", 0.0001 },
   { "txPower4", p11h, 34, 2, u16be, "mW", 0.0001 },
   { "txPower5", p11h, 36, 2, u16be, "mW", 0.0001 },
   { "txPower6", p11h, 38, 2, u16be, "mW", 0.0001 },
   { "txPower7", p11h, 40, 2, u16be, "mW", 0.0001 },
   // Before the multiplier that the module states.
   { "txBias0", p11h, 42, 2, u16be, "mA", 0.002 },
   { "txBias1", p11h, 44, 2, u16be, "mA", 0.002 },
   { "txBias2", p11h, 46, 2, u16be, "mA", 0.002 },
   { "txBias3", p11h, 48, 2, u16be, "mA", 0.002 },
   { "txBias4", p11h, 50, 2, u16be, "mA", 0.002 },
   { "txBias5", p11h, 52, 2, u16be, "mA", 0.002 },
   { "txBias6", p11h, 54, 2, u16be, "mA", 0.002 },
   { "txBias7", p11h, 56, 2, u16be, "mA", 0.002 },
   { "rxPower0", p11h, 58, 2, u16be, "mW", 0.0001 },
   { "rxPower1", p11h, 60, 2, u16be, "mW", 0.0001 },
   { "rxPower2", p11h, 62, 2, u16be, "mW", 0.0001 },
   { "rxPower3", p11h, 64, 2, u16be, "mW", 0.0001 },
   { "rxPower4", p11h, 66, 2, u16be, "mW", 0.0001 },
   { "rxPower5", p11h, 68, 2, u16be, "mW", 0.0001 },
   { "rxPower6", p11h, 70, 2, u16be, "mW", 0.0001 },
   { "rxPower7", p11h, 72, 2, u16be, "mW", 0.0001 },
   { "configurationStatus", p11h, 74, 4, bytes },
   // The active control set: application-select bytes of the lanes, then signal integrity.
   { "activeControlSet", p11h, 78, 29, bytes, "", 1, {}, shared },
   { "activeApSel0", p11h, 78, 1, u8 },
   { "activeApSel1", p11h, 79, 1, u8 },
   { "activeApSel2", p11h, 80, 1, u8 },
   { "activeApSel3", p11h, 81, 1, u8 },
   { "activeApSel4", p11h, 82, 1, u8 },
   { "activeApSel5", p11h, 83, 1, u8 },
   { "activeApSel6", p11h, 84, 1, u8 },
   { "activeApSel7", p11h, 85, 1, u8 },
   { "txInputAdaptiveEqEnable", p11h, 86, 1, bits, "", 1, laneBits },
   { "activeTxEqRecall", p11h, 87, 2, bytes },
   { "txInputEqualization", p11h, 89, 4, bytes },
   { "activeTxCdrEnable", p11h, 93, 1, bits, "", 1, laneBits },
   { "activeRxCdrEnable", p11h, 94, 1, bits, "", 1, laneBits },
   { "rxOutputPreEmphasis", p11h, 95, 4, bytes },
   { "rxOutputPostEmphasis", p11h, 99, 4, bytes },
   { "rxOutputAmplitude", p11h, 103, 4, bytes },
   { "dataPathInitPending", p11h, 107, 1, bits, "", 1, laneBits },
   { "txLaneMapping", p11h, 112, 8, bytes },
   { "rxLaneMapping", p11h, 120, 8, bytes },
};

inline constexpr MemoryCondition conditions[] = {
   // page, first and last byte, field, bit
   { lower, 14, 15, "implMonitorsAdvertisement", "temperature" },
   { lower, 16, 17, "implMonitorsAdvertisement", "supply voltage" },
   { lower, 18, 19, "implMonitorsAdvertisement", "aux 1" },
   { lower, 20, 21, "implMonitorsAdvertisement", "aux 2" },
   { lower, 22, 23, "implMonitorsAdvertisement", "aux 3" },
   { lower, 24, 25, "implMonitorsAdvertisement", "custom" },
   { p02h, 0, 3, "implMonitorsAdvertisement", "temperature" },
   // On these bytes lie the voltage's warnings too.
   { p02h, 4, 4, "implMonitorsAdvertisement", "temperature", 0, false, "tempHighWarn" },
   { p02h, 6, 6, "implMonitorsAdvertisement", "temperature", 0, false, "tempLowWarn" },
   { p02h, 4, 4, "implMonitorsAdvertisement", "supply voltage", 0, false, "voltageHighWarn" },
   { p02h, 6, 6, "implMonitorsAdvertisement", "supply voltage", 0, false, "voltageLowWarn" },
   { p02h, 8, 15, "implMonitorsAdvertisement", "supply voltage" },
   { p02h, 16, 23, "implMonitorsAdvertisement", "aux 1" },
   { p02h, 24, 31, "implMonitorsAdvertisement", "aux 2" },
   { p02h, 32, 39, "implMonitorsAdvertisement", "aux 3" },
   { p02h, 40, 47, "implMonitorsAdvertisement", "custom" },
   { p02h, 48, 55, "implMonitorsAdvertisement", "Tx power" },
   { p02h, 56, 63, "implMonitorsAdvertisement", "Tx bias" },
   { p02h, 64, 71, "implMonitorsAdvertisement", "Rx power" },
   { p10h, 1, 1, "implControlsAdvertisement", "Tx polarity flip" },
   { p10h, 2, 2, "implControlsAdvertisement", "Tx output disable" },
   { p10h, 3, 3, "implControlsAdvertisement", "Tx auto squelch disable" },
   { p10h, 4, 4, "implControlsAdvertisement", "Tx force squelch" },
   { p10h, 6, 6, "implSignalIntegrityControl", "Tx EQ freeze" },
   { p10h, 9, 9, "implControlsAdvertisement", "Rx polarity flip" },
   { p10h, 10, 10, "implControlsAdvertisement", "Rx output disable" },
   { p10h, 11, 11, "implControlsAdvertisement", "Rx auto squelch disable" },
   { p10h, 25, 25, "implSignalIntegrityControl", "Tx adaptive EQ" },
   { p10h, 28, 31, "implSignalIntegrityControl", "Tx fixed EQ" },
   { p10h, 32, 32, "implSignalIntegrityControl", "Tx CDR" },
   { p10h, 33, 33, "implSignalIntegrityControl", "Rx CDR" },
   { p10h, 34, 37, "implSignalIntegrityControl", "Rx pre-cursor" },
   { p10h, 38, 41, "implSignalIntegrityControl", "Rx post-cursor" },
   { p10h, 42, 45, "implSignalIntegrityControl", "Rx amplitude" },
   { p11h, 7, 7, "implFlagsAdvertisement", "Tx fault" },
   { p11h, 8, 8, "implFlagsAdvertisement", "Tx LOS" },
   { p11h, 9, 9, "implFlagsAdvertisement", "Tx CDR LOL" },
   { p11h, 10, 10, "implFlagsAdvertisement", "Tx adaptive input EQ fault" },
   { p11h, 11, 14, "implMonitorsAdvertisement", "Tx power" },
   { p11h, 15, 18, "implMonitorsAdvertisement", "Tx bias" },
   { p11h, 19, 19, "implFlagsAdvertisement", "Rx LOS" },
   { p11h, 20, 20, "implFlagsAdvertisement", "Rx CDR LOL" },
   { p11h, 21, 24, "implMonitorsAdvertisement", "Rx power" },
   { p11h, 26, 41, "implMonitorsAdvertisement", "Tx power" },
   { p11h, 42, 57, "implMonitorsAdvertisement", "Tx bias" },
   { p11h, 58, 73, "implMonitorsAdvertisement", "Rx power" },
   { p11h, 86, 86, "implSignalIntegrityControl", "Tx adaptive EQ" },
   { p11h, 89, 92, "implSignalIntegrityControl", "Tx fixed EQ" },
   { p11h, 93, 93, "implSignalIntegrityControl", "Tx CDR" },
   { p11h, 94, 94, "implSignalIntegrityControl", "Rx CDR" },
   { p11h, 95, 98, "implSignalIntegrityControl", "Rx pre-cursor" },
   { p11h, 99, 102, "implSignalIntegrityControl", "Rx post-cursor" },
   { p11h, 103, 106, "implSignalIntegrityControl", "Rx amplitude" },
};
// clang-format on

/// The row of that name; a name that the table lacks does not compile.
consteval MemoryField const & row( std::string_view name ) {
   return memoryField( fields, name );
}

/// The address of a field as the standard's tables number it.
constexpr uint8_t address( MemoryField const & field ) {
   return static_cast<uint8_t>( field.at + ( field.page == lower ? 0 : pageSize ) );
}

/// The mask of a named bit in its field's number; a name that the table lacks does not compile.
consteval uint32_t mask( std::string_view field, std::string_view name ) {
   return memoryBitMask( row( field ), name );
}

} // namespace CmisTable

} // namespace Xcvr
