#include "PellakCore/OrdineVoci.h"

#include <algorithm>
#include <numeric>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

/// The next unit of a name in lower case: an ASCII byte, a Latin-1 letter in UTF-8 (C3 80 to
/// C3 9E without the multiplication sign) or any other byte as it is.
unsigned piegato(std::string_view testo, std::size_t posto) {
  const auto byte = static_cast<unsigned char>(testo[posto]);
  if (byte >= 'A' && byte <= 'Z') return byte + 0x20U;
  const bool dopoC3 = posto > 0 && static_cast<unsigned char>(testo[posto - 1]) == 0xC3;
  if (dopoC3 && byte >= 0x80 && byte <= 0x9E && byte != 0x97) return byte + 0x20U;
  return byte;
}

int confrontaNomi(std::string_view a, std::string_view b) {
  const std::size_t comune = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < comune; ++i) {
    const unsigned x = piegato(a, i);
    const unsigned y = piegato(b, i);
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

}  // namespace

bool primaPerNome(std::string_view a, std::string_view b) {
  const int ordine = confrontaNomi(ultimoComponente(a), ultimoComponente(b));
  return ordine != 0 ? ordine < 0 : a < b;
}

std::vector<std::size_t> paginaOrdinata(const std::vector<Voce>& voci, OrdineVoci ordine,
                                        std::size_t da, std::size_t numero) {
  std::vector<std::size_t> indici(voci.size());
  std::iota(indici.begin(), indici.end(), std::size_t{0});
  const auto prima = [&](std::size_t a, std::size_t b) {
    if (ordine == OrdineVoci::nome) return primaPerNome(voci[a].path, voci[b].path);
    return voci[a].size != voci[b].size ? voci[a].size > voci[b].size : a < b;
  };
  const auto fine = indici.begin() + static_cast<std::ptrdiff_t>(da + numero);
  std::partial_sort(indici.begin(), fine, indici.end(), prima);
  indici.erase(fine, indici.end());
  indici.erase(indici.begin(), indici.begin() + static_cast<std::ptrdiff_t>(da));
  return indici;
}

}  // namespace pellak
