#include "tests/support/CfpImageBuilder.h"

#include <Xcvr/XcvrCfp2.h>

#include <gtest/gtest.h>

#include <vector>

namespace Xcvr {
namespace {

using Builder = XcvrTest::CfpImageBuilder;

Builder with( CfpMsaMisIdentifier identifier, uint32_t application ) {
   return Builder( identifier ).raw( "ethernetApplicationCode", application );
}
Builder sr10( CfpMsaMisIdentifier identifier, uint32_t length ) {
   return with( identifier, 3 ).raw( "mmfFiberLengthMax", length );
}
Builder coherent( CfpMsaMisIdentifier identifier, uint32_t driver ) {
   return with( identifier, 17 ).raw( "txRfDriverType", driver );
}
Builder model( char const * vendor, char const * partNumber, CfpMsaMisIdentifier identifier ) {
   return with( identifier, 1 ).text( "vendorName", vendor ).text( "vendorPn", partNumber );
}

constexpr auto cfp = static_cast<CfpMsaMisIdentifier>( 0x0E );

struct Witness {
   Builder module;
   size_t rule;
   MediaType mediaType;
};

std::vector<Witness> witnesses() {
   return {
      { model( "MULTILANE SAL", "ML4030-DCO-2", identifierCfp2Dco ), 0, xcvr2x100GBaseMfg },
      { model( "MULTILANE SAL", "ML4030-DCO-2", cfp ), 0, xcvr2x100GBaseMfg },
      { with( cfp, 1 ), 1, xcvrUnknown },
      { sr10( identifierCfp2, 29 ), 2, xcvr100GBaseSr10 },
      { sr10( identifierCfpx, 29 ), 2, xcvr100GBaseSr10 },
      { sr10( identifierCfp2, 30 ), 3, xcvr100GBaseXsr10 },
      { sr10( identifierCfpx, 30 ), 3, xcvr100GBaseXsr10 },
      { with( identifierCfp2, 1 ), 4, xcvr100GBaseLr4 },
      { with( identifierCfp2, 2 ), 5, xcvr100GBaseEr4 },
      { with( identifierCfp2Dco, 2 ), 5, xcvr100GBaseEr4 },
      { coherent( identifierCfp2Dco, 2 ), 6, xcvr100GDwdmDco },
      { coherent( identifierCfpx, 0 ), 7, xcvr100GDwdmCoherent },
      { with( identifierCfp2, 17 ), 7, xcvr100GDwdmCoherent }, // without a driver's table
      { coherent( identifierCfpx, 1 ), 8, xcvr100GDwdmCoherentE },
      { coherent( identifierCfpx, 2 ), 9, xcvrUnknown },
      { coherent( identifierCfpx, 3 ), 9, xcvrUnknown },
      { with( identifierCfp2Dco, 4 ), 9, xcvrUnknown },
      { with( identifierCfp2Dco, 0 ), 10, xcvr100GDwdmDco },
      { with( identifierCfp2, 0 ), 11, xcvrUnknown },
      { with( identifierCfpx, 0 ), 11, xcvrUnknown },
      // Not quite the manufacturing module.
      { model( "MULTILANE SAL", "ML4030-DCO-3", identifierCfp2 ), 4, xcvr100GBaseLr4 },
      { model( "Multilane SAL", "ML4030-DCO-2", identifierCfp2 ), 4, xcvr100GBaseLr4 },
   };
}

TEST( CfpMediaType, EveryRuleHasAWitness ) {
   std::vector<bool> seen( cfpMediaTypeRules().size() );
   for ( Witness const & witness : witnesses() ) {
      auto const contents = witness.module.contents();
      MediaTypeDecision const decision = contents->mediaTypeDecision();
      EXPECT_EQ( decision.rule, witness.rule ) << decision.why;
      EXPECT_EQ( decision.mediaType, witness.mediaType ) << decision.why;
      EXPECT_EQ( contents->mediaType(), witness.mediaType ) << decision.why;
      EXPECT_EQ( cfpMediaTypeRules()[decision.rule].why, decision.why );
      seen[decision.rule] = true;
   }
   EXPECT_EQ( std::vector<bool>( seen.size(), true ), seen );
}

TEST( CfpMediaType, UnknownWithoutTables ) {
   EXPECT_EQ( cfpMsaMisIdEepromContentsFactory( "cfp" )->mediaType(), xcvrUnknown );
}

} // namespace
} // namespace Xcvr
