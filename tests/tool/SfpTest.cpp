// What the program makes of SFP modules, whole or in part. (The README has all that `show` says of one.)
#include "tests/support/SfpImageBuilder.h"
#include "tests/tool/ToolRun.h"

#include <fmt/format.h>

namespace XcvrTest {
namespace {

struct SfpToolTest : ToolTest {
   /// Modules with nothing wrong.
   static SfpImageBuilder sr() { return example<SfpImageBuilder>( "10gbase-sr" ); }
   static SfpImageBuilder tunable() { return example<SfpImageBuilder>( "dwdm-tunable" ); }
   static SfpImageBuilder cable() { return example<SfpImageBuilder>( "10gbase-cr" ); }

   static std::string binary( SfpImageBuilder const & image, std::size_t size = 512 ) {
      return ( image.a0h() + image.a2h() ).substr( 0, size );
   }
};

TEST_F( SfpToolTest, ShowFacts ) {
   expectFacts( cable().text( "vendorName", "" ).raw( "options", 0 ),
                { { "Passive cable compliance", "0x0100" },
                  { "Length (cable)", "3 m" },
                  { "Wavelength", untold },
                  { "Vendor name", "(blank)" },
                  { "Options", "none" },
                  { "Monitors", untold },
                  { "Checksum, diagnostics", untold } } );
   expectFacts( tunable(), { { "Capabilities", "1 channel, tunable wavelength" },
                             { "Tuning range", "191300 to 196100 GHz" },
                             { "Grid spacings", "100 GHz, 50 GHz" },
                             { "Wavelength", "1552.52 nm" },
                             { "Length (SMF, in 100 m)", "more than 25400 m" } } );
   struct {
      SfpImageBuilder image;
      char const * label;
      char const * text;
   } const cases[] = {
      { sr().bit( "alarmFlags", "Rx power low" ).bit( "warningFlags", "temperature high" ),
        "Alarms and warnings", "temperature high warning, Rx power low alarm" },
      // A module that does not implement them: what stands there is nothing.
      { sr().raw( "enhancedOptions", 0 ), "Alarms and warnings", untold },
      { sr().text( "dateCode", "241107X3" ), "Lot code", "X3" },
      // Dates that are none have no lot code behind them.
      { sr().text( "dateCode", "241301X3" ), "Lot code", untold },
      { sr().text( "dateCode", "250229" ), "Date code", "250229" },
      // Bytes that are no text; zeros behind a text are padding as well.
      { sr().text( "vendorPn", "A\x1b[2J\xc3\xa9\x7f" ), "Vendor part number", "A_[2J___" },
      { sr().text( "vendorSn", { "SN1\0\0", 5 } ), "Vendor serial number", "SN1" },
      { sr().raw( "bitrateMin", 3 ), "Bit rate, minimum", "9991 MBd" },
      // No rate falls by more than all of it.
      { sr().raw( "bitrateMin", 101 ), "Bit rate, minimum", untold },
      // A rate beyond the nominal byte: 250 MBd steps, and one tolerance both ways.
      { sr().raw( "bitrateNominal", 255, "bitrateMax", 103 ), "Bit rate", "25750 MBd" },
      { sr().raw( "bitrateNominal", 255, "bitrateMax", 103, "bitrateMin", 2 ), "Bit rate, maximum",
        "26265 MBd" },
      { SfpImageBuilder().bit( "diagsMonitoringType", "digital diagnostics" ), "Monitors",
        "not calibrated" },
      { sr().a2hMissing(), "Monitors", "advertised, but the image lacks page a2h up to byte 117" },
      // A code without a name, and bits without one.
      { sr().raw( "connector", 0x7f ), "Connector", "0x7f" },
      { sr().raw( "options", 0x8001 ), "Options", "bit 15, bit 0" },
   };
   for ( auto const & [image, label, text] : cases ) {
      expectFacts( image, { { label, text } } );
   }
   // The image ends in front of the stored sum.
   expectFacts( binary( sr(), 300 ),
                { { "Checksum, diagnostics", "page a2h, the stored one cut off, "
                                             "computed 0x35, BAD" } } );
   // There is no negative zero.
   EXPECT_THAT( shown( "show", sr().raw( "domTemperature", 0xffff ) ),
                HasSubstr( " Temperature 0.00 °C -5.00 " ) );
}

TEST_F( SfpToolTest, Json ) {
   file( "sr", sr().text( "vendorSn", "\xb5\x01\"" ).raw( "bitrateMin", 101 ) );
   file( "cable", cable().text( "dateCode", "" ).checksumBroken( "storedCcExt" ) );
   ToolRun const run = this->run( "show --json sr cable" );
   EXPECT_THAT( run.out, Not( ContainsRegex( "[^\n -~]" ) ) ) << "ASCII only";
   expectJson( Json::parse( run.out ), R"( {
      "schema": 1,
      "units": { "lengths": { "lengthOm3": "m" }, "bitrate": { "max": "MBd" },
                 "domInfo": [ { "temperature": "°C" } ] },
      "modules": [
         { "file": "sr", "family": "sfpPlus", "connector": 7, "connectorName": "LC",
           "mediaType": "xcvr10GBaseSr", "mediaTypeString": "10GBASE-SR",
           "vendorInfo": { "vendorName": "NORTHLIGHT", "vendorSn": "\u00b5\u0001\"",
                           "vendorDateCode": "241015" },
           "date": "2024-10-15", "compliance": [ "10GBASE-SR" ],
           "bitrate": { "nominal": 10300, "max": 10300, "min": 0 },
           "lengths": { "lengthOm4": 400, "lengthCopper": 0 } },
         { "file": "cable", "date": null, "laserWavelength": "absent",
           "checksums": { "1": { "name": "ccExt", "page": "a0h", "stored": 244, "computed": 243,
                                 "valid": false } } } ] } )" );
}

TEST_F( SfpToolTest, JsonOfMonitors ) {
   SfpImageBuilder const dark = sr().value( "domRxPower", 0 ).value( "domRxPowerLowAlarm", 0 );
   // Where the image ends before a block is complete, nothing is made of the part. No light, and what
   // is not monitored, is null; nobody knows when the image was read.
   std::pair<std::size_t, char const *> const cases[] = {
      { 256 + 95, R"( { "domThresholdValid": false, "domThreshold": { "tempLowWarn": null } } )" },
      { 256 + 96, R"( { "domThresholdValid": true, "domThreshold": { "tempLowWarn": 0.0 } } )" },
      { 256 + 117, R"( { "domInfo": [ { "temperature": null } ], "statusBits": null } )" },
      { 256 + 118, R"( { "domThreshold": { "tempLowAlarm": -5.0, "rxPowerLowAlarm": null },
                         "domInfo": [ { "updateTime": null, "txBias": 6.24, "rxPower": null,
                                        "temperature": 36.3984375, "totalRxPower": null } ],
                         "statusBits": { "txFault": false },
                         "domFlags": { "rxPowerLowWarn": false } } )" },
   };
   for ( auto const & [size, module] : cases ) {
      Json const document = Json::parse( run( "show --json -", binary( dark, size ) ).out );
      expectJson( document["modules"][0], module );
   }
}

TEST_F( SfpToolTest, HexdumpOfFields ) {
   std::string const out = run( "hexdump -", binary( sr(), 256 + 97 ) ).out;
   expectLines( out,
                { "Page a0h, 256 bytes\n",
                  "\n  2 02  07                       connector                  0x07 (LC)\n",
                  "\n 20 14  4e 4f 52 54 48 4c 49 47  vendorName                 \"NORTHLIGHT\"\n"
                  " 28 1c  48 54 20 20 20 20 20 20\n",
                  "\n 96 60  00 ...                   vendorSpecific             32 bytes of 00\n",
                  "\nPage a2h, 97 bytes\n" } );
   EXPECT_THAT( out, EndsWith( "\n 96 60  24                       domTemperature"
                               "             cut off\n" ) );
   EXPECT_THAT( out, Not( ContainsRegex( "Slope|tuningCh|calibration|Atten|dwdmL|bitrateHigh" ) ) );
}

/// Bytes with more than one meaning have that of the module.
TEST_F( SfpToolTest, HexdumpOfOverloadedBytes ) {
   std::string const tuningPage = tunable().a2h().substr( 128 );
   std::string const paged =
      binary( tunable().raw( "tuningPageSelect", 1 ) ) + std::string( 128, '\0' ) + tuningPage;
   struct {
      Image image;
      char const * shown;
      char const * notShown = "nothing else";
   } const cases[] = {
      { cable(), "01 00 +passiveAttenuation +256\n 62 3e  00\n", "laserWavelength" },
      { cable().bit( "compliance", "active cable" ),
        " passiveAttenuation +256\n 60 3c  01 00 +\\(activeAttenuation\\) +256\n" },
      { sr().raw( "bitrateNominal", 255 ).raw( "bitrateMax", 103 ),
        "0xff \\(see bitrateHigh\\)\n.* 67 +bitrateHigh +25750 MBd\n.*bitrateHighTolerance +0 %\n",
        "bitrateM" },
      { tunable(), "\n144 90  00 25 +tuningChannel +37\n" },
      // The tuning page as a page of its own, while A2h shows another (linear: A0h, A2h, 01h, 02h).
      { paged, "\nPage 02h, 128 bytes\n[^P]*\n144 90  00 25 +tuningChannel +37\n" },
      { paged.substr( 0, 640 ), "Page 01h", "tuningChannel" },
      { sr().raw( "diagsMonitoringType", 0x50 ).value( "domTemperatureSlope", 1.5 ),
        "before calibration\n.*01 80 +domTemperatureSlope +1.500\n" },
   };
   for ( auto const & [image, shown, notShown] : cases ) {
      std::string const out = run( "hexdump -", image ).out;
      EXPECT_THAT( out, AllOf( ContainsRegex( shown ), Not( HasSubstr( notShown ) ) ) );
   }
}

TEST_F( SfpToolTest, ExplainShowsTheRulesUpToTheOneThatMatched ) {
   std::string const out = run( "explain -", sr() ).out;
   std::size_t const rule = sr().contents().mediaTypeDecision().rule;
   EXPECT_THAT( out,
                ContainsRegex( fmt::format( "^   xcvr10GBaseSr: rule {0} of [0-9]+ matches: .*\n"
                                            " +{0}  [^\n]* yes: xcvr10GBaseSr\n",
                                            rule + 1 ) ) );
   EXPECT_EQ( allMatches( out, "\n +([0-9]+)  [^\n]* no(?=\n)" ).size(), rule );
   EXPECT_EQ( fact( out, "Byte 12, bit rate" ), "103 x 100 MBd" );
   EXPECT_EQ( fact( out, "Bytes 13-14, DWDM length" ), untold );
   std::string const dwdm =
      run( "explain -", cable().raw( "identifier", 11, "dwdmLength", 0x0150 ) ).out;
   EXPECT_EQ( fact( dwdm, "Bytes 13-14, DWDM length" ), "336 km" );
}

TEST_F( SfpToolTest, Findings ) {
   SfpImageBuilder const uncalibrated = sr().raw( "diagsMonitoringType", 0x40 );
   auto const copper = SfpImageBuilder().bit( "compliance", "1000BASE-T" ).a2hMissing();
   expectFindings( {
      { sr().checksumBroken( "storedCcBase" ),
        "checksum: .* base .* a0h, stored 0x64, computed 0x63. " },
      { binary( sr(), 256 + 117 ), "dom-missing: .* lacks page a2h up to byte 117" },
      { uncalibrated, "dom-calibration: .*not how they are calibrated" },
      { sr().value( "domTempHighWarn", 76 ),
        "threshold-order: .* of Temperature .* high warning 76.00, high alarm 75.00 °C" },
      { sr().value( "domRxPower", 0 ),
        "value-alarm: Rx power is 0.0000 mW / -inf dBm, below its alarm limit of -13.90" },
      // Within the alarm limits, if only just.
      { sr().value( "domTemperature", 75 ).value( "domBiasCurrent", 2 ), nullptr },
      // Zeros for padding are common; between characters they are not.
      { sr().text( "vendorSn", { "SN1\0\0", 5 } ), nullptr },
      { sr().text( "vendorRev", { "A\0B", 3 } ), "text: .* vendorRev has byte 00h, .* 2" },
      { sr().raw( "connector", 0x22 ), "connector: .*RJ45.*, but the media type is 10GBASE-SR" },
      { SfpImageBuilder( copper ).raw( "connector", 7 ),
        "connector: .*LC.*, but the media type is 1000BASE-T" },
      // Of a type that is not known nobody knows the connector either.
      { SfpImageBuilder().raw( "connector", 7 ), "media-type: .*03h" },
      // Limits that are not set leave nothing to be outside of.
      { sr().raw( "domTempLowAlarm", 0, "domTempLowWarn", 0, "domTempHighWarn", 0,
                  "domTempHighAlarm", 0 ),
        nullptr },
   } );
   EXPECT_THAT( run( "check --family sfp -", sr().raw( "identifier", 0x11 ) ).out,
                ContainsRegex( "identifier: .*11h is not one of .* sfp" ) );
   expectJson( Json::parse( run( "check --json -", uncalibrated ).out ), R"( { "modules": [ {
      "file": "<stdin>", "family": "sfpPlus", "findings": [ {
         "id": "dom-calibration",
         "finding": "The module says that it has monitors, but not how they are calibrated."
      } ] } ] } )" );
}

} // namespace
} // namespace XcvrTest
