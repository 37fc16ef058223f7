#include "scanners/duplicati/Lettura.h"

#include <algorithm>
#include <array>
#include <thread>
#include <utility>

#include "scanners/duplicati/Corsia.h"
#include "scanners/duplicati/Impronta.h"

namespace pellak::scanners {
namespace {

constexpr std::size_t kCampione = 4096;

/// Head, middle and end of a file one after the other, or all of it when it is all head. Empty
/// when it is no longer as long as it was.
std::span<const std::byte> leggiLuoghi(const OpenFile& file, std::int64_t size,
                                       std::vector<std::byte>& memoria) {
  memoria.resize(Lettura::kTesta + 2 * kCampione);
  const auto testa = static_cast<std::size_t>(std::min(size, Lettura::kTesta));
  std::size_t pieni = 0;
  const auto leggi = [&](std::int64_t offset, std::size_t quanti) {
    const auto letti = file.readAt(offset, std::span(memoria).subspan(pieni, quanti));
    pieni += quanti;
    return letti && *letti == quanti;
  };
  if (!leggi(0, testa)) return {};
  if (size > Lettura::kTesta) {
    const auto ultimo = size - static_cast<std::int64_t>(kCampione);
    if (!leggi(ultimo, kCampione) || !leggi(size / 2, kCampione)) return {};
  }
  return std::span(memoria).first(pieni);
}

}  // namespace

void Lettura::conContatore(Squadra& squadra, const std::function<void()>& lavoro) {
  squadra.esegui([&] { withCounter(ctx_.contatore, lavoro); });
}

std::unique_ptr<OpenFile> Lettura::apri(Contenuto& contenuto, ReadPlan plan, FileMark& segno) {
  for (; contenuto.quanti > 0; ++contenuto.primo, --contenuto.quanti) {
    const std::string percorso = testi_.percorso(candidati_[contenuto.primo]);
    auto file = reader_.open(percorso, plan);
    if (!file) {
      if (file.error().kind == ErrorKind::denied) registraDiniego(percorso);
      continue;
    }
    const auto ora = (*file)->mark();
    if (!ora || !ora->regular || ora->size != contenuto.size) continue;
    segno = *ora;
    contenuto.dev = ora->dev;
    contenuto.ino = ora->ino;
    return std::move(file).value();
  }
  contenuto.noto = Conoscenza::perso;
  return nullptr;
}

void Lettura::campiona(Contenuto& contenuto, std::vector<std::byte>& memoria, TwinSha256& sha) {
  FileMark segno;
  const auto file = apri(contenuto, ReadPlan::samples, segno);
  if (!file) return;
  const auto letti = leggiLuoghi(*file, contenuto.size, memoria);
  if (letti.empty() && contenuto.size > 0) {
    contenuto.noto = Conoscenza::perso;
  } else if (contenuto.size > kTesta) {
    contenuto.impronta = impronta(letti);
    contenuto.noto = Conoscenza::campioni;
  } else {
    sha.update(0, letti);
    contenuto.digest = sha.finish(0);
    const auto ora = file->mark();
    contenuto.noto = ora && *ora == segno ? Conoscenza::tutto : Conoscenza::perso;
  }
}

void Lettura::campioni(std::vector<Contenuto>& contenuti) {
  Squadra squadra(contenuti.size(), ctx_.stop);
  conContatore(squadra, [&] {
    const auto sha = creaTwinSha256();
    std::vector<std::byte> memoria;
    while (const auto parte = squadra.prossima()) campiona(contenuti[*parte], memoria, *sha);
  });
}

void Lettura::interi(std::vector<Contenuto>& contenuti) {
  Squadra squadra(contenuti.size(), ctx_.stop);
  conContatore(squadra, [&] { leggiACoppie(squadra, contenuti); });
}

void Lettura::leggiACoppie(Squadra& squadra, std::vector<Contenuto>& contenuti) {
  const auto sha = creaTwinSha256();
  std::array<Corsia, TwinSha256::kLanes> corsie;
  const auto occupa = [&](Corsia& corsia) {
    while (corsia.libera()) {
      const auto parte = squadra.prossima();
      if (!parte) return;
      Contenuto& contenuto = contenuti[*parte];
      if (contenuto.noto != Conoscenza::campioni) continue;
      FileMark segno;
      if (auto file = apri(contenuto, ReadPlan::whole, segno)) {
        corsia.prendi(std::move(file), segno, contenuto);
      }
    }
  };
  for (;;) {
    squadra.controlla();
    occupa(corsie[0]);
    // The last files are left to threads that have none.
    if (squadra.rimaste() >= std::thread::hardware_concurrency()) occupa(corsie[1]);
    if (corsie[0].libera() && corsie[1].libera()) return;
    for (Corsia& corsia : corsie) {
      if (!corsia.libera()) corsia.avanza();
    }
    if (!corsie[0].libera() && !corsie[1].libera()) {
      sha->updateBoth(corsie[0].blocco(), corsie[1].blocco());
    }
    for (std::size_t i = 0; i < corsie.size(); ++i) {
      if (corsie[i].libera()) continue;
      if (corsie[1 - i].libera()) sha->update(i, corsie[i].blocco());
    }
    for (std::size_t i = 0; i < corsie.size(); ++i) {
      if (!corsie[i].libera() && corsie[i].finita()) corsie[i].concludi(sha->finish(i));
    }
  }
}

}  // namespace pellak::scanners
