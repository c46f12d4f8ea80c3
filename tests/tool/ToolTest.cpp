// The program as its users meet it: arguments, inputs, outputs, exit codes.
#include "tests/support/SfpImageBuilder.h"
#include "tests/tool/ToolRun.h"
#include "tools/xcvr/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <pty.h>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace XcvrTest {
namespace {

using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;

SfpImageBuilder sr() {
   return SfpImageBuilder()
      .raw( "extIdentifier", 4 )
      .raw( "connector", 7 )
      .bit( "compliance", "10GBASE-SR" )
      .raw( "encoding", 6 )
      .value( "bitrateNominal", 10300 )
      .value( "lengthOm2", 80 )
      .value( "lengthOm1", 30 )
      .raw( "lengthCopper", 40 )
      .value( "lengthOm3", 300 )
      .text( "vendorName", "Harbour Optics" )
      .raw( "vendorOui", 0x00aa1f )
      .text( "vendorPn", "HO-10G-SR" )
      .text( "vendorRev", "B2" )
      .value( "laserWavelengthInteger", 850 )
      .bit( "options", "Tx disable" )
      .bit( "options", "Rx LOS" )
      .text( "vendorSn", "HO24110042" )
      .text( "dateCode", "241107X3" )
      .bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", "internally calibrated" )
      .bit( "diagsMonitoringType", "received power is average power" )
      .bit( "enhancedOptions", "alarm and warning flags" )
      .bit( "enhancedOptions", "soft Tx disable" )
      .bit( "enhancedOptions", "soft rate select" )
      .raw( "revision", 8 )
      .value( "domTempLowAlarm", -5 )
      .value( "domTempLowWarn", 0 )
      .value( "domTempHighWarn", 36 )
      .value( "domTempHighAlarm", 75 )
      .value( "domTemperature", 36.5 )
      .value( "domSupplyVoltage", 3.3 )
      .value( "domTxPower", 0.5 )
      .value( "domRxPowerHighAlarm", 1 )
      .bit( "domStatusBits", "Tx disable state" )
      .bit( "domStatusBits", "RS1 state" )
      .bit( "alarmFlags", "Rx power low" )
      .bit( "warningFlags", "temperature high" );
}

SfpImageBuilder cable() {
   return SfpImageBuilder()
      .bit( "compliance", "passive cable" )
      .value( "bitrateNominal", 10300 )
      .raw( "lengthCopper", 3 )
      .raw( "passiveAttenuation", 0x0100 )
      .a2hMissing();
}

std::string binary( SfpImageBuilder const & image ) {
   return image.a0h() + image.a2h();
}

TEST_F( ToolTest, ShowOfOneModule ) {
   EXPECT_EQ( run( "show -", binary( sr() ) ).out,
              R"(   Identifier            : 0x03 (SFP, SFP+ or SFP28)
   Extended identifier   : 0x04 (2-wire interface ID only)
   Connector             : 0x07 (LC)
   Media type            : 10GBASE-SR (xcvr10GBaseSr)
   Vendor name           : Harbour Optics
   Vendor part number    : HO-10G-SR
   Vendor serial number  : HO24110042
   Vendor revision       : B2
   Date code             : 2024-11-07
   Lot code              : X3
   Vendor OUI            : 00:aa:1f
   Compliance codes      : 10GBASE-SR
   Extended compliance   : 0x00 (unspecified)
   Encoding              : 0x06 (64B/66B)
   Bit rate              : 10300 MBd
   Length (OM1)          : 30 m
   Length (OM2)          : 80 m
   Length (OM3)          : 300 m
   Length (OM4)          : 400 m
   Wavelength            : 850 nm
   Options               : Tx disable, Rx LOS
   Diagnostic monitoring : digital diagnostics, internally calibrated,
                           received power is average power
   Enhanced options      : alarm and warning flags, soft Tx disable, soft rate select
   SFF-8472 revision     : 0x08 (12.3)
   Capabilities          : 1 channel
   Status bits           : Tx disabled, rate select 1
   Alarms and warnings   : temperature high warning, Rx power low alarm
   Checksum, base        : page a0h, stored 0x71, computed 0x71, valid
   Checksum, extended    : page a0h, stored 0xe9, computed 0xe9, valid
   Checksum, diagnostics : page a2h, stored 0xa1, computed 0xa1, valid

   Monitor                         Value Low alarm  Low warn High warn High alarm
   Temperature                  36.50 °C     -5.00      0.00     36.00      75.00  high warning
   Supply voltage               3.3000 V    0.0000    0.0000    0.0000     0.0000
   Tx bias                      0.000 mA     0.000     0.000     0.000      0.000
   Tx power        0.5000 mW / -3.01 dBm         -         -         -          -
   Rx power         0.0000 mW / -inf dBm      -inf      -inf      -inf       0.00
)" );
}

TEST_F( ToolTest, ShowFacts ) {
   struct Expectation {
      char const * label;
      char const * text;
   };
   struct {
      SfpImageBuilder image;
      std::vector<Expectation> expected;
   } const cases[] = {
      { cable(),
        { { "Passive cable compliance", "0x0100" },
          { "Length .cable.", "3 m" },
          { "Wavelength", "(no Wavelength)" },
          { "Vendor name", "(blank)" },
          { "Date code", "(blank)" },
          { "Options", "none" },
          { "Electrical attenuation", "9.6 dB" },
          { "Status bits", "(no Status bits)" },
          { "Checksum, diagnostics", "(no Checksum, diagnostics)" } } },
      { cable().bit( "compliance", "active cable" ).value( "lengthOm3", 50 ),
        { { "Active cable compliance", "0x0100" },
          { "Length .cable.", "3 m" },
          { "Length .OM4.", "(no Length .OM4.)" } } },
      // A date that is none; bytes that are no text.
      { sr().text( "dateCode", "241301" ).text( "vendorPn", "A\x1b[2J\xc3\xa9\x7f" ),
        { { "Date code", "241301" },
          { "Lot code", "(no Lot code)" },
          { "Vendor part number", "A_[2J___" } } },
      { sr().text( "dateCode", "240229" ), { { "Date code", "2024-02-29" } } },
      { sr().text( "dateCode", "250229" ), { { "Date code", "250229" } } },
      { sr().text( "dateCode", "601231" ), { { "Date code", "2060-12-31" } } },
      { sr().text( "dateCode", "610101" ), { { "Date code", "610101" } } },
      // Zeros behind a text are padding as well.
      { sr().text( "vendorSn", std::string_view( "SN1\0\0", 5 ) ),
        { { "Vendor serial number", "SN1" } } },
      { sr().raw( "laserWavelengthInteger", 1550 ).raw( "laserWavelengthFractional", 12 ),
        { { "Wavelength", "1550.12 nm" } } },
      { sr().raw( "length9umKm", 255 ).raw( "length9um100m", 255 ),
        { { "Length .SMF, in km.", "more than 254 km" },
          { "Length .SMF, in 100 m.", "more than 25400 m" } } },
      { sr().raw( "bitrateMax", 2 ).raw( "bitrateMin", 3 ),
        { { "Bit rate", "10300 MBd" },
          { "Bit rate, maximum", "10506 MBd" },
          { "Bit rate, minimum", "9991 MBd" } } },
      // A rate beyond the nominal byte: 250 MBd steps, and one tolerance both ways.
      { sr().raw( "bitrateNominal", 255 ).raw( "bitrateMax", 103 ).raw( "bitrateMin", 2 ),
        { { "Bit rate", "25750 MBd" },
          { "Bit rate, maximum", "26265 MBd" },
          { "Bit rate, minimum", "25235 MBd" } } },
      { sr().raw( "bitrateNominal", 0 ), { { "Bit rate", "unspecified" } } },
      // No rate falls by more than all of it.
      { sr().raw( "bitrateMax", 101 ).raw( "bitrateMin", 101 ),
        { { "Bit rate, maximum", "20703 MBd" },
          { "Bit rate, minimum", "(no Bit rate, minimum)" } } },
      { sr().raw( "bitrateNominal", 255 ).raw( "bitrateMax", 103 ).raw( "bitrateMin", 200 ),
        { { "Bit rate", "25750 MBd" },
          { "Bit rate, maximum", "(no Bit rate, maximum)" },
          { "Bit rate, minimum", "(no Bit rate, minimum)" } } },
      { SfpImageBuilder().bit( "diagsMonitoringType", "digital diagnostics" ),
        { { "Monitors", "not calibrated" } } },
      { sr().a2hMissing(),
        { { "Monitors", "advertised, but the image lacks page a2h up to byte 117" } } },
      { cable(), { { "Monitors", "(no Monitors)" } } },
      // A module that implements neither: what stands there is nothing.
      { sr().raw( "enhancedOptions", 0 ),
        { { "Status bits", "none" }, { "Alarms and warnings", "(no Alarms and warnings)" } } },
      { sr()
           .raw( "identifier", 11 )
           .bit( "compliance", "10GBASE-ER" )
           .value( "length9umKm", 80 )
           .bit( "options", "tunable transmitter" )
           .raw( "tuningPageSelect", 2 )
           .value( "tuningFirstFrequencyTHz", 191 )
           .value( "tuningFirstFrequencyGHz", 300 )
           .value( "tuningLastFrequencyTHz", 196 )
           .value( "tuningGridSpacingGHz", 25 )
           .raw( "tuningChannel", 37 ),
        { { "Capabilities", "1 channel, tunable wavelength" },
          { "Tuning range", "191300 to 196000 GHz" },
          { "Grid spacings", "100 GHz, 50 GHz, 25 GHz" },
          { "Tuned channel", "37" } } },
      // A code without a name, and bits without one.
      { sr().raw( "connector", 0x7f ).raw( "options", 0x8001 ),
        { { "Connector", "0x7f" }, { "Options", "bit 15, bit 0" } } },
   };
   for ( auto const & row : cases ) {
      std::string const out = run( "show -", binary( row.image ) ).out;
      for ( Expectation const & expected : row.expected ) {
         EXPECT_EQ( fact( out, expected.label ), expected.text );
      }
   }
}

TEST_F( ToolTest, BadChecksumsAreReportedAndNothingFails ) {
   ToolRun const run = this->run( "show -", binary( sr().checksumBroken( "storedCcDmi" ) ) );
   EXPECT_EQ( run.exitCode, 0 );
   EXPECT_EQ( fact( run.out, "Checksum, base" ), "page a0h, stored 0x71, computed 0x71, valid" );
   EXPECT_EQ( fact( run.out, "Checksum, diagnostics" ),
              "page a2h, stored 0xa2, computed 0xa1, BAD" );
   // The image ends in front of the stored sum.
   EXPECT_THAT(
      fact( this->run( "show -", binary( sr() ).substr( 0, 300 ) ).out, "Checksum, diagnostics" ),
      AllOf( HasSubstr( "cut off" ), EndsWith( "BAD" ) ) );
}

TEST_F( ToolTest, JsonOfModules ) {
   file( "sr", binary( sr().text( "vendorSn", "\xb5\x01\"" ) ) );
   file( "cable", binary( cable().checksumBroken( "storedCcExt" ) ) );
   ToolRun const run = this->run( "show --json sr cable" );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   EXPECT_EQ( run.out.find_first_not_of( "\n !\"#$%&'()*+,-./0123456789:;<=>?@"
                                         "ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
                                         "abcdefghijklmnopqrstuvwxyz{|}~" ),
              std::string::npos );
   Json const all = Json::parse( run.out );
   EXPECT_EQ( all["schema"], 1 );
   ASSERT_EQ( all["modules"].size(), 2u );

   Json const & module = all["modules"][0];
   EXPECT_EQ( module["file"], "sr" );
   EXPECT_EQ( module["family"], "sfpPlus" );
   EXPECT_EQ( module["identifier"], 3 );
   EXPECT_EQ( module["connectorName"], "LC" );
   EXPECT_EQ( module["mediaType"], "xcvr10GBaseSr" );
   EXPECT_EQ( module["mediaTypeString"], "10GBASE-SR" );
   EXPECT_EQ( module["vendorInfo"], Json::parse( R"( { "vendorName": "Harbour Optics",
      "vendorPn": "HO-10G-SR", "vendorSn": "\u00b5\u0001\"", "vendorRev": "B2",
      "vendorDateCode": "241107X3" } )" ) );
   EXPECT_EQ( module["date"], "2024-11-07" );
   EXPECT_EQ( module["lotCode"], "X3" );
   EXPECT_EQ( module["compliance"], Json::array( { "10GBASE-SR" } ) );
   EXPECT_EQ( module["bitrate"], Json::parse( R"( { "nominal": 10300, "max": 10300,
      "min": 10300 } )" ) );
   EXPECT_EQ( module["lengths"], Json::parse( R"( { "length9umKm": 0, "length9um100m": 0,
      "lengthOm1": 30, "lengthOm2": 80, "lengthOm3": 300, "lengthOm4": 400,
      "lengthCopper": 0 } )" ) );
   EXPECT_EQ( module["laserWavelength"], 850 );
   EXPECT_EQ( all["units"]["laserWavelength"], "nm" );
   EXPECT_EQ( all["units"]["lengths"]["lengthOm3"], "m" );
   EXPECT_EQ( all["units"]["bitrate"]["max"], "MBd" );
   Json const odd =
      Json::parse( this->run( "show --json -", binary( sr().raw( "bitrateMin", 101 ) ) ).out );
   EXPECT_EQ( odd["modules"][0]["bitrate"]["min"], 0 );

   Json const & second = all["modules"][1];
   EXPECT_EQ( second["passiveAttenuation"], 0x0100 );
   EXPECT_FALSE( second.contains( "laserWavelength" ) );
   EXPECT_EQ( second["date"], nullptr );
   EXPECT_EQ( second["lengths"]["lengthCopper"], 3 );
   ASSERT_EQ( second["checksums"].size(), 2u );
   EXPECT_EQ( second["electricalPathAttenuation"].get<double>(), 3 * 3.2 );
   Json const & broken = second["checksums"][1];
   EXPECT_EQ( broken["page"], "a0h" );
   EXPECT_EQ( broken["stored"], broken["computed"].get<int>() + 1 );
   EXPECT_EQ( broken["valid"], false );
}

TEST_F( ToolTest, JsonOfMonitors ) {
   std::string const bytes = binary( sr() );
   Json const all = Json::parse( run( "show --json -", bytes ).out );
   Json const & module = all["modules"][0];
   Json info = module["domInfo"];
   ASSERT_EQ( info.size(), 1u );
   EXPECT_DOUBLE_EQ( info[0]["voltage"].get<double>(), 3.3 );
   EXPECT_NEAR( info[0]["txPower"].get<double>(), -3.0103, 1e-5 );
   info[0].erase( "voltage" );
   info[0].erase( "txPower" );
   // No light, and what is not monitored, is null; nobody knows when the image was read.
   EXPECT_EQ( info, Json::parse( R"( [ { "updateTime": null,
      "calibration": "domCalibrationInternal", "temperature": 36.5, "txBias": 0.0,
      "rxPower": null, "totalRxPower": null } ] )" ) );
   EXPECT_EQ( module["domThresholdValid"], true );
   EXPECT_EQ( module["domThreshold"]["tempLowAlarm"], -5 );
   EXPECT_EQ( module["domThreshold"]["rxPowerHighAlarm"], 0 );
   EXPECT_EQ( module["domThreshold"]["rxPowerLowAlarm"], nullptr );
   EXPECT_EQ( module["capabilities"]["maxChannels"], 1 );
   EXPECT_EQ( module["capabilities"]["tunableWavelength"], false );
   EXPECT_EQ( module["statusBits"]["txDisabled"], true );
   EXPECT_EQ( module["statusBits"]["txFault"], false );
   EXPECT_EQ( module["domFlags"]["rxPowerLowAlarm"], true );
   EXPECT_EQ( module["domFlags"]["rxPowerLowWarn"], false );
   EXPECT_EQ( all["units"]["domInfo"][0]["temperature"], "°C" );
   EXPECT_EQ( all["units"]["domThreshold"]["rxPowerLowAlarm"], "dBm" );
   EXPECT_FALSE( all["units"].contains( "domCapabilities" ) );

   // Where the image ends before a block is complete, nothing is made of the part.
   struct {
      std::size_t size;
      bool hasThresholds, hasLiveValues;
   } const cases[] = { { 256, false, false },
                       { 256 + 95, false, false },
                       { 256 + 96, true, false },
                       { 256 + 117, true, false },
                       { 256 + 118, true, true } };
   for ( auto const & row : cases ) {
      Json const document = Json::parse( run( "show --json -", bytes.substr( 0, row.size ) ).out );
      Json const & part = document["modules"][0];
      EXPECT_EQ( part["domThresholdValid"], row.hasThresholds ) << row.size;
      EXPECT_EQ( part["domThreshold"]["tempLowWarn"] == nullptr, !row.hasThresholds ) << row.size;
      EXPECT_EQ( part["domInfo"][0]["voltage"] == nullptr, !row.hasLiveValues ) << row.size;
      EXPECT_EQ( part["statusBits"] == nullptr, !row.hasLiveValues ) << row.size;
   }
}

TEST_F( ToolTest, MediaTypes ) {
   std::string const out = run( "media-types" ).out;
   EXPECT_EQ( std::ranges::count( out, '\n' ), 1 + 91 );
   EXPECT_THAT( out, HasSubstr( "\n     11  xcvr2p5GBaseT           2.5GBASE-T          2.5 Gb/s"
                                "  xcvr10GLinear     no\n" ) );
   EXPECT_THAT( out, HasSubstr( "  xcvr10GBaseDwdmEr       10G-DWnnnnER  " ) );
   Json const all = Json::parse( run( "media-types --json" ).out );
   EXPECT_EQ( all["schema"], 1 );
   ASSERT_EQ( all["mediaTypes"].size(), 91u );
   EXPECT_EQ( all["mediaTypes"][39], Json::parse( R"( { "code": 39, "mediaType": "xcvr100BaseFx",
      "mediaTypeString": "100BASE-FX", "bitrateKbps": 100000,
      "electricalInterface": "xcvr100MMiiBaseFx", "optical": true } )" ) );
}

TEST_F( ToolTest, ABadFileDoesNotStopTheOthers ) {
   file( "sr", binary( sr() ) );
   file( "empty", "" );
   ToolRun const text = run( "show empty sr missing" );
   EXPECT_EQ( text.exitCode, 3 );
   EXPECT_THAT( text.out, StartsWith( "sr\n   Identifier" ) );
   EXPECT_THAT( text.err, AllOf( ContainsRegex( "xcvr: empty: .*; give " ),
                                 ContainsRegex( "xcvr: missing: .*; check " ) ) );
   ToolRun const json = run( "show --json empty sr" );
   EXPECT_EQ( json.exitCode, 3 );
   EXPECT_EQ( Json::parse( json.out )["modules"].size(), 1u );
   // No module at all is the same document, with none in it.
   EXPECT_EQ( Json::parse( run( "show --json empty" ).out ),
              Json::parse( R"( { "schema": 1, "units": {}, "modules": [] } )" ) );
}

TEST_F( ToolTest, SeveralModulesHaveHeadings ) {
   file( "sr", binary( sr() ) );
   for ( std::string const command : { "show", "hexdump", "explain" } ) {
      std::string const one = run( command + " sr" ).out;
      EXPECT_EQ( run( command + " sr sr" ).out, "sr\n" + one + "\nsr\n" + one );
   }
}

TEST_F( ToolTest, HexdumpOfFields ) {
   std::string const out = run( "hexdump -", binary( sr() ) ).out;
   for ( char const * line : {
            "Page a0h, 256 bytes\n",
            "\n  2 02  07                       connector                  0x07 (LC)\n",
            "\n 12 0c  67                       bitrateNominal             10300 MBd\n",
            "\n 20 14  48 61 72 62 6f 75 72 20  vendorName                 \"Harbour Optics\"\n"
            " 28 1c  4f 70 74 69 63 73 20 20\n",
            "\n 60 3c  03 52                    laserWavelengthInteger     850 nm\n",
            "\n118 76  00                       (quorelAttnMinuend)        0.0 dB\n",
            "\n 64 40  00 12                    options                    Tx disable, Rx LOS\n",
            "\n 96 60  00 ...                   vendorSpecific             32 bytes of 00\n",
            "\n128 80  00 ...                                              128 bytes of 00\n",
            "\nPage a2h, 256 bytes\n",
            "\n 96 60  24 80                    domTemperature             36.500 °C\n",
            "\n102 66  13 88                    domTxPower                 0.5000 mW / -3.01 dBm\n",
            "\n104 68  00 00                    domRxPower                 0.0000 mW / -inf dBm\n",
         } ) {
      EXPECT_THAT( out, HasSubstr( line ) );
   }
   EXPECT_THAT( out, AllOf( Not( HasSubstr( "Slope" ) ), Not( HasSubstr( "tuningChannel" ) ),
                            Not( HasSubstr( "calibration" ) ), Not( HasSubstr( "Attenuation" ) ),
                            Not( HasSubstr( "dwdmLength" ) ), Not( HasSubstr( "bitrateHigh" ) ) ) );
}

/// Bytes with more than one meaning have that of the module.
TEST_F( ToolTest, HexdumpOfOverloadedBytes ) {
   EXPECT_THAT(
      run( "hexdump -", binary( cable() ) ).out,
      AllOf( HasSubstr( "\n 60 3c  01 00                    passiveAttenuation         256\n"
                        " 62 3e  00\n" ),
             Not( HasSubstr( "laserWavelength" ) ) ) );
   EXPECT_THAT( run( "hexdump -", binary( cable().bit( "compliance", "active cable" ) ) ).out,
                HasSubstr( " passiveAttenuation         256\n"
                           " 60 3c  01 00                    (activeAttenuation)        256\n" ) );
   EXPECT_THAT(
      run( "hexdump -", binary( sr().raw( "bitrateNominal", 255 ).raw( "bitrateMax", 103 ) ) ).out,
      AllOf( HasSubstr( " bitrateNominal             0xff (see bitrateHigh)\n" ),
             HasSubstr( "\n 66 42  67                       bitrateHigh                25750 MBd\n"
                        " 67 43  00                       bitrateHighTolerance       0 %\n" ),
             Not( HasSubstr( "bitrateM" ) ) ) );
   SfpImageBuilder dwdm = sr().raw( "identifier", 11 ).value( "length9umKm", 80 );
   dwdm.bit( "options", "tunable transmitter" ).raw( "tuningChannel", 37 );
   EXPECT_THAT(
      run( "hexdump -", binary( dwdm ) ).out,
      AllOf( HasSubstr( "\n 13 0d  00 50                    (dwdmLength)               80 km\n" ),
             Not( HasSubstr( "tuningChannel" ) ) ) );
   EXPECT_THAT( run( "hexdump -", binary( dwdm.raw( "tuningPageSelect", 2 ) ) ).out,
                HasSubstr( "\n144 90  00 25                    tuningChannel              37\n" ) );
   // The tuning page as a page of its own, while A2h shows another one (linear: A0h, A2h, 01h, 02h).
   std::string const tuningPage = dwdm.a2h().substr( 128 );
   std::string const paged =
      binary( dwdm.raw( "tuningPageSelect", 1 ) ) + std::string( 128, '\0' ) + tuningPage;
   EXPECT_THAT(
      run( "hexdump -", paged ).out,
      ContainsRegex( "\nPage 02h, 128 bytes\n[^P]*\n144 90  00 25 +tuningChannel +37\n" ) );
   EXPECT_THAT( run( "hexdump -", paged.substr( 0, 640 ) ).out,
                Not( HasSubstr( "tuningChannel" ) ) );
}

TEST_F( ToolTest, HexdumpOfExternalCalibration ) {
   SfpImageBuilder image;
   image.bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", "externally calibrated" )
      .value( "domRxPower1", 0.25 )
      .value( "domTemperatureSlope", 1.5 )
      .raw( "domTemperatureOffset", 0xfffe );
   EXPECT_THAT( run( "hexdump -", binary( image ) ).out,
                AllOf( HasSubstr( "before calibration" ),
                       ContainsRegex( "3e 80 00 00 +domRxPower1 +0.25\n" ),
                       ContainsRegex( "01 80 +domTemperatureSlope +1.500\n" ),
                       ContainsRegex( "ff fe +domTemperatureOffset +-2\n" ) ) );
}

/// How many bytes of memory a dump shows, other readings of the same bytes left out.
std::size_t bytesShown( std::string const & dump ) {
   constexpr std::size_t bytesAt = 8, nameAt = 33, valueAt = 60;
   std::size_t count = 0;
   std::istringstream lines( dump );
   for ( std::string line; std::getline( lines, line ); ) {
      line.resize( std::max( line.size(), valueAt ), ' ' );
      if ( !std::isxdigit( static_cast<unsigned char>( line[2] ) ) || line[nameAt] == '(' ) {
         continue; // without an address, or in parentheses
      }
      bool const isRun = line.compare( bytesAt + 2, 4, " ..." ) == 0;
      std::string const bytes = line.substr( bytesAt, nameAt - bytesAt );
      count +=
         isRun ? std::stoul( line.substr( valueAt ) ) : ( bytes.find_last_not_of( ' ' ) + 2 ) / 3;
   }
   return count;
}

TEST_F( ToolTest, EveryByteOfAnyMemoryIsDumpedOnce ) {
   struct Page {
      char const * label;
      std::size_t least, most;
   };
   struct {
      XcvrTool::XcvrType family;
      std::vector<Page> pages;
   } const families[] = {
      { XcvrTool::XcvrType::sfpPlus, { { "a0h", 96, 256 }, { "a2h", 0, 256 }, { "02h", 0, 128 } } },
      { XcvrTool::XcvrType::qsfpPlus,
        { { "lower", 0, 128 },
          { "00h", 64, 128 },
          { "02h", 0, 128 },
          { "03h", 0, 128 },
          { "20h", 0, 128 },
          { "21h", 0, 128 },
          { "77h", 0, 128 } } },
      { XcvrTool::XcvrType::cfp2,
        { { "8000h", 128, 128 },
          { "8080h", 0, 128 },
          { "8180h", 0, 128 },
          { "8777h", 0, 128 },
          { "a000h", 0, 256 },
          { "a280h", 0, 256 },
          { "a400h", 0, 256 },
          { "a777h", 0, 256 },
          { "b000h", 0, 256 },
          { "bb00h", 0, 256 } } },
   };
   std::minstd_rand random( 1 );
   for ( unsigned round = 0; round < 400; ++round ) {
      auto const & [family, pages] = families[round % std::size( families )];
      XcvrTool::ModuleImage image;
      image.family = family;
      std::size_t total = 0;
      for ( auto const & [label, least, most] : pages ) {
         std::string bytes( least + random() % ( most - least + 1 ), '\0' );
         for ( std::size_t at = 0; at < bytes.size(); ++at ) {
            // Runs of equal bytes, of any length, and bytes of all kinds.
            bytes[at] = at > 0 && random() % 8 ? bytes[at - 1] : static_cast<char>( random() >> 8 );
         }
         if ( !bytes.empty() ) {
            image.pages[label] = bytes;
            total += bytes.size();
         }
      }
      std::unique_ptr<XcvrTool::Module> const module = XcvrTool::moduleOf( image );
      std::string const dump = XcvrTool::hexdumpText( *module, {} );
      ASSERT_EQ( bytesShown( dump ), total ) << dump;
      std::istringstream lines( dump );
      for ( std::string line; std::getline( lines, line ); ) {
         ASSERT_LE( line.size(), 101u ) << line; // °C is one character of two bytes
      }
      // The other commands take the same memory.
      XcvrTool::Json units;
      EXPECT_FALSE( XcvrTool::showJson( *module, units ).dump().empty() );
      EXPECT_THAT( XcvrTool::showText( *module, {} ), Not( ContainsRegex( "[^ -~°\n]" ) ) );
      EXPECT_THAT( XcvrTool::explainText( *module, {} ), HasSubstr( " yes: " ) );
      EXPECT_THAT( XcvrTool::checkText( *module, {} ), Not( ContainsRegex( "[^ -~°\n]" ) ) );
   }
}

TEST_F( ToolTest, HexdumpEndsWhereThePageEnds ) {
   std::string const out = run( "hexdump -", binary( sr() ).substr( 0, 256 + 97 ) ).out;
   EXPECT_THAT( out, AllOf( HasSubstr( "\nPage a2h, 97 bytes\n" ),
                            EndsWith( "\n 96 60  24                       domTemperature"
                                      "             cut off\n" ) ) );
}

TEST_F( ToolTest, ExplainShowsTheRulesUpToTheOneThatMatched ) {
   std::string const out = run( "explain -", binary( sr() ) ).out;
   Xcvr::MediaTypeDecision const decision = sr().contents().mediaTypeDecision();
   std::string const number = std::to_string( decision.rule + 1 );
   EXPECT_THAT( out, StartsWith( "   xcvr10GBaseSr: rule " + number + " of " ) );
   EXPECT_THAT( out, HasSubstr( "matches: " + std::string( decision.why ) + '\n' ) );
   EXPECT_EQ( fact( out, "Length .OM3." ), "300 m" );
   std::regex const tried( "\n +[0-9]+  [^\n]* no(?=\n)" );
   EXPECT_EQ( std::distance( std::sregex_iterator( out.begin(), out.end(), tried ), {} ),
              static_cast<std::ptrdiff_t>( decision.rule ) );
   EXPECT_THAT( out, ContainsRegex( "\n +" + number + "  [^\n]* yes: xcvr10GBaseSr\n" ) );
   EXPECT_EQ( fact( out, "Byte 12, bit rate" ), "103 x 100 MBd" );
   EXPECT_EQ( fact( out, "Bytes 13-14, DWDM length" ), "(no Bytes 13-14, DWDM length)" );
   EXPECT_EQ( fact( out, "Bytes 60-61, wavelength" ), "850 nm" );
   std::string const dwdm =
      run( "explain -", binary( cable().raw( "identifier", 11 ).raw( "dwdmLength", 0x0150 ) ) ).out;
   EXPECT_EQ( fact( dwdm, "Bytes 13-14, DWDM length" ), "336 km" );
   EXPECT_EQ( fact( dwdm, "Bytes 60-61, wavelength" ), "256 nm" );
   // The last rule takes what no other does; nothing is left untried then.
   EXPECT_THAT( run( "explain -", binary( SfpImageBuilder() ) ).out,
                EndsWith( " yes: xcvrUnknown\n" ) );
}

TEST_F( ToolTest, Usage ) {
   for ( char const * name : { "sr", "[a,b]", "\xc3\xa9\x1b" } ) {
      file( name, binary( sr() ) );
   }
   struct {
      char const * arguments;
      int exitCode;
      char const * out;
      char const * err;
   } const cases[] = {
      { "--version", 0, "xcvr [0-9]+\\.[0-9]+\\.[0-9]+\n", "^$" },
      { "--help", 0, "show.*hexdump.*explain", "^$" },
      { "show --help", 0, "Example:", "^$" },
      { "", 2, "^$", "subcommand" },
      { "sing sr", 2, "^$", "xcvr: .*" },
      { "media-types sr", 2, "^$", "xcvr: .*sr" },
      { "show \"--$( printf 'b\\033[2J\\nx' )\" sr", 2, "^$",
        "^xcvr: [^\n\x1b]*--b\\?\\[2J\\?x[^\n]*\n$" },
      { "show", 2, "^$", "FILE is required" },
      { "show --colour sr", 2, "^$", "--colour" },
      { "explain --json sr", 2, "^$", "--json" },
      { "show --family radio sr", 2, "^$", "radio" },
      { "show - -", 2, "^$", "standard input" },
      { "show --family sfp sr", 0, "xcvr10GBaseSr", "^$" },
      { "show -- sr", 0, "xcvr10GBaseSr", "^$" },
      { "show . sr", 3, "xcvr10GBaseSr", "xcvr: \\.: .*directory" },
      // Names that a reader of arguments, or a terminal, could make something else of.
      { "show '[a,b]' '[a]'", 3, "^\\./\\[a,b]\n.*xcvr10GBaseSr",
        "xcvr: \\./\\[a]: cannot be opened" },
      { "show ''", 3, "^$", "xcvr: \"\": cannot be opened" },
      { "show \"$( printf 'e\\033[2J' )\" sr", 3, "^sr", "xcvr: e\\?\\[2J: cannot be opened" },
      { "show sr \"$( printf '\\303\\251\\033' )\"", 0, "\n\xc3\xa9\\?\n", "^$" },
   };
   for ( auto const & row : cases ) {
      ToolRun const run = this->run( row.arguments );
      EXPECT_EQ( run.exitCode, row.exitCode ) << row.arguments;
      EXPECT_THAT( run.out, ContainsRegex( row.out ) ) << row.arguments;
      EXPECT_THAT( run.err, ContainsRegex( row.err ) ) << row.arguments;
   }
}

TEST_F( ToolTest, AnyInputForm ) {
   file( "sr", binary( sr() ) );
   std::string const expected = run( "show sr" ).out;
   for ( char const * command :
         { "xcvr show - <sr", "cat sr | xcvr show -", "od -An -v -tx1 sr | xcvr show -",
           "od -Ax -tx1 sr | sed 's/$/\\r/' | xcvr show -" } ) {
      EXPECT_EQ( shell( command ).out, expected ) << command;
   }
}

TEST_F( ToolTest, ADumpThatLooksCutIsWarnedAbout ) {
   file( "sr", binary( sr() ) );
   struct {
      char const * command;
      bool warned;
   } const cases[] = {
      { "od -Ax -v -tx1 sr", false },
      { "od -Ax -v -tx1 sr | head -c 1500 | grep -o '.*[^ ]' | sed '$d'", false },
      { "od -Ax -v -tx1 sr | sed '20s/ ..$//' | head -20", true },
      { "od -Ax -v -tx1 sr | sed '20s/ .. ..$//' | head -20 | sed 's/^/0x/; s/ /: /'", true },
      { "( echo '[a0h]'; od -Ax -v -tx1 sr | sed 's/ /: /; 12s/ ..$//' | head -12 )", true },
      { "( echo '[a0h]'; od -Ax -v -tx1 sr | sed 's/ /: /' | head -16 )", false },
      // Without offsets nobody knows the width of the lines.
      { "od -An -v -tx1 sr | sed '20s/ ..$//' | head -20", false },
      // A read of a number of bytes that somebody chose ends with the page.
      { "od -Ax -v -tx1 -w24 sr | head -6 | sed '6s/\\( ..\\)\\{16\\}$//'", false },
   };
   for ( auto const & row : cases ) {
      ToolRun const run = shell( std::string( row.command ) + " | xcvr show -" );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      EXPECT_THAT( run.out, HasSubstr( "10GBASE-SR" ) ) << row.command;
      EXPECT_EQ( run.err.starts_with( "xcvr: <stdin>: warning: the last line " ), row.warned )
         << row.command << run.err;
   }
}

TEST_F( ToolTest, HostileInputs ) {
   std::string const whole = binary( sr() );
   struct {
      std::string name;
      std::string content;
   } const cases[] = {
      { "0 bytes", "" },
      { "1 byte", whole.substr( 0, 1 ) },
      { "95 bytes", whole.substr( 0, 95 ) },
      { "a picture", "\xff\xd8\xff\xe0" + std::string( 1, '\0' ) + "\x10JFIF" + whole },
      { "a cut dump", "0x0000: 03 04 07 1" },
      { "an endless line", std::string( 100000, 'a' ) },
      { "an empty section", "[a0h]\r\n" },
   };
   for ( auto const & row : cases ) {
      for ( std::string const command : { "show", "show --json", "hexdump", "explain", "check" } ) {
         ToolRun const run = this->run( command + " -", row.content );
         EXPECT_EQ( run.exitCode, 3 ) << row.name;
         EXPECT_THAT( run.err, StartsWith( "xcvr: <stdin>: " ) ) << row.name;
      }
   }
   // A sparse file: it takes no room on the disk.
   std::filesystem::resize_file( folder_ / file( "large", whole ), std::uintmax_t{ 2 } << 30 );
   ToolRun const large = run( "show large" );
   EXPECT_EQ( large.exitCode, 3 );
   EXPECT_THAT( large.err, StartsWith( "xcvr: large: " ) );
}

TEST_F( ToolTest, LostResultsAreNoticed ) {
   file( "sr", binary( sr() ) );
   for ( char const * arguments : { "show sr", "show --json sr", "hexdump sr", "--help" } ) {
      ToolRun const run = this->run( std::string( arguments ) + " >/dev/full" );
      EXPECT_EQ( run.exitCode, 3 ) << arguments;
      EXPECT_THAT( run.err, HasSubstr( "xcvr: cannot write the results (No space left" ) );
   }
}

TEST_F( ToolTest, AClosedPipeEndsQuietly ) {
   file( "sr", binary( sr() ) );
   // Ignored signals are inherited.
   for ( char const * before : { "", "trap '' PIPE; " } ) {
      ToolRun const run = shell( before + std::string( "f='sr sr sr sr sr sr sr sr'; "
                                                       "xcvr hexdump $f $f $f | head -c 4" ) );
      EXPECT_EQ( run.out, "sr\nP" );
      EXPECT_THAT( run.err, IsEmpty() );
   }
}

/// What a command prints to a terminal.
std::string onTerminal( std::string const & command ) {
   int terminal = -1;
   pid_t const child = ::forkpty( &terminal, nullptr, nullptr, nullptr );
   if ( child == 0 ) {
      ::execl( "/bin/sh", "sh", "-c", command.c_str(), nullptr );
      ::_exit( 127 );
   }
   std::string out;
   char buffer[4096];
   for ( ssize_t size; ( size = ::read( terminal, buffer, sizeof buffer ) ) > 0; ) {
      out.append( buffer, static_cast<std::size_t>( size ) );
   }
   ::close( terminal );
   ::waitpid( child, nullptr, 0 );
   return out;
}

TEST_F( ToolTest, ColourOnATerminalOnly ) {
   std::string const path =
      ( folder_ / file( "bad", binary( sr().checksumBroken( "storedCcBase" ) ) ) ).string();
   std::string const command = "'" XCVR_TOOL_PATH "' show '" + path + "'";
   EXPECT_THAT( onTerminal( "unset NO_COLOR; " + command ),
                ContainsRegex( "\x1b\\[31mpage a0h, [^\n]* BAD\x1b\\[0m" ) );
   EXPECT_THAT( onTerminal( "NO_COLOR=1 " + command ),
                AllOf( HasSubstr( "BAD" ), Not( HasSubstr( "\x1b" ) ) ) );
   EXPECT_THAT( run( "show bad" ).out, AllOf( HasSubstr( "BAD" ), Not( HasSubstr( "\x1b" ) ) ) );
   // The place between the limits is a picture for people, colours or not.
   std::string const terminal = onTerminal( "NO_COLOR=1 " + command );
   EXPECT_THAT( terminal, HasSubstr( "36.00      75.00  --|---------*--" ) );
   EXPECT_THAT( terminal, Not( HasSubstr( "\x1b" ) ) );
   EXPECT_THAT( onTerminal( "unset NO_COLOR; " + command ),
                HasSubstr( "\x1b[33m--|---------*--\x1b[0m" ) );
   EXPECT_THAT( onTerminal( "unset NO_COLOR; '" XCVR_TOOL_PATH "' check '" + path + "'" ),
                HasSubstr( "\x1b[31mchecksum\x1b[0m: " ) );
}

TEST_F( ToolTest, ExamplesAreDecoded ) {
   ToolRun const run = this->run( "show --json '" XCVR_SOURCE_DIR "'/examples/modules/*.txt" );
   EXPECT_EQ( run.exitCode, 0 ) << run.err;
   Json const modules = Json::parse( run.out )["modules"];
   EXPECT_GE( modules.size(), 15u );
   std::size_t bad = 0;
   for ( Json const & module : modules ) {
      EXPECT_NE( module["mediaType"], "xcvrUnknown" ) << module["file"];
      EXPECT_NE( module["vendorInfo"]["vendorName"], "" ) << module["file"];
      EXPECT_NE( module["date"], nullptr ) << module["file"];
      bad += std::ranges::any_of( module["checksums"],
                                  []( Json const & sum ) { return sum["valid"] == false; } );
   }
   EXPECT_EQ( bad, 1u ) << "one example, and only one, has a bad checksum";
}

std::set<std::string> allMatches( std::string const & text, char const * pattern ) {
   std::set<std::string> found;
   std::regex const expression( pattern );
   for ( std::sregex_iterator at( text.begin(), text.end(), expression ), end; at != end; ++at ) {
      found.insert( ( *at )[1] );
   }
   return found;
}

TEST_F( ToolTest, HelpManPageAndCompletionHaveTheSameOptions ) {
   std::string const help = run( "--help" ).out;
   std::set<std::string> const commands = allMatches( help, "\n  ([a-z][a-z-]+)  " );
   std::set<std::string> options = allMatches( help, "[ ,](--[a-z-]+) " );
   std::string const completion =
      ". '" XCVR_SOURCE_DIR "/tools/xcvr/completion/xcvr.bash'; COMP_WORDS=( xcvr ";
   auto const completed = [&]( std::string const & words, int current ) {
      file( "complete", completion + words + " ); COMP_CWORD=" + std::to_string( current ) +
                           "; _xcvr; echo \" ${COMPREPLY[*]} \"" );
      return shell( "bash complete" ).out;
   };
   EXPECT_EQ( allMatches( completed( "''", 1 ), "([a-z][a-z-]+) " ), commands );
   EXPECT_EQ( allMatches( completed( "-", 1 ), "(--[a-z-]+) " ), options );
   for ( std::string const & command : commands ) {
      std::set<std::string> const own =
         allMatches( run( command + " --help" ).out, "\n  [^\n]*?(--[a-z-]+) " );
      EXPECT_EQ( allMatches( completed( command + " -", 2 ), "(--[a-z-]+) " ), own ) << command;
      options.insert( own.begin(), own.end() );
   }
   EXPECT_EQ( allMatches( completed( "show std", 2 ), "([a-z]+) " ),
              ( std::set<std::string>{ "stdin", "stdout", "stderr" } ) );

   std::string const manual = contentOf( XCVR_SOURCE_DIR "/docs/man/xcvr.1" );
   EXPECT_EQ( allMatches( manual, "\n\\.It Fl (?:h , Fl )?(-[a-z-]+)" ), [&] {
      std::set<std::string> names;
      for ( std::string const & option : options ) {
         names.insert( option.substr( 1 ) );
      }
      return names;
   }() );
   EXPECT_EQ( allMatches( manual, "\n\\.It Cm ([a-z][a-z-]+)" ), commands );
}

} // namespace
} // namespace XcvrTest
