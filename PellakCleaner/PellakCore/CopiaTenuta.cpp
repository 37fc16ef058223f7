#include "PellakCore/CopiaTenuta.h"

#include <algorithm>
#include <numeric>
#include <tuple>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

/// "(" digits ")" somewhere.
bool numerato(std::string_view nome) {
  for (std::size_t da = nome.find('('); da != std::string_view::npos; da = nome.find('(', da + 1)) {
    const std::size_t a = nome.find_first_not_of("0123456789", da + 1);
    if (a != std::string_view::npos && a > da + 1 && nome[a] == ')') return true;
  }
  return false;
}

bool nomeDiCopia(std::string_view nome) {
  std::string minuscolo(nome);
  std::transform(nome.begin(), nome.end(), minuscolo.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return numerato(nome) || minuscolo.find("copia") != std::string::npos ||
         minuscolo.find("copy") != std::string::npos;
}

auto chiave(const Group& gruppo, std::size_t copia) {
  const Identita identita = copia < gruppo.identita.size() ? gruppo.identita[copia] : Identita();
  return std::tuple(identita.svantaggi, identita.mtimeNs, copia);
}

}  // namespace

std::uint8_t svantaggiDelPercorso(std::string_view percorso,
                                  std::span<const std::string> passaggi) {
  const bool diPassaggio = std::any_of(passaggi.begin(), passaggi.end(), [&](const auto& cartella) {
    return dentroCartella(percorso, cartella);
  });
  const int somma = (diPassaggio ? kDiPassaggio : 0) |
                    (nomeDiCopia(ultimoComponente(percorso)) ? kNomeDiCopia : 0);
  return static_cast<std::uint8_t>(somma);
}

std::size_t copiaTenuta(const Group& gruppo) {
  std::size_t tenuta = 0;
  for (std::size_t copia = 1; copia < gruppo.paths.size(); ++copia) {
    if (chiave(gruppo, copia) < chiave(gruppo, tenuta)) tenuta = copia;
  }
  return tenuta;
}

std::vector<std::size_t> inOrdineDiTenuta(const Group& gruppo) {
  std::vector<std::size_t> copie(gruppo.paths.size());
  std::iota(copie.begin(), copie.end(), std::size_t{0});
  std::sort(copie.begin(), copie.end(),
            [&](std::size_t a, std::size_t b) { return chiave(gruppo, a) < chiave(gruppo, b); });
  return copie;
}

}  // namespace pellak
