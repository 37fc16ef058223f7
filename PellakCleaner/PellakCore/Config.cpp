#include "PellakCore/Config.h"

#include <algorithm>
#include <array>
#include <optional>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

constexpr std::array<LimiteIntero, 7> kInteri = {{{"dup_min_mb", 5, 1, 1000},
                                                  {"large_min_mb", 200, 50, 10000},
                                                  {"large_age_days", 180, 30, 3650},
                                                  {"cache_age_days", 7, 0, 90},
                                                  {"leftover_age_days", 30, 0, 365},
                                                  {"installer_age_days", 60, 0, 365},
                                                  {"auto_days", 0, 0, 30}}};

struct Interruttore {
  std::string_view chiave;
  bool predefinito;
};

constexpr std::array<Interruttore, 8> kBooleani = {{{"login_item", false},
                                                    {"menu_disk", true},
                                                    {"menu_ram", true},
                                                    {"menu_cpu", true},
                                                    {"menu_net", true},
                                                    {"menu_batt", true},
                                                    {"menu_bar_live", false},
                                                    {"rete_avvisi", false}}};

constexpr std::string_view kEsclusi = "dup_exclude";

const LimiteIntero* cercaIntero(std::string_view chiave) {
  const auto* trovato = std::find_if(kInteri.begin(), kInteri.end(),
                                     [&](const auto& voce) { return voce.chiave == chiave; });
  return trovato == kInteri.end() ? nullptr : trovato;
}

const Interruttore* cercaBooleano(std::string_view chiave) {
  const auto* trovato = std::find_if(kBooleani.begin(), kBooleani.end(),
                                     [&](const auto& voce) { return voce.chiave == chiave; });
  return trovato == kBooleani.end() ? nullptr : trovato;
}

/// The typed value a stored member stands for; nothing when a known key has another type.
std::optional<Config::Valore> leggiValore(std::string_view chiave, Json membro) {
  if (cercaIntero(chiave) != nullptr) {
    if (const auto numero = membro.intero()) return *numero;
    return {};
  }
  if (cercaBooleano(chiave) != nullptr) {
    if (const auto valore = membro.booleano()) return *valore;
    return {};
  }
  if (chiave == kEsclusi) {
    if (!membro.lista()) return {};
    std::vector<std::string> testi;
    membro.perOgni([&](Json elemento) {
      if (auto testo = elemento.testo()) testi.push_back(std::move(*testo));
    });
    return testi;
  }
  return Config::Sconosciuto{membro.serializza()};
}

std::string senzaBianchi(std::string_view testo) {
  constexpr std::string_view kBianchi = " \t\n\v\f\r";
  const std::size_t inizio = testo.find_first_not_of(kBianchi);
  if (inizio == std::string_view::npos) return {};
  return std::string(testo.substr(inizio, testo.find_last_not_of(kBianchi) - inizio + 1));
}

template <class T>
const T* valoreDi(const std::map<std::string, Config::Valore, std::less<>>& raw,
                  std::string_view chiave) {
  const auto trovato = raw.find(chiave);
  return trovato == raw.end() ? nullptr : std::get_if<T>(&trovato->second);
}

}  // namespace

Config Config::daJson(Json documento) {
  Config config;
  documento.perOgniMembro([&](const std::string& chiave, Json membro) {
    if (auto valore = leggiValore(chiave, membro)) config.raw_[chiave] = std::move(*valore);
  });
  return config;
}

std::int64_t Config::intero(std::string_view chiave) const {
  if (const auto* valore = valoreDi<std::int64_t>(raw_, chiave)) return *valore;
  const LimiteIntero* voce = cercaIntero(chiave);
  return voce == nullptr ? 0 : voce->predefinito;
}

bool Config::booleano(std::string_view chiave) const {
  if (const auto* valore = valoreDi<bool>(raw_, chiave)) return *valore;
  const Interruttore* voce = cercaBooleano(chiave);
  return voce != nullptr && voce->predefinito;
}

std::vector<std::string> Config::testi(std::string_view chiave) const {
  const auto* valore = valoreDi<std::vector<std::string>>(raw_, chiave);
  return valore == nullptr ? std::vector<std::string>() : *valore;
}

void Config::applica(Json richiesta) {
  for (const LimiteIntero& voce : kInteri) {
    const auto numero = richiesta[voce.chiave].intero();
    if (numero && *numero >= voce.minimo && *numero <= voce.massimo) {
      raw_[std::string(voce.chiave)] = *numero;
    }
  }
  for (const Interruttore& voce : kBooleani) {
    if (const auto valore = richiesta[voce.chiave].booleano()) {
      raw_[std::string(voce.chiave)] = *valore;
    }
  }
  if (richiesta[kEsclusi].lista()) {
    std::vector<std::string> esclusi;
    for (const std::string& testo : richiesta.testi(kEsclusi)) {
      if (std::string pulito = senzaBianchi(testo); !pulito.empty()) esclusi.push_back(pulito);
    }
    raw_[std::string(kEsclusi)] = std::move(esclusi);
  }
}

void Config::scriviValori(JsonWriter& uscita) const {
  uscita.beginObject();
  for (const LimiteIntero& voce : kInteri) uscita.key(voce.chiave).integer(intero(voce.chiave));
  for (const Interruttore& voce : kBooleani) {
    uscita.key(voce.chiave).boolean(booleano(voce.chiave));
  }
  uscita.key(kEsclusi).texts(testi(kEsclusi));
  uscita.endObject();
}

std::string Config::serializza() const {
  JsonWriter valori;
  scriviValori(valori);
  std::string testo = valori.take();
  testo.pop_back();
  for (const auto& [chiave, valore] : raw_) {
    if (const auto* sconosciuto = std::get_if<Sconosciuto>(&valore)) {
      testo += "," + jsonText(chiave) + ":" + sconosciuto->json;
    }
  }
  return testo + "}\n";
}

void Config::scriviPredefiniti(JsonWriter& uscita) { Config().scriviValori(uscita); }

void Config::scriviLimiti(JsonWriter& uscita) {
  uscita.beginObject();
  for (const LimiteIntero& voce : kInteri) {
    uscita.key(voce.chiave).beginArray().integer(voce.minimo).integer(voce.massimo).endArray();
  }
  uscita.endObject();
}

std::span<const LimiteIntero> Config::limiti() { return kInteri; }

}  // namespace pellak
