#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrSfpPlus.h>
#include <iostream>

int main() {
   Vel::String a0h( 256, '\0' ); // page A0h as a driver reads it: here of a 10GBASE-SR SFP+
   a0h.byteIs( 0, 3 ), a0h.byteIs( 3, 0x10 ), a0h.byteIs( 19, 30 );
   Xcvr::XcvrSff8472IdEepromContents sfp( a0h, "", 0.0 );
   sfp.vendorNameIs( "NORTHLIGHT" );
   std::cout << sfp.mediaType() << ", " << sfp.vendorName() << ", "
             << Xcvr::decodeDomICTemperature( 0x24, 0x80 ) << " °C\n";
}
