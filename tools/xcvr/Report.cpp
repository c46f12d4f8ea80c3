#include "tools/xcvr/Report.h"

#include <algorithm>
#include <fmt/format.h>

namespace XcvrTool {

namespace {

constexpr std::string_view indent = "   ";

} // namespace

std::string textForm( Report const & report, Style const & style ) {
   std::size_t labelWidth = 0;
   for ( Fact const & fact : report ) {
      labelWidth = std::max( labelWidth, fact.label.size() );
   }
   std::size_t const valueAt = indent.size() + labelWidth + 3;
   std::string text;
   for ( Fact const & fact : report ) {
      if ( fact.label.empty() ) {
         continue;
      }
      text += fmt::format( "{}{:{}} : ", indent, fact.label, labelWidth );
      bool first = true;
      for ( std::string const & line : wrapped( fact.text, lineWidth - valueAt ) ) {
         text += first ? "" : std::string( valueAt, ' ' );
         text += ( fact.alarming ? style.alarm( line ) : line ) + '\n';
         first = false;
      }
   }
   return text;
}

void addJson( Report const & report, Json & module, Json & units ) {
   for ( Fact const & fact : report ) {
      if ( fact.member.empty() ) {
         continue;
      }
      Json::json_pointer const place( '/' + fact.member );
      module[place] = fact.value;
      if ( !fact.unit.empty() ) {
         units[place] = fact.unit;
      }
   }
}

} // namespace XcvrTool
