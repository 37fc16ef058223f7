#include "platform/linux/ItemFolder.h"

#include <array>
#include <climits>
#include <unistd.h>
#include <utility>

namespace pellak::native {
namespace {

/// What the system calls an open folder; a path too long for it to say is taken as it was asked.
std::string systemName(int cartella, const std::string& chiesta) {
  std::array<char, PATH_MAX> nome{};
  const std::string voce = "/proc/self/fd/" + std::to_string(cartella);
  const ssize_t lungo = ::readlink(voce.c_str(), nome.data(), nome.size());
  const bool intero = lungo > 0 && static_cast<std::size_t>(lungo) < nome.size();
  return intero ? std::string(nome.data(), static_cast<std::size_t>(lungo)) : chiesta;
}

}  // namespace

Split split(std::string_view percorso) {
  const std::size_t barra = percorso.rfind('/');
  if (barra == std::string_view::npos) return {};
  std::string nome(percorso.substr(barra + 1));
  if (nome == "." || nome == "..") nome.clear();
  return {percorso.substr(0, barra == 0 ? 1 : barra), std::move(nome)};
}

Result<int> ItemFolder::open(std::string_view cartella, Missing mancante) {
  if (cartella_ && nome_ == cartella) return cartella_.get();
  auto aperta = openWithoutLinks(cartella, fidata_, mancante == Missing::make);
  if (!aperta) return aperta.error();
  const auto qui = itemAt(aperta->get());
  if (!qui) return qui.error();
  cartella_ = std::move(*aperta);
  nome_ = cartella;
  vero_.clear();
  volume_ = qui->volume;
  return cartella_.get();
}

std::string ItemFolder::realPath(const std::string& nome) {
  if (vero_.empty()) vero_ = systemName(cartella_.get(), nome_);
  return (vero_ == "/" ? std::string() : vero_) + "/" + nome;
}

}  // namespace pellak::native
