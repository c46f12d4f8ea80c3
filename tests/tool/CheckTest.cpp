// What `xcvr check` finds, and what it lets pass.
#include "tests/support/SfpImageBuilder.h"
#include "tests/tool/ToolRun.h"

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

/// A module with nothing wrong.
SfpImageBuilder sound() {
   SfpImageBuilder image;
   image.raw( "connector", 7 )
      .bit( "compliance", "10GBASE-LR" )
      .value( "length9umKm", 10 )
      .text( "vendorName", "Harbour Optics" )
      .text( "dateCode", "241107" )
      .bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", "internally calibrated" );
   struct {
      char const * limits;
      char const * live;
      double lowAlarm, lowWarn, now, highWarn, highAlarm;
   } const monitors[] = {
      { "domTemp", "domTemperature", -5, 0, 40, 70, 75 },
      { "domVolt", "domSupplyVoltage", 2.9, 3.1, 3.3, 3.5, 3.6 },
      { "domBias", "domBiasCurrent", 2, 3, 30, 70, 80 },
      { "domTxPower", "domTxPower", 0.1, 0.2, 0.5, 1, 2 },
      { "domRxPower", "domRxPower", 0.01, 0.02, 0.5, 1, 2 },
   };
   for ( auto const & m : monitors ) {
      std::string const limits = m.limits;
      image.value( limits + "LowAlarm", m.lowAlarm )
         .value( limits + "LowWarn", m.lowWarn )
         .value( m.live, m.now )
         .value( limits + "HighWarn", m.highWarn )
         .value( limits + "HighAlarm", m.highAlarm );
   }
   return image;
}

SfpImageBuilder uncalibrated() {
   return SfpImageBuilder()
      .raw( "connector", 7 )
      .bit( "compliance", "10GBASE-LR" )
      .bit( "diagsMonitoringType", "digital diagnostics" );
}

using CheckTest = ToolTest;

TEST_F( CheckTest, Findings ) {
   struct Expected {
      char const * id;
      char const * what;
   };
   struct {
      SfpImageBuilder image;
      std::vector<Expected> expected;
      std::size_t size = 512;
   } const cases[] = {
      { sound(), {} },
      { sound().checksumBroken( "storedCcBase" ), { { "checksum", "base .* a0h, stored" } } },
      { sound().checksumBroken( "storedCcDmi" ), { { "checksum", "diagnostics .* a2h, " } } },
      { sound(), { { "dom-missing", "lacks page a2h up to byte 117" } }, 256 },
      { sound(), { { "dom-missing", "page a2h" } }, 256 + 117 },
      { sound(), {}, 256 + 118 },
      { SfpImageBuilder().bit( "compliance", "1000BASE-T" ).raw( "connector", 0x22 ), {}, 256 },
      { uncalibrated(), { { "dom-calibration", "not how they are calibrated" } } },
      { uncalibrated(),
        { { "dom-missing", "page a2h" }, { "dom-calibration", "not how they are calibrated" } },
        256 },
      { sound().value( "domTempHighWarn", 76 ),
        { { "threshold-order", "of Temperature .* high warning 76.00, high alarm 75.00 °C" } } },
      { sound().value( "domTxPowerHighWarn", 0.15 ).value( "domVoltLowWarn", 2.8 ),
        { { "threshold-order", "Supply voltage" }, { "threshold-order", "Tx power" } } },
      { sound().value( "domTemperature", 75.5 ),
        { { "value-alarm", "Temperature is 75.50 °C, above its alarm limit of 75.00 °C" } } },
      { sound().value( "domRxPower", 0 ),
        { { "value-alarm",
            "Rx power is 0.0000 mW / -inf dBm, below its alarm limit of -20.00" } } },
      // Within the alarm limits, if only just.
      { sound().value( "domTemperature", 75 ).value( "domBiasCurrent", 2 ), {} },
      // Limits that are not set leave nothing to be outside of.
      { sound()
           .raw( "domTempLowAlarm", 0 )
           .raw( "domTempLowWarn", 0 )
           .raw( "domTempHighWarn", 0 )
           .raw( "domTempHighAlarm", 0 ),
        {} },
      { sound().text( "vendorPn", "HO\t1" ).text( "vendorSn", "\xe9" ),
        { { "text", "vendorPn has byte 09h, .* place 3" },
          { "text", "vendorSn has byte e9h, .* place 1" } } },
      // Zeros for padding are common; between characters they are not.
      { sound().text( "vendorSn", std::string_view( "SN1\0\0", 5 ) ), {} },
      { sound().text( "vendorRev", std::string_view( "A\0B", 3 ) ),
        { { "text", "vendorRev has byte 00h, .* place 2" } } },
      { sound().raw( "identifier", 0x11 ), { { "identifier", "11h is not one of .* sfp" } } },
      { sound().raw( "identifier", 0x0b ), { { "media-type", "0bh .DWDM-SFP .* no rule" } } },
      { sound().raw( "connector", 0x22 ),
        { { "connector", "RJ45.*, but the media type is 10GBASE-LR" } } },
      { SfpImageBuilder().bit( "compliance", "1000BASE-T" ).raw( "connector", 7 ),
        { { "connector", "LC.*, but the media type is 1000BASE-T" } },
        256 },
      // Of a type that is not known nobody knows the connector either.
      { SfpImageBuilder().raw( "connector", 7 ), { { "media-type", "03h" } }, 256 },
   };
   for ( auto const & row : cases ) {
      std::string const bytes = ( row.image.a0h() + row.image.a2h() ).substr( 0, row.size );
      file( "m", bytes );
      ToolRun const run = this->run( "check --family sfp --json m" );
      EXPECT_EQ( run.exitCode, row.expected.empty() ? 0 : 1 );
      Json const findings = Json::parse( run.out )["modules"][0]["findings"];
      ASSERT_EQ( findings.size(), row.expected.size() ) << findings;
      std::string lines;
      for ( std::size_t i = 0; i < findings.size(); ++i ) {
         EXPECT_EQ( findings[i]["id"], row.expected[i].id );
         std::string const what = findings[i]["finding"], advice = findings[i]["advice"];
         EXPECT_THAT( what, ContainsRegex( row.expected[i].what ) );
         EXPECT_THAT( advice, ContainsRegex( "^[A-Z].*\\.$" ) );
         lines += "m: " + std::string( row.expected[i].id ) + ": " + what + ' ' + advice + '\n';
      }
      ToolRun const text = this->run( "check --family sfp m" );
      EXPECT_EQ( text.out, lines );
      EXPECT_EQ( text.exitCode, run.exitCode );
   }
}

TEST_F( CheckTest, OfSeveralFiles ) {
   file( "good", sound().a0h() + sound().a2h() );
   file( "bad", sound().a0h() );
   ToolRun const good = run( "check good good" );
   EXPECT_EQ( good.exitCode, 0 );
   EXPECT_THAT( good.out + good.err, IsEmpty() );
   ToolRun const one = run( "check bad good" );
   EXPECT_EQ( one.exitCode, 1 );
   EXPECT_THAT( one.out, ContainsRegex( "^bad: dom-missing: [^\n]*\n$" ) );
   // An input that cannot be read weighs more; the others are checked all the same.
   for ( char const * arguments : { "check missing bad", "check bad missing" } ) {
      ToolRun const unreadable = run( arguments );
      EXPECT_EQ( unreadable.exitCode, 3 );
      EXPECT_EQ( unreadable.out, one.out );
      EXPECT_THAT( unreadable.err, HasSubstr( "xcvr: missing: " ) );
   }
}

TEST_F( CheckTest, Examples ) {
   ToolRun const run = this->run( "check '" XCVR_SOURCE_DIR "'/examples/modules/*.txt" );
   EXPECT_EQ( run.exitCode, 1 );
   EXPECT_THAT( run.out,
                ContainsRegex( "^[^\n]*/400gbase-sr8.txt: value-alarm: Rx power, lane 6 [^\n]*\n"
                               "[^\n]*/alarms.txt: value-alarm: Temperature [^\n]*\n"
                               "[^\n]*/alarms.txt: value-alarm: Rx power [^\n]*\n"
                               "[^\n]*/bad-checksum.txt: checksum: [^\n]*\n$" ) );
}

} // namespace
} // namespace XcvrTest
