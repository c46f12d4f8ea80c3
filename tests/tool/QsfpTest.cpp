// What the program makes of QSFP modules, whole or in part.
#include "tests/support/QsfpImageBuilder.h"
#include "tests/tool/ToolRun.h"

namespace XcvrTest {
namespace {

struct QsfpToolTest : ToolTest {
   using Builder = QsfpImageBuilder;
   /// With all pages, and the enhanced monitors of four lanes and of the module.
   static Builder dr() { return example<Builder>( "100gbase-dr" ); }
   /// With signal settings, and a lane that is weak.
   static Builder cwdm4() { return example<Builder>( "100gbase-cwdm4" ); }
   static Builder cable() { return example<Builder>( "100gbase-cr4" ); }
};

TEST_F( QsfpToolTest, ShowFacts ) {
   expectFacts(
      cwdm4()
         .bit( "temperatureFlags", "temperature high warning" )
         .bit( "powerControl", "low power mode" )
         .raw( "rxOutputAmplitude", 0x1230, "losFlags", 0x04, "lolFlags", 0x0f, "faultFlags", 0x05,
               "txDisable", 0x03 ),
      { { "Extended identifier", "power class 4, Tx CDR, Rx CDR" },
        { "Encoding", "0x05 (64B/66B)" }, // 05h is SONET in an SFP
        { "Bit rate", "25750 MBd a lane" },
        { "Wavelength", "1301.00 nm" },
        { "Maximum case temperature", "70 °C" },
        { "Module flags", "temperature high warning" },
        { "Lane flags", "Rx LOS on lane 3, Tx fault on lanes 1/3, Rx CDR LOL on all lanes, "
                        "Rx power low warning on lane 2" },
        { "Module controls", "low power" },
        { "Rx output amplitude", "code 1 / 2 / 3 / 0" } } );
   expectFacts( dr(), { { "Rx output amplitude", untold },
                        { "User text", "Hall 2, rack 7, spare since 2024-10" } } );
   expectFacts( cable().raw( "txDisable", 0x03 ), { { "Lane controls", "Tx disable on lanes 1/2" },
                                                    { "Length (cable)", "3 m" },
                                                    { "Attenuation at 12.9 GHz", "16 dB" },
                                                    { "Lane flags", untold },
                                                    { "Monitors", untold } } );
   expectFacts(
      cwdm4().missing( "lower" ),
      { { "Monitors", "advertised, but the image lacks the lower page up to byte 57" } } );
   expectFacts(
      dr().missing( "00h" ),
      { { "Identifier", "0x11 (QSFP28 or later)" },
        { "Page 00h", "not in the image: it says what the module is and what it monitors" },
        { "Checksum, base", untold } } );
}

TEST_F( QsfpToolTest, MonitorsOfLanesOfAllAndEnhancedOnes ) {
   Image const image = dr().value( "txBias2", 10, "rxPower4", 0 ).raw( "losFlags", 0x02 );
   std::string const out = shown( "show", image );
   expectLines( out, { " Tx bias, lane 2 10.000 mA 30.000 40.000 110.000 120.000 low alarm\n",
                       " Rx power, lane 4 0.0000 mW / -inf dBm -9.90 -5.90 4.00 5.00 low alarm\n",
                       " Sum of Rx power 3.3004 mW / 5.19 dBm - - - -\n",
                       " SNR, lane 1 21.50 dB 16.00 17.00 38.00 40.00\n",
                       " TEC current 31.0 mA -200.0 -180.0 180.0 200.0\n" } );
   EXPECT_THAT( out, Not( HasSubstr( "SNR, lane 2" ) ) );

   expectJson( Json::parse( run( "show --json -", image ).out ), R"( {
      "units": { "enhancedDom": { "snr": { "0": { "value": "dB" } } } },
      "modules": [ {
         "family": "qsfpPlus", "domInfo": { "1": { "txBias": 10.0 } },
         "laneFlags": { "1": { "rxLos": true }, "2": { "rxLos": false } },
         "enhancedDom": {
            "snr": [ { "lane": 0, "value": 21.5, "highAlarm": 40.0, "lowAlarm": 16.0,
                       "highWarn": 38.0, "lowWarn": 17.0 } ],
            "tecCurrent": { "0": { "lane": null } } } } ] } )" );
}

TEST_F( QsfpToolTest, HexdumpOfCodesAmongBits ) {
   QsfpImageBuilder module = cwdm4().raw( "lowerProperties", 0x19 );
   expectLines( shown( "hexdump", module.bit( "moduleStatus", "flat memory" ) ),
                { "Page lower, 128 bytes, status and monitors\n",
                  "110 6e 19 lowerProperties low power up to 1 W, 2.5 V,\n far side managed\n",
                  "140 8c ff bitrateNominal 0xff (see bitrateExtended)\n",
                  // Whatever a driver gave.
                  "Page 03h, 128 bytes, thresholds, which the module says it lacks\n"
                  "Byte Contents Field Value\n128 80 4b 00 fb 00 46 \"K___F\"\n" } );
}

TEST_F( QsfpToolTest, Findings ) {
   std::string const whole = labelled( dr() );
   std::size_t const at03h = whole.find( "[03h]" ), at20h = whole.find( "[20h]" );
   expectFindings( {
      // What a module notices itself is no finding of its own.
      { dr().raw( "losFlags", 0xff ).raw( "lolFlags", 0xff ), nullptr },
      { dr().raw( "parameter1Value", 41 * 256 ), "value-alarm: SNR, lane 1 is 41.00 dB, above" },
      { dr().missing( "00h" ), "page-missing: .* has page 00h .identification., but" },
      { dr().missing( "20h" ), "page-missing: .* has page 20h .enhanced monitors., but" },
      // Of a cut page its rest.
      { whole.substr( 0, at03h ) + "[03h]\n01 02\n" + whole.substr( at20h ),
        "page-missing: The image has 2 of the 128 bytes of page 03h" },
      { dr().raw( "lowerIdentifier", 0x0d ),
        "identifier-copy: Byte 0 has the identifier 0dh, byte 128 has 11h" },
   } );
}

} // namespace
} // namespace XcvrTest
