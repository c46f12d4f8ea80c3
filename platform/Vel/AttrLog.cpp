#include <Vel/AttrLogCodec.h>

#include <algorithm>

namespace Vel {

NboAttrLog::NboAttrLog( std::string_view bytes ) {
   if ( !bytes.empty() ) {
      std::memcpy( append( bytes.size() ), bytes.data(), bytes.size() );
   }
}

void NboAttrLog::grow( std::size_t count ) {
   std::size_t const capacity = std::max( { size_ + count, 2 * capacity_, std::size_t( 256 ) } );
   std::unique_ptr<uint8_t[]> wider( new uint8_t[capacity] );
   if ( size_ ) {
      std::memcpy( wider.get(), bytes_.get(), size_ );
   }
   bytes_ = std::move( wider );
   capacity_ = capacity;
}

void NboAttrLog::numberIs( std::size_t at, uint32_t number ) {
   Internal::encode( bytes_.get() + at, number );
}

namespace Internal {

void LogCursor::fail( LogCursor in, std::string_view problem ) {
   throw AttrLogException( static_cast<std::size_t>( in.at - in.begin ), problem );
}

void LogCursor::truncated( LogCursor in, std::size_t needed ) {
   fail( in, "truncated: " + std::to_string( needed ) + " bytes needed, " +
                std::to_string( in.spare ) + " left" );
}

void LogCursor::noCode( LogCursor in, EnumModel const & model, uint32_t code ) {
   fail( in, "no " + std::string( model.typeName ) + " has code " + std::to_string( code ) );
}

} // namespace Internal

} // namespace Vel
