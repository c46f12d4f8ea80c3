// What the program says of CFP2, CFPx and CFP2-DCO modules, whole or in part.
#include "tests/support/CfpImageBuilder.h"
#include "tests/tool/ToolRun.h"
#include "tools/xcvr/ModuleImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <vector>

namespace XcvrTest {
namespace {

using namespace Xcvr;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Json = nlohmann::json;

CfpImageBuilder module( CfpMsaMisIdentifier identifier, std::uint32_t application ) {
   CfpImageBuilder image( identifier );
   image.raw( "ethernetApplicationCode", application )
      .raw( "identifierExtended", 0x80 )
      .text( "vendorName", "Harbour Optics" )
      .text( "dateCode", "20101112" )
      .value( "tempHighAlarm", 75 )
      .value( "tempHighWarn", 70 )
      .value( "tempLowAlarm", -5 );
   for ( char const * monitor : { "temp", "voltage", "txBias", "txPower", "rxPower" } ) {
      image.raw( std::string( monitor ) + "Supported", 1 );
   }
   return image.value( "temperature", 45 ).value( "voltage", 3.3 );
}

/// A 100GBASE-LR4 module with nothing wrong: four lanes of the network, ten of the host.
CfpImageBuilder lr4() {
   CfpImageBuilder image = module( identifierCfp2, 1 );
   image.raw( "networkLanes", 4 )
      .raw( "hostLanes", 10 )
      .value( "networkLaneBitRateMax", 25.8 )
      .value( "smfFiberLengthMax", 10 )
      .value( "minWavelength", 1294.525 )
      .value( "maxWavelength", 1310.2 )
      .raw( "firmwareVersionA", 0x0203 )
      .raw( "networkLaneAWSummary", 0 )
      .raw( "networkLaneFaultStatus", 0 )
      .raw( "hostLaneFaultStatus", 0 )
      .raw( "txInputEqualization", 5, 9 )
      .value( "rxPowerHighAlarm", 2 );
   for ( std::uint8_t lane = 0; lane < 4; ++lane ) {
      image.value( "txBias", 60, lane ).value( "txPower", 1, lane ).value( "rxPower", 1, lane );
   }
   return image;
}

CfpImageBuilder coherent( CfpMsaMisIdentifier identifier ) {
   return module( identifier, 17 )
      .raw( "networkLanes", 1 )
      .raw( "hostLanes", 4 )
      .value( "minFrequencyTHz", 191 )
      .value( "minFrequencyGHz", 350 )
      .value( "maxFrequencyTHz", 196 )
      .bit( "tuningCapabilities", "50 GHz grid" )
      .raw( "txChannel", 1u << 13 | 36 )
      .value( "txPowerConfig", -1.5 )
      .bit( "moduleState", "ready" )
      .raw( "moduleFaultStatus", 0x0020 );
}

CfpImageBuilder dco() {
   return coherent( identifierCfp2Dco )
      .value( "txBias", 104 )
      .value( "txPower", 1 )
      .value( "rxPower", 0.1 )
      .raw( "txBiasHighAlarm", 4000 )
      .value( "networkOsnrEstimate", 26.4 )
      .value( "netLaneRxChannelPower", -11.4 )
      .value( "rxCarrierFreqOffset", -180 )
      .raw( "rxChromDispersionHigh", 1 )
      .raw( "rxChromDispersionLow", 4 )
      .raw( "rxQFactor", 112 );
}

CfpImageBuilder cfpx() {
   return coherent( identifierCfpx )
      .raw( "txBias", 52000 )
      .value( "txPowerCfpx", 0 )
      .value( "rxPowerCfpx", -9.84 )
      .raw( "txRfDriverType", 1 )
      .raw( "txIqSwap", 2 )
      .value( "maxRxAttenuation", 15 )
      .value( "currRxAttenuation", 2.5 );
}

XcvrTool::ModuleImage imageOf( CfpImageBuilder const & built ) {
   XcvrTool::ModuleImage result;
   for ( unsigned id = 0; id < static_cast<unsigned>( maxCfpTables ); ++id ) {
      auto const table = static_cast<CfpMsaMisTableId>( id );
      if ( std::string const bytes = built.image( table ); !bytes.empty() ) {
         std::string label( cfpTableLabel( table ) );
         std::ranges::transform( label, label.begin(), []( unsigned char c ) {
            return static_cast<char>( std::tolower( c ) );
         } );
         result.pages[label] = bytes;
      }
   }
   return result;
}

std::string labelled( CfpImageBuilder const & built ) {
   return labelledForm( imageOf( built ) );
}

/// The same with one table cut.
std::string cut( CfpImageBuilder const & built, char const * label, std::size_t size ) {
   XcvrTool::ModuleImage image = imageOf( built );
   image.pages.at( label ).resize( size );
   return labelledForm( image );
}

using CfpToolTest = ToolTest;

TEST_F( CfpToolTest, ShowFacts ) {
   struct Expectation {
      char const * label;
      char const * text;
   };
   struct {
      std::string image;
      std::vector<Expectation> expected;
   } const cases[] = {
      { labelled( lr4() ),
        { { "Identifier", "0x11 .CFP2." },
          { "Media type", "100GBASE-LR4 .xcvr100GBaseLr4." },
          { "Application", "0x01 .100GBASE-LR4." },
          { "Date code", "2010-11-12" }, // with the century, and no lot code
          { "Lot code", ".no Lot code." },
          { "Lanes", "4 network, 10 host" },
          { "Bit rate", "25.8 Gb/s a network lane, at most" },
          { "Length .SMF.", "10 km" },
          { "Length .MMF.", ".no Length .MMF.." },
          { "Wavelength", "1294.525 to 1310.200 nm" },
          { "Power class", "3" },
          { "Firmware version A", "2.3" },
          { "Firmware version B", ".no Firmware version B." },
          { "Module state", ".no Module state." },
          { "Rx LOS", "none" },
          { "Status words", "none" },
          { "Tx input equalization", "code 0 / 0 / 0 / 0 / 0 / 0 / 0 / 0 / 0 / 5" },
          { "OSNR", ".no OSNR." } } },
      { labelled( lr4()
                     .raw( "networkLaneAWSummary", 0x000a )
                     .raw( "networkLaneFaultStatus", 0x0010, 2 )
                     .raw( "globalAlarmSummary", 0x9000 ) ),
        { { "Network lane alarms, warnings", "on lanes 2/4" },
          { "Rx LOS", "on lane 3" },
          { "Status words", "global alarms 0x9000" } } },
      { labelled( dco() ),
        { { "Media type", "100G-DWDM-DCO .xcvr100GDwdmDco." },
          { "Tuning range", "191350 to 196000 GHz" },
          { "Tuned frequency", "193100 GHz" },
          { "Tx power setting", "-1.50 dBm" },
          { "Module state", "ready" },
          { "Status words", "fault status 0x0020" },
          { "OSNR", "26.4 dB .0x0108." },
          { "Rx channel power", "-11.40 dBm .0xfb8c." },
          { "Carrier frequency offset", "-180 MHz .0xff4c." },
          { "Chromatic dispersion", "0x00010004 .65540." },
          { "Q factor", "0x0070 .112." },
          { "SNR", ".no SNR." }, // in a table of its own, which is not there
          { "Tx driver type", ".no Tx driver type." } } },
      { labelled( cfpx() ),
        { { "Media type", "100G-DWDM-E .xcvr100GDwdmCoherentE." },
          { "Tx driver type", "1 .linear." },
          { "Tx swaps", "I and Q of V" },
          { "Rx swaps", "none" },
          { "Rx attenuation", "2.50 dB of at most 15.00 dB" },
          { "Bit rate", ".no Bit rate." },
          { "OSNR", ".no OSNR." } } },
      { labelled( lr4().missing( tableA000 ).missing( tableA280 ) ),
        { { "Monitors", "advertised, but the image lacks tables a000h, a280h" },
          { "Status words", ".no Status words." } } },
      { labelled( lr4().missing( table8180 ) ),
        { { "Checksum, 8080h", ".*, valid" },
          // stored in the table that is missing
          { "Checksum, 8100h", ".no Checksum, 8100h." } } },
      { cut( dco(), "9100h", 0x31 * 2 - 1 ), { { "OSNR", ".no OSNR." } } },
      { cut( dco(), "b800h", 0x10 * 2 ),
        { { "Chromatic dispersion", ".no Chromatic dispersion." } } },
   };
   for ( auto const & [image, expected] : cases ) {
      ToolRun const run = this->run( "show -", image );
      EXPECT_EQ( run.exitCode, 0 ) << run.err;
      for ( auto const & [label, text] : expected ) {
         EXPECT_TRUE( std::regex_match( fact( run.out, label ), std::regex( text ) ) )
            << label << " : " << fact( run.out, label );
      }
   }
}

TEST_F( CfpToolTest, MonitorsOfNetworkLanes ) {
   auto const shown = [&]( CfpImageBuilder const & image ) {
      return std::regex_replace( run( "show -", labelled( image ) ).out, std::regex( " +" ), " " );
   };
   std::string const whole = shown( lr4().value( "rxPower", 0, 3 ) );
   for ( char const * line : {
            " Temperature 45.00 °C -5.00 0.00 70.00 75.00\n",
            " Tx bias, lane 4 60.000 mA 0.000 0.000 0.000 0.000\n",
            " Rx power, lane 4 0.0000 mW / -inf dBm -inf -inf -inf 3.01\n",
            " Sum of Tx power 4.0000 mW / 6.02 dBm - - - -\n",
         } ) {
      EXPECT_THAT( whole, HasSubstr( line ) );
   }
   EXPECT_THAT( whole, Not( HasSubstr( "lane 5" ) ) );
   // Registers that the image lacks are not taken for darkness.
   std::string const part = shown( lr4().missing( tableA280 ) );
   EXPECT_THAT( part, HasSubstr( " Temperature 45.00 °C" ) );
   EXPECT_THAT( part, Not( ContainsRegex( "(Tx|Rx) power, lane|Tx bias, lane|Sum of" ) ) );
   // A threshold of a coherent module has steps of 0.1 mA, the monitor of 2 µA.
   EXPECT_THAT( shown( dco() ), HasSubstr( " Tx bias 104.000 mA 0.000 0.000 0.000 400.000" ) );
   EXPECT_THAT( shown( cfpx() ), HasSubstr( " Rx power 0.1038 mW / -9.84 dBm" ) );
}

TEST_F( CfpToolTest, Json ) {
   file( "dco", labelled( dco() ) );
   file( "lr4", labelled( lr4() ) );
   Json const document = Json::parse( run( "show --json dco lr4" ).out );
   Json const & module = document["modules"][0];
   EXPECT_EQ( module["family"], "cfp2" );
   EXPECT_EQ( module["identifierName"], "CFP2-DCO" );
   EXPECT_NEAR( module["dcoMonitors"]["osnr"], 26.4, 1e-9 );
   EXPECT_EQ( module["dcoMonitors"]["rawOsnr"], 264 );
   EXPECT_EQ( module["dcoMonitors"]["rawCarrierFreqOffset"], 0xff4c );
   EXPECT_EQ( module["dcoMonitors"]["snr"], nullptr );
   EXPECT_EQ( module["dcoMonitors"]["rawSnr"], nullptr );
   EXPECT_EQ( module["cfpxTuneStatus"]["txFrequency"], 193100000 );
   EXPECT_EQ( module["statusWords"]["moduleFaultStatus"], 0x20 );
   EXPECT_EQ( module["domInfo"].size(), 1u );
   EXPECT_EQ( document["units"]["dcoMonitors"]["osnr"], "dB" );
   EXPECT_EQ( document["units"]["cfpxTuneStatus"]["rxAttenuation"], "dB" );
   Json const & other = document["modules"][1];
   EXPECT_EQ( other["domInfo"].size(), 4u );
   EXPECT_EQ( other["domInfo"][3]["txBias"], 60.0 );
   EXPECT_EQ( other["capabilities"]["maxChannels"], 10 );
   EXPECT_FALSE( other.contains( "dcoMonitors" ) );
}

TEST_F( CfpToolTest, HexdumpOfRegisters ) {
   std::string const out = run( "hexdump -", cut( dco(), "b400h", 0x11 * 2 - 1 ) ).out;
   for ( char const * line : {
            "Page 8000h, 128 bytes, identification\nReg.    Contents ",
            "\n  8000  19                       identifier                 0x19 (CFP2-DCO)\n",
            "\n  8009  14                       networkLanes               1\n"
            "  8009  14                       (hostLanes)                4\n",
            "\n  80a8  0f a0                    txBiasHighAlarm            400.0 mA\n",
            // A line begins with a whole register, whatever bytes are equal.
            "\n  a2a0  cb 20                    txBias                     104.000 mA\n"
            "  a2a1  00 ...                                              30 bytes of 00\n",
            "\n  b016  00 20                    moduleState                ready\n",
            "\n  b01e  00 20                    moduleFaultStatus          0x0020\n",
            "\n  b410  ff                       txPowerConfig              cut off\n",
            "\n  b9c0  ff 4c                    rxCarrierFreqOffset        -180 MHz\n",
         } ) {
      EXPECT_THAT( out, HasSubstr( line ) );
   }
}

TEST_F( CfpToolTest, ExplainSaysWhatTheRulesRead ) {
   std::string const out = run( "explain -", labelled( cfpx() ) ).out;
   EXPECT_EQ( fact( out, "8003h, application" ), "17" );
   EXPECT_EQ( fact( out, "BB04h, driver type" ), "1" );
   EXPECT_THAT( out, HasSubstr( "coherent application, linear driver" ) );
   EXPECT_EQ(
      fact( run( "explain -", labelled( cfpx().missing( tableBB00 ) ) ).out, "BB04h, driver type" ),
      "0, as the image lacks it" );
}

TEST_F( CfpToolTest, Findings ) {
   struct {
      std::string image;
      char const * finding; // null: nothing is wrong
   } const cases[] = {
      { labelled( lr4() ), nullptr },
      { labelled( dco() ), nullptr },
      { labelled( cfpx() ), nullptr },
      { labelled( lr4().checksumBroken( table8080 ) ),
        "checksum: The 8080h checksum is wrong: page 8080h" },
      { labelled( lr4().value( "temperature", 80 ) ),
        "value-alarm: Temperature is 80.00 °C, above" },
      { labelled( lr4().value( "tempLowWarn", 72 ) ),
        "threshold-order: The limits of Temperature" },
      { labelled( module( identifierCfp2, 0 ) ),
        "media-type: The identifier 11h .CFP2. is not borne out" },
      { labelled( lr4().missing( tableA000 ).missing( tableA280 ) ),
        "dom-missing: .*lacks tables a000h, a280h" },
      { labelled( lr4().missing( tableA280 ) ),
        "page-missing: The module has table a280h .network lane monitors., but" },
      { labelled( lr4().missing( table8080 ) ), "page-missing: The module has table 8080h" },
      { labelled( dco().missing( table8180 ) ), "page-missing: The module has table 8180h" },
      { labelled( cfpx().missing( tableBB00 ) ), "page-missing: The module has table bb00h" },
      { cut( dco(), "b400h", 64 ), "page-missing: The image has 64 bytes of table b400h" },
   };
   for ( auto const & [image, finding] : cases ) {
      ToolRun const run = this->run( "check -", image );
      EXPECT_EQ( run.exitCode, finding ? 1 : 0 ) << run.out << run.err;
      if ( finding ) {
         EXPECT_THAT( run.out, ContainsRegex( std::string( "<stdin>: " ) + finding ) );
      } else {
         EXPECT_THAT( run.out, IsEmpty() );
      }
   }
}

} // namespace
} // namespace XcvrTest
