#include "tests/support/MediaTypeCases.h"
#include "tests/support/QsfpImageBuilder.h"

#include <Xcvr/XcvrQsfpPlus.h>

#include <gtest/gtest.h>

#include <vector>

namespace Xcvr {
namespace {

using Builder = XcvrTest::QsfpImageBuilder;

constexpr uint8_t qsfp = 12, qsfpPlus = 13, qsfp28 = 17;
constexpr uint8_t lc = 7, mpo = 12;

/// A module of the first compliance byte `c`.
Builder with( uint8_t identifier, uint64_t c, uint8_t connector = mpo ) {
   return Builder().identifier( identifier ).raw( "connector", connector, "compliance", c << 56 );
}
/// One that has an extended code.
Builder extended( uint8_t code, uint64_t c = 0x80, uint8_t identifier = qsfp28 ) {
   return with( identifier, c ).raw( "complianceExtended", code );
}
Builder model( char const * vendor, char const * partNumber, uint8_t identifier = qsfpPlus ) {
   return with( identifier, 0x04 ).text( "vendorName", vendor ).text( "vendorPn", partNumber );
}
Builder bidi() {
   return with( qsfpPlus, 0, lc ).raw( "identifierExtended", 0x0c, "bitrateNominal", 206 );
}

using Cases = std::vector<XcvrTest::MediaTypeCase<Builder>>;

/// One module for each rule, in the order of the rules; the first rule is that of an empty page.
Cases const witnesses{
   { with( 3, 0x04 ), xcvrUnknown },
   { model( "MOLEX", "1064273000", qsfp28 ), xcvr100GBaseDr },
   { model( "Molex Inc.", "74763-0025" ), xcvr40GBaseMfg },
   { model( "LEONI", "L45593-D915-M115", qsfp28 ), xcvr100GBaseMfg },
   { extended( 1, 0x81 ), xcvr100GBaseAr4 },
   { extended( 24, 0x81 ), xcvr100GBaseAr4N },
   { extended( 3, 0x82 ), xcvr100GBaseLr4 },
   { extended( 2, 0x84 ).raw( "lengthCableOrOm4", 150 ), xcvr100GBaseXsr4 },
   { extended( 2, 0x84 ).raw( "lengthCableOrOm4", 149 ), xcvr100GBaseSr4 },
   { extended( 11, 0x88 ), xcvr100GBaseCr4 },
   { extended( 12, 0x88 ), xcvr100GBaseCr4S },
   { extended( 13, 0x88 ), xcvr100GBaseCr4N },
   { with( qsfpPlus, 0x01 ), xcvr40GBaseAr4 },
   { bidi(), xcvr40GBaseSrbd },
   { with( qsfpPlus, 0x20 ).raw( "lengthSmf", 9 ), xcvr40GBasePlrl4 },
   { with( qsfpPlus, 0x20 ).raw( "lengthSmf", 10 ), xcvr40GBasePlr4 },
   { with( qsfpPlus, 0x02, lc ).raw( "lengthSmf", 10 ), xcvr40GBaseLr4 },
   { with( qsfpPlus, 0x02, lc ).raw( "lengthSmf", 1 ).raw( "lengthOm3", 75 ), xcvr40GBaseUniv },
   { with( qsfpPlus, 0x02, lc ).raw( "lengthSmf", 9 ), xcvr40GBaseLrl4 },
   { with( qsfpPlus, 0x04, lc ).raw( "lengthOm3", 120 ), xcvr40GBaseSr4d },
   { with( qsfpPlus, 0x04 ).raw( "lengthOm3", 150 ), xcvr40GBaseXsr4 },
   { with( qsfpPlus, 0x04 ).raw( "lengthOm3", 149 ), xcvr40GBaseSr4 },
   { with( qsfpPlus, 0x08 ), xcvr40GBaseCr4 },
   { extended( 2 ).raw( "lengthCableOrOm4", 150 ), xcvr100GBaseXsr4 },
   { extended( 2 ), xcvr100GBaseSr4 },
   { extended( 3 ).raw( "lengthSmf", 10 ), xcvr100GBaseLr4 },
   { extended( 3 ).raw( "lengthSmf", 9 ), xcvr100GBaseLrl4 },
   { extended( 4 ).raw( "lengthSmf", 31 ), xcvr100GBaseEr4 },
   { extended( 4 ).raw( "lengthSmf", 30 ), xcvr100GBaseErl4 },
   { extended( 5 ), xcvr100GBaseSr10 },
   { extended( 6 ), xcvr100GBaseCwdm4 },
   { extended( 11 ), xcvr100GBaseCr4 },
   { extended( 12 ), xcvr100GBaseCr4S },
   { extended( 13 ), xcvr100GBaseCr4N },
   { extended( 7 ), xcvr100GBasePsm4 },
   { extended( 18 ), xcvr40GBasePsm4 },
   { extended( 16 ), xcvr40GBaseEr4 },
   { extended( 1 ), xcvr100GBaseAr4 },
   { extended( 24 ), xcvr100GBaseAr4N },
   { extended( 23 ), xcvr100GUnknown },
   { extended( 26 ).raw( "lengthSmf", 40 ), xcvr100GEDwdm2 },
   { extended( 32 ), xcvr100GBaseSwdm4 },
   { extended( 33 ), xcvr100GBaseSrbd },
   { extended( 37 ), xcvr100GBaseDr },
   { with( qsfp28, 0 ).raw( "deviceTech", 0xa0 ), xcvr100GBaseCr4 },
   { with( qsfpPlus, 0 ).raw( "deviceTech", 0xb5 ), xcvr40GBaseCr4 },
   { with( qsfp28, 0 ), xcvr100GUnknown },
   { with( qsfp, 0 ), xcvrUnknown },
};

TEST( QsfpMediaType, EveryRuleHasAWitness ) {
   XcvrTest::expectWitnesses( sff8436MediaTypeRules(), witnesses );
}

// Modules that miss a rule by little, and what makes a module more than one kind.
TEST( QsfpMediaType, Edges ) {
   XcvrTest::expectMediaTypes( Cases{
      // A model is known only with a QSFP's identifier, and only as a whole.
      { model( "MOLEX", "1064273000", 3 ), xcvrUnknown },
      { model( "Molex Inc.", "1064273000" ), xcvr40GBaseSr4 },
      // Both rates: bit and code have to fit.
      { extended( 2, 0x81 ), xcvr40GBaseAr4 },
      { extended( 1, 0x01 ), xcvr40GBaseAr4 },   // a code that does not count
      { extended( 3, 0xa0 ), xcvr40GBasePlrl4 }, // the bit of 10GBASE-LR is none of both rates
      // 20.6 GBd with one retimer, with another rate, with a compliance bit.
      { bidi().raw( "identifierExtended", 0x08 ), xcvrUnknown },
      { bidi().raw( "compliance", uint64_t{ 0x04 } << 56 ), xcvr40GBaseSr4 },
      // Single-mode fibre.
      { with( qsfpPlus, 0x02 ).raw( "lengthSmf", 1 ).raw( "lengthOm3", 75 ), xcvr40GBasePlrl4 },
      { with( qsfpPlus, 0x20, lc ).raw( "lengthSmf", 2 ).raw( "lengthOm3", 75 ), xcvr40GBaseLrl4 },
      { with( qsfpPlus, 0x02, lc ).raw( "lengthSmf", 1 ).raw( "lengthOm3", 74 ), xcvr40GBaseLrl4 },
      // Multimode fibre.
      { with( qsfpPlus, 0x04, lc ).raw( "lengthOm3", 160 ), xcvr40GBaseSr4d },
      // Bits that no rule asks for leave it to the code, or to the technology.
      { extended( 6, 0xd0 ), xcvr100GBaseCwdm4 },
      { with( qsfp28, 0x50 ).raw( "deviceTech", 0xb0 ), xcvr100GBaseCr4 },
      { extended( 26 ).raw( "lengthSmf", 39 ), xcvr100GUnknown },
      { extended( 0x40, 0x80, qsfpPlus ), xcvrUnknown },
      { extended( 38 ).raw( "deviceTech", 0xbf ), xcvr100GBaseCr4 },
   } );
}

} // namespace
} // namespace Xcvr
