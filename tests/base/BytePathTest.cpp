#include <gtest/gtest.h>
#include <random>
#include <string>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Utf8.h"

namespace pellak {
namespace {

TEST(BytePath, EveryByteStringComesBackAndIsUtf8OnTheWay) {
  std::mt19937 random(20260101);
  // Bytes that form, break and imitate the reserved range far more often than chance would.
  const std::string favourites = "\xEE\xBE\xBF\x80\x81\xC0\xC3\xA8\xED\xA0\xF4\x8F\xFF/a\n\"\\";
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes;
    const std::size_t length = random() % 12;
    for (std::size_t i = 0; i < length; ++i) {
      bytes += random() % 4 == 0 ? static_cast<char>(random() % 256)
                                 : favourites[random() % favourites.size()];
    }
    const std::string testo = codificaByte(bytes);
    ASSERT_TRUE(utf8Valido(testo)) << testo;
    ASSERT_EQ(decodificaByte(testo), bytes);
  }
}

TEST(BytePath, ValidTextStaysAndForeignBytesBecomeTheReservedRange) {
  EXPECT_EQ(codificaByte("/home/però/日本/😀"), "/home/però/日本/😀");
  EXPECT_EQ(codificaByte("a\xFFz"), "a\xEE\xBF\xBFz");  // U+EFFF
  EXPECT_EQ(codificaByte("\x80"), "\xEE\xBE\x80");      // U+EF80
  // A genuine U+EF80 is three bytes, each written by itself.
  EXPECT_EQ(codificaByte("\xEE\xBE\x80"), "\xEE\xBF\xAE\xEE\xBE\xBE\xEE\xBE\x80");
  // A surrogate and an overlong slash are no UTF-8.
  EXPECT_FALSE(utf8Valido("\xED\xA0\x80"));
  EXPECT_FALSE(utf8Valido("\xC0\xAF"));
  EXPECT_EQ(decodificaByte(codificaByte("\xC0\xAF")), "\xC0\xAF");
}

TEST(BytePath, StandardisesWithoutLeavingTheRoot) {
  const std::string home = "/home/anna";
  EXPECT_EQ(standardizza("~", home), "/home/anna");
  EXPECT_EQ(standardizza("~/a/../b//c/./", home), "/home/anna/b/c");
  EXPECT_EQ(standardizza("/../../etc", home), "/etc");
  EXPECT_EQ(standardizza("/", home), "/");
  for (const char* unusable : {"", "relativo", "~bruno/x", "./x"}) {
    EXPECT_EQ(standardizza(unusable, home), "") << unusable;
  }
  EXPECT_EQ(standardizza(std::string_view("/a\0b", 4), home), "");
  for (const std::string_view path :
       {std::string_view("/"), std::string_view("/a"), std::string_view("/a/b.c/..d/.e"),
        std::string_view("/a/"), std::string_view("//a"), std::string_view("/a//b"),
        std::string_view("/."), std::string_view("/a/./b"), std::string_view("/.."),
        std::string_view("/a/.."), std::string_view("/a/../b"), std::string_view("/a\0b", 4)}) {
    EXPECT_EQ(standard(path), standardizza(path, home) == path) << path;
  }
  for (const char* path : {"", "a/b", "~", "~/a"}) EXPECT_FALSE(standard(path)) << path;
}

TEST(BytePath, ShowsTheHomeAsTildeOnlyAtAComponentsEdge) {
  EXPECT_EQ(percorsoMostrato("/home/anna", "/home/anna"), "~");
  EXPECT_EQ(percorsoMostrato("/home/anna/x", "/home/anna"), "~/x");
  EXPECT_EQ(percorsoMostrato("/home/annalisa/x", "/home/anna"), "/home/annalisa/x");
  EXPECT_EQ(ultimoComponente("/a/b//"), "b");
  EXPECT_EQ(ultimoComponente("/"), "/");
}

}  // namespace
}  // namespace pellak
