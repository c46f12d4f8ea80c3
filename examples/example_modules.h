#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What the example modules of all families are made of. Modules and vendors are invented.
namespace Examples {

/// A page of a labelled image; without bytes it is left out.
struct Page {
   std::string_view label;
   std::string bytes;
};

struct Example {
   char const * name;
   char const * about;
   std::vector<Page> pages;
};

std::vector<Example> qsfpExamples();

struct Vendor {
   char const * name;
   uint32_t oui; // locally administered, so nobody's
};
inline constexpr Vendor northlight{ "NORTHLIGHT", 0x024E4C };
inline constexpr Vendor oakfiber{ "OAKFIBER", 0x024F46 };

inline double milliwatts( double dBm ) {
   return std::pow( 10, dBm / 10 );
}

/// One monitored quantity: its thresholds and its value, in the unit of its fields.
struct Monitor {
   double highAlarm, lowAlarm, highWarn, lowWarn, now;
};

inline Monitor power( double highAlarm, double lowAlarm, double highWarn, double lowWarn,
                      double now ) {
   return { milliwatts( highAlarm ), milliwatts( lowAlarm ), milliwatts( highWarn ),
            milliwatts( lowWarn ), milliwatts( now ) };
}

/// The supply voltage, V, with the usual limits of 5 and 10 % around 3.3 V.
inline Monitor voltage( double now ) {
   return { 3.63, 2.97, 3.465, 3.135, now };
}

} // namespace Examples
