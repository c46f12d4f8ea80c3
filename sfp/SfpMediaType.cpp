// The media type decision of SFP modules: one table of rules, and what rests on the same bits.
#include "core/MediaTypeRules.h"

#include <Vel/Trace.h>
#include <Xcvr/XcvrSfpPlus.h>

namespace Xcvr {
namespace {

using Sff8472Table::bit;
using Sff8472Table::row;

Vel::TraceHandle trace( "XcvrSfpPlus" );

// Each predicate says one thing about page A0h; what an earlier rule has
// settled is not asked again.

constexpr MemoryBitPlace base10GEr = bit( "compliance", "10GBASE-ER" );
constexpr MemoryBitPlace base10GLrm = bit( "compliance", "10GBASE-LRM" );
constexpr MemoryBitPlace base10GLr = bit( "compliance", "10GBASE-LR" );
constexpr MemoryBitPlace base10GSr = bit( "compliance", "10GBASE-SR" );
constexpr MemoryBitPlace infinibandCopperPassive =
   bit( "compliance", "InfiniBand 1X copper passive" );
constexpr MemoryBitPlace base100Lx10 = bit( "compliance", "100BASE-LX10" );
constexpr MemoryBitPlace base1000T = bit( "compliance", "1000BASE-T" );
constexpr MemoryBitPlace base1000Lx = bit( "compliance", "1000BASE-LX" );
constexpr MemoryBitPlace base1000Sx = bit( "compliance", "1000BASE-SX" );
constexpr MemoryBitPlace activeCable = bit( "compliance", "active cable" );
constexpr MemoryBitPlace passiveCable = bit( "compliance", "passive cable" );
constexpr MemoryBitPlace twinAxialPair = bit( "compliance", "FC twin axial pair" );
constexpr MemoryBitPlace tunableTransmitter = bit( "options", "tunable transmitter" );

constexpr uint8_t identifierSfp = 3;
constexpr uint8_t identifierDwdmSfp = 11;
constexpr uint8_t connectorLc = 7;

constexpr uint8_t identifier( PageView page ) {
   return page.u8( row( "identifier" ).at );
}
constexpr uint8_t extendedCode( PageView page ) {
   return page.u8( row( "complianceExtended" ).at );
}
constexpr uint8_t bitrate( PageView page ) {
   return page.u8( row( "bitrateNominal" ).at );
}
constexpr uint8_t smfKm( PageView page ) {
   return page.u8( row( "length9umKm" ).at );
}
constexpr uint16_t dwdmKm( PageView page ) {
   return page.u16be( row( "dwdmLength" ).at );
}
/// Signed on purpose: the high byte is sign-extended, so a wavelength of 32768 nm or more is
/// negative here. No rule asks for one.
constexpr int16_t wavelength( PageView page ) {
   return page.s16be( row( "laserWavelengthInteger" ).at );
}

/// Manufacturing test cables are known by vendor and part number, which are compared where they
/// lie.
constexpr bool isManufacturingCable( PageView page ) {
   constexpr MemoryField name = row( "vendorName" ), partNumber = row( "vendorPn" );
   if ( page.text( name.at, name.width ) != "Molex Inc.      " ) {
      return false;
   }
   std::string_view const found = page.text( partNumber.at, partNumber.width );
   return found == "74765-0901      " || found == "74765-0902      " || found == "74765-0912      ";
}

constexpr bool isDwdmFixed( PageView page ) {
   return identifier( page ) == identifierDwdmSfp &&
          ( page.u8( row( "extIdentifier" ).at ) & 0x30 ) == 0x20;
}
constexpr bool isDwdmFixedEr( PageView page ) {
   return isDwdmFixed( page ) && page.bit( base10GEr ) && dwdmKm( page ) < 41;
}
constexpr bool isDwdmFixedZr( PageView page ) {
   return isDwdmFixed( page ) && page.bit( base10GEr );
}
constexpr bool isDwdmTunable( PageView page ) {
   return identifier( page ) == identifierDwdmSfp && page.u8( row( "extIdentifier" ).at ) == 4 &&
          page.bit( tunableTransmitter );
}
constexpr bool isDwdmTunableZt( PageView page ) {
   return isDwdmTunable( page ) && page.bit( base10GEr ) && dwdmKm( page ) > 40;
}
constexpr bool isNotSfp( PageView page ) {
   return identifier( page ) != identifierSfp;
}

constexpr bool is25GSr( PageView page ) {
   return extendedCode( page ) == 0x02;
}
constexpr bool is25GLr( PageView page ) {
   return extendedCode( page ) == 0x03;
}
constexpr bool is25GLrLite( PageView page ) {
   return is25GLr( page ) && smfKm( page ) < 10;
}
constexpr bool is25GArN( PageView page ) {
   return extendedCode( page ) == 0x18;
}
constexpr bool is10GSr( PageView page ) {
   return page.bit( base10GSr ) && !page.bit( activeCable );
}
constexpr bool is10GSrLite( PageView page ) {
   return is10GSr( page ) && page.u8( row( "lengthOm3" ).at ) < 30;
}
constexpr bool is10GLr( PageView page ) {
   return page.bit( base10GLr );
}
constexpr bool is10GLrLite( PageView page ) {
   return is10GLr( page ) && smfKm( page ) < 10;
}
constexpr bool is10GLrm( PageView page ) {
   return page.bit( base10GLrm );
}
constexpr bool is25GCrN( PageView page ) {
   return extendedCode( page ) == 0x0D;
}
constexpr bool is25GCrS( PageView page ) {
   return extendedCode( page ) == 0x0C;
}
constexpr bool is25GCr( PageView page ) {
   return extendedCode( page ) == 0x0B;
}

/// A nominal rate of 255 ("see the maximum" in the standard) counts as 25 GBd, on purpose.
constexpr bool isOf25GBd( PageView page ) {
   return bitrate( page ) >= 250;
}
constexpr bool is25GPassiveCable( PageView page ) {
   return isOf25GBd( page ) && page.bit( passiveCable );
}
constexpr bool is25GOther( PageView page ) {
   return isOf25GBd( page ) && extendedCode( page ) != 0x01;
}
constexpr bool is10GCopper( PageView page ) {
   return !isOf25GBd( page ) && bitrate( page ) > 99 &&
          ( page.bit( infinibandCopperPassive ) || page.bit( passiveCable ) ||
            page.bit( twinAxialPair ) );
}
constexpr bool is10GActiveCopper( PageView page ) {
   return is10GCopper( page ) && page.bit( activeCable );
}

constexpr bool is1000T( PageView page ) {
   return page.bit( base1000T );
}
constexpr bool is1000Lx( PageView page ) {
   return page.bit( base1000Lx );
}
constexpr bool is1000Sx( PageView page ) {
   return page.bit( base1000Sx );
}

constexpr bool is10GEr( PageView page ) {
   return page.bit( base10GEr ) && smfKm( page ) > 30;
}
constexpr bool is10GZr( PageView page ) {
   return page.bit( base10GEr ) && smfKm( page ) > 40;
}
constexpr bool is10GErUp( PageView page ) {
   return is10GEr( page ) && wavelength( page ) == 1270;
}
constexpr bool is10GErDown( PageView page ) {
   return is10GEr( page ) && wavelength( page ) == 1330;
}
constexpr bool is10GErLiteUp( PageView page ) {
   return page.bit( base10GEr ) && wavelength( page ) == 1270;
}
constexpr bool is10GErLiteDown( PageView page ) {
   return page.bit( base10GEr ) && wavelength( page ) == 1330;
}

/// 1.25 GBd over 10 km of single-mode fibre and no other medium: known by its lengths, since the
/// BASE-BX10 bit does not tell the two directions apart.
constexpr bool is1000Bx10( PageView page ) {
   return bitrate( page ) == 13 && smfKm( page ) == 10 &&
          page.u8( row( "length9um100m" ).at ) == 100 && page.u8( row( "lengthOm2" ).at ) == 0 &&
          page.u8( row( "lengthOm1" ).at ) == 0 && page.u8( row( "lengthCopper" ).at ) == 0;
}
constexpr bool is1000Bx10Down( PageView page ) {
   return is1000Bx10( page ) && wavelength( page ) == 1490;
}
constexpr bool is1000Bx10Up( PageView page ) {
   return is1000Bx10( page ) && wavelength( page ) == 1310;
}

constexpr bool is25GActiveCable( PageView page ) {
   return extendedCode( page ) == 0x01;
}
constexpr bool is10GActiveCable( PageView page ) {
   return page.bit( activeCable );
}
constexpr bool is100Lx10( PageView page ) {
   return page.u8( row( "connector" ).at ) == connectorLc && page.bit( base100Lx10 );
}

// Tried from the top; the first that matches decides. The order matters: extended codes speak
// before the 10G bits, these before the bit rate, and the lengths come last.
// clang-format off
constexpr MediaTypePageRule rules[] = {
   { "page A0h is empty", isEmpty, xcvrUnknown },
   { "vendor and part number of a manufacturing cable", isManufacturingCable, xcvr10GBaseMfg },
   { "DWDM SFP of fixed wavelength, 10GBASE-ER, up to 40 km", isDwdmFixedEr, xcvr10GBaseDwdmEr },
   { "DWDM SFP of fixed wavelength, 10GBASE-ER, beyond 40 km", isDwdmFixedZr, xcvr10GBaseDwdmZr },
   { "DWDM SFP of fixed wavelength, not 10GBASE-ER", isDwdmFixed, xcvrUnknown },
   { "tunable DWDM SFP, 10GBASE-ER, beyond 40 km", isDwdmTunableZt, xcvr10GBaseDwdmZt },
   { "tunable DWDM SFP, not 10GBASE-ER beyond 40 km", isDwdmTunable, xcvrUnknown },
   { "identifier (byte 0) is not that of an SFP", isNotSfp, xcvrUnknown },
   { "extended compliance code 02h", is25GSr, xcvr25GBaseSr },
   { "extended compliance code 03h, below 10 km", is25GLrLite, xcvr25GBaseLrLite },
   { "extended compliance code 03h, 10 km or more", is25GLr, xcvr25GBaseLr },
   { "extended compliance code 18h", is25GArN, xcvr25GBaseArN },
   { "10GBASE-SR, no active cable, below 300 m of OM3", is10GSrLite, xcvr10GBaseSrLite },
   { "10GBASE-SR, no active cable, 300 m of OM3 or more", is10GSr, xcvr10GBaseSr },
   { "10GBASE-LR, below 10 km", is10GLrLite, xcvr10GBaseLrLite },
   { "10GBASE-LR, 10 km or more", is10GLr, xcvr10GBaseLr },
   { "10GBASE-LRM", is10GLrm, xcvr10GBaseLrm },
   { "extended compliance code 0Dh", is25GCrN, xcvr25GBaseCrN },
   { "extended compliance code 0Ch", is25GCrS, xcvr25GBaseCrS },
   { "extended compliance code 0Bh", is25GCr, xcvr25GBaseCr },
   { "25 GBd or more, passive cable", is25GPassiveCable, xcvr25GBaseCr },
   { "25 GBd or more, extended compliance code not 01h", is25GOther, xcvr25GUnknown },
   { "10 to 25 GBd copper, active cable", is10GActiveCopper, xcvr10GBaseCrActive },
   { "10 to 25 GBd copper", is10GCopper, xcvr10GBaseCr },
   { "1000BASE-T", is1000T, xcvr1000BaseT },
   { "1000BASE-LX", is1000Lx, xcvr1000BaseLx },
   { "1000BASE-SX", is1000Sx, xcvr1000BaseSx },
   { "10GBASE-ER beyond 40 km", is10GZr, xcvr10GBaseZr },
   { "10GBASE-ER, 31 to 40 km, 1270 nm", is10GErUp, xcvr10GBaseErbdU },
   { "10GBASE-ER, 31 to 40 km, 1330 nm", is10GErDown, xcvr10GBaseErbdD },
   { "10GBASE-ER, 31 to 40 km", is10GEr, xcvr10GBaseEr },
   { "10GBASE-ER, up to 30 km, 1270 nm", is10GErLiteUp, xcvr10GBaseErlbdU },
   { "10GBASE-ER, up to 30 km, 1330 nm", is10GErLiteDown, xcvr10GBaseErlbdD },
   { "1.3 GBd, 10 km of single-mode fibre only, 1490 nm", is1000Bx10Down, xcvr1000BaseBx10D },
   { "1.3 GBd, 10 km of single-mode fibre only, 1310 nm", is1000Bx10Up, xcvr1000BaseBx10U },
   { "extended compliance code 01h", is25GActiveCable, xcvr25GBaseAr },
   { "active cable", is10GActiveCable, xcvr10GBaseAr },
   { "LC connector, 100BASE-LX10", is100Lx10, xcvr100BaseLx10 },
   { "no rule knows the module", isAnything, xcvrUnknown },
};
// clang-format on

constexpr MediaTypePageRule const & decisive( PageView page ) {
   return decisiveRule<rules, row( "storedCcExt" ).end()>( page );
}

} // namespace

// Flattened: every predicate is inlined, which gives the code of a chain of ifs.
[[gnu::flatten]] MediaType XcvrSff8472IdEepromContents::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return decisive( buf().view() ).mediaType;
}

MediaTypeDecision XcvrSff8472IdEepromContents::mediaTypeDecision() const {
   VEL_TRACE_SCOPE( trace );
   return Xcvr::mediaTypeDecision<rules>( decisive( buf().view() ) );
}

bool XcvrSff8472IdEepromContents::is1GConfigurable() const {
   VEL_TRACE_SCOPE( trace );
   PageView const page = buf().view();
   return identifier() == identifierSfp && ( ( page.bit( base10GSr ) && page.bit( base1000Sx ) ) ||
                                             ( page.bit( base10GLr ) && page.bit( base1000Lx ) ) );
}

LaserWavelengthPrecision XcvrSff8472IdEepromContents::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   if ( buf().empty() ) {
      return laserWavelengthPrecisionUnknown;
   }
   return isDwdmFixed( buf().view() ) ? laserWavelengthPrecisionPm : laserWavelengthPrecisionNm;
}

std::span<MediaTypeRule const> sff8472MediaTypeRules() {
   return publishedRules<rules>;
}

} // namespace Xcvr
