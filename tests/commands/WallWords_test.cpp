#include "commands/WallWords.h"

#include <gtest/gtest.h>

namespace {

using quoin::commands::looksLikeWalls;

TEST(WallWords, AreKnownInManyLanguages) {
  for (const wchar_t* name : {L"A-Wall-Ext",
                              L"内墙",
                              L"A-MUR-EXT",
                              L"Murs porteurs",
                              L"MURO",
                              L"MUROS_01",
                              L"Muri esterni",
                              L"PAREDES",
                              L"A-PAREDE",
                              L"Pareti interne",
                              L"MURATURA",
                              L"Außenwand",
                              L"AUSSENWÄNDE",
                              L"Innenwaende",
                              L"BRANDMAUER",
                              L"Ytterväggar",
                              L"VEGG",
                              L"yttervegg",
                              L"VÄLISEINÄT",
                              L"fal",
                              L"A_FALAK",
                              L"ŚCIANY",
                              L"sciana nosna",
                              L"Obvodová stěna",
                              L"STENY",
                              L"ZID",
                              L"nosivi zidovi",
                              L"DIŞ DUVAR",
                              L"СТЕНЫ",
                              L"Несущие стены",
                              L"Наружных стен",
                              L"СТІНИ",
                              L"外牆",
                              L"外壁",
                              L"벽체",
                              L"ΤΟΙΧΟΣ",
                              L"εξ. τοίχοι",
                              L"binnenmuur",
                              L"WANDEN",
                              L"ydervæg",
                              L"Pereți",
                              L"tuong",
                              L"xref-house$0$A-WALL"}) {
    EXPECT_TRUE(looksLikeWalls(name)) << testing::PrintToString(std::wstring(name));
  }
}

TEST(WallWords, ShortOnesAreNotFoundInsideOtherWords) {
  for (const wchar_t* name :
       {L"A-DOOR",  L"MURAL",           L"Wanderweg", L"Wandlung",  L"FALLROHR", L"OFFALL",
        L"DEFAULT", L"PREPARED",        L"COMPARED",  L"SEINE",     L"BEINSEIN", L"LIZIDE",
        L"СТЕНД",   L"Настенные лампы", L"BEVÆGELSE", L"DEMURRAGE", L"0",        L"",
        L"STENCIL", L"IMURI",           L"PARAPET"}) {
    EXPECT_FALSE(looksLikeWalls(name)) << testing::PrintToString(std::wstring(name));
  }
}

TEST(WallWords, AWordEndsAtADigitASignAndAHump) {
  EXPECT_TRUE(looksLikeWalls(L"MUR2"));
  EXPECT_TRUE(looksLikeWalls(L"ext_mur_20"));
  EXPECT_TRUE(looksLikeWalls(L"murPorteur"));
  EXPECT_TRUE(looksLikeWalls(L"ExtMuro"));
  EXPECT_FALSE(looksLikeWalls(L"murmel"));
}

}  // namespace
