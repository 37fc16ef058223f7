#include "trash/Registro.h"

#include <array>
#include <cstddef>
#include <limits>
#include <random>
#include <span>
#include <unordered_set>
#include <utility>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak::trash {
namespace {

constexpr std::size_t kNessunLimite = std::numeric_limits<std::int64_t>::max();
/// Millions of operations; a file beyond it is no log of ours.
constexpr std::int64_t kMaxBytes = std::int64_t{1} << 30U;

Operazione operazioneDa(Json riga) {
  Operazione letta;
  letta.id = riga.testo("id");
  letta.ts = riga.numero("ts", 0);
  letta.azione = riga.testo("azione");
  letta.tot = riga.intero("tot", 0);
  letta.nota = riga.testo("nota");
  letta.items.reserve(riga["items"].quanti());
  riga["items"].perOgni([&](Json voce) {
    letta.items.push_back({voce.testo("orig"), voce.testo("trash"), voce.booleano("rip", false),
                           false, voce.intero("insieme", 0)});
  });
  return letta;
}

}  // namespace

std::string nuovoId() {
  constexpr std::string_view kCifre = "0123456789ABCDEF";
  std::random_device caso;
  std::string id;
  while (id.size() < 12) id += id.size() == 8 ? '-' : kCifre[caso() % kCifre.size()];
  return id;
}

bool Registro::finisceACapo() const {
  const auto file = reader_.open(percorso_, ReadPlan::samples);
  if (!file) return true;
  const auto stato = (*file)->mark();
  if (!stato || stato->size == 0) return true;
  std::array<std::byte, 1> ultimo{};
  const auto letti = (*file)->readAt(stato->size - 1, ultimo);
  return !letti || *letti == 0 || ultimo[0] == std::byte{'\n'};
}

/// A torn last line stays as it is, on a line of its own.
Result<void> Registro::scrivi(std::string riga) {
  if (!finisceACapo()) riga.insert(riga.begin(), '\n');
  return files_.appendLine(percorso_, riga);
}

void scriviOperazione(JsonWriter& uscita, const Operazione& operazione) {
  uscita.beginObject().key("id").text(operazione.id).key("ts").number(operazione.ts);
  uscita.key("azione").text(operazione.azione).key("tot").integer(operazione.tot);
  if (!operazione.nota.empty()) uscita.key("nota").text(operazione.nota);
  uscita.key("items").beginArray();
  for (const Mossa& mossa : operazione.items) {
    uscita.beginObject().key("orig").text(mossa.orig);
    if (!mossa.trash.empty()) uscita.key("trash").text(mossa.trash);
    uscita.key("rip").boolean(mossa.rip);
    if (mossa.insieme != 0) uscita.key("insieme").integer(mossa.insieme);
    uscita.endObject();
  }
  uscita.endArray().endObject();
}

Result<void> Registro::logOperation(const Operazione& operazione) {
  JsonWriter uscita;
  scriviOperazione(uscita, operazione);
  return scrivi(uscita.take());
}

Result<void> Registro::logRestore(std::string_view operazione,
                                  const std::vector<std::size_t>& indici, double ts,
                                  std::string_view nota) {
  JsonWriter uscita;
  uscita.beginObject().key("ripristino").text(operazione).key("ts").number(ts);
  if (!nota.empty()) uscita.key("nota").text(nota);
  uscita.key("indici").beginArray();
  for (const std::size_t indice : indici) uscita.integer(static_cast<std::int64_t>(indice));
  uscita.endArray().endObject();
  return scrivi(uscita.take());
}

Result<void> Registro::pronto(std::size_t byte) {
  if (const auto file = apri(); !file && file.error().kind != ErrorKind::missing) {
    return file.error();
  }
  return files_.appendable(percorso_, byte);
}

Result<void> Registro::leggi() {
  const MutexLock hold(lock_);
  return aggiorna();
}

Error Registro::delFile(Error errore) const {
  errore.percorso = percorso_;
  return errore;
}

Result<Registro::Aperto> Registro::apri() const {
  auto file = reader_.open(percorso_, ReadPlan::whole);
  if (!file) return delFile(file.error());
  const auto stato = (*file)->mark();
  if (!stato) return delFile(stato.error());
  if (!stato->regular || stato->size > kMaxBytes) {
    return delFile({ErrorKind::invalid, 0, "non è un registro"});
  }
  return Aperto{std::move(*file), *stato};
}

/// Reads what was appended since the last time; all of it when it is another file now.
Result<void> Registro::aggiorna() {
  const auto aperto = apri();
  const FileMark* stato = aperto ? &aperto->stato : nullptr;
  const bool stesso =
      stato != nullptr && stato->dev == dev_ && stato->ino == ino_ && stato->size >= letti_;
  if (!stesso) {
    operazioni_.clear();
    posti_.clear();
    letti_ = 0;
  }
  if (!aperto && aperto.error().kind == ErrorKind::missing) return {};
  if (!aperto) return aperto.error();
  dev_ = stato->dev;
  ino_ = stato->ino;
  std::string testo(static_cast<std::size_t>(stato->size - letti_), '\0');
  const auto letti = aperto->file->readAt(letti_, std::as_writable_bytes(std::span(testo)));
  if (!letti) return delFile(letti.error());
  leggiRighe(std::string_view(testo).substr(0, *letti));
  return {};
}

/// The last line may be torn, or on its way: unless it is whole it is read again next time.
void Registro::leggiRighe(std::string_view testo) {
  while (!testo.empty()) {
    const std::size_t fine = testo.find('\n');
    const bool intera = leggiRiga(testo.substr(0, fine));
    if (fine == std::string_view::npos && !intera) return;
    const std::size_t presi = fine == std::string_view::npos ? testo.size() : fine + 1;
    letti_ += static_cast<std::int64_t>(presi);
    testo.remove_prefix(presi);
  }
}

bool Registro::leggiRiga(std::string_view riga) {
  const auto documento = JsonDocument::parse(riga, kNessunLimite);
  if (!documento || !documento->radice().oggetto()) return false;
  const Json radice = documento->radice();
  if (radice.contiene("ripristino")) {
    leggiRipristino(radice);
    return true;
  }
  Operazione letta = operazioneDa(radice);
  if (!letta.id.empty()) {
    posti_[letta.id] = operazioni_.size();
    operazioni_.push_back(std::move(letta));
  }
  return true;
}

void Registro::leggiRipristino(Json riga) {
  const auto posto = posti_.find(riga.testo("ripristino"));
  if (posto == posti_.end()) return;
  std::vector<Mossa>& items = operazioni_[posto->second].items;
  riga["indici"].perOgni([&](Json voce) {
    const auto indice = voce.intero();
    if (indice && *indice >= 0 && static_cast<std::size_t>(*indice) < items.size()) {
      items[static_cast<std::size_t>(*indice)].rip = true;
    }
  });
}

Result<void> Registro::visita(const std::function<void(const Operazione&)>& visita) {
  const MutexLock hold(lock_);
  if (auto letto = aggiorna(); !letto) return letto;
  for (auto voce = operazioni_.rbegin(); voce != operazioni_.rend(); ++voce) visita(*voce);
  return {};
}

std::optional<Operazione> Registro::cerca(std::string_view id) {
  const MutexLock hold(lock_);
  static_cast<void>(aggiorna());
  const auto posto = posti_.find(std::string(id));
  if (posto == posti_.end()) return {};
  Operazione trovata = operazioni_[posto->second];
  std::unordered_set<std::string_view> dopo;
  for (std::size_t i = posto->second + 1; i < operazioni_.size(); ++i) {
    for (const Mossa& mossa : operazioni_[i].items) dopo.insert(mossa.trash);
  }
  for (Mossa& mossa : trovata.items) mossa.superata = dopo.contains(mossa.trash);
  return trovata;
}

}  // namespace pellak::trash
