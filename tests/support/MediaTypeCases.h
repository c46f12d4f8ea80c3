#pragma once

#include <Xcvr/XcvrMediaTypeRules.h>

#include <gtest/gtest.h>

#include <span>
#include <vector>

namespace XcvrTest {

/// A module and the media type that it is to have.
template <typename Builder>
struct MediaTypeCase {
   Builder module;
   Xcvr::MediaType mediaType;
};

template <typename Builder>
void expectMediaTypes( std::vector<MediaTypeCase<Builder>> const & cases ) {
   for ( MediaTypeCase<Builder> const & c : cases ) {
      auto const contents = c.module.contents();
      Xcvr::MediaTypeDecision const decision = contents.mediaTypeDecision();
      EXPECT_EQ( contents.mediaType(), c.mediaType ) << &c - cases.data() << " " << decision.why;
      EXPECT_EQ( decision.mediaType, c.mediaType ) << &c - cases.data() << " " << decision.why;
   }
}

/// Of each rule behind the first, which is that of an empty page, `witnesses` has a module, in their
/// order.
template <typename Builder>
void expectWitnesses( std::span<Xcvr::MediaTypeRule const> rules,
                      std::vector<MediaTypeCase<Builder>> const & witnesses ) {
   using Contents = decltype( witnesses[0].module.contents() );
   EXPECT_EQ( Contents().mediaTypeDecision().rule, 0u );
   EXPECT_EQ( Contents().mediaType(), Xcvr::xcvrUnknown );
   ASSERT_EQ( witnesses.size() + 1, rules.size() );
   for ( size_t rule = 1; rule < rules.size(); ++rule ) {
      auto const decision = witnesses[rule - 1].module.contents().mediaTypeDecision();
      EXPECT_EQ( decision.rule, rule ) << decision.why << " instead of " << rules[rule].why;
      EXPECT_EQ( rules[rule].mediaType, witnesses[rule - 1].mediaType ) << rules[rule].why;
   }
   expectMediaTypes( witnesses );
}

} // namespace XcvrTest
