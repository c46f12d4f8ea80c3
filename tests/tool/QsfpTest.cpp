// What the program says of QSFP modules, whole or in part.
#include "tests/support/QsfpImageBuilder.h"
#include "tests/tool/ToolRun.h"
#include "tools/xcvr/ModuleImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace XcvrTest {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Json = nlohmann::json;

/// A 100GBASE-LR4 module with nothing wrong: all pages but the user's, all monitors.
QsfpImageBuilder lr4() {
   QsfpImageBuilder image;
   image.missing( "02h" )
      .raw( "revisionCompliance", 8 )
      .bit( "moduleStatus", "interrupt not asserted" )
      .raw( "identifierExtended", 0xce )
      .raw( "connector", 7 )
      .bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 3 )
      .raw( "encoding", 5 )
      .raw( "bitrateNominal", 255 )
      .value( "bitrateExtended", 25750 )
      .value( "lengthSmf", 10 )
      .raw( "deviceTech", 0x64 )
      .value( "laserWavelength", 1310 )
      .value( "wavelengthTolerance", 6.5 )
      .text( "vendorName", "Harbour Optics" )
      .text( "dateCode", "241107" )
      .bit( "options", "pages 20h and 21h" )
      .bit( "options", "Rx output amplitude" )
      .bit( "diagsMonitoringType", "Tx power monitor" )
      .value( "temperature", 45 )
      .value( "supplyVoltage", 3.3 );
   struct {
      char const * limits;
      double lowAlarm, lowWarn, now, highWarn, highAlarm;
   } const monitors[] = {
      { "temp", -5, 0, 45, 70, 75 },    { "voltage", 2.9, 3.1, 3.3, 3.5, 3.6 },
      { "txBias", 20, 30, 60, 90, 99 }, { "txPower", 0.1, 0.2, 1, 2, 3 },
      { "rxPower", 0.1, 0.2, 1, 2, 3 },
   };
   for ( auto const & m : monitors ) {
      std::string const limits = m.limits;
      image.value( limits + "LowAlarm", m.lowAlarm )
         .value( limits + "LowWarn", m.lowWarn )
         .value( limits + "HighWarn", m.highWarn )
         .value( limits + "HighAlarm", m.highAlarm );
      for ( char lane = '1'; lane <= '4' && limits.find( 'x' ) != std::string::npos; ++lane ) {
         image.value( limits + lane, m.now );
      }
   }
   return image;
}

/// With an enhanced monitor of lane 2, the SNR, and one of the module, the cooler's current.
QsfpImageBuilder enhanced() {
   return lr4()
      .raw( "parameter1Value", 22 * 256 )
      .raw( "parameter1Config", 0x1501 )
      .raw( "parameter2Value", 0xffce )
      .raw( "parameter2Config", 0x0006 )
      .raw( "thresholdSet1", 0x2800100026001100 );
}

QsfpImageBuilder cable() {
   return QsfpImageBuilder()
      .flat()
      .raw( "connector", 0x23 )
      .bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 0x0b )
      .raw( "deviceTech", 0xa0 )
      .raw( "lengthCableOrOm4", 3 )
      .raw( "attenuation12p9GHz", 16 );
}

std::string labelled( QsfpImageBuilder const & image ) {
   XcvrTool::ModuleImage result;
   for ( std::string_view const label : QsfpImageBuilder::labels ) {
      if ( std::string const page = image.page( label ); !page.empty() ) {
         result.pages[std::string( label )] = page;
      }
   }
   return XcvrTool::labelledForm( result );
}

using QsfpToolTest = ToolTest;

TEST_F( QsfpToolTest, ShowFacts ) {
   struct Expectation {
      char const * label;
      char const * text;
   };
   struct {
      QsfpImageBuilder image;
      std::vector<Expectation> expected;
   } const cases[] = {
      { lr4(),
        { { "Identifier", "0x11 .QSFP28 or later." },
          { "Extended identifier", "power class 6, Tx CDR, Rx CDR" },
          { "Media type", "100GBASE-LR4 .xcvr100GBaseLr4." },
          { "Encoding", "0x05 .64B/66B." }, // 05h is SONET in an SFP
          { "Bit rate", "25750 MBd a lane" },
          { "Length .SMF.", "10 km" },
          { "Transmitter and receiver", "1310 nm EML, cooled transmitter" },
          { "Wavelength", "1310.00 nm" },
          { "Wavelength tolerance", "6.500 nm" },
          { "Revision", "0x08 .SFF-8636 2.8 to 2.10." },
          { "Maximum power", "4.5 W" },
          { "Module flags", "none" },
          { "Lane flags", "none" },
          { "Rx output amplitude", "code 0 / 0 / 0 / 0" },
          { "Tx input equalization", ".no Tx input equalization." } } },
      { lr4()
           .raw( "losFlags", 0x04 )
           .bit( "rxPowerFlags", "Rx power 3 low alarm" )
           .raw( "lolFlags", 0x0f )
           .raw( "faultFlags", 0x05 )
           .bit( "temperatureFlags", "temperature high warning" )
           .bit( "temperatureFlags", "initialisation complete" )
           .raw( "txDisable", 0x03 )
           .bit( "powerControl", "low power mode" )
           .raw( "rxOutputAmplitude", 0x1230 ),
        { { "Module flags", "temperature high warning, initialization complete" },
          { "Lane flags", "Rx LOS on lane 3, Tx fault on lanes 1/3, Rx CDR LOL on all lanes, *\n"
                          " *Rx power low alarm on lane 3" },
          { "Module controls", "low power" },
          { "Lane controls", "Tx disable on lanes 1/2" },
          { "Rx output amplitude", "code 1 / 2 / 3 / 0" } } },
      { cable(),
        { { "Media type", "100GBASE-CR4 .xcvr100GBaseCr4." },
          { "Length .cable.", "3 m" },
          { "Wavelength", ".no Wavelength." },
          { "Attenuation at 12.9 GHz", "16 dB" },
          { "Electrical attenuation", "16.0 dB" },
          { "Lane flags", ".no Lane flags." },
          { "Monitors", ".no Monitors." } } },
      { QsfpImageBuilder( cable() ).raw( "deviceTech", 0 ).missing( "lower" ),
        { { "Length .cable.", "3 m" },
          { "Monitors", "advertised, but the image lacks the lower page up to byte 57" } } },
      { lr4().missing( "00h" ),
        { { "Identifier", "0x11 .QSFP28 or later." },
          { "Page 00h", "not in the image: .*" },
          { "Connector", ".no Connector." },
          { "Checksum, base", ".no Checksum, base." } } },
   };
   for ( auto const & [image, expected] : cases ) {
      ToolRun const run = this->run( "show -", labelled( image ) );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      for ( auto const & [label, text] : expected ) {
         EXPECT_TRUE( std::regex_match( fact( run.out, label ), std::regex( text ) ) )
            << label << " : " << fact( run.out, label );
      }
   }
}

TEST_F( QsfpToolTest, MonitorsOfLanesOfAllAndEnhancedOnes ) {
   std::string const out =
      run( "show -", labelled( enhanced().value( "txBias2", 10 ).value( "rxPower4", 0 ) ) ).out;
   std::string const squeezed = std::regex_replace( out, std::regex( " +" ), " " );
   for ( char const * line : {
            " Temperature 45.00 °C -5.00 0.00 70.00 75.00\n",
            " Tx bias, lane 2 10.000 mA 20.000 30.000 90.000 99.000 low alarm\n",
            " Tx bias, lane 3 60.000 mA 20.000 30.000 90.000 99.000\n",
            " Tx power, lane 1 1.0000 mW / 0.00 dBm -10.00 -6.99 3.01 4.77\n",
            " Rx power, lane 4 0.0000 mW / -inf dBm -10.00 -6.99 3.01 4.77 low alarm\n",
            " Sum of Tx power 4.0000 mW / 6.02 dBm - - - -\n",
            " Sum of Rx power 3.0000 mW / 4.77 dBm - - - -\n",
            " SNR, lane 2 22.00 dB 16.00 17.00 38.00 40.00\n",
            " TEC current -5.0 mA 0.0 0.0 0.0 0.0\n",
         } ) {
      EXPECT_THAT( squeezed, HasSubstr( line ) );
   }
   EXPECT_THAT( out, Not( HasSubstr( "SNR, lane 1" ) ) );
}

TEST_F( QsfpToolTest, JsonHasALaneEach ) {
   file( "lr4", labelled( enhanced().raw( "losFlags", 0x02 ).value( "txBias3", 61 ) ) );
   file( "cable", labelled( cable() ) );
   Json const document = Json::parse( run( "show --json lr4 cable" ).out );
   Json const & module = document["modules"][0];
   EXPECT_EQ( module["family"], "qsfpPlus" );
   ASSERT_EQ( module["domInfo"].size(), 4u );
   EXPECT_EQ( module["domInfo"][2]["txBias"], 61.0 );
   EXPECT_EQ( module["domInfo"][3]["updateTime"], nullptr );
   EXPECT_EQ( module["laneFlags"].size(), 4u );
   EXPECT_EQ( module["laneFlags"][1]["rxLos"], true );
   EXPECT_EQ( module["laneFlags"][2]["rxLos"], false );
   EXPECT_NEAR( module["domAggPower"]["aggRxPower"], 6.02, 0.01 );
   EXPECT_EQ( module["powerClass"], "xcvrPowerClass6" );
   EXPECT_EQ( module["maxPower"], 4.5 );
   EXPECT_EQ( module["rxOutputAmplitude"], ( Json{ 0, 0, 0, 0 } ) );
   EXPECT_EQ( module["enhancedDom"], Json::parse( R"({
                 "snr": [ { "lane": 1, "value": 22.0, "highAlarm": 40.0, "lowAlarm": 16.0,
                            "highWarn": 38.0, "lowWarn": 17.0 } ],
                 "tecCurrent": [ { "lane": null, "value": -5.0, "highAlarm": 0.0, "lowAlarm": 0.0,
                                   "highWarn": 0.0, "lowWarn": 0.0 } ] })" ) );
   EXPECT_EQ( document["units"]["enhancedDom"]["snr"][0]["value"], "dB" );
   EXPECT_EQ( document["units"]["domInfo"][3]["txBias"], "mA" );
   EXPECT_EQ( document["modules"][1]["laneFlags"], nullptr );
   EXPECT_EQ( document["modules"][1]["domInfo"][0]["temperature"], nullptr );
}

TEST_F( QsfpToolTest, HexdumpOfCodesAmongBits ) {
   std::string const out = run( "hexdump -", labelled( lr4().raw( "lowerProperties", 0x19 ) ) ).out;
   for (
      char const * line : {
         "Page lower, 128 bytes, status and monitors\n",
         "110 6e  19                       lowerProperties            low power up to 1 W, 2.5 V,\n"
         "                                                            far side managed\n",
         "129 81  ce                       identifierExtended         power class 6, Tx CDR, Rx "
         "CDR\n",
         "140 8c  ff                       bitrateNominal             0xff (see bitrateExtended)\n",
         "Page 03h, 128 bytes, thresholds\n",
         "128 80  4b 00                    tempHighAlarm              75.000 °C\n",
      } ) {
      EXPECT_THAT( out, HasSubstr( line ) );
   }
   // A module with flat memory has no page 03h, whatever a driver gave.
   std::string const flat =
      run( "hexdump -", labelled( lr4().bit( "moduleStatus", "flat memory" ) ) ).out;
   EXPECT_THAT( flat,
                HasSubstr( "Page 03h, 128 bytes, thresholds, which the module says it lacks" ) );
   EXPECT_THAT( flat, Not( HasSubstr( "tempHighAlarm" ) ) );
}

TEST_F( QsfpToolTest, Findings ) {
   struct {
      QsfpImageBuilder image;
      char const * finding; // null: nothing is wrong
   } const cases[] = {
      { lr4(), nullptr },
      { enhanced(), nullptr },
      { cable(), nullptr },
      // What a module notices itself is no finding of its own.
      { lr4().raw( "losFlags", 0xff ).raw( "lolFlags", 0xff ), nullptr },
      { lr4().checksumBroken( "baseChecksum" ), "checksum: The base checksum is wrong: page 00h" },
      { lr4().value( "rxPower2", 5 ),
        "value-alarm: Rx power, lane 2 is 5.0000 mW / 6.99 dBm, above" },
      { lr4().value( "txBiasLowWarn", 95 ), "threshold-order: The limits of Tx bias are" },
      { enhanced().raw( "parameter1Value", 41 * 256 ),
        "value-alarm: SNR, lane 2 is 41.00 dB, above" },
      { enhanced().raw( "thresholdSet1", 0x1000280026001100 ),
        "threshold-order: The limits of SNR" },
      { lr4().missing( "lower" ), "dom-missing: .*lacks the lower page up to byte 57" },
      { lr4().missing( "00h" ), "page-missing: The module has page 00h .identification., but" },
      { lr4().missing( "03h" ), "page-missing: The module has page 03h .thresholds., but" },
      { lr4().missing( "20h" ), "page-missing: The module has page 20h .enhanced monitors., but" },
      { lr4().raw( "lowerIdentifier", 0x0d ),
        "identifier-copy: Byte 0 has the identifier 0dh, byte "
        "128 has 11h" },
      { lr4().raw( "identifier", 3 ), "identifier: The identifier 03h is not one of this family" },
      { QsfpImageBuilder().flat().identifier( 12 ),
        "media-type: The identifier 0ch .QSFP. is not" },
   };
   for ( auto const & [image, finding] : cases ) {
      ToolRun const run = this->run( "check -", labelled( image ) );
      EXPECT_EQ( run.exitCode, finding ? 1 : 0 ) << run.out << run.err;
      if ( finding ) {
         EXPECT_THAT( run.out, ::testing::ContainsRegex( std::string( "<stdin>: " ) + finding ) );
      } else {
         EXPECT_THAT( run.out, IsEmpty() );
      }
   }
   // Of a cut page its rest.
   std::string const cut = labelled( lr4() );
   EXPECT_THAT( run( "check -", cut.substr( 0, cut.find( "[03h]" ) ) + "[03h]\n01 02\n" ).out,
                HasSubstr( "page-missing: The image has 2 of the 128 bytes of page 03h" ) );
}

TEST_F( QsfpToolTest, AnyFormOfTheSameMemorySaysTheSame ) {
   QsfpImageBuilder const image = lr4().raw( "options", 0x010000 );
   file( "bin", image.page( "lower" ) + image.page( "00h" ) + std::string( 256, '\0' ) +
                   image.page( "03h" ) );
   file( "labelled", labelled( image ) );
   std::string const expected = run( "show labelled" ).out;
   EXPECT_THAT( expected, HasSubstr( "100GBASE-LR4" ) );
   for ( char const * command :
         { "xcvr show - <bin", "od -Ax -tx1 bin | xcvr show -", "od -An -v -tx1 bin | xcvr show -",
           "xcvr show --family qsfp - <bin" } ) {
      EXPECT_EQ( shell( command ).out, expected ) << command;
   }
}

} // namespace
} // namespace XcvrTest
