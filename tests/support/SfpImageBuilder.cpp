#include "tests/support/SfpImageBuilder.h"

namespace XcvrTest {
namespace {

constexpr std::string_view labels[] = { "a0h", "a2h" };

} // namespace

SfpImageBuilder::SfpImageBuilder() : ImageBuilder( Xcvr::sff8472Fields(), labels, 256 ) {
   raw( "identifier", 3 );
}

SfpImageBuilder & SfpImageBuilder::a2hMissing() {
   hasA2h_ = false;
   return *this;
}

std::string SfpImageBuilder::a0h() const {
   std::string page = pages().page( "a0h" );
   pages().sumUp( page, 0, "storedCcBase" );
   pages().sumUp( page, 64, "storedCcExt" );
   return page;
}

std::string SfpImageBuilder::a2h() const {
   if ( !hasA2h_ ) {
      return {};
   }
   std::string page = pages().page( "a2h" );
   pages().sumUp( page, 0, "storedCcDmi" );
   return page;
}

Xcvr::XcvrSff8472IdEepromContents SfpImageBuilder::contents() const {
   return { std::string_view( a0h() ), std::string_view( a2h() ), 0.0 };
}

} // namespace XcvrTest
