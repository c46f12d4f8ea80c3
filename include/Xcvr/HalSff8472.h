#pragma once

#include <Vel/Enum.h>
#include <Vel/Value.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cstdint>
#include <span>
#include <string_view>

// The memory of an SFP module (SFF-8472): pages A0h, the serial identification, and A2h, the
// diagnostics, whose upper half holds the tuning page of a tunable module (SFF-8690).
namespace Xcvr {

/// A page of SFF-8472 memory.
VEL_ENUM( Sff8472PageId, pageA0h, pageA2h, maxSfpPages, sff8472PageInvalid );
using enum Sff8472PageId;

struct Sff8472 {
   /// The 16-bit keys of the single bytes of page A2h: 0xA200 + byte address. The two names of byte
   /// 110 are intended: it holds status bits and the soft controls; its text is `domStatusBits`.
   VEL_MEMBER_ENUM( RegisterId,
      domTempHighAlarmMsb = 0xA200, domTempHighAlarmLsb,
      domTempLowAlarmMsb = 0xA202, domTempLowAlarmLsb,
      domTempHighWarnMsb = 0xA204, domTempHighWarnLsb,
      domTempLowWarnMsb = 0xA206, domTempLowWarnLsb,
      domVoltHighAlarmMsb = 0xA208, domVoltHighAlarmLsb,
      domVoltLowAlarmMsb = 0xA20A, domVoltLowAlarmLsb,
      domVoltHighWarnMsb = 0xA20C, domVoltHighWarnLsb,
      domVoltLowWarnMsb = 0xA20E, domVoltLowWarnLsb,
      domBiasHighAlarmMsb = 0xA210, domBiasHighAlarmLsb,
      domBiasLowAlarmMsb = 0xA212, domBiasLowAlarmLsb,
      domBiasHighWarnMsb = 0xA214, domBiasHighWarnLsb,
      domBiasLowWarnMsb = 0xA216, domBiasLowWarnLsb,
      domTxPowerHighAlarmMsb = 0xA218, domTxPowerHighAlarmLsb,
      domTxPowerLowAlarmMsb = 0xA21A, domTxPowerLowAlarmLsb,
      domTxPowerHighWarnMsb = 0xA21C, domTxPowerHighWarnLsb,
      domTxPowerLowWarnMsb = 0xA21E, domTxPowerLowWarnLsb,
      domRxPowerHighAlarmMsb = 0xA220, domRxPowerHighAlarmLsb,
      domRxPowerLowAlarmMsb = 0xA222, domRxPowerLowAlarmLsb,
      domRxPowerHighWarnMsb = 0xA224, domRxPowerHighWarnLsb,
      domRxPowerLowWarnMsb = 0xA226, domRxPowerLowWarnLsb,
      domRxPower4Msb = 0xA238, domRxPower4SecondMsb, domRxPower4SecondLsb, domRxPower4Lsb,
      domRxPower3Msb = 0xA23C, domRxPower3SecondMsb, domRxPower3SecondLsb, domRxPower3Lsb,
      domRxPower2Msb = 0xA240, domRxPower2SecondMsb, domRxPower2SecondLsb, domRxPower2Lsb,
      domRxPower1Msb = 0xA244, domRxPower1SecondMsb, domRxPower1SecondLsb, domRxPower1Lsb,
      domRxPower0Msb = 0xA248, domRxPower0SecondMsb, domRxPower0SecondLsb, domRxPower0Lsb,
      domBiasCurrentSlopeMsb = 0xA24C, domBiasCurrentSlopeLsb,
      domBiasCurrentOffsetMsb = 0xA24E, domBiasCurrentOffsetLsb,
      domTxPowerSlopeMsb = 0xA250, domTxPowerSlopeLsb,
      domTxPowerOffsetMsb = 0xA252, domTxPowerOffsetLsb,
      domTemperatureSlopeMsb = 0xA254, domTemperatureSlopeLsb,
      domTemperatureOffsetMsb = 0xA256, domTemperatureOffsetLsb,
      domSupplyVoltageSlopeMsb = 0xA258, domSupplyVoltageSlopeLsb,
      domSupplyVoltageOffsetMsb = 0xA25A, domSupplyVoltageOffsetLsb,
      domTemperatureMsb = 0xA260, domTemperatureLsb,
      domSupplyVoltageMsb = 0xA262, domSupplyVoltageLsb,
      domBiasCurrentMsb = 0xA264, domBiasCurrentLsb,
      domTxPowerMsb = 0xA266, domTxPowerLsb,
      domRxPowerMsb = 0xA268, domRxPowerLsb,
      domStatusBits = 0xA26E, optionalStatusCtrl = 0xA26E,
      tuningPageSelect = 0xA27F,
      tuningFirstFrequencyTHzMsb = 0xA284, tuningFirstFrequencyTHzLsb,
      tuningFirstFrequencyGHzMsb = 0xA286, tuningFirstFrequencyGHzLsb,
      tuningLastFrequencyTHzMsb = 0xA288, tuningLastFrequencyTHzLsb,
      tuningLastFrequencyGHzMsb = 0xA28A, tuningLastFrequencyGHzLsb,
      tuningGridSpacingGHzMsb = 0xA28C, tuningGridSpacingGHzLsb,
      tuningChannelMsb = 0xA290, tuningChannelLsb,
      tuningWavelengthMsb = 0xA292, tuningWavelengthLsb );
   using enum RegisterId;
};

/// The eight compliance bytes of page A0h as one number, byte 3 the most significant. Its named
/// bits stand in the field table.
class XCVR_API Sff8472TransceiverCompliance {
   VEL_VALUE( Sff8472TransceiverCompliance, ( value, uint64_t ) );
   VEL_KEY( Sff8472TransceiverCompliance )
};

/// Attenuation code of a passive cable, as stored.
class XCVR_API Sff8472PassiveAttenuation {
   VEL_VALUE( Sff8472PassiveAttenuation, ( value, uint16_t ) );
};

/// Attenuation code of an active cable, as stored.
class XCVR_API Sff8472ActiveAttenuation {
   VEL_VALUE( Sff8472ActiveAttenuation, ( value, uint16_t ) );
};

/// Every field of both pages, in the order of pages and addresses.
[[nodiscard]] XCVR_API std::span<MemoryField const> sff8472Fields();

/// The runs of bytes that hold only in some modules.
[[nodiscard]] XCVR_API std::span<MemoryCondition const> sff8472Conditions();

/// The field tables behind these functions, here so that accessors find their row while compiling.
namespace Sff8472Table {

inline constexpr uint32_t pageSize = 256;

// Names of bits; reserved bits, and bits that revisions of the standard disagree on, have none.
// clang-format off
inline constexpr MemoryBit complianceBits[] = {
   // byte 3: 10 gigabit Ethernet, InfiniBand
   { 63, "10GBASE-ER" },
   { 62, "10GBASE-LRM" },
   { 61, "10GBASE-LR" },
   { 60, "10GBASE-SR" },
   { 59, "InfiniBand 1X SX" },
   { 58, "InfiniBand 1X LX" },
   { 57, "InfiniBand 1X copper active" },
   { 56, "InfiniBand 1X copper passive" },
   // bytes 4 and 5: ESCON, SONET
   { 55, "ESCON MMF 1310 nm LED" },
   { 54, "ESCON SMF 1310 nm laser" },
   { 53, "OC-192 short reach" },
   { 52, "SONET reach specifier 1" },
   { 51, "SONET reach specifier 2" },
   { 50, "OC-48 long reach" },
   { 49, "OC-48 intermediate reach" },
   { 48, "OC-48 short reach" },
   { 46, "OC-12 single mode long reach" },
   { 45, "OC-12 single mode intermediate reach" },
   { 44, "OC-12 short reach" },
   { 42, "OC-3 single mode long reach" },
   { 41, "OC-3 single mode intermediate reach" },
   { 40, "OC-3 short reach" },
   // byte 6: Ethernet
   { 39, "BASE-PX" },
   { 38, "BASE-BX10" },
   { 37, "100BASE-FX" },
   { 36, "100BASE-LX10" },
   { 35, "1000BASE-T" },
   { 34, "1000BASE-CX" },
   { 33, "1000BASE-LX" },
   { 32, "1000BASE-SX" },
   // bytes 7 and 8: Fibre Channel distance and technology, cables
   { 31, "FC very long distance" },
   { 30, "FC short distance" },
   { 29, "FC intermediate distance" },
   { 28, "FC long distance" },
   { 27, "FC medium distance" },
   { 26, "FC shortwave laser, linear Rx" },
   { 25, "FC longwave laser (LC)" },
   { 24, "FC electrical inter-enclosure" },
   { 23, "FC electrical intra-enclosure" },
   { 22, "FC shortwave laser without OFC" },
   { 21, "FC shortwave laser with OFC" },
   { 20, "FC longwave laser (LL)" },
   { 19, "active cable" },
   { 18, "passive cable" },
   // bytes 9 and 10: Fibre Channel media and speed
   { 15, "FC twin axial pair" },
   { 14, "FC twisted pair" },
   { 13, "FC miniature coax" },
   { 12, "FC video coax" },
   { 11, "FC multimode 62.5 um" },
   { 10, "FC multimode 50 um" },
   { 8, "FC single mode" },
   { 7, "FC 1200 MB/s" },
   { 6, "FC 800 MB/s" },
   { 5, "FC 1600 MB/s" },
   { 4, "FC 400 MB/s" },
   { 3, "FC 3200 MB/s" },
   { 2, "FC 200 MB/s" },
   { 0, "FC 100 MB/s" },
};

inline constexpr MemoryBit optionBits[] = {
   { 14, "power level 4" },
   { 13, "power level 3" },
   { 12, "paging" },
   { 11, "retimer or CDR" },
   { 10, "cooled laser" },
   { 9, "power level 2" },
   { 8, "linear receiver output" },
   { 7, "receiver decision threshold" },
   { 6, "tunable transmitter" },
   { 5, "rate select" },
   { 4, "Tx disable" },
   { 3, "Tx fault" },
   { 2, "Rx LOS inverted" },
   { 1, "Rx LOS" },
};

inline constexpr MemoryBit diagsMonitoringTypeBits[] = {
   { 6, "digital diagnostics" },
   { 5, "internally calibrated" },
   { 4, "externally calibrated" },
   { 3, "received power is average power" },
   { 2, "address change required" },
};

inline constexpr MemoryBit enhancedOptionBits[] = {
   { 7, "alarm and warning flags" },
   { 6, "soft Tx disable" },
   { 5, "soft Tx fault" },
   { 4, "soft Rx LOS" },
   { 3, "soft rate select" },
   { 2, "application select" },
   { 1, "soft rate select per SFF-8431" },
};

inline constexpr MemoryBit statusBits[] = {
   { 7, "Tx disable state" },
   { 6, "soft Tx disable" },
   { 5, "RS1 state" },
   { 4, "RS0 state" },
   { 3, "soft RS0 select" },
   { 2, "Tx fault" },
   { 1, "Rx LOS" },
   { 0, "data not ready" },
};

// Alarms (bytes 112-113) and warnings (116-117) have one layout.
inline constexpr MemoryBit flagBits[] = {
   { 15, "temperature high" },
   { 14, "temperature low" },
   { 13, "voltage high" },
   { 12, "voltage low" },
   { 11, "Tx bias high" },
   { 10, "Tx bias low" },
   { 9, "Tx power high" },
   { 8, "Tx power low" },
   { 7, "Rx power high" },
   { 6, "Rx power low" },
};

using enum MemoryKind;
inline constexpr std::string_view a0h = "a0h";
inline constexpr std::string_view a2h = "a2h";
inline constexpr bool shared = true;

// The number in a field times its scale is in its unit. Monitors, and thresholds, of a module that
// is calibrated externally are so before calibration.
inline constexpr MemoryField fields[] = {
   // name, page, first byte, width, kind, unit, scale, bits, shared
   { "identifier", a0h, 0, 1, u8 },
   { "extIdentifier", a0h, 1, 1, u8 },
   { "connector", a0h, 2, 1, u8 },
   { "compliance", a0h, 3, 8, bits, "", 1, complianceBits },
   { "encoding", a0h, 11, 1, u8 },
   { "bitrateNominal", a0h, 12, 1, u8, "MBd", 100 },
   { "rateIdentifier", a0h, 13, 1, u8 },
   // The length of a DWDM module, read over the rate identifier on purpose: decisions on DWDM
   // modules rest on it as it is, so an unused rate identifier (0) gives the length in km.
   { "dwdmLength", a0h, 13, 2, u16be, "km", 1, {}, shared },
   { "length9umKm", a0h, 14, 1, u8, "km" },
   { "length9um100m", a0h, 15, 1, u8, "m", 100 },
   { "lengthOm2", a0h, 16, 1, u8, "m", 10 },
   { "lengthOm1", a0h, 17, 1, u8, "m", 10 },
   { "lengthCopper", a0h, 18, 1, u8, "m" },
   { "lengthOm3", a0h, 19, 1, u8, "m", 10 },
   { "vendorName", a0h, 20, 16, text },
   { "complianceExtended", a0h, 36, 1, u8 },
   { "vendorOui", a0h, 37, 3, bytes },
   { "vendorPn", a0h, 40, 16, text },
   { "vendorRev", a0h, 56, 4, text },
   { "laserWavelengthInteger", a0h, 60, 2, u16be, "nm" },
   // A cable has no wavelength and keeps its attenuation in these bytes. Reading one memory under
   // three names is intended: the accessors read it of any module.
   { "passiveAttenuation", a0h, 60, 2, u16be, "", 1, {}, shared },
   { "activeAttenuation", a0h, 60, 2, u16be, "", 1, {}, shared },
   { "laserWavelengthFractional", a0h, 62, 1, u8, "nm", 0.01 },
   { "storedCcBase", a0h, 63, 1, u8 },
   { "options", a0h, 64, 2, bits, "", 1, optionBits },
   { "bitrateMax", a0h, 66, 1, u8, "%" },
   // Of a rate beyond the byte of the nominal rate: the rate, and how far it may deviate both ways.
   { "bitrateHigh", a0h, 66, 1, u8, "MBd", 250, {}, shared },
   { "bitrateMin", a0h, 67, 1, u8, "%" },
   { "bitrateHighTolerance", a0h, 67, 1, u8, "%", 1, {}, shared },
   { "vendorSn", a0h, 68, 16, text },
   { "dateCode", a0h, 84, 8, text },
   { "diagsMonitoringType", a0h, 92, 1, bits, "", 1, diagsMonitoringTypeBits },
   { "enhancedOptions", a0h, 93, 1, bits, "", 1, enhancedOptionBits },
   { "revision", a0h, 94, 1, u8 },
   { "storedCcExt", a0h, 95, 1, u8 },
   { "vendorSpecific", a0h, 96, 32, bytes },
   // Two vendor bytes whose difference is an attenuation in modules that use them.
   { "quorelAttnMinuend", a0h, 118, 1, s8, "dB", 0.5, {}, shared },
   { "quorelAttnSubtrahend", a0h, 119, 1, s8, "dB", 0.5, {}, shared },

   { "domTempHighAlarm", a2h, 0, 2, s16be, "°C", 1 / 256. },
   { "domTempLowAlarm", a2h, 2, 2, s16be, "°C", 1 / 256. },
   { "domTempHighWarn", a2h, 4, 2, s16be, "°C", 1 / 256. },
   { "domTempLowWarn", a2h, 6, 2, s16be, "°C", 1 / 256. },
   { "domVoltHighAlarm", a2h, 8, 2, u16be, "V", 0.0001 },
   { "domVoltLowAlarm", a2h, 10, 2, u16be, "V", 0.0001 },
   { "domVoltHighWarn", a2h, 12, 2, u16be, "V", 0.0001 },
   { "domVoltLowWarn", a2h, 14, 2, u16be, "V", 0.0001 },
   { "domBiasHighAlarm", a2h, 16, 2, u16be, "mA", 0.002 },
   { "domBiasLowAlarm", a2h, 18, 2, u16be, "mA", 0.002 },
   { "domBiasHighWarn", a2h, 20, 2, u16be, "mA", 0.002 },
   { "domBiasLowWarn", a2h, 22, 2, u16be, "mA", 0.002 },
   { "domTxPowerHighAlarm", a2h, 24, 2, u16be, "mW", 0.0001 },
   { "domTxPowerLowAlarm", a2h, 26, 2, u16be, "mW", 0.0001 },
   { "domTxPowerHighWarn", a2h, 28, 2, u16be, "mW", 0.0001 },
   { "domTxPowerLowWarn", a2h, 30, 2, u16be, "mW", 0.0001 },
   { "domRxPowerHighAlarm", a2h, 32, 2, u16be, "mW", 0.0001 },
   { "domRxPowerLowAlarm", a2h, 34, 2, u16be, "mW", 0.0001 },
   { "domRxPowerHighWarn", a2h, 36, 2, u16be, "mW", 0.0001 },
   { "domRxPowerLowWarn", a2h, 38, 2, u16be, "mW", 0.0001 },
   // Coefficients of the powers 4 to 0 of the raw Rx power, highest power first.
   { "domRxPower4", a2h, 56, 4, f32be },
   { "domRxPower3", a2h, 60, 4, f32be },
   { "domRxPower2", a2h, 64, 4, f32be },
   { "domRxPower1", a2h, 68, 4, f32be },
   { "domRxPower0", a2h, 72, 4, f32be },
   { "domBiasCurrentSlope", a2h, 76, 2, u16be, "", 1 / 256. },
   { "domBiasCurrentOffset", a2h, 78, 2, s16be },
   { "domTxPowerSlope", a2h, 80, 2, u16be, "", 1 / 256. },
   { "domTxPowerOffset", a2h, 82, 2, s16be },
   { "domTemperatureSlope", a2h, 84, 2, u16be, "", 1 / 256. },
   { "domTemperatureOffset", a2h, 86, 2, s16be },
   { "domSupplyVoltageSlope", a2h, 88, 2, u16be, "", 1 / 256. },
   { "domSupplyVoltageOffset", a2h, 90, 2, s16be },
   { "storedCcDmi", a2h, 95, 1, u8 },
   { "domTemperature", a2h, 96, 2, s16be, "°C", 1 / 256. },
   { "domSupplyVoltage", a2h, 98, 2, u16be, "V", 0.0001 },
   { "domBiasCurrent", a2h, 100, 2, u16be, "mA", 0.002 },
   { "domTxPower", a2h, 102, 2, u16be, "mW", 0.0001 },
   { "domRxPower", a2h, 104, 2, u16be, "mW", 0.0001 },
   { "domStatusBits", a2h, 110, 1, bits, "", 1, statusBits },
   { "alarmFlags", a2h, 112, 2, bits, "", 1, flagBits },
   { "warningFlags", a2h, 116, 2, bits, "", 1, flagBits },
   { "tuningPageSelect", a2h, 127, 1, u8 },
   { "tuningFirstFrequencyTHz", a2h, 132, 2, u16be, "THz" },
   { "tuningFirstFrequencyGHz", a2h, 134, 2, u16be, "GHz", 0.1 },
   { "tuningLastFrequencyTHz", a2h, 136, 2, u16be, "THz" },
   { "tuningLastFrequencyGHz", a2h, 138, 2, u16be, "GHz", 0.1 },
   { "tuningGridSpacingGHz", a2h, 140, 2, u16be, "GHz", 0.1 },
   { "tuningChannel", a2h, 144, 2, u16be },
   { "tuningWavelength", a2h, 146, 2, u16be, "nm", 0.05 },
};

inline constexpr MemoryCondition conditions[] = {
   // page, first and last byte, field, bit, value, negated, row
   { a0h, 13, 13, "identifier", "", 0x0b, false, "dwdmLength" },
   { a0h, 60, 60, "compliance", "passive cable", 0, true, "laserWavelengthInteger" },
   { a0h, 60, 60, "compliance", "active cable", 0, true, "laserWavelengthInteger" },
   { a0h, 60, 60, "compliance", "passive cable", 0, false, "passiveAttenuation" },
   { a0h, 60, 60, "compliance", "active cable", 0, false, "activeAttenuation" },
   { a0h, 62, 62, "compliance", "passive cable", 0, true },
   { a0h, 62, 62, "compliance", "active cable", 0, true },
   { a0h, 66, 66, "bitrateNominal", "", 0xff, true, "bitrateMax" },
   { a0h, 66, 66, "bitrateNominal", "", 0xff, false, "bitrateHigh" },
   { a0h, 67, 67, "bitrateNominal", "", 0xff, true, "bitrateMin" },
   { a0h, 67, 67, "bitrateNominal", "", 0xff, false, "bitrateHighTolerance" },
   { a2h, 0, 39, "diagsMonitoringType", "digital diagnostics" },
   { a2h, 56, 91, "diagsMonitoringType", "externally calibrated" },
   { a2h, 95, 110, "diagsMonitoringType", "digital diagnostics" },
   { a2h, 112, 117, "enhancedOptions", "alarm and warning flags" },
   // The upper half shows the tuning page while that is selected.
   { a2h, 132, 147, "options", "tunable transmitter" },
   { a2h, 132, 147, "tuningPageSelect", "", 2 },
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

} // namespace Sff8472Table

} // namespace Xcvr
