#include "tests/support/MediaTypeCases.h"
#include "tests/support/SfpImageBuilder.h"

#include <gtest/gtest.h>

#include <vector>

namespace Xcvr {
namespace {

using Builder = XcvrTest::SfpImageBuilder;

Builder with( char const * compliance ) {
   return Builder().bit( "compliance", compliance );
}
Builder extended( uint64_t code ) {
   return Builder().raw( "complianceExtended", code );
}
Builder dwdm( uint64_t extIdentifier ) {
   return Builder().raw( "identifier", 11 ).raw( "extIdentifier", extIdentifier );
}
Builder tunable() {
   return dwdm( 4 ).bit( "options", "tunable transmitter" );
}
Builder er( double km, double nanometres = 1550 ) {
   return with( "10GBASE-ER" ).value( "length9umKm", km, "laserWavelengthInteger", nanometres );
}
Builder bx10( double nanometres ) {
   return Builder()
      .raw( "bitrateNominal", 13 )
      .value( "length9umKm", 10, "length9um100m", 10000, "laserWavelengthInteger", nanometres );
}
Builder cable( double megabaud, char const * compliance ) {
   return with( compliance ).value( "bitrateNominal", megabaud );
}
Builder manufacturing( char const * partNumber ) {
   return Builder().text( "vendorName", "Molex Inc." ).text( "vendorPn", partNumber );
}
/// A length that the DWDM rules read as two bytes.
Builder longHaul( Builder module, double km ) {
   return module.bit( "compliance", "10GBASE-ER" ).value( "dwdmLength", km );
}

using Cases = std::vector<XcvrTest::MediaTypeCase<Builder>>;

/// One module for each rule, in the order of the rules; the first rule is that of an empty page.
Cases const witnesses{
   { manufacturing( "74765-0901" ), xcvr10GBaseMfg },
   { longHaul( dwdm( 0x20 ), 40 ), xcvr10GBaseDwdmEr },
   { longHaul( dwdm( 0x20 ), 41 ), xcvr10GBaseDwdmZr },
   { dwdm( 0x20 ), xcvrUnknown },
   { longHaul( tunable(), 41 ), xcvr10GBaseDwdmZt },
   { longHaul( tunable(), 40 ), xcvrUnknown },
   { with( "10GBASE-SR" ).raw( "identifier", 13 ), xcvrUnknown },
   { extended( 0x02 ), xcvr25GBaseSr },
   { extended( 0x03 ).value( "length9umKm", 9 ), xcvr25GBaseLrLite },
   { extended( 0x03 ).value( "length9umKm", 10 ), xcvr25GBaseLr },
   { extended( 0x18 ), xcvr25GBaseArN },
   { with( "10GBASE-SR" ).value( "lengthOm3", 290 ), xcvr10GBaseSrLite },
   { with( "10GBASE-SR" ).value( "lengthOm3", 300 ), xcvr10GBaseSr },
   { with( "10GBASE-LR" ).value( "length9umKm", 9 ), xcvr10GBaseLrLite },
   { with( "10GBASE-LR" ).value( "length9umKm", 10 ), xcvr10GBaseLr },
   { with( "10GBASE-LRM" ), xcvr10GBaseLrm },
   { extended( 0x0D ), xcvr25GBaseCrN },
   { extended( 0x0C ), xcvr25GBaseCrS },
   { extended( 0x0B ), xcvr25GBaseCr },
   { cable( 25500, "passive cable" ), xcvr25GBaseCr },
   { Builder().raw( "bitrateNominal", 250 ), xcvr25GUnknown },
   { cable( 10300, "passive cable" ).bit( "compliance", "active cable" ), xcvr10GBaseCrActive },
   { cable( 10000, "passive cable" ), xcvr10GBaseCr },
   { with( "1000BASE-T" ), xcvr1000BaseT },
   { with( "1000BASE-LX" ), xcvr1000BaseLx },
   { with( "1000BASE-SX" ), xcvr1000BaseSx },
   { er( 41 ), xcvr10GBaseZr },
   { er( 40, 1270 ), xcvr10GBaseErbdU },
   { er( 31, 1330 ), xcvr10GBaseErbdD },
   { er( 40 ), xcvr10GBaseEr },
   { er( 30, 1270 ), xcvr10GBaseErlbdU },
   { er( 30, 1330 ), xcvr10GBaseErlbdD },
   { bx10( 1490 ), xcvr1000BaseBx10D },
   { bx10( 1310 ), xcvr1000BaseBx10U },
   { extended( 0x01 ), xcvr25GBaseAr },
   { with( "active cable" ), xcvr10GBaseAr },
   { with( "100BASE-LX10" ).raw( "connector", 7 ), xcvr100BaseLx10 },
   { Builder(), xcvrUnknown },
};

TEST( SfpMediaType, EveryRuleHasAWitness ) {
   XcvrTest::expectWitnesses( sff8472MediaTypeRules(), witnesses );
}

// Modules that miss a rule by little, and what makes a module more than one kind.
TEST( SfpMediaType, Edges ) {
   XcvrTest::expectMediaTypes( Cases{
      { manufacturing( "74765-0912" ).raw( "identifier", 17 ), xcvr10GBaseMfg },
      { manufacturing( "74765-0901" ).text( "vendorName", "Molex Inc" ), xcvrUnknown },
      // The rate identifier is the high byte of the DWDM length.
      { longHaul( dwdm( 0x20 ), 256 ), xcvr10GBaseDwdmZr },
      { longHaul( dwdm( 4 ), 80 ), xcvrUnknown }, // not tunable
      { longHaul( tunable().raw( "extIdentifier", 0x24 ), 80 ), xcvr10GBaseDwdmZr },
      // An active cable that claims SR is a cable.
      { with( "10GBASE-SR" ).bit( "compliance", "active cable" ), xcvr10GBaseAr },
      // 25 GBd: the code 01h passes on to the rules behind, also past those of 10G copper.
      { extended( 0x01 ).raw( "bitrateNominal", 250 ).bit( "compliance", "FC twin axial pair" ),
        xcvr25GBaseAr },
      // 10G copper: three signs of it, from 10 GBd to below 25 GBd.
      { cable( 24900, "InfiniBand 1X copper passive" ), xcvr10GBaseCr },
      { cable( 9900, "passive cable" ), xcvrUnknown },
      { cable( 10300, "active cable" ), xcvr10GBaseAr },
      // Only the BiDi wavelengths have a kind up to 30 km.
      { er( 31, 1271 ), xcvr10GBaseEr },
      { bx10( 1310 ).raw( "bitrateNominal", 12 ), xcvrUnknown },
      { bx10( 1310 ).value( "length9um100m", 9900 ), xcvrUnknown },
      { bx10( 1310 ).value( "lengthOm2", 10 ), xcvrUnknown },
      { with( "100BASE-LX10" ).raw( "connector", 1 ), xcvrUnknown },
   } );
}

TEST( SfpMediaType, ConfigurableTo1G ) {
   struct {
      char const *fast, *slow;
      bool dwdm, configurable;
   } const cases[] = { { "10GBASE-SR", "1000BASE-SX", false, true },
                       { "10GBASE-LR", "1000BASE-LX", false, true },
                       { "10GBASE-SR", "1000BASE-LX", false, false },
                       { "10GBASE-LR", "1000BASE-SX", false, false },
                       { "10GBASE-SR", "1000BASE-SX", true, false } };
   for ( auto const & [fast, slow, isDwdm, isConfigurable] : cases ) {
      Builder module = with( fast ).bit( "compliance", slow ).raw( "identifier", isDwdm ? 11 : 3 );
      EXPECT_EQ( module.contents().is1GConfigurable(), isConfigurable ) << fast << slow;
   }
}

} // namespace
} // namespace Xcvr
