#include <future>
#include <tuple>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RotteStatoTest : public Richieste {
 protected:
  static Finding conVoci(std::size_t numero) {
    Finding finding;
    finding.id = "duplicates";
    finding.mode = "delete";
    for (std::size_t i = 0; i < numero; ++i) {
      finding.items.push_back({"/h/" + std::to_string(i), static_cast<std::int64_t>(i), 0});
    }
    return finding;
  }

  /// Number of entries, place of the first and all entries of one page.
  using Pagina = std::tuple<std::size_t, std::int64_t, std::int64_t>;
  Pagina pagina(const std::string& corpo) {
    const auto documento = JsonDocument::parse(rispondi("/api/voci", corpo).testo.str());
    const Json radice = documento->radice();
    return {radice["items"].quanti(), radice.intero("da", -1), radice.intero("count", -1)};
  }
};

TEST_F(RotteStatoTest, AnUnchangedStateIsTheSameTextAndShortForWhoHasIt) {
  const Risposta prima = rispondi("/api/state");
  const Risposta seconda = rispondi("/api/state", R"({"ver":0})");
  EXPECT_EQ(prima.testo.pieces(), seconda.testo.pieces()) << "not even copied";
  const std::string ver = std::to_string(motore().snapshot()->ver);
  EXPECT_EQ(chiedi("/api/state", R"({"ver":)" + ver + "}"),
            R"(200 {"ver":)" + ver + R"(,"busy":false,"invariato":true})");
  for (const std::string& altro : {"\"" + ver + "\"", "[" + ver + "]", ver + "0", ver + ".5"}) {
    EXPECT_EQ(rispondi("/api/state", R"({"ver":)" + altro + "}").testo.pieces(),
              prima.testo.pieces())
        << altro;
  }
}

TEST_F(RotteStatoTest, OneScanAtATimeOfSectionsThatExist) {
  std::promise<void> via;
  std::promise<void> cominciata;
  tabella.speciali["duplicates"] = {"Ricerca", [&](const ScanContext& contesto) {
                                      cominciata.set_value();
                                      via.get_future().wait();
                                      EXPECT_TRUE(contesto.stop());
                                      return std::vector<Finding>{};
                                    }};
  EXPECT_EQ(chiedi("/api/scan", R"({"section":"Duplicati"})"),
            R"(200 {"err":"sezione inesistente"})");
  EXPECT_EQ(chiedi("/api/scan", R"({"section":""})"), R"(200 {"err":"sezione inesistente"})");
  EXPECT_FALSE(motore().snapshot()->busy);
  EXPECT_EQ(chiedi("/api/scan"), R"(200 {"ok":true})");
  cominciata.get_future().wait();
  const auto stato = motore().snapshot();
  EXPECT_TRUE(stato->busy);
  const RiassuntoSezione& duplicati = stato->sezioni.at(2);
  EXPECT_TRUE(duplicati.scanning && !duplicati.queued && stato->sezioni.at(3).queued);
  EXPECT_EQ(duplicati.status, "Ricerca");
  EXPECT_EQ(chiedi("/api/scan"), R"(200 {"err":"scansione già in corso"})");
  EXPECT_EQ(motore().snapshot(), stato) << "a refused start changes nothing";
  EXPECT_EQ(chiedi("/api/stop"), R"(200 {"ok":true})");
  via.set_value();
  motore().attendiFine();
  EXPECT_FALSE(motore().snapshot()->busy);
}

TEST_F(RotteStatoTest, EntriesComeInPages) {
  trova(conVoci(20'002));
  scandisci("duplicati");
  EXPECT_EQ(pagina(R"({"id":"duplicates"})"), (Pagina{500, 0, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","quante":"7","da":"1"})"), (Pagina{500, 0, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","quante":0})"), (Pagina{1, 0, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","quante":-9,"da":-9})"), (Pagina{1, 0, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","quante":50000})"), (Pagina{20'000, 0, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","da":20000})"), (Pagina{2, 20'000, 20'002}));
  EXPECT_EQ(pagina(R"({"id":"duplicates","da":20002})"), (Pagina{0, 20'002, 20'002}));
  EXPECT_EQ(std::get<0>(pagina(R"({"id":"duplicates","da":9223372036854775807})")), 0U);
  EXPECT_EQ(chiedi("/api/voci", R"({"id":"duplicates","quante":1})"),
            R"(200 {"count":20002,"da":0,"items":[{"path":"/h/20001","size":20001,)"
            R"("size_h":"19.5 KiB","when":"-","mtime":0}]})");
  EXPECT_EQ(chiedi("/api/voci", R"({"id":"duplicates","quante":1,"da":1,"ordine":"nome"})"),
            R"(200 {"count":20002,"da":1,"items":[{"path":"/h/1","size":1,"size_h":"1 B",)"
            R"("when":"-","mtime":0}]})");
  EXPECT_EQ(chiedi("/api/voci", R"({"id":"apps"})"), R"(200 {"err":"categoria inesistente"})");
  EXPECT_EQ(chiedi("/api/voci"), R"(200 {"err":"categoria inesistente"})");
}

TEST_F(RotteStatoTest, IconsAreDataAddresses) {
  applicazioni.icone["org.uno"] = "PNG";
  applicazioni.icone["/opt/\xff"] = "due";
  EXPECT_EQ(chiedi("/api/icon", R"({"key":"org.uno"})"),
            R"(200 {"icon":"data:image/png;base64,UE5H"})");
  EXPECT_EQ(chiedi("/api/icon", R"({"key":"org.manca"})"), R"(200 {"icon":""})");
  EXPECT_EQ(chiedi("/api/icon", R"({"key":9})"), R"(200 {"icon":""})");
  EXPECT_EQ(chiedi("/api/icons",
                   "{\"keys\":[\"org.uno\",7,\"org.manca\",\"org.uno\","
                   "\"/opt/\\uefff\"]}"),
            "200 {\"icons\":{\"org.uno\":\"data:image/png;base64,UE5H\","
            "\"/opt/\xee\xbf\xbf\":\"data:image/png;base64,ZHVl\"}}");
  EXPECT_EQ(chiedi("/api/icons", R"({"keys":"org.uno"})"), R"(200 {"icons":{}})");
}

TEST_F(RotteStatoTest, AFloodOfIconKeysIsCut) {
  std::string chiavi;
  for (int i = 0; i < 3000; ++i) chiavi += "\"k" + std::to_string(i) + "\",";
  EXPECT_EQ(chiedi("/api/icons", "{\"keys\":[" + chiavi + "\"fine\"]}"), R"(200 {"icons":{}})");
  EXPECT_EQ(applicazioni.iconeDisegnate, 2000);
}

}  // namespace
}  // namespace pellak::api
