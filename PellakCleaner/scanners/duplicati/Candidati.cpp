#include "scanners/duplicati/Candidati.h"

#include <atomic>

namespace pellak::scanners {

std::size_t Candidati::scaffaleDelThread() {
  static std::atomic<std::size_t> prossimo{0};
  thread_local const std::size_t mio = prossimo++ % kScaffali;
  return mio;
}

void Candidati::aggiungi(std::string_view percorso, std::int64_t size, std::int32_t dev,
                         std::uint64_t ino) {
  const std::size_t indice = scaffaleDelThread();
  const std::size_t nome = percorso.rfind('/') + 1;
  const std::string_view cartella = percorso.substr(0, nome);
  Scaffale& scaffale = scaffali_[indice];
  const std::lock_guard hold(scaffale.lock);
  if (scaffale.cartelle.empty() || scaffale.cartelle.back() != cartella) {
    scaffale.cartelle.emplace_back(cartella);
  }
  Candidato candidato;
  candidato.size = size;
  candidato.ino = ino;
  candidato.dev = dev;
  candidato.nome = scaffale.nomi.size();
  candidato.cartella = static_cast<std::uint32_t>(scaffale.cartelle.size() - 1);
  candidato.scaffale = static_cast<std::uint32_t>(indice);
  scaffale.candidati.push_back(candidato);
  scaffale.nomi += percorso.substr(nome);
  scaffale.nomi += '\0';
}

std::vector<Candidato> Candidati::prendi() {
  std::size_t quanti = 0;
  for (const Scaffale& scaffale : scaffali_) quanti += scaffale.candidati.size();
  std::vector<Candidato> tutti;
  tutti.reserve(quanti);
  for (Scaffale& scaffale : scaffali_) {
    tutti.insert(tutti.end(), scaffale.candidati.begin(), scaffale.candidati.end());
    std::vector<Candidato>().swap(scaffale.candidati);
  }
  return tutti;
}

std::string Candidati::percorso(const Candidato& candidato) const {
  const Scaffale& scaffale = scaffali_[candidato.scaffale];
  return scaffale.cartelle[candidato.cartella] + (scaffale.nomi.data() + candidato.nome);
}

}  // namespace pellak::scanners
