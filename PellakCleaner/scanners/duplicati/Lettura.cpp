#include "scanners/duplicati/Lettura.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <thread>
#include <utility>

#include "PellakCore/base/ThreadSetting.h"
#include "scanners/duplicati/Impronta.h"

namespace pellak::scanners {
namespace {

constexpr std::size_t kCampione = 4096;
/// Fewer leave a disk waiting that is slow to answer.
constexpr std::size_t kLettori = 16;
/// Files that a thread reads side by side in one lane. More would be hashed less often, but leave
/// fewer pieces of work to share out.
constexpr std::size_t kMinInsieme = 2;
constexpr std::size_t kMaxInsieme = 8;

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

std::size_t processori() { return std::max(1U, std::thread::hardware_concurrency()); }

/// As many as keep disk and processors busy, of which each may hold `aperti` files open. One where
/// others come first: what the disk has begun for us they wait for.
std::size_t lettori(std::size_t descrittori, std::size_t aperti) {
  if (threadSetting() != nullptr) return 1;
  return std::clamp<std::size_t>(descrittori / aperti, 1, std::max(kLettori, processori()));
}

}  // namespace

void Lettura::conContatore(Squadra& squadra, const std::function<void()>& lavoro) {
  squadra.esegui([&] { withCounter(ctx_.contatore, lavoro); });
}

std::unique_ptr<OpenFile> Lettura::apri(Contenuto& contenuto, ReadPlan plan, FileMark& segno) {
  for (; contenuto.quanti > 0; ++contenuto.primo, --contenuto.quanti) {
    Candidato& candidato = candidati_[contenuto.primo];
    const std::string percorso = testi_.percorso(candidato);
    auto file = reader_.open(percorso, plan);
    if (!file) {
      if (file.error().kind == ErrorKind::denied) registraDiniego(percorso);
      continue;
    }
    const auto ora = (*file)->mark();
    if (!ora || !ora->regular || ora->size != contenuto.size) continue;
    segno = *ora;
    contenuto.mtimeNs = ora->mtimeNs;
    contenuto.ctimeNs = ora->ctimeNs;
    candidato.dev = static_cast<std::int32_t>(ora->dev);
    candidato.ino = ora->ino;
    contenuto.ricordabile =
        impronte_ != nullptr && impronte_->ricordabile(*ora) && volumeAdatto(ora->dev, **file);
    return std::move(file).value();
  }
  contenuto.noto = Conoscenza::perso;
  return nullptr;
}

void Lettura::campiona(Contenuto& contenuto, std::vector<std::byte>& memoria, TwinSha256& sha) {
  FileMark segno;
  const auto file = apri(contenuto, ReadPlan::samples, segno);
  if (!file) return;
  if (contenuto.ricordabile && impronte_->cerca(segno, contenuto)) {
    const bool intero = contenuto.size <= kTesta && contenuto.memoria == Memoria::hash;
    contenuto.noto = intero ? Conoscenza::tutto : Conoscenza::campioni;
    return;
  }
  const auto letti = leggiLuoghi(*file, contenuto.size, memoria);
  if (letti.empty() && contenuto.size > 0) {
    contenuto.noto = Conoscenza::perso;
  } else if (contenuto.size > kTesta) {
    contenuto.impronta = impronta(letti);
    contenuto.noto = Conoscenza::campioni;
    const bool zeri =
        std::all_of(letti.begin(), letti.end(), [](std::byte b) { return b == std::byte{0}; });
    if (zeri && file->allHole()) {
      const auto dopo = file->mark();
      if (!dopo || *dopo != segno) return;
      contenuto.memoria = Memoria::vuoto;
      contenuto.ricordabile = false;  // it is looked at as fast as remembered
    }
  } else {
    sha.update(0, letti);
    contenuto.digest = sha.finish(0);
    const auto ora = file->mark();
    contenuto.noto = ora && *ora == segno ? Conoscenza::tutto : Conoscenza::perso;
  }
}

void Lettura::campioni(std::vector<Contenuto>& contenuti) {
  Squadra squadra(contenuti.size(), lettori(ctx_.lister.descriptorBudget(), 1), ctx_.stop);
  conContatore(squadra, [&] {
    const auto sha = creaTwinSha256();
    std::vector<std::byte> memoria;
    while (const auto parte = squadra.prossima()) campiona(contenuti[*parte], memoria, *sha);
  });
}

bool Lettura::volumeAdatto(std::uint64_t dev, const OpenFile& file) {
  const std::lock_guard hold(lock_);
  const auto [volume, nuovo] = volumi_.try_emplace(dev, false);
  if (nuovo) volume->second = file.keepsChangeTimes();
  return volume->second;
}

/// Settles what needs no reading among files of equal samples, and puts the rest in front.
void Lettura::ricorda(std::span<Contenuto> simili) const {
  const auto ha = [](Memoria quale) {
    return [quale](const Contenuto& c) { return c.memoria == quale; };
  };
  if (std::all_of(simili.begin(), simili.end(), ha(Memoria::vuoto))) {
    for (Contenuto& c : simili) {
      c.noto = Conoscenza::tutto;
      c.digest = {};
    }
    return;
  }
  if (impronte_ == nullptr) return;
  const std::uint64_t firma = firmaDi(simili, candidati_);
  const auto eSolo = [&](const Contenuto& c) {
    return c.memoria == Memoria::solo && std::memcmp(c.digest.data(), &firma, sizeof firma) == 0;
  };
  const bool tuttiNoti = std::all_of(simili.begin(), simili.end(), [&](const Contenuto& c) {
    return c.memoria == Memoria::hash || eSolo(c);
  });
  for (Contenuto& c : simili) {
    if (c.memoria == Memoria::hash) {
      c.noto = Conoscenza::tutto;
    } else if (tuttiNoti) {
      c.noto = Conoscenza::perso;
    } else {
      c.memoria = Memoria::niente;
      std::memcpy(c.digest.data(), &firma, sizeof firma);
    }
  }
  std::sort(simili.begin(), simili.end(), [](const Contenuto& a, const Contenuto& b) {
    return a.noto != b.noto ? a.noto < b.noto : a.digest < b.digest;
  });
}

void Lettura::interi(std::vector<Contenuto>& contenuti) {
  for (std::size_t da = 0; da < contenuti.size();) {
    const std::size_t fine = fineUguali(contenuti, da);
    if (contenuti[da].noto == Conoscenza::campioni) {
      ricorda(std::span(contenuti).subspan(da, fine - da));
    }
    da = fine;
  }
  constexpr std::size_t kCorsie = TwinSha256::kLanes;
  const std::size_t descrittori = ctx_.lister.descriptorBudget();
  const std::size_t quanti = lettori(descrittori, kCorsie * kMinInsieme);
  const std::size_t piu = std::clamp(descrittori / (quanti * kCorsie), kMinInsieme, kMaxInsieme);
  const std::vector<Insieme> insiemi = insiemiDi(contenuti, piu);
  Squadra squadra(insiemi.size(), quanti, ctx_.stop);
  // Made here and not by each thread, so that what they leave is free for the groups.
  std::vector<Corsie> corsie(std::max<std::size_t>(1, std::min(quanti, insiemi.size())));
  std::atomic<std::size_t> prese{0};
  conContatore(squadra, [&] { leggiACoppie(squadra, insiemi, contenuti, corsie[prese++]); });
}

void Lettura::occupa(Corsia& corsia, const Insieme& insieme, std::vector<Contenuto>& contenuti) {
  corsia.comincia(contenuti[insieme.da].size, insieme.tutti);
  for (std::size_t i = insieme.da; i < insieme.da + insieme.quanti; ++i) {
    FileMark segno;
    if (auto file = apri(contenuti[i], ReadPlan::whole, segno)) {
      corsia.aggiungi(std::move(file), segno, contenuti[i]);
    }
  }
}

void Lettura::leggiACoppie(Squadra& squadra, const std::vector<Insieme>& insiemi,
                           std::vector<Contenuto>& contenuti, Corsie& corsie) {
  const auto sha = creaTwinSha256();
  const auto riempi = [&](Corsia& corsia) {
    if (!corsia.libera()) return;
    if (const auto parte = squadra.prossima()) occupa(corsia, insiemi[*parte], contenuti);
  };
  for (;;) {
    squadra.controlla();
    riempi(corsie[0]);
    // The last files are left to threads that have none.
    if (squadra.rimaste() >= processori()) riempi(corsie[1]);
    if (corsie[0].libera() && corsie[1].libera()) return;
    for (std::size_t i = 0; i < corsie.size(); ++i) {
      if (!corsie[i].libera()) corsie[i].avanza(*sha, i);
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
