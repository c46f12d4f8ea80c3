#include <Xcvr/XcvrCommonUtil.h>

#include <gtest/gtest.h>

#include <bit>
#include <vector>

using namespace Xcvr;

TEST( CommonUtilTest, InterfaceNamesSplitIntoPrefixAndNumbers ) {
   using Key = std::tuple<Vel::String, uint32_t, uint32_t, uint32_t>;
   EXPECT_EQ( intfNameKey( "Ethernet3/20/1" ), Key( "Ethernet", 3, 20, 1 ) );
   EXPECT_EQ( intfNameKey( "7" ), Key( "", 7, 0, 0 ) );
   EXPECT_EQ( intfNameKey( "Ethernet5.100/x/8y" ), Key( "Ethernet", 5, 0, 8 ) );
   EXPECT_EQ( intfNameKey( "Et/h4/2" ), Key( "Et/h", 4, 0, 2 ) );
   EXPECT_LT( intfNameKey( "Ethernet9/2" ), intfNameKey( "Ethernet9/10" ) );
   EXPECT_LT( intfNameKey( "Ethernet9/10" ), intfNameKey( "Ethernet10" ) );
   EXPECT_DEATH( (void)intfNameKey( "Ethernet" ), "firstDigitPos != Vel::String::npos" );
   EXPECT_DEATH( (void)intfNameKey( "" ), "firstDigitPos != Vel::String::npos" );
   EXPECT_DEATH( (void)intfNameKey( "Ethernet1/2/3/4" ), "moreSlashes == Vel::String::npos" );
}

TEST( CommonUtilTest, DumpsAreOfTenALine ) {
   uint8_t const bytes[] = { 0x00, 0x0f, 0xff, 3, 4, 5, 6, 7, 8, 9, 0xab };
   EXPECT_EQ( dumpW8Data( "table", bytes, 3 ), "Cfp2 table read size=3 data=0x\n00 0F FF " );
   EXPECT_EQ( dumpW8Data( "", bytes, 11 ),
              "Cfp2  read size=11 data=0x\n00 0F FF 03 04 05 06 07 08 09 \nAB " );
   EXPECT_EQ( dumpW8Data( nullptr, bytes, 3 ), "Cfp2 " );
   std::vector<uint16_t> words( 11, 0x00ab );
   words[10] = 0xbeef;
   std::string const line = "\n00AB 00AB 00AB 00AB 00AB 00AB 00AB 00AB 00AB 00AB ";
   EXPECT_EQ( dumpW16Data( words.data(), 22 ), "Cfp2  read size=22 data=0x" + line + "\nBEEF " );
   // An odd count reads the last word whole; words may lie anywhere.
   EXPECT_EQ( dumpW16Data( words.data(), 1 ), "Cfp2  read size=1 data=0x\n00AB " );
   EXPECT_EQ( dumpW16Data( bytes + 1, 2 ), std::endian::native == std::endian::little
                                              ? "Cfp2  read size=2 data=0x\nFF0F "
                                              : "Cfp2  read size=2 data=0x\n0FFF " );
}
