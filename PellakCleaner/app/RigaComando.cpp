#include "app/RigaComando.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fmt/format.h>
#include <map>

#include "app/Terminale.h"
#include "app/Versione.h"

namespace pellak::app {
namespace {

constexpr int kUsage = 2;
constexpr std::int64_t kMaxLimit = 1'000'000'000;

void etichetteItaliane(CLI::App& app) {
  const auto formato = app.get_formatter();
  for (const auto& [inglese, italiano] :
       std::map<std::string, std::string>{{"Usage", "Uso"},
                                          {"OPTIONS", "OPZIONI"},
                                          {"SUBCOMMAND", "COMANDO"},
                                          {"SUBCOMMANDS", "COMANDI"},
                                          {"Subcommand", "Comando"},
                                          {"Subcommands", "Comandi"},
                                          {"Positionals", "Argomenti"},
                                          {"Options", "Opzioni"},
                                          {"REQUIRED", "obbligatorio"},
                                          {"TEXT", "TESTO"},
                                          {"INT", "NUMERO"},
                                          {"ENUM", "VALORE"}}) {
    formato->label(inglese, italiano);
  }
}

void intestazioniItaliane(CLI::App& app) {
  app.set_help_flag("-h,--help", "Mostra questo aiuto");
  for (CLI::Option* opzione : app.get_options()) {
    if (!opzione->get_positional()) opzione->group("Opzioni");
  }
  for (CLI::App* comando : app.get_subcommands(nullptr)) comando->group("Comandi");
}

/// What a mistake is about, cut out of the library's English sentence.
std::string oggetto(const CLI::ParseError& errore) {
  const std::string frase = errore.what();
  const std::size_t duePunti = frase.find(": ");
  const bool inCoda = dynamic_cast<const CLI::ExtrasError*>(&errore) != nullptr ||
                      dynamic_cast<const CLI::ConversionError*>(&errore) != nullptr;
  if (inCoda && duePunti != std::string::npos) return frase.substr(duePunti + 2);
  return frase.substr(0, frase.find_first_of(": "));
}

std::string messaggio(const CLI::ParseError& errore) {
  if (dynamic_cast<const CLI::ExtrasError*>(&errore) != nullptr) return "argomento sconosciuto";
  if (dynamic_cast<const CLI::RequiredError*>(&errore) != nullptr) return "manca un argomento";
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&errore) != nullptr) {
    return "numero di argomenti errato";
  }
  return "valore non ammesso";
}

struct Righe {
  CLI::App app{"Pulizia onesta: tutto nel Cestino, sempre reversibile."};
  OpzioniScan scan;
  OpzioniShow show;
  OpzioniMap map;
  OpzioniTrash trash;
  OpzioniLog log;
  OpzioniRestore restore;
  OpzioniApi api;
  std::int64_t limite = -1;
  std::int64_t indice = -1;
  CLI::App* comandoScan = nullptr;
  CLI::App* comandoShow = nullptr;
  CLI::App* comandoMap = nullptr;
  CLI::App* comandoTrash = nullptr;
  CLI::App* comandoLog = nullptr;
  CLI::App* comandoRestore = nullptr;
  CLI::App* comandoApi = nullptr;
  CLI::App* comandoBridge = nullptr;

  void aggiungiScan() {
    comandoScan = app.add_subcommand("scan", "Cerca lo spazio che si può liberare");
    comandoScan->add_option(
        "SECTION|PATH", scan.argomenti,
        "Sezioni (senza: tutte): sviluppo, applicazioni, duplicati, grandi, pulizia, privacy, "
        "avvio, sistema. Cartelle in più per duplicati e grandi, che cominciano con /, ~ o .");
    comandoScan->add_flag("--json", scan.json, "Stampa lo stato finale in JSON");
  }

  void aggiungiShow() {
    comandoShow = app.add_subcommand("show", "Mostra i risultati salvati, o le voci di uno");
    comandoShow->add_option("FINDING", show.finding, "Id del risultato (senza: l'elenco)");
    comandoShow->add_option("--order", show.ordine, "Ordine delle voci: spazio o nome")
        ->transform(CLI::CheckedTransformer(std::map<std::string, OrdineVoci>{
            {"spazio", OrdineVoci::spazio}, {"nome", OrdineVoci::nome}}))
        ->option_text("spazio|nome");
    comandoShow->add_option("--limit", limite, "Quante voci al massimo")
        ->check(CLI::Range(std::int64_t{0}, kMaxLimit))
        ->option_text("N");
    comandoShow->add_flag("--json", show.json, "Stampa in JSON");
  }

  void aggiungiMap() {
    comandoMap = app.add_subcommand("map", "Misura le cartelle e i file di una cartella");
    comandoMap->add_option("PATH", map.percorso, "Cartella (senza: la cartella utente)");
    comandoMap->add_flag("--json", map.json, "Stampa in JSON");
  }

  void aggiungiTrash() {
    comandoTrash =
        app.add_subcommand("trash", "Sposta nel Cestino un risultato, dopo aver chiesto");
    comandoTrash->add_option("FINDING", trash.finding, "Id del risultato")->required();
    comandoTrash
        ->add_option("--group", trash.gruppi,
                     "Dopo FINDING: solo questi gruppi, con i numeri di «show»")
        ->check(CLI::Range(std::int64_t{0}, kMaxLimit))
        ->option_text("N...");
    comandoTrash->add_flag("--yes", trash.senzaChiedere, "Non chiede conferma");
  }

  void aggiungiRegistro() {
    comandoLog = app.add_subcommand("log", "Mostra che cosa è stato spostato nel Cestino");
    CLI::Option* operazione =
        comandoLog->add_option("OP", log.operazione, "Id di un'operazione: ne elenca gli elementi");
    comandoLog->add_flag("--json", log.json, "Stampa in JSON")->excludes(operazione);
    comandoRestore = app.add_subcommand("restore", "Rimette a posto gli elementi di un'operazione");
    comandoRestore->add_option("OP", restore.operazione, "Id dell'operazione, da «log»")
        ->required();
    comandoRestore->add_option("--index", indice, "Solo un elemento, con il suo indice di «log OP»")
        ->check(CLI::Range(std::int64_t{0}, kMaxLimit))
        ->option_text("N");
  }

  void aggiungiAltri() {
    comandoApi = app.add_subcommand("api", "Una richiesta al programma, con risposta in JSON");
    comandoApi->add_option("ROUTE", api.rotta, "Rotta, per esempio /api/state")->required();
    comandoApi->add_option("JSON", api.corpo, "Corpo della richiesta (senza: {})");
    comandoBridge =
        app.add_subcommand("bridge", "I messaggi della pagina su standard input e output");
  }

  Righe() {
    app.name("pellak-cleaner");
    etichetteItaliane(app);
    app.set_version_flag("--version", "Pellak Cleaner " + std::string(kVersione),
                         "Mostra la versione");
    app.require_subcommand(0, 1);
    aggiungiScan();
    aggiungiShow();
    aggiungiMap();
    aggiungiTrash();
    aggiungiRegistro();
    aggiungiAltri();
    intestazioniItaliane(app);
    for (CLI::App* comando : app.get_subcommands(nullptr)) intestazioniItaliane(*comando);
  }

  Comando scelto() {
    if (limite >= 0) show.limite = limite;
    if (indice >= 0) restore.indice = indice;
    if (comandoScan->parsed()) return scan;
    if (comandoShow->parsed()) return show;
    if (comandoMap->parsed()) return map;
    if (comandoTrash->parsed()) return trash;
    if (comandoLog->parsed()) return log;
    if (comandoRestore->parsed()) return restore;
    if (comandoApi->parsed()) return api;
    if (comandoBridge->parsed()) return OpzioniBridge();
    return OpzioniFinestra();
  }
};

}  // namespace

Comando leggiRigaComando(int argc, const char* const* argv) {
  Righe righe;
  try {
    righe.app.parse(argc, argv);
  } catch (const CLI::Success& richiesta) {
    return Uscito{righe.app.exit(richiesta)};
  } catch (const CLI::ParseError& errore) {
    fmt::print(stderr, "{}: {}\nProva «pellak-cleaner --help».\n", messaggio(errore),
               perTerminale(oggetto(errore)));
    return Uscito{kUsage};
  }
  return righe.scelto();
}

}  // namespace pellak::app
