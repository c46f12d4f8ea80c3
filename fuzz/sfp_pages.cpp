// The memory of an SFP as it comes from a module, which may say anything: an input is page A0h (256
// bytes, or what there is) and behind it page A2h. Whatever they hold, every operation answers within
// its bounds.
#include "fuzz/Require.h"

#include <Vel/AttrLog.h>
#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace {

using namespace Xcvr;
using Contents = XcvrSff8472IdEepromContents;

struct TextField {
   Vel::String ( Contents::*read )() const;
   void ( Contents::*write )( std::string_view );
   size_t at, width;
};
constexpr TextField texts[] = {
   { &Contents::vendorName, &Contents::vendorNameIs, 20, 16 },
   { &Contents::vendorPn, &Contents::vendorPnIs, 40, 16 },
   { &Contents::vendorRev, &Contents::vendorRevIs, 56, 4 },
   { &Contents::vendorSn, &Contents::vendorSnIs, 68, 16 },
   { &Contents::dateCode, &Contents::dateCodeIs, 84, 8 },
};

void checkTexts( Contents const & contents ) {
   PageView const page = contents.buf().view();
   for ( TextField const & text : texts ) {
      size_t const width = widthOnPage( page, text.at, text.width );
      require( ( contents.*text.read )().size() == ( page.empty() ? 7 : width ) );
      Contents changed = contents;
      ( changed.*text.write )( "a text that is longer than any field" );
      require( changed.buf().size() == page.size() );
      require( page.empty() ||
               ( changed.*text.read )() ==
                  std::string_view( "a text that is longer than any field" ).substr( 0, width ) );
   }
}

void checkChecksums( Contents contents ) {
   contents.storedCcBaseIs( static_cast<uint8_t>( contents.computedCcBase() ) );
   contents.storedCcExtIs( static_cast<uint8_t>( contents.computedCcExt() ) );
   contents.storedCcDmiIs( static_cast<uint8_t>( contents.computedCcDmi() ) );
   require( contents.checksumsValid( pageA0h ) == ( contents.buf().size() > 95 ) );
   require( contents.checksumsValid( pageA2h ) == ( contents.eepromPageA2Data().size() > 95 ) );
}

void checkMediaType( Contents const & contents ) {
   requireMediaTypeOfARule( contents, sff8472MediaTypeRules() );
   require( contents.buf().empty() == ( contents.mediaTypeDecision().rule == 0 ) );
   static_cast<void>( contents.is1GConfigurable() );
   static_cast<void>( contents.laserWavelengthPrecision() );
   require( std::abs( contents.quorelAttnValue() ) <= 127.5 );
}

void checkFields( Contents const & contents ) {
   for ( MemoryField const & field : sff8472Fields() ) {
      PageView const page =
         field.page == "a0h" ? contents.buf().view() : contents.eepromPageA2Data().view();
      require( page.text( field.at, field.width ).size() ==
               widthOnPage( page, field.at, field.width ) );
      double const value = page.value( field );
      require( page.has( field.at, field.width ) || value == 0 );
      static_cast<void>( contents.fieldInUse( field ) );
   }
}

/// A power is a number of dBm or minus infinity, however the module is calibrated.
void requirePower( double dBm ) {
   require( dBm < std::numeric_limits<double>::infinity() );
}

void checkMonitors( Contents const & contents ) {
   PageView const p = contents.eepromPageA2Data().view();
   auto const b = [&p]( uint32_t at ) { return p.u8( at ); };
   requirePower( decodeDomICPower( b( 102 ), b( 103 ) ) );
   requirePower( decodeDomECTxPower( b( 102 ), b( 103 ), b( 80 ), b( 81 ), b( 82 ), b( 83 ) ) );
   requirePower( decodeDomECRxPower( b( 104 ), b( 105 ), b( 72 ), b( 73 ), b( 74 ), b( 75 ),
                                     b( 68 ), b( 69 ), b( 70 ), b( 71 ), b( 64 ), b( 65 ), b( 66 ),
                                     b( 67 ), b( 60 ), b( 61 ), b( 62 ), b( 63 ), b( 56 ), b( 57 ),
                                     b( 58 ), b( 59 ) ) );
   double const celsius =
      decodeDomECTemperature( b( 96 ), b( 97 ), b( 84 ), b( 85 ), b( 86 ), b( 87 ) );
   require( std::isfinite( celsius ) );
   static_cast<void>( decibelTo16BitDomValue( celsius ) );
   static_cast<void>( decibelTo16BitDomValue(
      static_cast<double>( decodeDomECIEEEFloat( b( 56 ), b( 57 ), b( 58 ), b( 59 ) ) ) ) );
   require( decodeTuningFrequency( b( 132 ), b( 133 ), b( 134 ), b( 135 ) ) <= 65541553 );

   Vel::String page = contents.eepromPageA2Data();
   editDomThresholdRegisterData( page, b( 127 ), 0xffff );
   Units::Decibels const limit( celsius );
   updateSfpDomThresholdWithQuorixData( page, limit, limit, limit, limit, limit, limit, limit,
                                        limit );
   require( page.size() == contents.eepromPageA2Data().size() );
}

void checkValueForms( Contents const & contents ) {
   require( Contents( stringValue( contents ) ) == contents );
   Vel::NboAttrLog log;
   contents.velWrite( log );
   require( Contents( log ) == contents );
   require( !contents == ( contents == Contents() ) );
}

void check( std::string_view a0h, std::string_view a2h ) {
   Contents const contents( a0h, a2h, 0.0 );
   checkTexts( contents );
   checkChecksums( contents );
   checkMediaType( contents );
   checkFields( contents );
   checkMonitors( contents );
   checkValueForms( contents );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string_view const image( reinterpret_cast<char const *>( data ), size );
   std::string_view const a0h = image.substr( 0, 256 );
   std::string_view const a2h = image.substr( a0h.size() );
   check( a0h, a2h );
   // The same with pages that end early, where the last byte says.
   size_t const end = size > 0 ? data[size - 1] : 0;
   check( a0h.substr( 0, end ), a2h.substr( 0, end ) );
   return 0;
}
