#include "tools/xcvr/Commands.h"
#include "tools/xcvr/StatusReport.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>

namespace XcvrTool {

namespace {

/// What tells the kind of module, whichever of its items, and what the rules read beside it.
Report kindReport( Module const & module ) {
   Report report;
   module.form( report );
   addProduct( report, module.status() );
   module.medium( report );
   module.ruleInputs( report );
   return report;
}

} // namespace

std::string explainText( Module const & module, Style const & style ) {
   Xcvr::MediaTypeDecision const decision = module.mediaTypeDecision();
   std::span<Xcvr::MediaTypeRule const> const rules = module.family().mediaTypeRules;
   std::string const mediaType( stringValue( decision.mediaType ).view() );
   std::size_t whyWidth = 0;
   for ( Xcvr::MediaTypeRule const & rule : rules ) {
      whyWidth = std::max( whyWidth, rule.why.size() );
   }

   std::string text =
      fmt::format( "   {}: rule {} of {} matches: {}\n\n", style.heading( mediaType ),
                   decision.rule + 1, rules.size(), decision.why );
   text += fmt::format( "{}\n", style.heading( "   What the module says of itself" ) );
   text += textForm( kindReport( module ), style );
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
