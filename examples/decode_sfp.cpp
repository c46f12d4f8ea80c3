#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrSfpPlus.h>
#include <iostream>

int main() {
   Vel::String a0h( 256, '\0' ), a2h( 256, '\0' ); // the pages as a driver reads them
   a0h.byteIs( 0, 0x03 ), a0h.byteIs( 3, 0x10 ), a0h.byteIs( 19, 30 ); // 10GBASE-SR
   a2h.byteIs( 96, 0x24 ), a2h.byteIs( 97, 0x80 );                     // at 36.5 °C
   Xcvr::XcvrSff8472IdEepromContents sfp( a0h, a2h, 0.0 );
   sfp.vendorNameIs( "NORTHLIGHT" );
   Xcvr::PageView const page( a2h );
   std::cout << sfp.mediaType() << ", " << sfp.vendorName() << ", "
             << Xcvr::decodeDomICTemperature( page.u8( 96 ), page.u8( 97 ) ) << " °C\n";
}
