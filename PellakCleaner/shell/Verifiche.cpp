// What the environment's switches for automated checks make the application do.

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

#include "PellakCore/base/Json.h"
#include "shell/AppDelegate.h"
#include "shell/Prova.h"

namespace pellak::shell {
namespace {

constexpr double kBarLook = 6;
constexpr double kScriptDelay = 4;
constexpr double kAboutDelay = 1;
constexpr double kAboutLook = 1;
constexpr double kUpdateDelay = 1;
constexpr double kCloseDelay = 2;
constexpr double kSurvivedDelay = 4;

std::size_t caratteri(std::string_view testo) {
  return static_cast<std::size_t>(std::count_if(testo.begin(), testo.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

void AppDelegate::verificaBarra() {
  const auto valore = ambiente_.variabile("PELLAK_TEST_BAR");
  if (!valore) return;
  const auto richiesta = JsonDocument::parse(*valore == "2" ? R"({"menu_bar_live":false})"
                                                            : R"({"menu_bar_live":true})");
  if (!ambiente_.impostazioni.scrivi(richiesta->radice())) ambiente_.stampa("err: impostazioni");
  host_.after(kBarLook, [this] {
    ambiente_.stampa(fmt::format("BARTEST {} \"{}\" timer {}", caratteri(titoloBarra_),
                                 titoloBarra_, barraViva() ? "attivo" : "fermo"));
  });
}

void AppDelegate::verifiche() {
  const auto presente = [this](const char* nome) { return ambiente_.variabile(nome).has_value(); };
  if (presente("PELLAK_SMOKE")) verificaMotore();
  if (const auto corpo = ambiente_.variabile("PELLAK_JS")) {
    host_.after(kScriptDelay, [this, corpo = *corpo] {
      host_.callAsync(corpo, [this](const Result<std::string>& esito) {
        ambiente_.stampa(esito ? *esito : "err: " + esito.error().text);
      });
    });
  }
  if (presente("PELLAK_BENCH")) verificaTempi();
  if (presente("PELLAK_TEST_ABOUT")) {
    host_.after(kAboutDelay, [this] {
      showAbout();
      host_.after(kAboutLook, [this] {
        ambiente_.cattura();
        host_.terminate(0);
      });
    });
  }
  if (presente("PELLAK_TEST_SELFUPD")) {
    host_.after(kUpdateDelay, [this] {
      const api::Risposta risposta = ambiente_.router.handle("/api/update/scarica", {});
      const auto documento = JsonDocument::parse(risposta.testo.str());
      const std::string errore =
          documento ? documento->radice().testo("err") : "risposta illeggibile";
      ambiente_.stampa("SELFUPD avvio: " + (errore.empty() ? "avviato" : "err " + errore));
    });
  }
  if (presente("PELLAK_TEST_REOPEN")) verificaRiapertura();
}

void AppDelegate::verificaMotore() {
  sfondo_.post([this] { prova::fumo(ambiente_.engine, ambiente_.router, ambiente_.stampa); });
}

void AppDelegate::verificaTempi() {
  sfondo_.post([this] { prova::tempi(ambiente_.engine, ambiente_.home, ambiente_.stampa); });
}

void AppDelegate::verificaRiapertura() {
  host_.after(kCloseDelay, [this] { host_.closeWindow(); });
  host_.after(kSurvivedDelay, [this] {
    ambiente_.stampa("REOPEN: sopravvissuto");
    host_.terminate(0);
  });
}

}  // namespace pellak::shell
