#include "shell/LettureSistema.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <numeric>
#include <utility>

#include "PellakCore/base/Formati.h"

namespace pellak::shell {
namespace {

constexpr double kPercento = 100;
constexpr int kMinutiPerOra = 60;

double media(const std::vector<double>& valori) {
  if (valori.empty()) return 0;
  return std::accumulate(valori.begin(), valori.end(), 0.0) / static_cast<double>(valori.size());
}

std::string percento(double parte) { return fmt::format("{:.0f}%", parte * kPercento); }

std::string alSecondo(double byte) {
  return dimensione(static_cast<std::int64_t>(std::llround(byte))) + "/s";
}

double quota(std::int64_t parte, std::int64_t intero) {
  if (intero <= 0) return 0;
  return std::clamp(static_cast<double>(parte) / static_cast<double>(intero), 0.0, 1.0);
}

StatRow riga(std::string simbolo, std::string titolo, std::string valore) {
  StatRow nuova;
  nuova.symbol = std::move(simbolo);
  nuova.title = std::move(titolo);
  nuova.value = std::move(valore);
  return nuova;
}

}  // namespace

LettureSistema::LettureSistema(SystemProbe& probe, const Clock& clock, std::string home)
    : probe_(probe), clock_(clock), home_(std::move(home)), prevCpu_(probe.cores()) {
  if (const auto rete = probe_.network()) prevNet_ = Rete{rete->rx, rete->tx, clock_.now()};
}

/// Busy fraction of each core since the sample before.
std::vector<double> LettureSistema::occupati() {
  std::vector<CoreTicks> ora = probe_.cores();
  std::vector<double> parti;
  for (std::size_t i = 0; i < ora.size() && i < prevCpu_.size(); ++i) {
    const double tutto = ora[i].total - prevCpu_[i].total;
    const double occupato = ora[i].busy - prevCpu_[i].busy;
    parti.push_back(tutto > 0 ? std::clamp(occupato / tutto, 0.0, 1.0) : 0);
  }
  prevCpu_ = std::move(ora);
  return parti;
}

std::optional<LettureSistema::Velocita> LettureSistema::velocita() {
  const auto ora = probe_.network();
  if (!ora) return {};
  const Rete nuova = {ora->rx, ora->tx, clock_.now()};
  const Rete prima = std::exchange(prevNet_, nuova).value_or(nuova);
  const double passati = nuova.t - prima.t;
  if (passati <= 0) return Velocita{};
  // An interface that went away takes its counters with it.
  return Velocita{std::max(0.0, nuova.rx - prima.rx) / passati,
                  std::max(0.0, nuova.tx - prima.tx) / passati};
}

StatRow LettureSistema::rigaCpu() {
  const std::vector<double> parti = occupati();
  StatRow cpu = riga("cpu", "Processore", percento(media(parti)));
  if (const auto carico = probe_.load()) {
    cpu.sub = fmt::format("carico {:.2f} · {} core", *carico, prevCpu_.size());
  }
  cpu.fraction = media(parti);
  cpu.cores = parti;
  return cpu;
}

std::optional<StatRow> LettureSistema::rigaRete() {
  const auto ora = velocita();
  if (!ora) return {};
  return riga("arrow.up.arrow.down", "Rete",
              "↓ " + alSecondo(ora->rx) + "  ↑ " + alSecondo(ora->tx));
}

std::optional<StatRow> LettureSistema::rigaDisco() const {
  const auto spazio = probe_.disk(home_);
  if (!spazio) return {};
  StatRow disco = riga("internaldrive", "Disco", dimensione(spazio->free) + " liberi");
  disco.sub = "su " + dimensione(spazio->total);
  disco.fraction = quota(spazio->used, spazio->total);
  return disco;
}

std::optional<StatRow> LettureSistema::rigaMemoria() const {
  const auto uso = probe_.memory();
  if (!uso) return {};
  StatRow memoria = riga("memorychip", "Memoria", dimensione(uso->used));
  memoria.sub = "su " + dimensione(uso->total);
  memoria.fraction = quota(uso->used, uso->total);
  return memoria;
}

std::optional<StatRow> LettureSistema::rigaBatteria() const {
  const auto carica = probe_.battery();
  if (!carica) return {};
  StatRow batteria = riga("battery.75percent", "Batteria", percento(carica->fraction));
  batteria.fraction = carica->fraction;
  if (carica->charging) {
    batteria.sub = "in carica";
    if (carica->minutesToFull) {
      batteria.sub += fmt::format(" · {}h {:02}m {}", *carica->minutesToFull / kMinutiPerOra,
                                  *carica->minutesToFull % kMinutiPerOra, "alla carica completa");
    }
  }
  return batteria;
}

std::vector<StatRow> LettureSistema::righe(const Config& impostazioni) {
  std::vector<StatRow> scelte;
  const auto aggiungi = [&](const char* chiave, std::optional<StatRow> nuova) {
    if (nuova && impostazioni.booleano(chiave)) scelte.push_back(std::move(*nuova));
  };
  aggiungi("menu_disk", rigaDisco());
  aggiungi("menu_ram", rigaMemoria());
  aggiungi("menu_cpu", rigaCpu());
  aggiungi("menu_net", rigaRete());
  aggiungi("menu_batt", rigaBatteria());
  return scelte;
}

std::string LettureSistema::barra(const Config& impostazioni) {
  std::string testo;
  const auto aggiungi = [&](const std::string& parte) {
    if (!testo.empty()) testo += "  ";
    testo += parte;
  };
  const double cpu = media(occupati());
  const auto rete = velocita();
  if (impostazioni.booleano("menu_cpu")) aggiungi("CPU " + percento(cpu));
  if (impostazioni.booleano("menu_net") && rete) aggiungi("↓ " + alSecondo(rete->rx));
  return testo;
}

}  // namespace pellak::shell
