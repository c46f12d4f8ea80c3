// What the program makes of OSFP and QSFP-DD modules, whole or in part, and of their control sets.
#include "tests/support/CmisImageBuilder.h"
#include "tests/tool/ToolRun.h"

namespace XcvrTest {
namespace {

struct CmisToolTest : ToolTest {
   /// Four media lanes of eight.
   static CmisImageBuilder dr4() { return example<CmisImageBuilder>( "400gbase-dr4" ); }
   static CmisImageBuilder cable() { return example<CmisImageBuilder>( "400gbase-cr8" ); }
};

TEST_F( CmisToolTest, ShowFacts ) {
   expectFacts( dr4()
                   .application( 9, { 0x11, 0xf0, 8, 4, 0x01, 0 } )
                   .bit( "moduleFlags", "temperature high warning" )
                   .bit( "moduleFlags", "voltage low alarm" )
                   .raw( "moduleState", 0x0a, "faultCause", 1, "rxLos", 0x0c, "txFault", 0xff,
                         "laneTxDisable", 0x01, "dataPathStates", 0x11444441, "activeApSel0", 0,
                         "rxOutputAmplitude", 0x10325476 ),
                { { "Not in the image", untold },
                  { "Application 1", "host 400GAUI-8 C2M: 8 lanes from lane 1, "
                                     "media 400GBASE-DR4: 4 lanes from lane 1/2/3/4" },
                  // A code without a name is its number.
                  { "Application 9", "host 400GAUI-8 C2M: 8 lanes from lane 1, "
                                     "media 0xf0: 4 lanes (no start told)" },
                  { "Length (SMF)", "0.5 km" },
                  { "Firmware", "2.7" },
                  { "Voltage warnings", "3.1350 V and 3.4650 V in the module; the system goes by "
                                        "those in the table, from another place" },
                  { "Fault cause", "0x01 (TEC runaway)" },
                  { "Module flags", "temperature high warning, voltage low alarm" },
                  { "Lane flags", "Tx fault on all lanes, Rx LOS on lanes 3/4" },
                  { "Lane controls", "Tx disable on lane 1" },
                  // The first byte holds lanes 1 and 2.
                  { "Data paths", "data path deactivated on lanes 1/2/7, "
                                  "data path activated on lanes 3/4/5/6/8" },
                  { "Application in force", "none on lane 1, 1 on lanes 2/3/4/5/6/7/8" },
                  { "Rx output amplitude", "code 0 / 1 / 2 / 3 / 4 / 5 / 6 / 7" } } );
   expectFacts( cable(), { { "Length (cable)", "2 m" },
                           { "Attenuation at 12.9 GHz", "11 dB" },
                           { "Lane flags", untold },
                           { "Data paths", untold },
                           { "Monitors", untold } } );
   expectFacts(
      dr4().missing( "00h" ).missing( "01h" ).missing( "11h" ),
      { { "Not in the image", "00h (identification), 01h (advertisement), 11h (lane status)" },
        { "Application 2", "host 100GAUI-2 C2M: 2 lanes from lane 1/3/5/7, "
                           "media 100GBASE-DR: 1 lane" },
        { "Temperature", "47.250 °C" },
        { "Application in force", untold },
        { "Checksum, identification", untold } } );
   expectFacts( dr4().missing( "lower" ),
                { { "Identifier", "0x18 (QSFP-DD)" },
                  { "Lower page", "not in the image: it says what the module is" },
                  { "Monitors", "advertised, but the image lacks the lower page up to byte 17 or "
                                "page 11h up to byte 201" } } );
}

TEST_F( CmisToolTest, MonitorsOfLanesThatThereAre ) {
   std::string const out = shown( "show", dr4().value( "rxPower3", 0.05 ).value( "txBias1", 12 ) );
   expectLines( out,
                { // The system takes the warnings from those of the temperature.
                  " Supply voltage 3.2870 V 2.9700 0.0000 1.7920 3.6300\n",
                  // What is stored counts twice, the limits too.
                  " Tx bias, lane 2 24.000 mA 20.000 30.000 120.000 130.000 low warning\n",
                  " Rx power, lane 4 0.0500 mW / -13.01 dBm -8.90 -5.90 4.00 5.00 low alarm\n" } );
   EXPECT_THAT( out, Not( HasSubstr( "lane 5 " ) ) );
}

TEST_F( CmisToolTest, JsonHasALaneEach ) {
   file( "dr4", dr4().raw( "rxLos", 0x02 ).raw( "laneTxDisable", 0x80 ) );
   file( "cable", cable() );
   expectJson( Json::parse( run( "show --json dr4 cable" ).out ), R"( { "modules": [
      { "family": "qsfpDd",
        "laneFlags": { "1": { "rxLos": true }, "2": { "rxLos": false } },
        "laneControls": { "7": { "laneTxDisable": true } },
        "dataPathStates": { "7": "dataPathActivated" },
        "applications": { "1": {
           "selectCode": 2, "hostInterface": 13, "hostInterfaceName": "100GAUI-2 C2M",
           "hostLaneAssignment": 85, "mediaLaneCount": 1, "mediaType": "xcvr100GBaseDr" } } },
      { "laneFlags": null, "activeApplications": null,
        "applications": { "0": { "mediaLaneAssignment": null } } } ] } )" );
}

TEST_F( CmisToolTest, HexdumpAndExplain ) {
   std::string const whole = labelled( dr4() );
   expectLines( shown( "hexdump", whole + "\n[11h.1]\n44\n" ),
                { " moduleState ready, interrupt not asserted\n",
                  "Page 11h, 128 bytes, lane status, lanes count from 0\n",
                  "\n154 9a 38 b9 txPower0 1.4521 mW / 1.62 dBm\n", " (voltageHighWarn) ",
                  "Page 11h.1, 1 byte, lane status" } );
   EXPECT_THAT( run( "hexdump -", dr4().bit( "memoryAndSpeed", "flat memory" ) ).out,
                HasSubstr( "Page 02h, 128 bytes, thresholds, which the module says it lacks" ) );
   std::string const copper = run( "explain -", cable() ).out;
   EXPECT_THAT( copper, ContainsRegex( "xcvr400GBaseCr8: rule 3 of 6 matches: passive copper" ) );
   EXPECT_EQ( fact( copper, "Byte 86, host interface" ), "0x1d (400GBASE-CR8)" );
}

TEST_F( CmisToolTest, Findings ) {
   expectFindings( {
      // Of the voltage the module's own warnings count, and a lane that is not there has no alarm.
      { dr4(), nullptr },
      { dr4().value( "voltageLowWarnUnused", 3.55 ),
        "threshold-order: The limits of Supply voltage are" },
      { dr4().missing( "01h" ), "page-missing: .* has page 01h .advertisement., but" },
      { dr4().raw( "moduleState", 0x0a ).raw( "faultCause", 2 ),
        "module-fault: .* cause 0x02 .data memory corrupted." },
   } );
}

TEST_F( CmisToolTest, ControlSet ) {
   std::string set( 29, '\0' );
   set[2] = 0x1f; // lane 3: application 1, data path 7, explicit
   set[11] = 0x21;
   file( "set", set );
   EXPECT_THAT( shown( "control-set", set ),
                ContainsRegex( "^ Lane Application .*\n 1 0 0 0 0 1 0 0 0\n 2 0 0 0 0 2 0 0 0\n"
                               " 3 1 7 1 0 0 0 0 0\n" ) );
   std::string const change =
      " --lane 3,8 --application 2 --data-path 0 --explicit 1 --tx-adaptive 1 "
      "--tx-eq 5 --rx-pre 1 --rx-post 2 --rx-amplitude 3";
   ToolRun const changed = run( "control-set set" + change );
   EXPECT_EQ( changed.exitCode, 0 ) << changed.err;
   EXPECT_THAT( changed.out, HasSubstr( "\n\n   Byte  2 (page 11h: 208)  1f -> 21\n" ) );
   EXPECT_THAT( changed.out,
                HasSubstr( "\n   Apply mask  0x84\n   Image       00 00 21 00 00 00 00 "
                           "21 84 00 00 21 05 00 50 00 00 00 01 00 10 00 02 00 20 00 "
                           "03 00 30\n" ) );
   // The image that it prints is one that it reads; what is already so is not applied.
   std::string const image = changed.out.substr( changed.out.find( "Image" ) + 5 );
   EXPECT_THAT( run( "control-set -" + change, image ).out,
                HasSubstr( "No byte differs\n   Apply mask  0x00\n" ) );
}

TEST_F( CmisToolTest, ControlSetForPrograms ) {
   file( "set", std::string( 29, '\0' ) );
   std::string const change = "control-set --json set --lane 2 --application 3 --rx-post 4 ";
   expectJson( Json::parse( run( change + "--output set" ).out ), R"( {
      "applyMask": 2, "image": "0030000000000000000000000000000000000000004000000000000000",
      "lanes": { "0": { "application": 0 },
                 "1": { "application": 3, "rxOutputPostEmphasis": 4, "rxOutputPreEmphasis": 0 } },
      "changes": [ { "address": 207, "before": 0, "after": 48 },
                   { "address": 227, "before": 0, "after": 64 } ] } )" );
   // What it wrote has the changes.
   EXPECT_EQ( contentOf( path( "set" ) ).substr( 0, 2 ), std::string( "\0\x30", 2 ) );
   EXPECT_THAT( run( change + "--output /dev/full" ).err,
                HasSubstr( "xcvr: /dev/full: cannot be written (No space left" ) );
}

TEST_F( CmisToolTest, ControlSetRefusesToAlterOtherLanes ) {
   std::string set( 29, '\0' );
   set[11] = static_cast<char>( 0x80 ); // lane 2 has the code 8: lanes above are set to 15
   file( "set", set );
   ToolRun const refused = run( "control-set set --lane 3 --tx-eq 0" );
   EXPECT_EQ( refused.exitCode, 1 );
   EXPECT_THAT( refused.err, HasSubstr( "also change settings on lanes 4/5/6/7/8" ) );
   EXPECT_THAT( run( "control-set set --lane 3 --tx-eq 0 --force" ).out,
                HasSubstr( "Byte 12 (page 11h: 218)  00 -> f0\n" ) );
   // A change of another register alters no other lane.
   EXPECT_EQ( run( "control-set set --lane 3 --rx-pre 9" ).exitCode, 0 );

   file( "short", set.substr( 0, 28 ) );
   for ( auto const & [arguments, exitCode] : { std::pair( "short", 3 ),
                                                { "set --lane 9 --tx-eq 1", 2 },
                                                { "set --lane 0 --tx-eq 1", 2 },
                                                { "set --lane 1 --tx-eq 16", 2 },
                                                { "set --lane 1 --data-path 8", 2 },
                                                { "set --tx-eq 1", 2 } } ) {
      EXPECT_EQ( run( std::string( "control-set " ) + arguments ).exitCode, exitCode ) << arguments;
   }
}

} // namespace
} // namespace XcvrTest
