#include "trash/Intenti.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak::trash {
namespace {

constexpr std::size_t kLimite = std::size_t{1} << 30U;

/// As text: an inode number may be larger than a JSON reader's integers.
std::uint64_t numero(const std::string& testo) {
  std::uint64_t valore = 0;
  for (const char cifra : testo) {
    if (cifra < '0' || cifra > '9') return 0;
    valore = valore * 10 + static_cast<std::uint64_t>(cifra - '0');
  }
  return valore;
}

Intento intentoDa(Json radice) {
  Intento intento;
  intento.ripristino = radice.testo("ripristino");
  intento.operazione.id = radice.testo("id");
  intento.operazione.ts = radice.numero("ts", 0);
  intento.operazione.azione = radice.testo("azione");
  intento.operazione.tot = radice.intero("tot", 0);
  intento.passi.reserve(radice["passi"].quanti());
  radice["passi"].perOgni([&](Json voce) {
    Intento::Passo passo;
    passo.piano = {voce.testo("orig"), voce.testo("trash"), numero(voce.testo("dev")),
                   numero(voce.testo("ino")), std::max<std::int64_t>(voce.intero("size", 0), 0)};
    passo.destinazione = voce.testo("destinazione");
    passo.indice = static_cast<std::size_t>(voce.intero("indice", 0));
    passo.insieme = voce.intero("insieme", 0);
    intento.passi.push_back(std::move(passo));
  });
  return intento;
}

}  // namespace

Result<std::size_t> Intenti::scrivi(const Intento& intento) {
  const Operazione& operazione = intento.operazione;
  JsonWriter uscita;
  uscita.beginObject().key("id").text(operazione.id).key("ts").number(operazione.ts);
  uscita.key("azione").text(operazione.azione).key("tot").integer(operazione.tot);
  uscita.key("ripristino").text(intento.ripristino).key("passi").beginArray();
  for (const Intento::Passo& passo : intento.passi) {
    uscita.beginObject().key("orig").text(passo.piano.percorso);
    uscita.key("trash").text(passo.piano.nelCestino);
    uscita.key("dev").text(std::to_string(passo.piano.dev));
    uscita.key("ino").text(std::to_string(passo.piano.ino));
    if (passo.piano.size > 0) uscita.key("size").integer(passo.piano.size);
    if (!passo.destinazione.empty()) {
      uscita.key("destinazione").text(passo.destinazione);
      uscita.key("indice").integer(static_cast<std::int64_t>(passo.indice));
    }
    if (passo.insieme != 0) uscita.key("insieme").integer(passo.insieme);
    uscita.endObject();
  }
  uscita.endArray().endObject();
  const std::string testo = uscita.take();
  const std::array<std::string_view, 1> pezzi = {testo};
  if (auto scritto = files_.replace(percorso_, pezzi); !scritto) return scritto.error();
  return testo.size();
}

Result<std::optional<Intento>> Intenti::leggi() const {
  const auto testo = files_.read(percorso_, kLimite);
  if (!testo) {
    if (testo.error().kind == ErrorKind::missing) return std::optional<Intento>();
    return testo.error();
  }
  const auto documento = JsonDocument::parse(*testo, kLimite);
  if (!documento) return documento.error();
  const Json radice = documento->radice();
  const bool intento = radice["passi"].lista() &&
                       (!radice.testo("id").empty() || !radice.testo("ripristino").empty());
  if (!intento) return Error{ErrorKind::invalid, 0, "not an intent"};
  return std::optional<Intento>(intentoDa(radice));
}

}  // namespace pellak::trash
