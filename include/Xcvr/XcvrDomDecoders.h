#pragma once

#include <Xcvr/XcvrApi.h>

#include <cstdint>

// Decoders of digital optical monitoring registers, shared by every module family that has them.
// Byte arguments are given as the module stores them, most significant first. Optical power is in
// dBm; no light is minus infinity, and so is a power that calibration makes negative or no number.
// One that calibration makes infinite is plus infinity.
namespace Xcvr {

// Internally calibrated monitors of SFF-8472, which SFF-8636 and CMIS code alike.

/// °C, -128 to 127.996 in steps of 1/256.
[[nodiscard]] XCVR_API double decodeDomICTemperature( uint8_t msb, uint8_t lsb );
/// V, 0 to 6.5535.
[[nodiscard]] XCVR_API double decodeDomICSupplyVoltage( uint8_t msb, uint8_t lsb );
/// mA, 0 to 131.07.
[[nodiscard]] XCVR_API double decodeDomICTxBias( uint8_t msb, uint8_t lsb );
/// dBm, Tx and Rx: -40 (0.1 µW) to 8.165; minus infinity for 0.
[[nodiscard]] XCVR_API double decodeDomICPower( uint8_t msb, uint8_t lsb );

/// A ratio such as that of bit errors, as SFF-8636 and CMIS code it: 0 to 2.047e10.
[[nodiscard]] XCVR_API double decodeDomF16( uint8_t msb, uint8_t lsb );

// Calibration constants of an externally calibrated module (SFF-8472 A2h bytes 56-91).

/// An unsigned fixed-point number, 0 to 255.996.
[[nodiscard]] XCVR_API double decodeDomECSlope( uint8_t msb, uint8_t lsb );
[[nodiscard]] XCVR_API int16_t decodeDomECOffset( uint8_t msb, uint8_t lsb );
/// An IEEE 754 single; infinities and not-a-numbers come out as such.
[[nodiscard]] XCVR_API float decodeDomECIEEEFloat( uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3 );

// Externally calibrated monitors: raw × slope + offset, in the units of the internal forms.

/// A result of 128 °C or more is folded to the negative side, like a raw value is.
[[nodiscard]] XCVR_API double decodeDomECTemperature( uint8_t msb, uint8_t lsb, uint8_t slopeMsb,
                                                      uint8_t slopeLsb, uint8_t offsetMsb,
                                                      uint8_t offsetLsb );
[[nodiscard]] XCVR_API double decodeDomECSupplyVoltage( uint8_t msb, uint8_t lsb, uint8_t slopeMsb,
                                                        uint8_t slopeLsb, uint8_t offsetMsb,
                                                        uint8_t offsetLsb );
[[nodiscard]] XCVR_API double decodeDomECTxBias( uint8_t msb, uint8_t lsb, uint8_t slopeMsb,
                                                 uint8_t slopeLsb, uint8_t offsetMsb,
                                                 uint8_t offsetLsb );
[[nodiscard]] XCVR_API double decodeDomECTxPower( uint8_t msb, uint8_t lsb, uint8_t slopeMsb,
                                                  uint8_t slopeLsb, uint8_t offsetMsb,
                                                  uint8_t offsetLsb );
/// A polynomial of the fourth degree in the raw value. The coefficients are Rx_PWR(0) to Rx_PWR(4),
/// four bytes each: the reverse of their order in the module's memory.
[[nodiscard]] XCVR_API double
decodeDomECRxPower( uint8_t msb, uint8_t lsb,                               //
                    uint8_t c0b0, uint8_t c0b1, uint8_t c0b2, uint8_t c0b3, //
                    uint8_t c1b0, uint8_t c1b1, uint8_t c1b2, uint8_t c1b3, //
                    uint8_t c2b0, uint8_t c2b1, uint8_t c2b2, uint8_t c2b3, //
                    uint8_t c3b0, uint8_t c3b1, uint8_t c3b2, uint8_t c3b3, //
                    uint8_t c4b0, uint8_t c4b1, uint8_t c4b2, uint8_t c4b3 );

// Tuning registers (SFF-8690).

/// GHz, from whole THz and a fraction in 0.1 GHz; what is below a GHz is cut off.
[[nodiscard]] XCVR_API uint32_t decodeTuningFrequency( uint8_t thzMsb, uint8_t thzLsb,
                                                       uint8_t ghzMsb, uint8_t ghzLsb );
/// GHz, from 0.1 GHz, unsigned; what is below a GHz is cut off.
[[nodiscard]] XCVR_API uint32_t decodeTuningGridSpacing( uint8_t msb, uint8_t lsb );
/// Channel number, from 1.
[[nodiscard]] XCVR_API uint16_t decodeTuningChannel( uint8_t msb, uint8_t lsb );

/// The register code of a power in dBm, in 0.1 µW: cut to a whole number, at most 65535 (8.165
/// dBm). Minus infinity, and what is not a number, give 0: no light.
[[nodiscard]] XCVR_API uint16_t decibelTo16BitDomValue( double dBm );

} // namespace Xcvr
