// Fills a template with sealed texts: each NAME=FILE puts the file's content, sealed, in the place
// of @NAME@.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "shell/Chiave.h"

namespace {

namespace blindato = pellak::shell::blindato;

std::string letto(const std::string& percorso) {
  std::ifstream file(percorso, std::ios::binary);
  std::string testo((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (!file || testo.empty()) throw std::runtime_error("can't read " + percorso);
  return testo;
}

void riempi(std::string& modello, const std::string& argomento) {
  const std::size_t uguale = argomento.find('=');
  if (uguale == std::string::npos) throw std::runtime_error("not NAME=FILE: " + argomento);
  const std::string segno = "@" + argomento.substr(0, uguale) + "@";
  const std::size_t posto = modello.find(segno);
  if (posto == std::string::npos) throw std::runtime_error("no place for " + argomento);
  const std::string testo = letto(argomento.substr(uguale + 1));
  const std::string sigillato = blindato::sigilla(testo, pellak::shell::kChiave);
  if (blindato::apri(sigillato, pellak::shell::kChiave) != testo) {
    throw std::runtime_error("can't be sealed: " + argomento);
  }
  modello.replace(posto, segno.size(), sigillato);
}

}  // namespace

int main(int quanti, char** argomenti) {
  try {
    if (quanti < 4) throw std::runtime_error("usage: pellak-seal TEMPLATE OUTPUT NAME=FILE...");
    std::string testo = letto(argomenti[1]);
    for (int i = 3; i < quanti; ++i) riempi(testo, argomenti[i]);
    std::ofstream uscita(argomenti[2], std::ios::binary | std::ios::trunc);
    uscita << testo << std::flush;
    if (!uscita) throw std::runtime_error(std::string("can't write ") + argomenti[2]);
    return 0;
  } catch (const std::exception& errore) {
    std::fprintf(stderr, "pellak-seal: %s\n", errore.what());
    return 1;
  }
}
