#include "PellakCore/Risultati.h"

#include <utility>

#include "PellakCore/StatoTesto.h"
#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

/// Our own file may hold far more than a request may.
constexpr std::size_t kMaxBytes = std::size_t{1} << 30U;

void scriviGruppo(JsonWriter& uscita, const Group& gruppo) {
  uscita.beginObject();
  uscita.key("size").integer(gruppo.size);
  uscita.key("hash").text(gruppo.hash);
  uscita.key("paths").texts(gruppo.paths);
  uscita.key("name").text(gruppo.name);
  uscita.key("bundle").text(gruppo.bundle);
  uscita.key("prog").text(gruppo.prog);
  uscita.key("url").text(gruppo.url);
  uscita.key("desc").text(gruppo.desc);
  uscita.key("label").text(gruppo.label);
  uscita.key("dominio").text(gruppo.dominio);
  uscita.key("pesi").beginArray();
  for (const std::int64_t peso : gruppo.pesi) uscita.integer(peso);
  uscita.endArray();
  if (!gruppo.mtimesNs.empty()) {
    uscita.key("mtimes_ns").beginArray();
    for (const std::int64_t scritta : gruppo.mtimesNs) uscita.integer(scritta);
    uscita.endArray();
  }
  uscita.key("deboli").texts(gruppo.deboli);
  uscita.key("spento").boolean(gruppo.spento);
  uscita.endObject();
}

void scriviFinding(JsonWriter& uscita, const Finding& finding) {
  uscita.beginObject();
  uscita.key("id").text(finding.id);
  uscita.key("categoria").text(finding.categoria);
  uscita.key("name").text(finding.name);
  uscita.key("mode").text(finding.mode);
  uscita.key("note").text(finding.note);
  uscita.key("hint").text(finding.hint);
  uscita.key("kind").text(finding.kind);
  uscita.key("unmeasured").boolean(finding.unmeasured);
  uscita.key("items").beginArray();
  for (const Voce& voce : finding.items) {
    uscita.beginObject();
    uscita.key("path").text(voce.path);
    uscita.key("size").integer(voce.size);
    uscita.key("mtime").number(voce.mtime);
    uscita.endObject();
  }
  uscita.endArray();
  uscita.key("groups").beginArray();
  for (const Group& gruppo : finding.groups) scriviGruppo(uscita, gruppo);
  uscita.endArray();
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

Group leggiGruppo(Json voce) {
  Group gruppo;
  gruppo.size = leggiByte(voce["size"]);
  gruppo.hash = voce.testo("hash");
  gruppo.paths = voce.testi("paths");
  gruppo.name = voce.testo("name");
  gruppo.bundle = voce.testo("bundle");
  gruppo.prog = voce.testo("prog");
  gruppo.url = voce.testo("url");
  gruppo.desc = voce.testo("desc");
  gruppo.label = voce.testo("label");
  gruppo.dominio = voce.testo("dominio");
  voce["pesi"].perOgni([&](Json peso) { gruppo.pesi.push_back(leggiByte(peso)); });
  voce["mtimes_ns"].perOgni(
      [&](Json scritta) { gruppo.mtimesNs.push_back(scritta.intero().value_or(0)); });
  gruppo.deboli = voce.testi("deboli");
  gruppo.spento = voce.booleano("spento", false);
  return gruppo;
}

Finding leggiFinding(Json voce) {
  Finding finding;
  finding.id = voce.testo("id");
  finding.categoria = voce.testo("categoria");
  finding.name = voce.testo("name");
  finding.mode = voce.testo("mode");
  finding.note = voce.testo("note");
  finding.hint = voce.testo("hint");
  finding.kind = voce.testo("kind");
  finding.unmeasured = voce.booleano("unmeasured", false);
  finding.items.reserve(voce["items"].quanti());
  voce["items"].perOgni([&](Json elemento) {
    finding.items.push_back(
        {elemento.testo("path"), leggiByte(elemento["size"]), elemento.numero("mtime", 0)});
  });
  finding.groups.reserve(voce["groups"].quanti());
  voce["groups"].perOgni([&](Json elemento) { finding.groups.push_back(leggiGruppo(elemento)); });
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
