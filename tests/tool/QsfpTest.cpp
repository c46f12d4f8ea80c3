// What the program makes of QSFP modules, whole or in part.
#include "tests/support/QsfpImageBuilder.h"
#include "tests/tool/ToolRun.h"

namespace XcvrTest {
namespace {

/// With all pages, and the enhanced monitors of four lanes and of the module.
QsfpImageBuilder dr() {
   return example<QsfpImageBuilder>( "100gbase-dr" );
}

/// With signal settings, and a lane that is weak.
QsfpImageBuilder cwdm4() {
   return example<QsfpImageBuilder>( "100gbase-cwdm4" )
      .missing( "02h" )
      .missing( "20h" )
      .missing( "21h" );
}

QsfpImageBuilder cable() {
   return example<QsfpImageBuilder>( "100gbase-cr4" ).flat();
}

using QsfpToolTest = ToolTest;

TEST_F( QsfpToolTest, ShowFacts ) {
   expectFacts( labelled( cwdm4().raw( "rxOutputAmplitude", 0x1230 ) ),
                { { "Extended identifier", "power class 4, Tx CDR, Rx CDR" },
                  { "Encoding", "0x05 (64B/66B)" }, // 05h is SONET in an SFP
                  { "Bit rate", "25750 MBd a lane" },
                  { "Wavelength", "1301.00 nm" },
                  { "Maximum power", "3.5 W" },
                  { "Maximum case temperature", "70 °C" },
                  { "Lane flags", "Rx power low warning on lane 2" },
                  { "Rx output amplitude", "code 1 / 2 / 3 / 0" } } );
   expectFacts(
      labelled( dr()
                   .raw( "losFlags", 0x04 )
                   .raw( "lolFlags", 0x0f )
                   .raw( "faultFlags", 0x05 )
                   .bit( "temperatureFlags", "temperature high warning" )
                   .bit( "temperatureFlags", "initialisation complete" )
                   .raw( "txDisable", 0x03 )
                   .bit( "powerControl", "low power mode" ) ),
      { { "Module flags", "temperature high warning, initialization complete" },
        { "Lane flags", "Rx LOS on lane 3, Tx fault on lanes 1/3, Rx CDR LOL on all lanes" },
        { "Module controls", "low power" },
        { "Lane controls", "Tx disable on lanes 1/2, Rx CDR on all lanes, Tx CDR on all lanes" },
        { "Rx output amplitude", untold },
        { "User text", "Hall 2, rack 7, spare since 2024-10" } } );
   expectFacts( labelled( cable().raw( "txDisable", 0x03 ) ),
                { { "Lane controls", "Tx disable on lanes 1/2" },
                  { "Length (cable)", "3 m" },
                  { "Attenuation at 12.9 GHz", "16 dB" },
                  { "Lane flags", untold },
                  { "Monitors", untold } } );
   expectFacts(
      labelled( cwdm4().missing( "lower" ) ),
      { { "Monitors", "advertised, but the image lacks the lower page up to byte 57" } } );
   expectFacts(
      labelled( dr().missing( "00h" ) ),
      { { "Identifier", "0x11 (QSFP28 or later)" },
        { "Page 00h", "not in the image: it says what the module is and what it monitors" },
        { "Connector", untold },
        { "Checksum, base", untold } } );
}

TEST_F( QsfpToolTest, MonitorsOfLanesOfAllAndEnhancedOnes ) {
   std::string const image =
      labelled( dr().value( "txBias2", 10 ).value( "rxPower4", 0 ).raw( "losFlags", 0x02 ) );
   std::string const out = run( "show -", image ).out;
   expectLines( squeezed( out ),
                { " Temperature 47.30 °C -5.00 0.00 70.00 75.00\n",
                  " Tx bias, lane 2 10.000 mA 30.000 40.000 110.000 120.000 low alarm\n",
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
   expectLines(
      squeezed( run( "hexdump -", labelled( cwdm4().raw( "lowerProperties", 0x19 ) ) ).out ),
      { "Page lower, 128 bytes, status and monitors\n",
        "110 6e 19 lowerProperties low power up to 1 W, 2.5 V,\n far side managed\n",
        "140 8c ff bitrateNominal 0xff (see bitrateExtended)\n",
        "128 80 4b 00 tempHighAlarm 75.000 °C\n" } );
   // A module with flat memory has no page 03h, whatever a driver gave.
   std::string const flat =
      run( "hexdump -", labelled( cwdm4().bit( "moduleStatus", "flat memory" ) ) ).out;
   EXPECT_THAT( flat,
                HasSubstr( "Page 03h, 128 bytes, thresholds, which the module says it lacks" ) );
   EXPECT_THAT( flat, Not( HasSubstr( "tempHighAlarm" ) ) );
}

TEST_F( QsfpToolTest, Findings ) {
   std::string const whole = labelled( dr() );
   std::size_t const at03h = whole.find( "[03h]" ), at20h = whole.find( "[20h]" );
   expectFindings( {
      // What a module notices itself is no finding of its own.
      { labelled( dr().raw( "losFlags", 0xff ).raw( "lolFlags", 0xff ) ), nullptr },
      { labelled( dr().value( "rxPower2", 5 ) ),
        "value-alarm: Rx power, lane 2 is 5.0000 mW / 6.99" },
      { labelled( dr().raw( "parameter1Value", 41 * 256 ) ),
        "value-alarm: SNR, lane 1 is 41.00 dB, above" },
      { labelled( dr().missing( "lower" ) ), "dom-missing: .*lacks the lower page up to byte 57" },
      { labelled( dr().missing( "00h" ) ), "page-missing: .* has page 00h .identification., but" },
      { labelled( dr().missing( "20h" ) ),
        "page-missing: .* has page 20h .enhanced monitors., but" },
      // Of a cut page its rest.
      { whole.substr( 0, at03h ) + "[03h]\n01 02\n" + whole.substr( at20h ),
        "page-missing: The image has 2 of the 128 bytes of page 03h" },
      { labelled( dr().raw( "lowerIdentifier", 0x0d ) ),
        "identifier-copy: Byte 0 has the identifier 0dh, byte 128 has 11h" },
      { labelled( QsfpImageBuilder().flat().identifier( 12 ) ),
        "media-type: The identifier 0ch .QSFP" },
   } );
}

} // namespace
} // namespace XcvrTest
