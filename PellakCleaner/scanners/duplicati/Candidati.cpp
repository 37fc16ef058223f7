#include "scanners/duplicati/Candidati.h"

#include <atomic>

namespace pellak::scanners {

std::size_t Candidati::scaffaleDelThread() {
  static std::atomic<std::size_t> prossimo{0};
  thread_local const std::size_t mio = prossimo++ % kScaffali;
  return mio;
}

std::uint64_t Candidati::Scaffale::aggiungiNome(std::string_view nome) {
  if (kPezzo - scritti <= nome.size()) {
    nomi.push_back(std::unique_ptr<char[]>(new char[kPezzo]));
    scritti = 0;
  }
  char* posto = nomi.back().get() + scritti;
  nome.copy(posto, nome.size());
  posto[nome.size()] = '\0';
  const std::uint64_t inizio = (nomi.size() - 1) * kPezzo + scritti;
  scritti += nome.size() + 1;
  return inizio;
}

void Candidati::aggiungi(std::string_view percorso, std::int64_t size, std::int32_t dev,
                         std::uint64_t ino) {
  const std::size_t indice = scaffaleDelThread();
  const std::size_t nome = percorso.rfind('/') + 1;
  if (percorso.size() - nome >= kPezzo) return;  // longer than any system's names
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
  candidato.nome = scaffale.aggiungiNome(percorso.substr(nome));
  candidato.cartella = static_cast<std::uint32_t>(scaffale.cartelle.size() - 1);
  candidato.scaffale = static_cast<std::uint32_t>(indice);
  scaffale.candidati.push_back(candidato);
}

std::vector<Candidato> Candidati::prendi() {
  std::size_t quanti = 0;
  for (const Scaffale& scaffale : scaffali_) quanti += scaffale.candidati.size();
  std::vector<Candidato> tutti;
  tutti.reserve(quanti);
  for (Scaffale& scaffale : scaffali_) {
    for (; !scaffale.candidati.empty(); scaffale.candidati.pop_front()) {
      tutti.push_back(scaffale.candidati.front());
    }
  }
  return tutti;
}

std::string Candidati::percorso(const Candidato& candidato) const {
  const Scaffale& scaffale = scaffali_[candidato.scaffale];
  const std::string& cartella = scaffale.cartelle[candidato.cartella];
  const std::string_view nome =
      scaffale.nomi[candidato.nome / kPezzo].get() + candidato.nome % kPezzo;
  std::string percorso;
  percorso.reserve(cartella.size() + nome.size());
  percorso.append(cartella).append(nome);
  return percorso;
}

}  // namespace pellak::scanners
