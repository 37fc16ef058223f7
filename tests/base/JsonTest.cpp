#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

TEST(JsonWriter, WritesWhatTheParserReadsBack) {
  std::string ogniByte;
  for (int i = 1; i < 256; ++i) ogniByte += static_cast<char>(i);
  const std::string lunga = std::string(100, 'a') + "\"\\\n" + std::string(100, 'z');
  JsonWriter uscita;
  uscita.beginObject();
  uscita.key("testi").beginArray().text(ogniByte).text(lunga).text("").text("è").endArray();
  uscita.key("numeri").beginArray();
  for (const double numero : {0.5, -0.0, 1e22, 1.7976931348623157e308, 1700000000.0, 0.1}) {
    uscita.number(numero);
  }
  uscita.endArray();
  uscita.key("grande").integer(std::numeric_limits<std::int64_t>::min());
  uscita.textKey("chiave \xFF\"").boolean(true);
  uscita.endObject();

  const auto documento = JsonDocument::parse(uscita.take());
  ASSERT_TRUE(documento.ok()) << documento.error().text;
  const Json radice = documento->radice();
  EXPECT_EQ(radice.testi("testi"), (std::vector<std::string>{ogniByte, lunga, "", "è"}));
  std::vector<double> numeri;
  radice["numeri"].perOgni([&](Json numero) { numeri.push_back(*numero.numero()); });
  EXPECT_EQ(numeri, (std::vector<double>{0.5, 0, 1e22, 1.7976931348623157e308, 1700000000, 0.1}));
  EXPECT_EQ(radice["grande"].intero(), std::numeric_limits<std::int64_t>::min());
  std::string ultima;
  radice.perOgniMembro([&](const std::string& chiave, Json) { ultima = chiave; });
  EXPECT_EQ(ultima, "chiave \xFF\"");
}

TEST(JsonWriter, LiteralForms) {
  JsonWriter uscita;
  uscita.beginObject().key("a").beginArray().endArray().key("b").beginObject().endObject();
  uscita.key("c").number(1700000000.0).key("d").number(2.5).key("e").text("\x01/");
  uscita.key("f").number(std::numeric_limits<double>::infinity()).endObject();
  EXPECT_EQ(uscita.take(), R"({"a":[],"b":{},"c":1700000000,"d":2.5,"e":"\u0001/","f":0})");
}

TEST(Json, ReadsLeniently) {
  const auto documento = JsonDocument::parse(
      R"({"n":7,"m":7.0,"p":7.5,"t":"7","b":true,"u":18446744073709551615,"l":["a",1,null,"b"]})");
  ASSERT_TRUE(documento.ok());
  const Json radice = documento->radice();
  EXPECT_EQ(radice.intero("n", 0), 7);
  EXPECT_EQ(radice.intero("m", 0), 7);
  for (const char* chiave : {"p", "t", "b", "u", "l", "assente"}) {
    EXPECT_EQ(radice.intero(chiave, -1), -1) << chiave;
  }
  EXPECT_EQ(radice.testo("n", "x"), "x");
  EXPECT_FALSE(radice.booleano("n", false));
  EXPECT_EQ(radice.testi("l"), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(radice["l"]["x"]["y"].testo(), std::nullopt);
  EXPECT_EQ(Json().intero("x", 3), 3);
}

TEST(Json, RefusesWhatCouldHurt) {
  const auto annidato = [](std::size_t livelli) {
    return std::string(livelli, '[') + std::string(livelli, ']');
  };
  EXPECT_TRUE(JsonDocument::parse(annidato(256)).ok());
  EXPECT_FALSE(JsonDocument::parse(annidato(257)).ok());
  EXPECT_FALSE(JsonDocument::parse(annidato(10'000)).ok());
  EXPECT_FALSE(JsonDocument::parse(std::string(1'000'000, '[')).ok());
  EXPECT_FALSE(JsonDocument::parse("[\"\xFF\"]").ok());
  EXPECT_FALSE(JsonDocument::parse("[1]", 2).ok());
  for (const char* rotto : {"", "{", "[1,]", "{\"a\":1}x", "nul", "'a'"}) {
    EXPECT_FALSE(JsonDocument::parse(rotto).ok()) << rotto;
  }
}

}  // namespace
}  // namespace pellak
