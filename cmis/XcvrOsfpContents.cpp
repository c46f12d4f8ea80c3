#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOsfpContents.h>

#include <algorithm>

namespace Xcvr {

VEL_VALUE_DEFINE( OsfpApplication )
VEL_ENTITY_DEFINE( OsfpRawEepromContents, osfpRawEepromContentsFactory )
VEL_ENTITY_DEFINE( OsfpDecodedEepromContents, osfpDecodedEepromContentsFactory )

namespace {

Vel::TraceHandle trace( "XcvrOsfp" );

} // namespace

Vel::String OsfpApplication::hostInterfaceName() const {
   VEL_TRACE_SCOPE( trace );
   return interfaceName( InterfaceTable::hostElectrical, hostInterface() );
}

Vel::String OsfpApplication::mediaInterfaceName( OsfpModuleTypeEncoding type ) const {
   VEL_TRACE_SCOPE( trace );
   return interfaceName( mediaInterfaceTable( type ), mediaInterface() );
}

MediaType OsfpApplication::mediaType( OsfpModuleTypeEncoding type ) const {
   VEL_TRACE_SCOPE( trace );
   if ( type == osfpTypePassiveCu ) {
      return interfaceMediaType( InterfaceTable::hostElectrical, hostInterface() );
   }
   auto const table = mediaInterfaceTable( type );
   return table ? interfaceMediaType( *table, mediaInterface() ) : xcvrUnknown;
}

namespace {

struct Section {
   std::string_view label; // of the field table
   OsfpBank bank;
   OsfpPage page;
};
constexpr Section sections[] = {
   { CmisTable::lower, OsfpBank::bankNa, OsfpPage::lowerPage00 },
   { CmisTable::p00h, OsfpBank::bankNa, OsfpPage::upperPage00 },
   { CmisTable::p01h, OsfpBank::bankNa, OsfpPage::upperPage01 },
   { CmisTable::p02h, OsfpBank::bankNa, OsfpPage::upperPage02 },
   { CmisTable::p10h, OsfpBank::bank0, OsfpPage::upperPage10 },
   { CmisTable::p11h, OsfpBank::bank0, OsfpPage::upperPage11 },
};
constexpr Section const * pagesOfPagedMemory = sections + 2;

PageView pageOf( OsfpRawEepromContents const & raw, Section const & section ) {
   auto const page = raw.memoryMap().find( OsfpBankAndPage( section.bank, section.page ) );
   return page != raw.memoryMap().end() ? page->second.view() : std::string_view();
}

/// The page of a field; empty when it was not read. A module with flat memory has no pages but the
/// first two, whatever was read there.
PageView pageOf( OsfpRawEepromContents const & raw, MemoryField const & field ) {
   constexpr MemoryBitPlace flat =
      findMemoryBit( CmisTable::row( "memoryAndSpeed" ), "flat memory" );
   auto const section = std::ranges::find( sections, field.page, &Section::label );
   if ( section == std::end( sections ) ||
        ( section >= pagesOfPagedMemory && pageOf( raw, sections[0] ).bit( flat ) ) ) {
      return std::string_view();
   }
   return pageOf( raw, *section );
}

} // namespace

bool OsfpRawEepromContents::has( MemoryField const & field ) const {
   VEL_TRACE_SCOPE( trace );
   return pageOf( *this, field ).has( field.at, field.width );
}

uint64_t OsfpRawEepromContents::number( MemoryField const & field ) const {
   VEL_TRACE_SCOPE( trace );
   return field.width > 8 ? 0 : pageOf( *this, field ).unsignedBe( field.at, field.width );
}

bool OsfpRawEepromContents::fieldInUse( MemoryField const & field ) const {
   VEL_TRACE_SCOPE( trace );
   return memoryFieldInUse(
      field, CmisTable::fields, CmisTable::conditions,
      [this]( MemoryField const & asked ) { return pageOf( *this, asked ); } );
}

} // namespace Xcvr
