// Decoding the identification of an SFP module: the five vendor texts and the media type.
#include "bench/Bench.h"

#include <Xcvr/XcvrSfpPlus.h>

#include <array>
#include <cstring>
#include <stdexcept>

namespace Bench {
namespace {

using Xcvr::MediaType;

/// Modules that different rules decide, so that no branch is always taken alike.
std::array<Xcvr::XcvrSff8472IdEepromContents, 4> const & modules() {
   static auto const images = [] {
      struct Byte {
         std::size_t at;
         uint8_t value;
      };
      Byte const bytes[4][4] = {
         { { 3, 0x10 }, { 12, 103 }, { 19, 30 }, { 2, 7 } },   // 10GBASE-SR
         { { 3, 0x20 }, { 12, 103 }, { 14, 10 }, { 2, 7 } },   // 10GBASE-LR
         { { 8, 0x04 }, { 12, 103 }, { 18, 3 }, { 2, 0x21 } }, // passive cable
         { { 6, 0x08 }, { 12, 13 }, { 18, 100 }, { 2, 0x22 } } // 1000BASE-T
      };
      std::array<Xcvr::XcvrSff8472IdEepromContents, 4> made;
      for ( std::size_t i = 0; i < made.size(); ++i ) {
         Vel::String page( 256, '\0' );
         page.byteIs( 0, 3 );
         for ( Byte const & byte : bytes[i] ) {
            page.byteIs( byte.at, byte.value );
         }
         made[i].bufIs( page );
         made[i].vendorNameIs( "NORTHLIGHT" );
         made[i].vendorPnIs( "NL-10G-SR" );
         made[i].vendorRevIs( "A1" );
         made[i].vendorSnIs( "NL24100001" );
         made[i].dateCodeIs( "241015" );
      }
      return made;
   }();
   return images;
}

/// What an agent's reader asks of the library.
struct Model {
   explicit Model( Xcvr::XcvrSff8472IdEepromContents const & contents )
      : vendor( contents.vendorInfo() ), mediaType( contents.mediaType() ) {}

   Xcvr::VendorInfo vendor;
   MediaType mediaType;
};

/// A text in place with its length, nothing else.
struct PlainText {
   PlainText( char const * from, std::size_t length ) : size( static_cast<uint8_t>( length ) ) {
      std::memcpy( bytes, from, length );
   }
   char bytes[23];
   uint8_t size;
};

/// The same as one would write it: a function for the texts and one for the media type, the decision
/// as nested ifs, each behind one check of the page.
template <typename Text>
struct Floor {
   struct Texts {
      Text texts[5];
   };
   explicit Floor( Xcvr::XcvrSff8472IdEepromContents const & contents )
      : texts( textsOf( contents ) ), mediaType( mediaTypeOf( contents ) ) {}

   Texts texts;
   MediaType mediaType;

   static MediaType decideDwdm( unsigned char const * b ) {
      bool const er = b[3] & 0x80;
      unsigned const km = b[13] * 256u + b[14];
      if ( ( b[1] & 0x30 ) == 0x20 ) {
         return !er       ? MediaType::xcvrUnknown
                : km < 41 ? MediaType::xcvr10GBaseDwdmEr
                          : MediaType::xcvr10GBaseDwdmZr;
      }
      return b[1] == 4 && b[65] & 0x40 && er && km > 40 ? MediaType::xcvr10GBaseDwdmZt
                                                        : MediaType::xcvrUnknown;
   }
   static MediaType decideByReach( unsigned char const * b ) {
      int const nm = static_cast<int16_t>( b[60] << 8 | b[61] );
      if ( b[3] & 0x80 ) {
         if ( b[14] > 40 ) {
            return MediaType::xcvr10GBaseZr;
         }
         if ( b[14] > 30 ) {
            return nm == 1270   ? MediaType::xcvr10GBaseErbdU
                   : nm == 1330 ? MediaType::xcvr10GBaseErbdD
                                : MediaType::xcvr10GBaseEr;
         }
         if ( nm == 1270 || nm == 1330 ) {
            return nm == 1270 ? MediaType::xcvr10GBaseErlbdU : MediaType::xcvr10GBaseErlbdD;
         }
      }
      if ( b[12] == 13 && b[14] == 10 && b[15] == 100 && !b[16] && !b[17] && !b[18] &&
           ( nm == 1490 || nm == 1310 ) ) {
         return nm == 1490 ? MediaType::xcvr1000BaseBx10D : MediaType::xcvr1000BaseBx10U;
      }
      if ( b[36] == 0x01 ) {
         return MediaType::xcvr25GBaseAr;
      }
      if ( b[8] & 0x08 ) {
         return MediaType::xcvr10GBaseAr;
      }
      return b[2] == 7 && b[6] & 0x10 ? MediaType::xcvr100BaseLx10 : MediaType::xcvrUnknown;
   }
   static MediaType decide( unsigned char const * b ) {
      if ( std::memcmp( b + 20, "Molex Inc.      ", 16 ) == 0 &&
           ( std::memcmp( b + 40, "74765-0901      ", 16 ) == 0 ||
             std::memcmp( b + 40, "74765-0902      ", 16 ) == 0 ||
             std::memcmp( b + 40, "74765-0912      ", 16 ) == 0 ) ) {
         return MediaType::xcvr10GBaseMfg;
      }
      if ( b[0] != 3 ) {
         return b[0] == 11 ? decideDwdm( b ) : MediaType::xcvrUnknown;
      }
      switch ( b[36] ) {
      case 0x02:
         return MediaType::xcvr25GBaseSr;
      case 0x03:
         return b[14] < 10 ? MediaType::xcvr25GBaseLrLite : MediaType::xcvr25GBaseLr;
      case 0x18:
         return MediaType::xcvr25GBaseArN;
      }
      if ( b[3] & 0x10 && !( b[8] & 0x08 ) ) {
         return b[19] < 30 ? MediaType::xcvr10GBaseSrLite : MediaType::xcvr10GBaseSr;
      }
      if ( b[3] & 0x20 ) {
         return b[14] < 10 ? MediaType::xcvr10GBaseLrLite : MediaType::xcvr10GBaseLr;
      }
      if ( b[3] & 0x40 ) {
         return MediaType::xcvr10GBaseLrm;
      }
      switch ( b[36] ) {
      case 0x0D:
         return MediaType::xcvr25GBaseCrN;
      case 0x0C:
         return MediaType::xcvr25GBaseCrS;
      case 0x0B:
         return MediaType::xcvr25GBaseCr;
      }
      if ( b[12] >= 250 ) {
         if ( b[8] & 0x04 ) {
            return MediaType::xcvr25GBaseCr;
         }
         if ( b[36] != 0x01 ) {
            return MediaType::xcvr25GUnknown;
         }
      } else if ( b[12] > 99 && ( b[3] & 0x01 || b[8] & 0x04 || b[9] & 0x80 ) ) {
         return b[8] & 0x08 ? MediaType::xcvr10GBaseCrActive : MediaType::xcvr10GBaseCr;
      }
      if ( b[6] & 0x0b ) {
         return b[6] & 0x08   ? MediaType::xcvr1000BaseT
                : b[6] & 0x02 ? MediaType::xcvr1000BaseLx
                              : MediaType::xcvr1000BaseSx;
      }
      return decideByReach( b );
   }
   static char const * wholePage( Xcvr::XcvrSff8472IdEepromContents const & contents ) {
      std::string_view const page = contents.buf().view();
      if ( page.size() < 96 ) [[unlikely]] {
         throw std::out_of_range( "a short page" );
      }
      return page.data();
   }
   [[gnu::noinline]] static Texts textsOf( Xcvr::XcvrSff8472IdEepromContents const & contents ) {
      char const * const b = wholePage( contents );
      return { { { b + 20, 16 }, { b + 40, 16 }, { b + 68, 16 }, { b + 56, 4 }, { b + 84, 8 } } };
   }
   [[gnu::noinline]] static MediaType
   mediaTypeOf( Xcvr::XcvrSff8472IdEepromContents const & contents ) {
      return decide( reinterpret_cast<unsigned char const *>( wholePage( contents ) ) );
   }
};

template <typename Decoder>
void identity( benchmark::State & state ) {
   auto const & images = modules();
   for ( auto const & contents : images ) {
      if ( Decoder( contents ).mediaType != contents.mediaType() ) {
         state.SkipWithError( "the media type is another one" );
      }
   }
   std::size_t next = 0;
   measure( state, [&] {
      Decoder const decoded( images[next++ % images.size()] );
      benchmark::DoNotOptimize( decoded );
   } );
}

// The floor makes texts of the kind that the model gives. What that kind costs beside plain arrays
// is the last contestant.
Figure const figure{ "decode/sfp-identity",
                     { 1.15, 0 },
                     { { "model", identity<Model> },
                       { "floor", identity<Floor<Vel::String>> },
                       { "plain-arrays", identity<Floor<PlainText>> } } };

} // namespace
} // namespace Bench
