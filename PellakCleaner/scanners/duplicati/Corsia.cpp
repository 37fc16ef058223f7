#include "scanners/duplicati/Corsia.h"

#include <algorithm>
#include <utility>

namespace pellak::scanners {

void Corsia::prendi(std::unique_ptr<OpenFile> file, const FileMark& segno, Contenuto& contenuto) {
  memoria_.resize(kBlocco);
  file_ = std::move(file);
  segno_ = segno;
  contenuto_ = &contenuto;
  resto_ = contenuto.size;
  letti_ = 0;
}

void Corsia::avanza() {
  const auto quanti = std::min(static_cast<std::size_t>(resto_), kBlocco);
  const auto letti = file_->readAt(contenuto_->size - resto_, std::span(memoria_).first(quanti));
  letti_ = letti ? *letti : 0;
  resto_ -= static_cast<std::int64_t>(letti_);
  if (letti_ < quanti) contenuto_->noto = Conoscenza::perso;
}

void Corsia::concludi(const Sha256Digest& digest) {
  if (contenuto_->noto != Conoscenza::perso) {
    const auto ora = file_->mark();
    contenuto_->noto = ora && *ora == segno_ ? Conoscenza::tutto : Conoscenza::perso;
    contenuto_->digest = digest;
  }
  file_.reset();
}

}  // namespace pellak::scanners
