#include "tools/xcvr/Commands.h"
#include "tools/xcvr/SfpReport.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>

namespace XcvrTool {

std::string explainText( ModuleImage const & image, Style const & style ) {
   Xcvr::MediaTypeDecision const decision = sfpContents( image ).mediaTypeDecision();
   std::span<Xcvr::MediaTypeRule const> const rules = Xcvr::sff8472MediaTypeRules();
   std::string const mediaType( stringValue( decision.mediaType ).view() );
   std::size_t whyWidth = 0;
   for ( Xcvr::MediaTypeRule const & rule : rules ) {
      whyWidth = std::max( whyWidth, rule.why.size() );
   }

   std::string text =
      fmt::format( "   {}: rule {} of {} matches: {}\n\n", style.heading( mediaType ),
                   decision.rule + 1, rules.size(), decision.why );
   text += fmt::format( "{}\n", style.heading( "   What the module says of itself" ) );
   text += textForm( sfpKindReport( image ), style );
   text += fmt::format( "\n{}\n", style.heading( fmt::format( "   {:>4}  {:{}}  Result", "Rule",
                                                              "Asks for", whyWidth ) ) );
   for ( std::size_t i = 0; i <= decision.rule; ++i ) {
      bool const matches = i == decision.rule;
      std::string const result = matches ? "yes: " + mediaType : "no";
      text += fmt::format( "   {:4}  {:{}}  {}\n", i + 1, rules[i].why, whyWidth, result );
   }
   if ( std::size_t const untried = rules.size() - decision.rule - 1; untried > 0 ) {
      text += fmt::format( "   The other {} are not asked.\n", untried );
   }
   return text;
}

} // namespace XcvrTool
