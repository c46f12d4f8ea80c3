// The media type decision of QSFP modules: one table of rules.
#include "core/MediaTypeRules.h"

#include <Vel/Trace.h>
#include <Xcvr/XcvrQsfpPlus.h>

namespace Xcvr {
namespace {

using Sff8436Table::bit;
using Sff8436Table::row;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

// Each predicate says one thing about upper page 00h; what an earlier rule has settled is not asked
// again.

constexpr MemoryBitPlace extendedCompliance = bit( "compliance", "extended compliance" );
constexpr MemoryBitPlace base10GLr = bit( "compliance", "10GBASE-LR" );
constexpr MemoryBitPlace base40GCr4 = bit( "compliance", "40GBASE-CR4" );
constexpr MemoryBitPlace base40GSr4 = bit( "compliance", "40GBASE-SR4" );
constexpr MemoryBitPlace base40GLr4 = bit( "compliance", "40GBASE-LR4" );
constexpr MemoryBitPlace activeCable = bit( "compliance", "40G active cable" );
constexpr MemoryBitPlace txCdr = bit( "identifierExtended", "Tx CDR" );
constexpr MemoryBitPlace rxCdr = bit( "identifierExtended", "Rx CDR" );

constexpr uint8_t identifierQsfp = 12, identifierQsfpPlus = 13, identifierQsfp28 = 17;
constexpr uint8_t connectorLc = 7;

constexpr uint8_t identifier( PageView page ) {
   return page.u8( row( "identifier" ).at );
}
constexpr uint8_t smfKm( PageView page ) {
   return page.u8( row( "lengthSmf" ).at );
}
/// In 2 m.
constexpr uint8_t om3Length( PageView page ) {
   return page.u8( row( "lengthOm3" ).at );
}
constexpr uint8_t cableOrOm4Length( PageView page ) {
   return page.u8( row( "lengthCableOrOm4" ).at );
}
constexpr bool isLc( PageView page ) {
   return page.u8( row( "connector" ).at ) == connectorLc;
}
/// The module complies with an extended code, which counts only where the compliance bit says so.
template <uint8_t... codes>
constexpr bool hasCode( PageView page ) {
   uint8_t const code = page.u8( row( "complianceExtended" ).at );
   return page.bit( extendedCompliance ) && ( ( code == codes ) || ... );
}

constexpr bool isNotQsfp( PageView page ) {
   uint8_t const code = identifier( page );
   return code != identifierQsfp && code != identifierQsfpPlus && code != identifierQsfp28;
}

/// A few modules are known by vendor and part number, compared whole with their padding.
constexpr bool isModel( PageView page, std::string_view vendor, std::string_view model ) {
   constexpr MemoryField name = row( "vendorName" ), partNumber = row( "vendorPn" );
   return page.text( name.at, name.width ) == vendor &&
          page.text( partNumber.at, partNumber.width ) == model;
}
constexpr bool isKnownDr( PageView page ) {
   return isModel( page, "MOLEX           ", "1064273000      " );
}
constexpr bool is40GManufacturing( PageView page ) {
   return isModel( page, "Molex Inc.      ", "74763-0025      " );
}
constexpr bool is100GManufacturing( PageView page ) {
   return isModel( page, "LEONI           ", "L45593-D915-M115" );
}

// A 40G bit with the extended code of the same medium: the module runs at both rates.

constexpr bool isActiveOfBothRates( PageView page ) {
   return page.bit( activeCable ) && hasCode<1>( page );
}
constexpr bool isActiveNOfBothRates( PageView page ) {
   return page.bit( activeCable ) && hasCode<24>( page );
}
constexpr bool isLr4OfBothRates( PageView page ) {
   return page.bit( base40GLr4 ) && hasCode<3>( page );
}
constexpr bool isSr4OfBothRates( PageView page ) {
   return page.bit( base40GSr4 ) && hasCode<2>( page );
}
constexpr bool isXsr4OfBothRates( PageView page ) {
   return isSr4OfBothRates( page ) && cableOrOm4Length( page ) > 149;
}
template <uint8_t code>
constexpr bool isCr4OfBothRates( PageView page ) {
   return page.bit( base40GCr4 ) && hasCode<code>( page );
}

constexpr bool is40GActive( PageView page ) {
   return page.bit( activeCable );
}
/// Two wavelengths over one pair of multimode fibres: a module without a compliance bit, known by
/// its retimers and its rate of 20.6 GBd.
constexpr bool is40GBidi( PageView page ) {
   return page.u8( row( "compliance" ).at ) == 0 && page.bit( txCdr ) && page.bit( rxCdr ) &&
          page.u8( row( "bitrateNominal" ).at ) == 206;
}
/// The bit of 10GBASE-LR counts as well: four lanes of it, each over a fibre pair of its own.
constexpr bool is40GSingleMode( PageView page ) {
   return page.bit( base40GLr4 ) || page.bit( base10GLr );
}
constexpr bool is40GParallelLite( PageView page ) {
   return is40GSingleMode( page ) && !isLc( page ) && smfKm( page ) <= 9;
}
constexpr bool is40GParallel( PageView page ) {
   return is40GSingleMode( page ) && !isLc( page );
}
constexpr bool is40GLr4( PageView page ) {
   return is40GSingleMode( page ) && smfKm( page ) > 9;
}
/// Runs over single-mode and multimode fibre: 1 km of the one, 150 m of the other.
constexpr bool is40GUniversal( PageView page ) {
   return is40GSingleMode( page ) && smfKm( page ) == 1 && om3Length( page ) == 75;
}
constexpr bool is40GSr4( PageView page ) {
   return page.bit( base40GSr4 );
}
constexpr bool is40GSr4Duplex( PageView page ) {
   return is40GSr4( page ) && om3Length( page ) > 119 && isLc( page );
}
constexpr bool is40GXsr4( PageView page ) {
   return is40GSr4( page ) && om3Length( page ) > 149;
}
constexpr bool is40GCr4( PageView page ) {
   return page.bit( base40GCr4 );
}

constexpr bool is100GXsr4( PageView page ) {
   return hasCode<2>( page ) && cableOrOm4Length( page ) > 149;
}
constexpr bool is100GLr4( PageView page ) {
   return hasCode<3>( page ) && smfKm( page ) > 9;
}
constexpr bool is100GEr4( PageView page ) {
   return hasCode<4>( page ) && smfKm( page ) > 30;
}
constexpr bool is100GEDwdm2( PageView page ) {
   return hasCode<26>( page ) && smfKm( page ) > 39;
}

constexpr bool isCopper( PageView page ) {
   return isPassiveCopper(
      static_cast<Sff8436DeviceTechnology>( page.u8( row( "deviceTech" ).at ) >> 4 ) );
}
constexpr bool is100GCopper( PageView page ) {
   return isCopper( page ) && identifier( page ) == identifierQsfp28;
}
constexpr bool isQsfp28( PageView page ) {
   return identifier( page ) == identifierQsfp28;
}

// Tried from the top; the first that matches decides. The order matters: models speak first, then
// modules of both rates, the 40G bits, the extended codes, and last the technology.
// clang-format off
constexpr MediaTypePageRule rules[] = {
   { "upper page 00h is empty", isEmpty, xcvrUnknown },
   { "identifier (byte 128) is not that of a QSFP", isNotQsfp, xcvrUnknown },
   { "vendor and part number of a DR module", isKnownDr, xcvr100GBaseDr },
   { "vendor and part number of a 40G manufacturing cable", is40GManufacturing, xcvr40GBaseMfg },
   { "vendor and part number of a 100G manufacturing cable", is100GManufacturing, xcvr100GBaseMfg },
   { "40G active cable, extended code 01h", isActiveOfBothRates, xcvr100GBaseAr4 },
   { "40G active cable, extended code 18h", isActiveNOfBothRates, xcvr100GBaseAr4N },
   { "40GBASE-LR4, extended code 03h", isLr4OfBothRates, xcvr100GBaseLr4 },
   { "40GBASE-SR4, extended code 02h, OM4 length beyond 149", isXsr4OfBothRates, xcvr100GBaseXsr4 },
   { "40GBASE-SR4, extended code 02h", isSr4OfBothRates, xcvr100GBaseSr4 },
   { "40GBASE-CR4, extended code 0Bh", isCr4OfBothRates<11>, xcvr100GBaseCr4 },
   { "40GBASE-CR4, extended code 0Ch", isCr4OfBothRates<12>, xcvr100GBaseCr4S },
   { "40GBASE-CR4, extended code 0Dh", isCr4OfBothRates<13>, xcvr100GBaseCr4N },
   { "40G active cable", is40GActive, xcvr40GBaseAr4 },
   { "no compliance bit, retimers both ways, 20.6 GBd", is40GBidi, xcvr40GBaseSrbd },
   { "40GBASE-LR4 or 10GBASE-LR, not LC, below 10 km", is40GParallelLite, xcvr40GBasePlrl4 },
   { "40GBASE-LR4 or 10GBASE-LR, not LC, 10 km or more", is40GParallel, xcvr40GBasePlr4 },
   { "40GBASE-LR4 or 10GBASE-LR, LC, 10 km or more", is40GLr4, xcvr40GBaseLr4 },
   { "40GBASE-LR4 or 10GBASE-LR, LC, 1 km, 150 m of OM3", is40GUniversal, xcvr40GBaseUniv },
   { "40GBASE-LR4 or 10GBASE-LR, LC, below 10 km", is40GSingleMode, xcvr40GBaseLrl4 },
   { "40GBASE-SR4, LC, OM3 length beyond 119", is40GSr4Duplex, xcvr40GBaseSr4d },
   { "40GBASE-SR4, OM3 length beyond 149", is40GXsr4, xcvr40GBaseXsr4 },
   { "40GBASE-SR4", is40GSr4, xcvr40GBaseSr4 },
   { "40GBASE-CR4", is40GCr4, xcvr40GBaseCr4 },
   { "extended code 02h, OM4 length beyond 149", is100GXsr4, xcvr100GBaseXsr4 },
   { "extended code 02h", hasCode<2>, xcvr100GBaseSr4 },
   { "extended code 03h, 10 km or more", is100GLr4, xcvr100GBaseLr4 },
   { "extended code 03h, below 10 km", hasCode<3>, xcvr100GBaseLrl4 },
   { "extended code 04h, beyond 30 km", is100GEr4, xcvr100GBaseEr4 },
   { "extended code 04h, up to 30 km", hasCode<4>, xcvr100GBaseErl4 },
   { "extended code 05h", hasCode<5>, xcvr100GBaseSr10 },
   { "extended code 06h", hasCode<6>, xcvr100GBaseCwdm4 },
   { "extended code 0Bh", hasCode<11>, xcvr100GBaseCr4 },
   { "extended code 0Ch", hasCode<12>, xcvr100GBaseCr4S },
   { "extended code 0Dh", hasCode<13>, xcvr100GBaseCr4N },
   { "extended code 07h", hasCode<7>, xcvr100GBasePsm4 },
   { "extended code 12h", hasCode<18>, xcvr40GBasePsm4 },
   { "extended code 10h", hasCode<16>, xcvr40GBaseEr4 },
   { "extended code 01h", hasCode<1>, xcvr100GBaseAr4 },
   { "extended code 18h", hasCode<24>, xcvr100GBaseAr4N },
   // 100G CLR4 has a media type of its own; that it is not used here is intended.
   { "extended code 17h", hasCode<23>, xcvr100GUnknown },
   { "extended code 1Ah, 40 km or more", is100GEDwdm2, xcvr100GEDwdm2 },
   { "extended code 20h", hasCode<32>, xcvr100GBaseSwdm4 },
   { "extended code 21h", hasCode<33>, xcvr100GBaseSrbd },
   { "extended code 25h", hasCode<37>, xcvr100GBaseDr },
   { "passive copper, QSFP28", is100GCopper, xcvr100GBaseCr4 },
   { "passive copper", isCopper, xcvr40GBaseCr4 },
   { "no rule knows the QSFP28", isQsfp28, xcvr100GUnknown },
   { "no rule knows the module", isAnything, xcvrUnknown },
};
// clang-format on

constexpr MediaTypePageRule const & decisive( PageView page ) {
   return decisiveRule<rules, row( "extendedChecksum" ).end()>( page );
}

} // namespace

// Flattened: every predicate is inlined, which gives the code of a chain of ifs.
[[gnu::flatten]] MediaType Sff8436IdEepromContents::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return decisive( eepromPage00UpperData().view() ).mediaType;
}

MediaTypeDecision Sff8436IdEepromContents::mediaTypeDecision() const {
   VEL_TRACE_SCOPE( trace );
   return Xcvr::mediaTypeDecision<rules>( decisive( eepromPage00UpperData().view() ) );
}

std::span<MediaTypeRule const> sff8436MediaTypeRules() {
   return publishedRules<rules>;
}

} // namespace Xcvr
