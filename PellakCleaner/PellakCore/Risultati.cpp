#include "PellakCore/Risultati.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "PellakCore/StatoTesto.h"
#include "PellakCore/base/Esadecimale.h"
#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

/// Our own file may hold far more than a request may.
constexpr std::size_t kMaxBytes = std::size_t{1} << 30U;
constexpr auto kUltimoTipo = static_cast<std::int64_t>(EntryType::other);

/// A text of an object under its key, the same for writing and for reading.
template <class Cosa>
struct Testo {
  std::string_view chiave;
  std::string Cosa::*campo;
};

constexpr Testo<Scheda> kTestiScheda[] = {{"name", &Scheda::name},      {"bundle", &Scheda::bundle},
                                          {"prog", &Scheda::prog},      {"url", &Scheda::url},
                                          {"desc", &Scheda::desc},      {"label", &Scheda::label},
                                          {"dominio", &Scheda::dominio}};
constexpr Testo<Finding> kTestiFinding[] = {
    {"id", &Finding::id},     {"categoria", &Finding::categoria}, {"name", &Finding::name},
    {"mode", &Finding::mode}, {"note", &Finding::note},           {"hint", &Finding::hint},
    {"kind", &Finding::kind}};

template <class Cosa>
void scriviTesti(JsonWriter& uscita, const Cosa& cosa,
                 std::span<const Testo<std::type_identity_t<Cosa>>> testi) {
  for (const auto& [chiave, campo] : testi) uscita.key(chiave).text(cosa.*campo);
}

template <class Cosa>
void leggiTesti(Json voce, Cosa& cosa, std::span<const Testo<std::type_identity_t<Cosa>>> testi) {
  for (const auto& [chiave, campo] : testi) cosa.*campo = voce.testo(chiave);
}

void scriviIdentita(JsonWriter& uscita, const Identita& identita) {
  uscita.beginArray();
  uscita.integer(static_cast<std::int64_t>(identita.inode));
  uscita.integer(identita.mtimeNs);
  uscita.integer(identita.ctimeNs);
  uscita.integer(static_cast<std::int64_t>(identita.type));
  if (identita.svantaggi != 0) uscita.integer(identita.svantaggi);
  uscita.endArray();
}

/// Unknown when it is anything but such a list.
Identita leggiIdentita(Json lista) {
  std::vector<std::int64_t> campi;
  lista.perOgni([&](Json campo) { campi.push_back(campo.intero().value_or(-1)); });
  if (campi.size() < 4 || campi[3] < 0 || campi[3] > kUltimoTipo) return {};
  const std::int64_t svantaggi = campi.size() > 4 ? campi[4] : 0;
  return {static_cast<std::uint64_t>(campi[0]), campi[1], campi[2],
          static_cast<EntryType>(campi[3]), static_cast<std::uint8_t>(svantaggi)};
}

void scriviScheda(JsonWriter& uscita, const Scheda& scheda) {
  scriviTesti(uscita, scheda, kTestiScheda);
  uscita.key("pesi").beginArray();
  for (const std::int64_t peso : scheda.pesi) uscita.integer(peso);
  uscita.endArray();
  uscita.key("deboli").texts(scheda.deboli);
  uscita.key("spento").boolean(scheda.spento);
}

void scriviLibere(JsonWriter& uscita, const Group& gruppo) {
  if (!gruppo.libere.diverse() && gruppo.libere[0] == 0) return;
  uscita.key("libere").beginArray();
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) uscita.integer(gruppo.libere[i]);
  uscita.endArray();
}

void scriviGruppo(JsonWriter& uscita, const Group& gruppo) {
  uscita.beginObject();
  uscita.key("size").integer(gruppo.size);
  uscita.key("hash").text(gruppo.conHash() ? esadecimale(gruppo.hash) : std::string());
  uscita.key("paths").texts(gruppo.paths);
  if (!gruppo.identita.empty()) {
    uscita.key("identita").beginArray();
    for (const Identita& identita : gruppo.identita) scriviIdentita(uscita, identita);
    uscita.endArray();
  }
  if (gruppo.dallaCache) uscita.key("dalla_cache").boolean(true);
  scriviLibere(uscita, gruppo);
  if (gruppo.scheda.presente()) scriviScheda(uscita, *gruppo.scheda);
  uscita.endObject();
}

void scriviFinding(JsonWriter& uscita, const Finding& finding) {
  uscita.beginObject();
  scriviTesti(uscita, finding, kTestiFinding);
  uscita.key("unmeasured").boolean(finding.unmeasured);
  uscita.key("items").beginArray();
  for (const Voce& voce : finding.items) {
    uscita.beginObject();
    uscita.key("path").text(voce.path);
    uscita.key("size").integer(voce.size);
    uscita.key("mtime").number(voce.mtime);
    if (voce.condivisi != 0) uscita.key("condivisi").integer(voce.condivisi);
    if (voce.identita.nota()) {
      uscita.key("lunghezza").integer(voce.lunghezza);
      scriviIdentita(uscita.key("identita"), voce.identita);
    }
    uscita.endObject();
  }
  uscita.endArray();
  uscita.key("groups").beginArray();
  for (const Group& gruppo : finding.groups) scriviGruppo(uscita, gruppo);
  uscita.endArray();
  scriviTrattenuti(uscita, finding);
  uscita.endObject();
}

void scriviSezione(JsonWriter& uscita, const Sec& sezione) {
  uscita.beginObject();
  uscita.key("ts").number(sezione.lastScan);
  uscita.key("status").text(sezione.scanning ? sezione.esito : sezione.status);
  uscita.key("denied").integer(sezione.denied);
  scriviDinieghi(uscita.key("denied_top"), sezione.deniedTop);
  uscita.key("findings").beginArray();
  for (const Finding& finding : sezione.findings) scriviFinding(uscita, finding);
  uscita.endArray();
  uscita.endObject();
}

/// A saved size is never negative; a broken file must not make totals overflow either.
std::int64_t leggiByte(Json valore) {
  constexpr std::int64_t kMassimo = std::int64_t{1} << 53U;
  const std::int64_t byte = valore.intero().value_or(0);
  return byte < 0 || byte > kMassimo ? 0 : byte;
}

Scheda leggiScheda(Json voce) {
  Scheda scheda;
  leggiTesti(voce, scheda, kTestiScheda);
  voce["pesi"].perOgni([&](Json peso) { scheda.pesi.push_back(leggiByte(peso)); });
  scheda.deboli = voce.testi("deboli");
  scheda.spento = voce.booleano("spento", false);
  return scheda;
}

Group leggiGruppo(Json voce) {
  Group gruppo;
  gruppo.size = leggiByte(voce["size"]);
  daEsadecimale(voce.testo("hash"), gruppo.hash);
  gruppo.paths = voce.testi("paths");
  voce["identita"].perOgni(
      [&](Json identita) { gruppo.identita.push_back(leggiIdentita(identita)); });
  if (gruppo.identita.size() != gruppo.paths.size()) gruppo.identita.clear();
  gruppo.dallaCache = voce.booleano("dalla_cache", false);
  Scheda scheda = leggiScheda(voce);
  if (scheda != Scheda()) gruppo.scheda.scrivi() = std::move(scheda);
  std::vector<std::int64_t> libere;
  voce["libere"].perOgni([&](Json byte) { libere.push_back(leggiByte(byte)); });
  if (libere.size() == gruppo.paths.size()) gruppo.libere = Libere(libere);
  return gruppo;
}

Finding leggiFinding(Json voce) {
  Finding finding;
  leggiTesti(voce, finding, kTestiFinding);
  finding.unmeasured = voce.booleano("unmeasured", false);
  finding.items.reserve(voce["items"].quanti());
  voce["items"].perOgni([&](Json elemento) {
    const std::int64_t size = leggiByte(elemento["size"]);
    finding.items.push_back({elemento.testo("path"), size, elemento.numero("mtime", 0),
                             leggiByte(elemento["lunghezza"]), leggiIdentita(elemento["identita"]),
                             std::min(size, leggiByte(elemento["condivisi"]))});
  });
  finding.groups.reserve(voce["groups"].quanti());
  voce["groups"].perOgni([&](Json elemento) { finding.groups.push_back(leggiGruppo(elemento)); });
  voce["perche_no"].perOgni([&](Json elemento) {
    finding.trattieni(elemento.testo("percorso"), elemento.testo("perche"));
  });
  return finding;
}

void leggiSezione(Json voce, Sec& sezione) {
  sezione.scanned = true;
  sezione.lastScan = voce.numero("ts", 0);
  sezione.status = voce.testo("status");
  sezione.esito = sezione.status;
  sezione.denied = voce.intero("denied", 0);
  sezione.deniedTop.clear();
  voce["denied_top"].perOgni([&](Json radice) {
    sezione.deniedTop.push_back({radice.testo("cartella"), radice.intero("quanti", 0)});
  });
  sezione.findings.clear();
  voce["findings"].perOgni([&](Json finding) {
    if (finding.oggetto()) sezione.findings.push_back(leggiFinding(finding));
  });
  ++sezione.findingsVer;
}

}  // namespace

std::string scriviRisultati(const Sezioni& sezioni) {
  JsonWriter uscita;
  uscita.beginObject();
  for (const auto& [id, sezione] : sezioni) {
    uscita.textKey(id);
    scriviSezione(uscita, sezione);
  }
  uscita.endObject();
  return uscita.take();
}

Result<void> leggiRisultati(std::string_view testo, Sezioni& sezioni) {
  Result<JsonDocument> documento = JsonDocument::parse(testo, kMaxBytes);
  if (!documento) return documento.error();
  const Json radice = documento->radice();
  if (!radice.oggetto()) return Error{ErrorKind::invalid, 0, "not an object"};
  for (auto& [id, sezione] : sezioni) {
    const Json salvata = radice[id];
    if (salvata.numero("ts", 0) > 0) leggiSezione(salvata, sezione);
  }
  return {};
}

}  // namespace pellak
