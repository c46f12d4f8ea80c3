#include <Vel/DefineEntity.h>
#include <Vel/DenseMap.h>

#include <gmock/gmock.h>

#include <vector>

using testing::ElementsAre;

namespace DenseMapTest {

class Board : public Vel::Entity {
 public:
   explicit Board( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   using Words = Vel::DenseMap<uint8_t, uint16_t, 4>;
   using Flags = Vel::DenseFlags<uint8_t, 32>;
   VEL_ENTITY( Board, Vel::Entity,
      ( DenseValues, word, onWord, Words ),
      ( DenseValues, flag, onFlag, Flags ) );
};
VEL_ENTITY_DEFINE( Board )

struct Watcher : Board::Notifiee {
   void onWord( uint8_t key ) override { keys.push_back( key ); }
   void onFlag( uint8_t key ) override { keys.push_back( 100 + key ); }
   void onFlag() override { keys.push_back( 200 ); }
   std::vector<int> keys;
};

TEST( DenseMap, IsAValueCollection ) {
   Board board( "board" );
   Watcher watcher;
   watcher.notifierIs( &board );
   EXPECT_EQ( board.word( 2 ), 0 );
   board.wordIs( 2, 0 ); // the default value counts once it is there
   board.wordIs( 2, 0 );
   board.wordIs( 0, 7 );
   board.wordDel( 1 );
   EXPECT_TRUE( board.wordHas( 2 ) );
   EXPECT_FALSE( board.wordHas( 1 ) );
   EXPECT_FALSE( board.wordHas( 200 ) );
   EXPECT_EQ( board.word( 0 ), 7 );
   EXPECT_EQ( board.word( 200 ), 0 );
   board.wordDelAll();
   EXPECT_TRUE( board.wordMap().empty() );
   EXPECT_EQ( board.word( 0 ), 0 );
   EXPECT_THAT( watcher.keys, ElementsAre( 2, 0, 0, 2 ) );
   EXPECT_DEATH( board.wordIs( 4, 1 ), "place < places" );
}

TEST( DenseMap, FlagsToo ) {
   Board board( "board" );
   Watcher watcher;
   watcher.notifierIs( &board );
   board.flagIs( 31, true );
   board.flagIs( 31, true );
   board.flagIs( 0, false );
   board.flagIs( 31, false );
   board.flagDel( 0 );
   EXPECT_EQ( board.flagMap().size(), 1u );
   EXPECT_THAT( watcher.keys, ElementsAre( 131, 200, 100, 200, 131, 200, 100, 200 ) );
   EXPECT_DEATH( board.flagIs( 32, true ), "place < places" );

   board.flagIs( 3, true );
   EXPECT_EQ( board.flagMap().differing( 0x0000000e, 0xf ), 0x7u );
   EXPECT_EQ( board.velModel().attributes[1].text( board ), "{3: True, 31: False}" );
}

} // namespace DenseMapTest
