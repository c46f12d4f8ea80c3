#include "tests/support/CfpImageBuilder.h"

#include <Xcvr/XcvrCfp2.h>

#include <gtest/gtest.h>

#include <set>
#include <vector>

using namespace Xcvr;
using XcvrTest::CfpImageBuilder;

namespace {

constexpr CfpMsaMisIdentifier cfp2 = identifierCfp2, cfpx = identifierCfpx, dco = identifierCfp2Dco,
                              cfp = static_cast<CfpMsaMisIdentifier>( 0x0E );

CfpImageBuilder with( CfpMsaMisIdentifier identifier, uint32_t application ) {
   return CfpImageBuilder( identifier ).raw( "ethernetApplicationCode", application );
}
CfpImageBuilder model( CfpMsaMisIdentifier identifier, char const * vendor, char const * number ) {
   return with( identifier, 1 ).text( "vendorName", vendor ).text( "vendorPn", number );
}

struct Witness {
   size_t rule;
   MediaType mediaType;
   CfpImageBuilder module;
};

} // namespace

TEST( CfpMediaType, EveryRuleHasAWitness ) {
   std::vector<Witness> const witnesses = {
      { 0, xcvr2x100GBaseMfg, model( dco, "MULTILANE SAL", "ML4030-DCO-2" ) },
      { 0, xcvr2x100GBaseMfg, model( cfp, "MULTILANE SAL", "ML4030-DCO-2" ) },
      { 4, xcvr100GBaseLr4, model( cfp2, "MULTILANE SAL", "ML4030-DCO-3" ) },
      { 4, xcvr100GBaseLr4, model( cfp2, "Multilane SAL", "ML4030-DCO-2" ) },
      { 1, xcvrUnknown, with( cfp, 1 ) },
      { 2, xcvr100GBaseSr10, with( cfp2, 3 ).raw( "mmfFiberLengthMax", 29 ) },
      { 3, xcvr100GBaseXsr10, with( cfp2, 3 ).raw( "mmfFiberLengthMax", 30 ) },
      { 3, xcvr100GBaseXsr10, with( cfpx, 3 ).raw( "mmfFiberLengthMax", 30 ) },
      { 5, xcvr100GBaseEr4, with( dco, 2 ) },
      { 6, xcvr100GDwdmDco, with( dco, 17 ).raw( "txRfDriverType", 2 ) },
      { 7, xcvr100GDwdmCoherent, with( cfp2, 17 ) }, // without a driver's table
      { 8, xcvr100GDwdmCoherentE, with( cfpx, 17 ).raw( "txRfDriverType", 1 ) },
      { 9, xcvrUnknown, with( cfpx, 17 ).raw( "txRfDriverType", 2 ) },
      { 9, xcvrUnknown, with( dco, 4 ) },
      { 10, xcvr100GDwdmDco, with( dco, 0 ) },
      { 11, xcvrUnknown, with( cfpx, 0 ) },
   };
   std::set<size_t> seen;
   for ( auto const & [rule, mediaType, module] : witnesses ) {
      MediaTypeDecision const decision = module.contents()->mediaTypeDecision();
      EXPECT_EQ( decision.rule, rule ) << decision.why;
      EXPECT_EQ( module.contents()->mediaType(), mediaType ) << decision.why;
      seen.insert( rule );
   }
   EXPECT_EQ( seen.size(), cfpMediaTypeRules().size() );
}
