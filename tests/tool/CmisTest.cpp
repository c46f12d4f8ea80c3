// What the program says of OSFP and QSFP-DD modules, whole or in part.
#include "tests/support/CmisImageBuilder.h"
#include "tests/tool/ToolRun.h"
#include "tools/xcvr/ModuleImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace XcvrTest {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Json = nlohmann::json;

/// A 400GBASE-DR4 module with nothing wrong: all pages, all monitors; four media lanes of eight.
CmisImageBuilder dr4() {
   CmisImageBuilder image;
   image.identifier( 0x18 )
      .raw( "revision", 0x40 )
      .raw( "moduleState", 0x07 )
      .raw( "moduleType", 2 )
      .raw( "activeFirmwareMajor", 2 )
      .raw( "activeFirmwareMinor", 7 )
      .application( 1, { 0x11, 0x1c, 8, 4, 0x01, 0x01 } )
      .application( 2, { 0x0d, 0x14, 2, 1, 0x55, 0x0f } )
      .application( 9, { 0x11, 0xf0, 8, 4, 0x01, 0x01 } )
      .text( "vendorName", "Harbour Optics" )
      .text( "dateCode", "241107" )
      .raw( "connector", 0x0c )
      .raw( "powerClass", 0xa0 )
      .value( "maxPower", 9.75 )
      .raw( "mediaLanesMissing", 0xf0 )
      .raw( "mediaTechnology", 6 )
      .raw( "lengthSmf", 5 )
      .value( "wavelength", 1311 )
      .raw( "implMonitorsAdvertisement", 0x030f )
      .raw( "implFlagsAdvertisement", 0x0f06 )
      .raw( "implSignalIntegrityControl", 0x0d1d )
      .raw( "dataPathStates", 0x44444444 )
      .raw( "rxOutputAmplitude", 0x10325476 )
      .value( "temperature", 45 )
      .value( "voltage", 3.3 );
   for ( char lane = '0'; lane < '8'; ++lane ) {
      image.raw( std::string( "activeApSel" ) + lane, 0x10 );
   }
   struct {
      char const * limits;
      double lowAlarm, lowWarn, now, highWarn, highAlarm;
   } const monitors[] = {
      { "temp", -5, 0, 45, 70, 75 },
      { "txBias", 10, 15, 30, 45, 50 },
      { "txPower", 0.1, 0.2, 1, 2, 3 },
      { "rxPower", 0.1, 0.2, 1, 2, 3 },
   };
   image.value( "voltageLowAlarm", 2.9 ).value( "voltageHighAlarm", 3.6 );
   image.value( "voltageLowWarnUnused", 3.1 ).value( "voltageHighWarnUnused", 3.5 );
   for ( auto const & m : monitors ) {
      std::string const limits = m.limits;
      image.value( limits + "LowAlarm", m.lowAlarm )
         .value( limits + "LowWarn", m.lowWarn )
         .value( limits + "HighWarn", m.highWarn )
         .value( limits + "HighAlarm", m.highAlarm );
      for ( char lane = '0'; lane < '4' && limits.find( 'x' ) != std::string::npos; ++lane ) {
         image.value( limits + lane, m.now );
      }
   }
   return image;
}

CmisImageBuilder cable() {
   return CmisImageBuilder()
      .flat()
      .raw( "moduleState", 0x07 )
      .raw( "moduleType", 3 )
      .application( 1, { 0x1d, 0x01, 8, 8, 0x01, 0 } )
      .raw( "connector", 0x23 )
      .raw( "cableLength", 0x42 )
      .raw( "mediaTechnology", 0x0a )
      .raw( "attenuation12p9GHz", 11 );
}

std::string labelled( CmisImageBuilder const & image ) {
   XcvrTool::ModuleImage result;
   for ( CmisImageBuilder::Page const & known : CmisImageBuilder::allPages ) {
      if ( std::string const page = image.page( known.label ); !page.empty() ) {
         result.pages[std::string( known.label )] = page;
      }
   }
   return XcvrTool::labelledForm( result );
}

using CmisToolTest = ToolTest;

TEST_F( CmisToolTest, ShowFacts ) {
   struct Expectation {
      char const * label;
      char const * text;
   };
   struct {
      CmisImageBuilder image;
      std::vector<Expectation> expected;
   } const cases[] = {
      { dr4(),
        { { "Identifier", "0x18 .QSFP-DD." },
          { "Not in the image", ".no Not in the image." },
          { "Module type", "0x02 .optical, single-mode fibre." },
          { "Media type", "400GBASE-DR4 .xcvr400GBaseDr4." },
          { "Application 1", "host 400GAUI-8 C2M: 8 lanes from lane 1, *\n? *"
                             "media 400GBASE-DR4: 4 lanes from lane 1/2/3/4" },
          // A code without a name is its number.
          { "Application 9", "host 400GAUI-8 C2M: 8 lanes from lane 1, *\n? *"
                             "media 0xf0: 4 lanes .no start told." },
          { "Length .SMF.", "0.5 km" },
          { "Wavelength", "1311 nm" },
          { "Maximum power", "9.75 W" },
          { "Power class", "6" },
          { "Firmware", "2.7" },
          { "Module state", "ready" },
          { "Fault cause", ".no Fault cause." },
          { "Lane flags", "none" },
          { "Data paths", "data path activated on all lanes" },
          { "Application in force", "1 on all lanes" },
          { "Rx output amplitude", "code 0 / 1 / 2 / 3 / 4 / 5 / 6 / 7" },
          { "Adaptive Tx equalization", "off" },
          { "Voltage warnings", "3.1000 V and 3.5000 V in the module; .*\n.*" } } },
      { dr4()
           .raw( "moduleState", 0x0a )
           .raw( "faultCause", 1 )
           .bit( "moduleFlags", "temperature high warning" )
           .bit( "moduleFlags", "voltage low alarm" )
           .raw( "rxLos", 0x0c )
           .raw( "txFault", 0xff )
           .raw( "laneTxDisable", 0x01 )
           .raw( "dataPathStates", 0x11444441 )
           .raw( "activeApSel0", 0 )
           .raw( "txInputAdaptiveEqEnable", 0x03 ),
        { { "Module state", "fault" },
          { "Fault cause", "0x01 .TEC runaway." },
          { "Module flags", "temperature high warning, voltage low alarm" },
          { "Lane flags", "Tx fault on all lanes, Rx LOS on lanes 3/4" },
          { "Lane controls", "Tx disable on lane 1" },
          // The first byte holds lanes 1 and 2.
          { "Data paths", "data path deactivated on lanes 1/2/7,\n? *"
                          "data path activated on lanes 3/4/5/6/8" },
          { "Application in force", "none on lane 1, 1 on lanes 2/3/4/5/6/7/8" },
          { "Adaptive Tx equalization", "on lanes 1/2" } } },
      { cable(),
        { { "Identifier", "0x19 .OSFP." },
          { "Not in the image", ".no Not in the image." },
          { "Media type", "400GBASE-CR8 .xcvr400GBaseCr8." },
          { "Memory", "flat" },
          { "Length .cable.", "2 m" },
          { "Attenuation at 12.9 GHz", "11 dB" },
          { "Wavelength", ".no Wavelength." },
          { "Lane flags", ".no Lane flags." },
          { "Data paths", ".no Data paths." },
          { "Monitors", ".no Monitors." } } },
      { dr4().missing( "00h" ).missing( "01h" ).missing( "02h" ).missing( "10h" ).missing( "11h" ),
        { { "Media type", "400GBASE-DR4 .xcvr400GBaseDr4." },
          { "Not in the image", "00h .identification., 01h .advertisement., 02h .*\n.*" },
          { "Application 2", "host 100GAUI-2 C2M: 2 lanes from lane 1/3/5/7, *\n? *"
                             "media 100GBASE-DR: 1 lane" },
          { "Temperature", "45.000 °C" },
          { "Application in force", ".no Application in force." },
          { "Rx output amplitude", ".no Rx output amplitude." },
          { "Checksum, identification", ".no Checksum, identification." } } },
      { dr4().missing( "11h" ),
        { { "Temperature", "45.000 °C" },
          { "Supply voltage", "3.3000 V" },
          { "Monitors",
            "advertised,\n *but the image lacks the lower page up to byte 17(.|\n)*" } } },
      { dr4().missing( "lower" ),
        { { "Identifier", "0x18 .QSFP-DD." },
          { "Lower page", "not in the image: .*" },
          { "Application 1", ".no Application 1." },
          { "Module state", ".no Module state." },
          { "Vendor name", "Harbour Optics" } } },
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

TEST_F( CmisToolTest, MonitorsOfLanesThatThereAre ) {
   std::string const out =
      run( "show -", labelled( dr4().value( "rxPower3", 0.05 ).value( "txBias1", 12 ) ) ).out;
   std::string const squeezed = std::regex_replace( out, std::regex( " +" ), " " );
   for ( char const * line : {
            " Temperature 45.00 °C -5.00 0.00 70.00 75.00\n",
            // The system takes the warnings from those of the temperature.
            " Supply voltage 3.3000 V 2.9000 0.0000 1.7920 3.6000\n",
            // What is stored counts twice, the limits too.
            " Tx bias, lane 2 24.000 mA 20.000 30.000 90.000 100.000 low warning\n",
            " Rx power, lane 4 0.0500 mW / -13.01 dBm -10.00 -6.99 3.01 4.77 low alarm\n",
            " Sum of Tx power 4.0000 mW / 6.02 dBm - - - -\n",
         } ) {
      EXPECT_THAT( squeezed, HasSubstr( line ) );
   }
   EXPECT_THAT( out, Not( HasSubstr( "lane 5 " ) ) );
}

TEST_F( CmisToolTest, JsonHasALaneEach ) {
   file( "dr4", labelled( dr4().raw( "rxLos", 0x02 ).raw( "laneTxDisable", 0x80 ) ) );
   file( "cable", labelled( cable() ) );
   Json const document = Json::parse( run( "show --json dr4 cable" ).out );
   Json const & module = document["modules"][0];
   EXPECT_EQ( module["family"], "qsfpDd" );
   EXPECT_EQ( module["domInfo"].size(), 8u );
   EXPECT_EQ( module["laneFlags"].size(), 8u );
   EXPECT_EQ( module["laneFlags"][1]["rxLos"], true );
   EXPECT_EQ( module["laneFlags"][2]["rxLos"], false );
   EXPECT_EQ( module["laneControls"][7]["laneTxDisable"], true );
   EXPECT_EQ( module["moduleState"], "moduleReady" );
   EXPECT_EQ( module["dataPathStates"][7], "dataPathActivated" );
   EXPECT_EQ( module["activeApplications"], ( Json{ 1, 1, 1, 1, 1, 1, 1, 1 } ) );
   EXPECT_EQ( module["rxOutputAmplitude"], ( Json{ 0, 1, 2, 3, 4, 5, 6, 7 } ) );
   ASSERT_EQ( module["applications"].size(), 3u );
   EXPECT_EQ( module["applications"][1], Json::parse( R"({
                 "selectCode": 2, "hostInterface": 13, "hostInterfaceName": "100GAUI-2 C2M",
                 "hostLaneCount": 2, "hostLaneAssignment": 85, "mediaInterface": 20,
                 "mediaInterfaceName": "100GBASE-DR", "mediaLaneCount": 1,
                 "mediaLaneAssignment": 0, "mediaType": "xcvr100GBaseDr" })" ) );
   EXPECT_EQ( module["applications"][2]["selectCode"], 9 );
   EXPECT_EQ( document["units"]["maxPower"], "W" );
   Json const & flat = document["modules"][1];
   EXPECT_EQ( flat["family"], "osfp" );
   EXPECT_EQ( flat["flatMemory"], true );
   EXPECT_EQ( flat["laneFlags"], nullptr );
   EXPECT_EQ( flat["activeApplications"], nullptr );
   EXPECT_EQ( flat["applications"][0]["mediaLaneAssignment"], nullptr );
   EXPECT_EQ( flat["lengths"]["cableLength"], 2.0 );
}

TEST_F( CmisToolTest, Hexdump ) {
   std::string text = labelled( dr4() );
   std::string const out = run( "hexdump -", text + "\n[11h.1]\n44\n" ).out;
   for ( char const * line : {
            "Page lower, 128 bytes, status, applications\n",
            "moduleState                ready, interrupt not asserted\n",
            "moduleType                 0x02 (optical, single-mode fibre)\n",
            "powerClass                 0xa0 (power class 6)\n",
            "Page 11h, 128 bytes, lane status, lanes count from 0\n",
            "154 9a  27 10                    txPower0                   1.0000 mW / 0.00 dBm\n",
            "(voltageHighWarn)",
            "Page 11h.1, 1 byte, lane status",
         } ) {
      EXPECT_THAT( out, HasSubstr( line ) );
   }
   EXPECT_THAT( run( "hexdump -", labelled( dr4().bit( "memoryAndSpeed", "flat memory" ) ) ).out,
                HasSubstr( "Page 02h, 128 bytes, thresholds, which the module says it lacks" ) );
}

TEST_F( CmisToolTest, ExplainSaysWhichCodesDecide ) {
   EXPECT_THAT( run( "explain -", labelled( dr4() ) ).out,
                ContainsRegex( "xcvr400GBaseDr4: rule 2 of 6 matches: optical, single-mode" ) );
   std::string const out = run( "explain -", labelled( cable() ) ).out;
   EXPECT_THAT( out, ContainsRegex( "xcvr400GBaseCr8: rule 3 of 6 matches: passive copper" ) );
   EXPECT_THAT( fact( out, "Byte 86, host interface" ), "0x1d (400GBASE-CR8)" );
   EXPECT_THAT( run( "explain -", labelled( dr4().raw( "moduleType", 0x40 ) ) ).out,
                ContainsRegex( "xcvrUnknown: rule 6 of 6 matches" ) );
}

TEST_F( CmisToolTest, Findings ) {
   struct {
      CmisImageBuilder image;
      char const * finding; // null: nothing is wrong
   } const cases[] = {
      // Of the voltage the module's own warnings count, and a lane that is not there has no alarm.
      { dr4(), nullptr },
      { cable(), nullptr },
      { dr4().raw( "rxLos", 0xff ).raw( "txFault", 0xff ), nullptr },
      { dr4().checksumBroken( "checksumUpperPage01" ),
        "checksum: The advertisement checksum is wrong: page 01h" },
      { dr4().value( "rxPower2", 5 ),
        "value-alarm: Rx power, lane 3 is 5.0000 mW / 6.99 dBm, abo" },
      { dr4().value( "voltageLowWarnUnused", 3.55 ),
        "threshold-order: The limits of Supply voltage are" },
      { dr4().missing( "lower" ), "page-missing: The module has page lower .status, app" },
      { dr4().missing( "00h" ), "page-missing: The module has page 00h .identification., but" },
      { dr4().missing( "01h" ), "page-missing: The module has page 01h .advertisement., but" },
      { dr4().missing( "11h" ), "dom-missing: .* or page 11h up to byte 201" },
      { dr4().raw( "identifier", 0x1e ), "identifier-copy: Byte 0 has the identifier 1eh" },
      { dr4().raw( "moduleType", 0 ), "media-type: The identifier 18h .QSFP-DD. is not" },
      { dr4().raw( "moduleState", 0x0a ).raw( "faultCause", 2 ),
        "module-fault: .* cause 0x02 .data memory corrupted." },
   };
   for ( auto const & [image, finding] : cases ) {
      ToolRun const run = this->run( "check -", labelled( image ) );
      EXPECT_EQ( run.exitCode, finding ? 1 : 0 ) << run.out << run.err;
      if ( finding ) {
         EXPECT_THAT( run.out, ContainsRegex( finding ) );
      } else {
         EXPECT_THAT( run.out, IsEmpty() );
      }
   }
}

TEST_F( CmisToolTest, AnyFormAndAnyCutOfTheSameMemory ) {
   CmisImageBuilder const image = dr4();
   std::string bytes;
   for ( CmisImageBuilder::Page const & known : CmisImageBuilder::allPages ) {
      bytes += image.page( known.label );
   }
   file( "bin", bytes );
   file( "labelled", labelled( image ) );
   std::string const expected = run( "show labelled" ).out;
   EXPECT_THAT( expected, HasSubstr( "400GBASE-DR4" ) );
   for ( char const * command :
         { "xcvr show - <bin", "hexdump -C bin | xcvr show -", "od -An -v -tx1 bin | xcvr show -",
           "xcvr show --family qsfp-dd - <bin" } ) {
      EXPECT_EQ( shell( command ).out, expected ) << command;
   }
   // No cut ends in a fatal assertion, not even one within the control set of page 11h.
   std::size_t const page11h = 5 * 128;
   for ( std::size_t const size : { std::size_t( 128 ), std::size_t( 200 ), std::size_t( 3 * 128 ),
                                    page11h + 1, page11h + 60, page11h + 78, page11h + 100 } ) {
      file( "cut", bytes.substr( 0, size ) );
      for ( char const * command :
            { "show cut", "show --json cut", "hexdump cut", "explain cut" } ) {
         EXPECT_EQ( run( command ).exitCode, 0 ) << command << ' ' << size;
      }
      ToolRun const check = run( "check cut" );
      EXPECT_EQ( check.exitCode, 1 ) << size;
      EXPECT_THAT( check.out, HasSubstr( "page-missing: " ) );
   }
}

TEST_F( CmisToolTest, ControlSet ) {
   std::string set( 29, '\0' );
   set[2] = 0x1f; // lane 3: application 1, data path 7, explicit
   set[11] = 0x21;
   file( "set", set );
   EXPECT_THAT( std::regex_replace( run( "control-set set" ).out, std::regex( " +" ), " " ),
                ContainsRegex( "^ Lane Application .*\n 1 0 0 0 0 1 0 0 0\n 2 0 0 0 0 2 0 0 0\n"
                               " 3 1 7 1 0 0 0 0 0\n" ) );
   ToolRun const changed = run( "control-set set --lane 3 --application 2 --tx-eq 5" );
   EXPECT_EQ( changed.exitCode, 0 ) << changed.err;
   EXPECT_THAT( changed.out, HasSubstr( "\n\n   Byte  2 (page 11h: 208)  1f -> 2f\n"
                                        "   Byte 12 (page 11h: 218)  00 -> 05\n"
                                        "   Apply mask  0x04\n"
                                        "   Image       00 00 2f 00 " ) );
   // The image that it prints is one that it reads; what is already so is not applied.
   std::string const image = changed.out.substr( changed.out.find( "Image" ) + 5 );
   ToolRun const again = run( "control-set - --lane 3 --application 2 --tx-eq 5", image );
   EXPECT_THAT( again.out, HasSubstr( "No byte differs\n   Apply mask  0x00\n" ) );
   EXPECT_THAT( run( "control-set set --lane 1,8 --rx-pre 1 --rx-post 2 --rx-amplitude 3 "
                     "--tx-adaptive 1 --explicit 1 --data-path 0" )
                   .out,
                ContainsRegex( "Byte 17 [^\n]*01\n *Byte 20 [^\n]*10\n *Byte 21 [^\n]*02\n *Byte "
                               "24 [^\n]*20\n *Byte 25 [^\n]*03\n *Byte 28 [^\n]*30\n *Apply mask "
                               " 0x81" ) );
}

TEST_F( CmisToolTest, ControlSetRefusesToAlterOtherLanes ) {
   std::string set( 29, '\0' );
   set[11] = static_cast<char>( 0x80 ); // lane 2 has the code 8: lanes above are set to 15
   file( "set", set );
   ToolRun const refused = run( "control-set set --lane 3 --tx-eq 0" );
   EXPECT_EQ( refused.exitCode, 1 );
   EXPECT_THAT( refused.out, IsEmpty() );
   EXPECT_THAT( refused.err, HasSubstr( "also change settings on lanes 4/5/6/7/8" ) );
   ToolRun const forced = run( "control-set set --lane 3 --tx-eq 0 --force" );
   EXPECT_EQ( forced.exitCode, 0 );
   EXPECT_THAT( forced.out, HasSubstr( "Byte 12 (page 11h: 218)  00 -> f0\n" ) );
   // A change of another register alters no other lane.
   EXPECT_EQ( run( "control-set set --lane 3 --rx-pre 9" ).exitCode, 0 );

   file( "short", set.substr( 0, 28 ) );
   struct {
      char const * arguments;
      int exitCode;
   } const wrong[] = {
      { "short", 3 },
      { "missing", 3 },
      { "set --lane 9 --tx-eq 1", 2 },
      { "set --lane 0 --tx-eq 1", 2 },
      { "set --lane 1 --tx-eq 16", 2 },
      { "set --lane 1 --data-path 8", 2 },
      { "set --tx-eq 1", 2 },
   };
   for ( auto const & [arguments, exitCode] : wrong ) {
      ToolRun const run = this->run( std::string( "control-set " ) + arguments );
      EXPECT_EQ( run.exitCode, exitCode ) << arguments;
      EXPECT_THAT( run.out, IsEmpty() );
      EXPECT_THAT( run.err, Not( IsEmpty() ) );
   }
}

} // namespace
} // namespace XcvrTest
