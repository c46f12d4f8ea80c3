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
   using Codes = Vel::DenseNibbles<uint8_t, 16>;
   VEL_ENTITY( Board, Vel::Entity,
      ( DenseValues, word, onWord, Words ),
      ( DenseValues, flag, onFlag, Flags ),
      ( DenseValues, code, onCode, Codes ) );
};
VEL_ENTITY_DEFINE( Board )

struct Watcher : Board::Notifiee {
   void onWord( uint8_t key ) override { keys.push_back( key ); }
   void onFlag( uint8_t key ) override { keys.push_back( 100 + key ); }
   void onCode( uint8_t key ) override { keys.push_back( 300 + key ); }
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
   EXPECT_EQ( board.velModel().attributes[1].text( board ), "{3: True, 31: False}" );
}

TEST( DenseMap, NumbersOfFourBits ) {
   Board board( "board" );
   Watcher watcher;
   watcher.notifierIs( &board );
   board.codeIs( 15, 9 );
   board.codeIs( 15, 9 );
   board.codeIs( 3, 0 );
   board.codeDel( 15 );
   board.codeDel( 14 );
   EXPECT_EQ( board.code( 15 ), 0 );
   EXPECT_TRUE( board.codeHas( 3 ) );
   EXPECT_FALSE( board.codeHas( 15 ) );
   EXPECT_THAT( watcher.keys, ElementsAre( 315, 303, 315 ) );
   EXPECT_DEATH( board.codeIs( 16, 0 ), "place < places && value < 16" );
   EXPECT_DEATH( board.codeIs( 0, 16 ), "place < places && value < 16" );
}

TEST( DenseMap, AnImageIsWrittenWholeBeforeItIsTold ) {
   struct Reader : Board::Notifiee {
      void onFlag( uint8_t key ) override { told.push_back( notifier()->flag( 5 ) ? key : -1 ); }
      void onCode( uint8_t key ) override { told.push_back( 10 * key + notifier()->code( 2 ) ); }
      std::vector<int> told;
   };
   Board board( "board" );
   Reader reader;
   reader.notifierIs( &board );
   board.flagIs( 6, true );
   board.flagImageIs( 0xff21u, 0x71 ); // 0, 4, 5 and 6
   board.flagImageIs( 0x0021u, 0x71 );
   EXPECT_EQ( board.velModel().attributes[1].text( board ),
              "{0: True, 4: False, 5: True, 6: False}" );
   EXPECT_THAT( reader.told, ElementsAre( -1, 0, 4, 5, 6 ) );

   reader.told.clear();
   board.codeIs( 7, 7 );
   board.codeImageIs( 0xf0000210u, 0x07 );
   board.codeImageIs( 0x00000310u, 0x07 );
   EXPECT_EQ( board.velModel().attributes[2].text( board ), "{0: 0, 1: 1, 2: 3, 7: 7}" );
   EXPECT_THAT( reader.told, ElementsAre( 70, 2, 12, 22, 23 ) );
   EXPECT_DEATH( board.codeImageIs( 0u, 0x10000 ), "places" );
}

} // namespace DenseMapTest
