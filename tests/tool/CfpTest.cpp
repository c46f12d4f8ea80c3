// What the program makes of CFP2, CFPx and CFP2-DCO modules, whole or in part.
#include "tests/tool/ToolRun.h"

namespace XcvrTest {
namespace {

using Module = XcvrTool::ModuleImage;

struct CfpToolTest : ToolTest {
   static Module lr4() { return exampleImage( "cfp2-100gbase-lr4" ); }
   static Module cfpx() { return exampleImage( "cfp2-100g-dwdm-e" ); }
   static Module dco() { return exampleImage( "cfp2-100g-dwdm-dco" ); }
   static Module without( Module module, std::initializer_list<char const *> tables ) {
      for ( char const * table : tables ) {
         module.pages.erase( table );
      }
      return module;
   }
   static Module cut( Module module, char const * table, std::size_t size ) {
      module.pages.at( table ).resize( size );
      return module;
   }
   /// With another byte, which of a table of words is half a register.
   static Module with( Module module, char const * table, std::size_t at, char byte ) {
      module.pages.at( table ).at( at ) = byte;
      return module;
   }
};

TEST_F( CfpToolTest, ShowFacts ) {
   expectFacts( lr4(), { { "Application", "0x01 (100GBASE-LR4)" },
                         { "Date code", "2024-10-15" }, // with the century, and no lot code
                         { "Bit rate", "25.8 Gb/s a network lane, at most" },
                         { "Wavelength", "1294.525 to 1310.200 nm" },
                         { "Network lane alarms, warnings", "on lane 4" },
                         { "Status words", "global alarms 0x9000" },
                         { "Tx input equalization", "code 2 / 2 / 2 / 2 / 0 / 0 / 0 / 0 / 0 / 0" },
                         { "OSNR", untold } } );
   expectFacts( dco(), { { "Tuning range", "191350 to 196100 GHz" },
                         { "Tuned frequency", "193100 GHz" },
                         { "OSNR", "26.4 dB (0x0108)" },
                         { "Chromatic dispersion", "0x000004d8 (1240)" },
                         { "Tx driver type", untold } } );
   expectFacts( cfpx(), { { "Tx driver type", "1 (linear)" },
                          { "Tx swaps", "I and Q of H, I and Q of V" },
                          { "Rx attenuation", "2.50 dB of at most 15.00 dB" },
                          { "Bit rate", untold } } );
   expectFacts( without( lr4(), { "a000h", "a200h", "a280h" } ),
                { { "Monitors", "advertised, but the image lacks tables a000h, a280h" },
                  { "Status words", untold } } );
   // The sum of 8100h is stored in the table that is missing.
   expectFacts( without( lr4(), { "8180h" } ), { { "Checksum, 8100h", untold } } );
   expectFacts( cut( cut( dco(), "9100h", 0x31 * 2 - 1 ), "b800h", 0x10 * 2 ),
                { { "OSNR", untold }, { "Chromatic dispersion", untold } } );
}

TEST_F( CfpToolTest, MonitorsOfNetworkLanes ) {
   std::string const whole = shown( "show", lr4() );
   expectLines( whole, { " Tx bias, lane 4 60.100 mA 20.000 30.000 100.000 110.000\n",
                         " Rx power, lane 4 0.0759 mW / -11.20 dBm -12.60 -10.60 4.50 5.50 low" } );
   EXPECT_THAT( whole, Not( HasSubstr( "lane 5" ) ) );
   // Registers that the image lacks are not taken for darkness.
   std::string const part = shown( "show", without( lr4(), { "a280h" } ) );
   EXPECT_THAT( part, HasSubstr( " Temperature 42.50 °C" ) );
   EXPECT_THAT( part, Not( ContainsRegex( "(Tx|Rx) power, lane|Tx bias, lane|Sum of" ) ) );
   // A threshold of a coherent module has steps of 0.1 mA, the monitor of 2 µA.
   EXPECT_THAT( shown( "show", dco() ),
                HasSubstr( " Tx bias 104.000 mA 50.000 60.000 380.000 400.000" ) );
}

TEST_F( CfpToolTest, Json ) {
   expectJson( Json::parse( run( "show --json -", without( dco(), { "ba00h" } ) ).out ),
               R"( { "modules": [ {
      "dcoMonitors": { "osnr": 26.4, "rawCarrierFreqOffset": 65356, "snr": null, "rawSnr": null },
      "cfpxTuneStatus": { "txFrequency": 193100000 } } ] } )" );
}

TEST_F( CfpToolTest, HexdumpOfRegisters ) {
   Module const image = with( cut( dco(), "b400h", 0x11 * 2 - 1 ), "b000h", 0x1e * 2 + 1, 0x20 );
   expectLines( shown( "hexdump", image ),
                { "Page 8000h, 128 bytes, identification\nReg. Contents ",
                  "\n 8000 19 identifier 0x19 (CFP2-DCO)\n",
                  "\n 8009 14 networkLanes 1\n 8009 14 (hostLanes) 4\n",
                  // A line begins with a whole register, whatever bytes are equal.
                  "\n a2a0 cb 20 txBias 104.000 mA\n a2a1 00 ... 30 bytes of 00\n",
                  "\n b01e 00 20 moduleFaultStatus 0x0020\n", "\n b410 00 txPowerConfig cut off\n",
                  "\n b9c0 ff 4c rxCarrierFreqOffset -180 MHz\n" } );
}

TEST_F( CfpToolTest, ExplainSaysWhatTheRulesRead ) {
   std::string const out = run( "explain -", without( cfpx(), { "bb00h" } ) ).out;
   EXPECT_EQ( fact( out, "8003h, application" ), "17" );
   EXPECT_EQ( fact( out, "BB04h, driver type" ), "0, as the image lacks it" );
}

TEST_F( CfpToolTest, Findings ) {
   expectFindings( {
      { with( lr4(), "8080h", 0x7f, 0 ), "checksum: The 8080h checksum is wrong: page 8080h" },
      { without( lr4(), { "a000h", "a280h" } ), "dom-missing: .*lacks tables a000h, a280h" },
      { without( lr4(), { "a280h" } ),
        "page-missing: The module has table a280h .network lane monitors., but" },
      { without( cfpx(), { "bb00h" } ), "page-missing: The module has table bb00h" },
      { cut( dco(), "b400h", 64 ), "page-missing: The image has 64 bytes of table b400h" },
   } );
}

} // namespace
} // namespace XcvrTest
