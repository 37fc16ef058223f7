#include "scanners/duplicati/Corsia.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace pellak::scanners {

void Corsia::comincia(std::int64_t size, bool tutti) {
  size_ = size;
  letti_ = 0;
  quanti_ = 0;
  tutti_ = tutti;
  occupata_ = true;
}

void Corsia::aggiungi(std::unique_ptr<OpenFile> file, const FileMark& segno, Contenuto& contenuto) {
  primo_.membri.push_back({std::move(file), segno, &contenuto});
}

void Corsia::avanza(const TwinSha256& sha, std::size_t lane) {
  letti_ += static_cast<std::int64_t>(quanti_);
  quanti_ = static_cast<std::size_t>(std::min(size_ - letti_, static_cast<std::int64_t>(kBlocco)));
  std::vector<Ramo> nuovi;
  avanza(primo_, sha, lane, nuovi);
  for (Ramo& ramo : altri_) avanza(ramo, *ramo.sha, 0, nuovi);
  altri_.insert(altri_.end(), std::make_move_iterator(nuovi.begin()),
                std::make_move_iterator(nuovi.end()));
  if (tutti_) lasciaSoli();
  for (Ramo& ramo : altri_) ramo.sha->update(0, std::span(ramo.blocco).first(quanti_));
}

bool Corsia::leggi(const Membro& membro, std::vector<std::byte>& dove) const {
  const auto letti = membro.file->readAt(letti_, std::span(dove).first(quanti_));
  return letti && *letti == quanti_;
}

void Corsia::avanza(Ramo& ramo, const TwinSha256& sha, std::size_t lane, std::vector<Ramo>& nuovi) {
  const std::size_t primoNuovo = nuovi.size();
  std::vector<Membro> membri = std::move(ramo.membri);
  ramo.membri.clear();
  for (Membro& membro : membri) {
    const bool guida = ramo.membri.empty();
    if (!leggi(membro, guida ? ramo.blocco : prova_)) {
      membro.contenuto->noto = Conoscenza::perso;
    } else if (guida || std::memcmp(ramo.blocco.data(), prova_.data(), quanti_) == 0) {
      ramo.membri.push_back(std::move(membro));
    } else {
      separa(std::move(membro), sha, lane, std::span(nuovi).subspan(primoNuovo), nuovi);
    }
  }
}

/// The block of a file that left its branch is in `prova_`.
void Corsia::separa(Membro membro, const TwinSha256& sha, std::size_t lane,
                    std::span<Ramo> fratelli, std::vector<Ramo>& nuovi) {
  for (Ramo& fratello : fratelli) {
    if (std::memcmp(fratello.blocco.data(), prova_.data(), quanti_) == 0) {
      fratello.membri.push_back(std::move(membro));
      return;
    }
  }
  Ramo& nuovo = nuovi.emplace_back();
  nuovo.membri.push_back(std::move(membro));
  nuovo.blocco.resize(kBlocco);
  nuovo.blocco.swap(prova_);
  nuovo.sha = sha.fork(lane);
}

void Corsia::lasciaSoli() {
  const auto solo = [](Ramo& ramo) {
    if (ramo.membri.size() == 1) {
      ramo.membri.front().contenuto->noto = Conoscenza::perso;
      ramo.membri.front().contenuto->memoria = Memoria::solo;
      ramo.membri.clear();
    }
    return ramo.membri.empty();
  };
  solo(primo_);
  std::erase_if(altri_, solo);
}

std::span<const std::byte> Corsia::blocco() const {
  return {primo_.blocco.data(), primo_.membri.empty() ? 0 : quanti_};
}

bool Corsia::finita() const {
  return letti_ + static_cast<std::int64_t>(quanti_) == size_ ||
         (primo_.membri.empty() && altri_.empty());
}

void Corsia::concludi(const Sha256Digest& digest) {
  const auto concludi = [](Ramo& ramo, const Sha256Digest& suo) {
    for (const Membro& membro : ramo.membri) {
      const auto ora = membro.file->mark();
      membro.contenuto->noto = ora && *ora == membro.segno ? Conoscenza::tutto : Conoscenza::perso;
      membro.contenuto->digest = suo;
    }
    ramo.membri.clear();
  };
  concludi(primo_, digest);
  for (Ramo& ramo : altri_) concludi(ramo, ramo.sha->finish(0));
  altri_.clear();
  occupata_ = false;
}

}  // namespace pellak::scanners
