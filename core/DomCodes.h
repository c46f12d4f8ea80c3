#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

// The arithmetic of monitoring registers, inlined into what decodes many of them at once. The
// public form, byte by byte, is <Xcvr/XcvrDomDecoders.h>.
namespace Xcvr::DomCodes {

/// External calibration of a raw reading. The default is internal calibration: nothing left to do,
/// and nothing changed to the last bit.
struct Calibration {
   double slope = 1;
   double offset = 0;

   [[nodiscard]] double operator()( double raw ) const { return raw * slope + offset; }
};

/// A slope is an unsigned fixed-point number.
inline double slope( uint16_t code ) {
   return code / 256.;
}

// From a calibrated reading, in the units of an internally calibrated register.

/// A result of 128 °C or more is folded to the negative side. An externally calibrated temperature
/// passes through this as well, which is intended: it reads as negative, as a raw one would.
inline double temperature( double code ) {
   double const celsius = code / 256;
   return celsius >= 128 ? celsius - 256 : celsius;
}

inline double supplyVoltage( double code ) {
   return code * 0.0001;
}

inline double txBias( double code ) {
   return code * 0.002;
}

/// Minus infinity for a negative reading and for what is no number: a power that cannot be is a
/// power that cannot be read. Zero and plus infinity follow the formula.
inline double power( double code ) {
   if ( !( code >= 0 ) ) {
      return -std::numeric_limits<double>::infinity();
   }
   return 10 * std::log10( code * 1e-7 ) + 30;
}

/// The same of a register as it is. Each code is computed when it is first asked for, since the
/// logarithm costs more than all the rest of reading a module; the table lies in untouched pages of
/// memory, which cost nothing. A power of 0 dBm counts as not known yet, and is computed again.
inline double power( uint16_t code ) {
   static constinit double powers[1 << 16] = {};
   double & known = powers[code];
   if ( known == 0 ) [[unlikely]] {
      known = power( static_cast<double>( code ) );
   }
   return known;
}

/// A 16-bit floating-point number: five bits of a decimal exponent, eleven of mantissa; 0 to
/// 2.047e10.
inline double f16( uint16_t code ) {
   return ( code & 0x7ff ) * std::pow( 10, ( code >> 11 ) - 24 );
}

/// External calibration of received power: a polynomial, the coefficients from the constant up.
inline double rxPolynomial( double r, double c0, double c1, double c2, double c3, double c4 ) {
   return c4 * ( r * r * r * r ) + c3 * ( r * r * r ) + c2 * ( r * r ) + c1 * r + c0;
}

} // namespace Xcvr::DomCodes
