// A program that has nothing of the project but what is installed. It crosses the border of the
// shared library in each way that hidden visibility could break: plain calls, a value's string
// form, an enumeration's name, and an exception thrown inside and caught outside.
#include <Vel/Exception.h>
#include <Xcvr/XcvrSfpPlus.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdio>
#include <limits>

namespace {

bool stringFormSurvives() {
   Xcvr::DomInfo info;
   info.temperatureIs( 31.5 );
   info.rxPowerIs( -std::numeric_limits<double>::infinity() );
   return Xcvr::DomInfo( stringValue( info ) ) == info;
}

bool exceptionIsCaughtByType() {
   try {
      Xcvr::DomInfo const info( Vel::String( "no value" ) );
   } catch ( Vel::ParseException const & error ) {
      return error.position() == 0;
   }
   return false;
}

bool moduleIsDecoded() {
   Vel::String page( "\x03\x04\x07\x10", 4 ); // SFP, LC connector, 10GBASE-SR
   Xcvr::XcvrSff8472IdEepromContents const contents( page, Vel::String(), 0 );
   return contents.connector() == 7 && stringValue( Xcvr::xcvr10GBaseSr ) == "xcvr10GBaseSr";
}

} // namespace

int main() {
   if ( stringFormSurvives() && exceptionIsCaughtByType() && moduleIsDecoded() )
      return 0;
   std::fputs( "the installed library does not do what its headers say\n", stderr );
   return 1;
}
