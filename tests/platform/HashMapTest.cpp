#include <Vel/HashMap.h>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>

namespace {

/// Keys with few hashes, so that searches run over many slots: three of them, or neighbouring homes that
/// wrap from the end of the table to its start.
template <uint32_t hashes>
struct Colliding {
   uint32_t value = 0;
   [[nodiscard]] std::size_t hash() const {
      std::size_t const few = value % hashes;
      return ( hashes == 3 ? few : ~few ) << 32;
   }
   friend auto operator<=>( Colliding const &, Colliding const & ) = default;
};

template <typename K>
class HashMap : public testing::Test {
 protected:
   static K keyOf( uint32_t number ) {
      if constexpr ( std::is_same_v<K, Vel::String> ) {
         return Vel::String( "a rather long interface name " + std::to_string( number ) );
      } else {
         return K{ number };
      }
   }
   void expectEqual() const {
      ASSERT_EQ( map.size(), model.size() );
      std::map<K, uint32_t> walked;
      for ( auto const & [key, value] : map ) {
         ASSERT_TRUE( walked.emplace( key, value ).second ) << "walked twice";
      }
      ASSERT_EQ( walked, model );
      for ( uint32_t number = 0; number < keys; ++number ) {
         K const key = keyOf( number );
         ASSERT_EQ( map.find( key ) != map.end(), model.contains( key ) );
      }
   }
   static constexpr uint32_t keys = 300;
   Vel::HashMap<K, uint32_t> map;
   std::map<K, uint32_t> model;
};
using Keys = testing::Types<uint32_t, Vel::String, Colliding<3>, Colliding<8>>;
TYPED_TEST_SUITE( HashMap, Keys );

TYPED_TEST( HashMap, BehavesAsAMapUnderALongSequenceOfOperations ) {
   std::mt19937 random( 3 );
   // How many of the keys may come: few entries that come and go, then a growing map.
   for ( uint32_t const few : { 5U, 20U, 100U, TestFixture::keys } ) {
      for ( int step = 0; step < 5000; ++step ) {
         if ( step % 500 == 0 ) {
            ASSERT_NO_FATAL_FAILURE( this->expectEqual() );
         }
         TypeParam const key = this->keyOf( static_cast<uint32_t>( random() ) % few );
         auto const found = this->map.find( key );
         auto const inModel = this->model.find( key );
         ASSERT_EQ( found != this->map.end(), inModel != this->model.end() );
         auto const value = static_cast<uint32_t>( random() );
         if ( found == this->map.end() ) {
            this->map.try_emplace( key, value );
            this->model.emplace( key, value );
            continue;
         }
         ASSERT_EQ( found->first, key );
         ASSERT_EQ( found->second, inModel->second );
         if ( value % 4 == 0 ) {
            found->second = inModel->second = value;
         } else {
            this->map.erase( found );
            this->model.erase( inModel );
         }
      }
   }
   Vel::HashMap<TypeParam, uint32_t> const copy = this->map;
   while ( !this->map.empty() ) {
      this->map.erase( this->map.begin() );
   }
   ASSERT_GT( copy.size(), 0U );
   this->map = copy;
   ASSERT_NO_FATAL_FAILURE( this->expectEqual() );
   this->map.clear();
   this->model.clear();
   ASSERT_NO_FATAL_FAILURE( this->expectEqual() );
   this->map.try_emplace( this->keyOf( 7 ), 7 );
   EXPECT_FALSE( this->map.try_emplace( this->keyOf( 7 ), 8 ).second );
   EXPECT_EQ( this->map.find( this->keyOf( 7 ) )->second, 7U );
}

} // namespace
