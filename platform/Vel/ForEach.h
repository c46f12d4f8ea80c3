#pragma once

/// `VEL_EACH_OF( rows )( M, rows )` expands to `M( a, b ) M( c, d )` for the rows `( a, b ), ( c, d )`,
/// up to 128 of them. A model macro finds `VEL_EACH_OF( rows )` once, as counting the rows is what
/// costs most.
///
/// Numbered and eight rows at a time: it expands as fast as code written out by hand, where a
/// recursive one costs seconds in every including file.
#define VEL_EACH_OF( ... ) VEL_FOR_EACH_CAT_( VEL_FOR_EACH_, VEL_COUNT_( __VA_ARGS__ ) )

/// A list without the comma that it begins with.
#define VEL_LIST( ... ) VEL_WITHOUT_FIRST_( __VA_ARGS__ )
#define VEL_WITHOUT_FIRST_( first, ... ) __VA_ARGS__

#define VEL_FOR_EACH_CAT_( a, b ) VEL_FOR_EACH_CAT2_( a, b )
#define VEL_FOR_EACH_CAT2_( a, b ) a##b
#define VEL_COUNT_( ... )                                                                          \
   VEL_COUNT_ARG_(                                                                                 \
      __VA_ARGS__ __VA_OPT__(, ) TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany,    \
      TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany,    \
      TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany, TooMany,    \
      TooMany, TooMany, TooMany, TooMany, TooMany, 128, 127, 126, 125, 124, 123, 122, 121, 120,    \
      119, 118, 117, 116, 115, 114, 113, 112, 111, 110, 109, 108, 107, 106, 105, 104, 103, 102,    \
      101, 100, 99, 98, 97, 96, 95, 94, 93, 92, 91, 90, 89, 88, 87, 86, 85, 84, 83, 82, 81, 80,    \
      79, 78, 77, 76, 75, 74, 73, 72, 71, 70, 69, 68, 67, 66, 65, 64, 63, 62, 61, 60, 59, 58, 57,  \
      56, 55, 54, 53, 52, 51, 50, 49, 48, 47, 46, 45, 44, 43, 42, 41, 40, 39, 38, 37, 36, 35, 34,  \
      33, 32, 31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11,  \
      10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0 )
#define VEL_COUNT_ARG_(                                                                            \
   a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19, a20, a21, \
   a22, a23, a24, a25, a26, a27, a28, a29, a30, a31, a32, a33, a34, a35, a36, a37, a38, a39, a40,  \
   a41, a42, a43, a44, a45, a46, a47, a48, a49, a50, a51, a52, a53, a54, a55, a56, a57, a58, a59,  \
   a60, a61, a62, a63, a64, a65, a66, a67, a68, a69, a70, a71, a72, a73, a74, a75, a76, a77, a78,  \
   a79, a80, a81, a82, a83, a84, a85, a86, a87, a88, a89, a90, a91, a92, a93, a94, a95, a96, a97,  \
   a98, a99, a100, a101, a102, a103, a104, a105, a106, a107, a108, a109, a110, a111, a112, a113,   \
   a114, a115, a116, a117, a118, a119, a120, a121, a122, a123, a124, a125, a126, a127, a128, a129, \
   a130, a131, a132, a133, a134, a135, a136, a137, a138, a139, a140, a141, a142, a143, a144, a145, \
   a146, a147, a148, a149, a150, a151, a152, a153, a154, a155, a156, a157, a158, a159, a160, n,    \
   ... )                                                                                           \
   n

#define VEL_FOR_EACH_TooMany( M, ... ) static_assert( false, "a model type has at most 128 rows" );
#define VEL_FOR_EACH_0( M, ... )
#define VEL_FOR_EACH_1( M, r1 ) M r1
#define VEL_FOR_EACH_2( M, r1, r2 ) M r1 M r2
#define VEL_FOR_EACH_3( M, r1, r2, r3 ) M r1 M r2 M r3
#define VEL_FOR_EACH_4( M, r1, r2, r3, r4 ) M r1 M r2 M r3 M r4
#define VEL_FOR_EACH_5( M, r1, r2, r3, r4, r5 ) M r1 M r2 M r3 M r4 M r5
#define VEL_FOR_EACH_6( M, r1, r2, r3, r4, r5, r6 ) M r1 M r2 M r3 M r4 M r5 M r6
#define VEL_FOR_EACH_7( M, r1, r2, r3, r4, r5, r6, r7 ) M r1 M r2 M r3 M r4 M r5 M r6 M r7
#define VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) M r1 M r2 M r3 M r4 M r5 M r6 M r7 M r8
#define VEL_FOR_EACH_9( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                   \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_1( M, __VA_ARGS__ )
#define VEL_FOR_EACH_10( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_2( M, __VA_ARGS__ )
#define VEL_FOR_EACH_11( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_3( M, __VA_ARGS__ )
#define VEL_FOR_EACH_12( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_4( M, __VA_ARGS__ )
#define VEL_FOR_EACH_13( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_5( M, __VA_ARGS__ )
#define VEL_FOR_EACH_14( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_6( M, __VA_ARGS__ )
#define VEL_FOR_EACH_15( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_7( M, __VA_ARGS__ )
#define VEL_FOR_EACH_16( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_8( M, __VA_ARGS__ )
#define VEL_FOR_EACH_17( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_9( M, __VA_ARGS__ )
#define VEL_FOR_EACH_18( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_10( M, __VA_ARGS__ )
#define VEL_FOR_EACH_19( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_11( M, __VA_ARGS__ )
#define VEL_FOR_EACH_20( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_12( M, __VA_ARGS__ )
#define VEL_FOR_EACH_21( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_13( M, __VA_ARGS__ )
#define VEL_FOR_EACH_22( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_14( M, __VA_ARGS__ )
#define VEL_FOR_EACH_23( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_15( M, __VA_ARGS__ )
#define VEL_FOR_EACH_24( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_16( M, __VA_ARGS__ )
#define VEL_FOR_EACH_25( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_17( M, __VA_ARGS__ )
#define VEL_FOR_EACH_26( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_18( M, __VA_ARGS__ )
#define VEL_FOR_EACH_27( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_19( M, __VA_ARGS__ )
#define VEL_FOR_EACH_28( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_20( M, __VA_ARGS__ )
#define VEL_FOR_EACH_29( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_21( M, __VA_ARGS__ )
#define VEL_FOR_EACH_30( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_22( M, __VA_ARGS__ )
#define VEL_FOR_EACH_31( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_23( M, __VA_ARGS__ )
#define VEL_FOR_EACH_32( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_24( M, __VA_ARGS__ )
#define VEL_FOR_EACH_33( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_25( M, __VA_ARGS__ )
#define VEL_FOR_EACH_34( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_26( M, __VA_ARGS__ )
#define VEL_FOR_EACH_35( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_27( M, __VA_ARGS__ )
#define VEL_FOR_EACH_36( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_28( M, __VA_ARGS__ )
#define VEL_FOR_EACH_37( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_29( M, __VA_ARGS__ )
#define VEL_FOR_EACH_38( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_30( M, __VA_ARGS__ )
#define VEL_FOR_EACH_39( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_31( M, __VA_ARGS__ )
#define VEL_FOR_EACH_40( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_32( M, __VA_ARGS__ )
#define VEL_FOR_EACH_41( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_33( M, __VA_ARGS__ )
#define VEL_FOR_EACH_42( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_34( M, __VA_ARGS__ )
#define VEL_FOR_EACH_43( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_35( M, __VA_ARGS__ )
#define VEL_FOR_EACH_44( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_36( M, __VA_ARGS__ )
#define VEL_FOR_EACH_45( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_37( M, __VA_ARGS__ )
#define VEL_FOR_EACH_46( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_38( M, __VA_ARGS__ )
#define VEL_FOR_EACH_47( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_39( M, __VA_ARGS__ )
#define VEL_FOR_EACH_48( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_40( M, __VA_ARGS__ )
#define VEL_FOR_EACH_49( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_41( M, __VA_ARGS__ )
#define VEL_FOR_EACH_50( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_42( M, __VA_ARGS__ )
#define VEL_FOR_EACH_51( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_43( M, __VA_ARGS__ )
#define VEL_FOR_EACH_52( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_44( M, __VA_ARGS__ )
#define VEL_FOR_EACH_53( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_45( M, __VA_ARGS__ )
#define VEL_FOR_EACH_54( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_46( M, __VA_ARGS__ )
#define VEL_FOR_EACH_55( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_47( M, __VA_ARGS__ )
#define VEL_FOR_EACH_56( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_48( M, __VA_ARGS__ )
#define VEL_FOR_EACH_57( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_49( M, __VA_ARGS__ )
#define VEL_FOR_EACH_58( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_50( M, __VA_ARGS__ )
#define VEL_FOR_EACH_59( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_51( M, __VA_ARGS__ )
#define VEL_FOR_EACH_60( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_52( M, __VA_ARGS__ )
#define VEL_FOR_EACH_61( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_53( M, __VA_ARGS__ )
#define VEL_FOR_EACH_62( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_54( M, __VA_ARGS__ )
#define VEL_FOR_EACH_63( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_55( M, __VA_ARGS__ )
#define VEL_FOR_EACH_64( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_56( M, __VA_ARGS__ )
#define VEL_FOR_EACH_65( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_57( M, __VA_ARGS__ )
#define VEL_FOR_EACH_66( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_58( M, __VA_ARGS__ )
#define VEL_FOR_EACH_67( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_59( M, __VA_ARGS__ )
#define VEL_FOR_EACH_68( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_60( M, __VA_ARGS__ )
#define VEL_FOR_EACH_69( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_61( M, __VA_ARGS__ )
#define VEL_FOR_EACH_70( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_62( M, __VA_ARGS__ )
#define VEL_FOR_EACH_71( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_63( M, __VA_ARGS__ )
#define VEL_FOR_EACH_72( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_64( M, __VA_ARGS__ )
#define VEL_FOR_EACH_73( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_65( M, __VA_ARGS__ )
#define VEL_FOR_EACH_74( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_66( M, __VA_ARGS__ )
#define VEL_FOR_EACH_75( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_67( M, __VA_ARGS__ )
#define VEL_FOR_EACH_76( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_68( M, __VA_ARGS__ )
#define VEL_FOR_EACH_77( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_69( M, __VA_ARGS__ )
#define VEL_FOR_EACH_78( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_70( M, __VA_ARGS__ )
#define VEL_FOR_EACH_79( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_71( M, __VA_ARGS__ )
#define VEL_FOR_EACH_80( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_72( M, __VA_ARGS__ )
#define VEL_FOR_EACH_81( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_73( M, __VA_ARGS__ )
#define VEL_FOR_EACH_82( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_74( M, __VA_ARGS__ )
#define VEL_FOR_EACH_83( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_75( M, __VA_ARGS__ )
#define VEL_FOR_EACH_84( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_76( M, __VA_ARGS__ )
#define VEL_FOR_EACH_85( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_77( M, __VA_ARGS__ )
#define VEL_FOR_EACH_86( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_78( M, __VA_ARGS__ )
#define VEL_FOR_EACH_87( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_79( M, __VA_ARGS__ )
#define VEL_FOR_EACH_88( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_80( M, __VA_ARGS__ )
#define VEL_FOR_EACH_89( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_81( M, __VA_ARGS__ )
#define VEL_FOR_EACH_90( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_82( M, __VA_ARGS__ )
#define VEL_FOR_EACH_91( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_83( M, __VA_ARGS__ )
#define VEL_FOR_EACH_92( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_84( M, __VA_ARGS__ )
#define VEL_FOR_EACH_93( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_85( M, __VA_ARGS__ )
#define VEL_FOR_EACH_94( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_86( M, __VA_ARGS__ )
#define VEL_FOR_EACH_95( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_87( M, __VA_ARGS__ )
#define VEL_FOR_EACH_96( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_88( M, __VA_ARGS__ )
#define VEL_FOR_EACH_97( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_89( M, __VA_ARGS__ )
#define VEL_FOR_EACH_98( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_90( M, __VA_ARGS__ )
#define VEL_FOR_EACH_99( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                  \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_91( M, __VA_ARGS__ )
#define VEL_FOR_EACH_100( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_92( M, __VA_ARGS__ )
#define VEL_FOR_EACH_101( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_93( M, __VA_ARGS__ )
#define VEL_FOR_EACH_102( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_94( M, __VA_ARGS__ )
#define VEL_FOR_EACH_103( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_95( M, __VA_ARGS__ )
#define VEL_FOR_EACH_104( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_96( M, __VA_ARGS__ )
#define VEL_FOR_EACH_105( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_97( M, __VA_ARGS__ )
#define VEL_FOR_EACH_106( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_98( M, __VA_ARGS__ )
#define VEL_FOR_EACH_107( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_99( M, __VA_ARGS__ )
#define VEL_FOR_EACH_108( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_100( M, __VA_ARGS__ )
#define VEL_FOR_EACH_109( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_101( M, __VA_ARGS__ )
#define VEL_FOR_EACH_110( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_102( M, __VA_ARGS__ )
#define VEL_FOR_EACH_111( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_103( M, __VA_ARGS__ )
#define VEL_FOR_EACH_112( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_104( M, __VA_ARGS__ )
#define VEL_FOR_EACH_113( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_105( M, __VA_ARGS__ )
#define VEL_FOR_EACH_114( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_106( M, __VA_ARGS__ )
#define VEL_FOR_EACH_115( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_107( M, __VA_ARGS__ )
#define VEL_FOR_EACH_116( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_108( M, __VA_ARGS__ )
#define VEL_FOR_EACH_117( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_109( M, __VA_ARGS__ )
#define VEL_FOR_EACH_118( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_110( M, __VA_ARGS__ )
#define VEL_FOR_EACH_119( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_111( M, __VA_ARGS__ )
#define VEL_FOR_EACH_120( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_112( M, __VA_ARGS__ )
#define VEL_FOR_EACH_121( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_113( M, __VA_ARGS__ )
#define VEL_FOR_EACH_122( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_114( M, __VA_ARGS__ )
#define VEL_FOR_EACH_123( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_115( M, __VA_ARGS__ )
#define VEL_FOR_EACH_124( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_116( M, __VA_ARGS__ )
#define VEL_FOR_EACH_125( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_117( M, __VA_ARGS__ )
#define VEL_FOR_EACH_126( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_118( M, __VA_ARGS__ )
#define VEL_FOR_EACH_127( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_119( M, __VA_ARGS__ )
#define VEL_FOR_EACH_128( M, r1, r2, r3, r4, r5, r6, r7, r8, ... )                                 \
   VEL_FOR_EACH_8( M, r1, r2, r3, r4, r5, r6, r7, r8 ) VEL_FOR_EACH_120( M, __VA_ARGS__ )
