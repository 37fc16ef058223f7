#include "PellakCore/StatoTesto.h"

#include <algorithm>
#include <memory>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/Libera.h"

namespace pellak {
namespace {

/// Typical bytes of one written entry, for reserving room before writing.
constexpr std::size_t kBytePerVoce = 200;

void scriviDimensione(JsonWriter& uscita, std::string_view chiave, std::int64_t byte) {
  uscita.key(chiave).openText();
  appendDimensione(uscita.uscita(), byte);
  uscita.closeText();
}

/// What the icon of a group is looked up by: the first of these that is there.
std::string_view chiaveIcona(const Group& gruppo) {
  if (!gruppo.scheda->bundle.empty()) return gruppo.scheda->bundle;
  return gruppo.scheda->prog;
}

void scriviGruppo(JsonWriter& uscita, const Finding& finding, const Group& gruppo,
                  const IconaNota& icona) {
  const bool sistema = gruppo.scheda->dominio == "system" || finding.kind == "avvio-sys";
  const std::string_view chiave = chiaveIcona(gruppo);
  uscita.beginObject();
  uscita.key("name").text(gruppo.scheda->name);
  uscita.key("bundle").text(gruppo.scheda->bundle);
  uscita.key("size").integer(gruppo.size);
  scriviDimensione(uscita, "size_h", gruppo.size);
  uscita.key("icon_src").text(chiave.empty() ? std::string() : icona(chiave));
  uscita.key("url").text(gruppo.scheda->url);
  uscita.key("spento").boolean(gruppo.scheda->spento);
  uscita.key("admin").boolean(sistema);
  uscita.key("system").boolean(sistema);
  if (!gruppo.scheda->desc.empty()) uscita.key("desc").text(gruppo.scheda->desc);
  uscita.key("pesi").beginArray();
  for (const std::int64_t peso : gruppo.scheda->pesi) uscita.integer(peso);
  uscita.endArray();
  uscita.key("deboli").texts(gruppo.scheda->deboli);
  uscita.key("paths").texts(gruppo.paths);
  if (finding.duplicati()) {
    uscita.key("waste").integer(recuperabili(gruppo));
    scriviDimensione(uscita, "waste_h", recuperabili(gruppo));
  }
  uscita.key("libera").integer(libera(finding, gruppo));
  if (finding.duplicati() && gruppo.libere.diverse()) {
    uscita.key("libere").beginArray();
    for (std::size_t i = 0; i < gruppo.paths.size(); ++i) uscita.integer(gruppo.libere[i]);
    uscita.endArray();
  }
  if (finding.duplicati() && !gruppo.paths.empty()) {
    uscita.key("tieni").text(gruppo.paths[copiaTenuta(gruppo)]);
  }
  if (finding.insieme()) uscita.key("insieme").boolean(true);
  uscita.endObject();
}

std::string scriviFindings(const Sec& sezione, FormatoData& date, const IconaNota& icona) {
  JsonWriter uscita;
  std::size_t voci = 1;
  for (const Finding& finding : sezione.findings) voci += finding.items.size();
  uscita.reserve(voci * kBytePerVoce);
  uscita.beginArray();
  for (const Finding& finding : sezione.findings) {
    scriviFinding(uscita, finding, {finding.items, finding.groups}, date, icona);
  }
  uscita.endArray();
  return uscita.take();
}

void scriviConteggi(JsonWriter& uscita, const Meta& meta, const Sec& sezione) {
  for (const Finding& finding : sezione.findings) {
    const auto gruppi = static_cast<std::int64_t>(finding.groups.size());
    if (finding.id == "apps") {
      uscita.key("apps_n").integer(gruppi);
      scriviDimensione(uscita, "apps_h", finding.totale());
    } else if (finding.id == "updates") {
      uscita.key("updates_n").integer(gruppi);
    }
  }
  if (meta.id != "avvio") return;
  std::int64_t elementi = 0;
  for (const Finding& finding : sezione.findings) {
    elementi += static_cast<std::int64_t>(finding.groups.size());
  }
  uscita.key("avvio_n").integer(elementi);
}

}  // namespace

void scriviDinieghi(JsonWriter& uscita, const std::vector<RadiceNegata>& radici) {
  uscita.beginArray();
  for (const RadiceNegata& radice : radici) {
    uscita.beginObject();
    uscita.key("cartella").text(radice.cartella);
    uscita.key("quanti").integer(radice.quanti);
    uscita.endObject();
  }
  uscita.endArray();
}

void scriviTrattenuti(JsonWriter& uscita, const Finding& finding) {
  if (finding.trattenuti.empty()) return;
  uscita.key("perche_no").beginArray();
  for (const Trattenuto& trattenuto : finding.trattenuti) {
    uscita.beginObject();
    uscita.key("percorso").text(trattenuto.percorso);
    uscita.key("perche").text(trattenuto.perche);
    uscita.endObject();
  }
  uscita.endArray();
}

void scriviVoce(JsonWriter& uscita, const Voce& voce, std::int64_t libera, FormatoData& date) {
  // By hand: a full reply holds a hundred thousand of these.
  std::string& testo = uscita.openRaw();
  testo += "{\"path\":\"";
  appendJsonText(testo, voce.path);
  testo += "\",\"size\":";
  appendJsonInteger(testo, voce.size);
  testo += ",\"size_h\":\"";
  appendDimensione(testo, voce.size);
  testo += "\",\"when\":\"";
  date.append(testo, voce.mtime);
  testo += "\",\"mtime\":";
  appendJsonNumber(testo, voce.mtime);
  if (libera != voce.size) {
    testo += ",\"libera\":";
    appendJsonInteger(testo, libera);
  }
  testo += '}';
}

void scriviFinding(JsonWriter& uscita, const Finding& finding, const VociElencate& elencate,
                   FormatoData& date, const IconaNota& icona) {
  uscita.beginObject();
  uscita.key("id").text(finding.id);
  uscita.key("name").text(finding.name);
  uscita.key("mode").text(finding.mode);
  uscita.key("note").text(finding.note);
  uscita.key("hint").text(finding.hint);
  uscita.key("unmeasured").boolean(finding.unmeasured);
  uscita.key("total").integer(finding.totale());
  scriviDimensione(uscita, "total_h", finding.totale());
  uscita.key("count").integer(finding.quante());
  uscita.key("kind").text(finding.kind);
  uscita.key("items").beginArray();
  const bool soloReport = finding.mode != "delete" || finding.unmeasured;
  for (const Voce& voce : elencate.items) {
    scriviVoce(uscita, voce, soloReport ? 0 : voce.libera(), date);
  }
  uscita.endArray();
  uscita.key("groups").beginArray();
  for (const Group& gruppo : elencate.groups) scriviGruppo(uscita, finding, gruppo, icona);
  uscita.endArray();
  uscita.key("libera").integer(libera(finding));
  scriviTrattenuti(uscita, finding);
  uscita.endObject();
}

const StatoTesto::Scritto& StatoTesto::findings(const Meta& meta, const Sec& sezione,
                                                const IconaNota& icona) {
  Scritto& scritto = scritti_[meta.id];
  if (scritto.testo == nullptr || scritto.findingsVer != sezione.findingsVer) {
    scritto.testo = std::make_shared<const std::string>(scriviFindings(sezione, date_, icona));
    scritto.totale = sezione.totale();
    scritto.findingsVer = sezione.findingsVer;
  }
  return scritto;
}

void StatoTesto::scriviSezione(Rope& uscita, const Meta& meta, const Sec& sezione,
                               const Contorno& contorno, bool primo, const IconaNota& icona) {
  const Scritto& scritto = findings(meta, sezione, icona);
  JsonWriter testa;
  testa.beginObject();
  testa.key("id").text(meta.id);
  testa.key("name").text(meta.name);
  testa.key("desc").text(meta.desc);
  testa.key("scanning").boolean(sezione.scanning);
  testa.key("scanned").boolean(sezione.scanned);
  testa.key("queued").boolean(contorno.inCoda);
  testa.key("status").text(sezione.statoMostrato());
  testa.key("denied").integer(sezione.denied);
  scriviDinieghi(testa.key("denied_top"), sezione.deniedTop);
  testa.key("last_scan").number(sezione.lastScan);
  testa.key("total").integer(scritto.totale);
  scriviDimensione(testa, "total_h", scritto.totale);
  testa.key("findings");
  uscita.add((primo ? "" : ",") + testa.take());
  uscita.add(scritto.testo);

  // Members after the findings; the writer starts in the middle of the object.
  JsonWriter coda;
  scriviConteggi(coda, meta, sezione);
  coda.key("libera").integer(contorno.libera);
  coda.key("disponibile").boolean(contorno.disponibile);
  if (!contorno.scandibile) coda.key("scandibile").boolean(false);
  uscita.add("," + coda.take() + "}");
}

}  // namespace pellak
