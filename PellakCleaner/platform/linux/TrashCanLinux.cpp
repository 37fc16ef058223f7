#include "platform/linux/TrashCanLinux.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/linux/ItemFolder.h"
#include "platform/linux/ItemMove.h"
#include "platform/linux/MountTable.h"
#include "platform/linux/MoveCauses.h"
#include "platform/linux/RecordsAhead.h"
#include "platform/linux/TrashAway.h"
#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashRecord.h"
#include "platform/linux/XdgFolders.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/HomeFolder.h"

namespace pellak::native {
namespace {

using posix::Descriptor;
using posix::errnoError;

constexpr std::size_t kNameMax = 255;
constexpr std::size_t kWorthAThread = 100;
constexpr std::string_view kVolumeTrash = "/.Trash";
constexpr std::string_view kFiles = "/files";

/// Whether a folder `nome` ("/name") is on the path or its end.
bool passesThrough(std::string_view percorso, std::string_view nome) {
  for (std::size_t da = percorso.find(nome); da != std::string_view::npos;
       da = percorso.find(nome, da + 1)) {
    const std::size_t fine = da + nome.size();
    if (fine == percorso.size() || percorso[fine] == '/') return true;
  }
  return false;
}

std::string ownVolumeTrash() {
  return std::string(kVolumeTrash) + "-" + std::to_string(posix::trashUser(xdgFolders().home));
}

bool isInside(std::string_view percorso, std::string_view cartella) {
  return percorso.starts_with(cartella) &&
         (percorso.size() == cartella.size() || percorso[cartella.size()] == '/');
}

bool writable(int cartella) { return ::faccessat(cartella, ".", W_OK | X_OK, AT_EACCESS) == 0; }

Error fromBelow() {
  return {ErrorKind::failed, EXDEV,
          "la cartella fa parte del sistema di base, che non si può modificare: elemento non "
          "spostato"};
}

class BatchLinux final : public TrashBatch {
 public:
  BatchLinux(posix::Riserva* riserva, std::string senzaSchede)
      : senzaSchede_(std::move(senzaSchede)), riserva_(riserva) {}

  void ofOperation(std::string_view id) override { operazione_ = id; }
  Result<TrashPlan> plan(std::string_view percorso) override;
  void announce(std::span<const TrashPlan* const> piani) override;
  Result<std::string> move(const TrashPlan& piano) override;
  std::string locate(const TrashPlan& piano) override;
  Result<void> searchable(const TrashPlan& piano) override;
  Result<void> putBack(std::string_view nelCestino, std::string_view destinazione) override;
  Result<void> undoPutBack(std::string_view nelCestino, std::string_view destinazione) override;
  void abandon(const TrashPlan& piano) override;
  Result<void> sync() override;

 private:
  /// A Trash folder in use, and what changes its cache of folder sizes.
  struct Aperto {
    TrashFolder cestino;
    std::unordered_set<std::string> promessi;             ///< names planned in this batch
    std::unordered_map<std::string, unsigned> contatori;  ///< last number tried for a taken name
    std::vector<std::string> tornate;                     ///< moved out, their records still there
    std::vector<FolderSize> arrivate;
  };

  Result<Aperto*> trashFor(std::string_view cartella, Volume volume);
  Result<Aperto*> homeTrash();
  Result<Aperto*> trashAt(const std::string& nelCestino);
  Aperto* keep(TrashFolder cestino);
  static std::string freeName(Aperto& aperto, const std::string& nome);
  static Result<void> undo(const Aperto& aperto, const std::string& nelCestino, int cartella,
                           const std::string& nome);

  const std::string senzaSchede_;
  const std::string home_ = xdgFolders().home;
  const std::string data_ = recordDate();
  posix::Riserva* const riserva_;
  std::string operazione_;
  ItemFolder cartella_{home_};
  MountTable montati_;
  std::vector<std::unique_ptr<Aperto>> aperti_;
  std::optional<RecordsAhead> pronte_;  ///< after the folders it writes in
};

BatchLinux::Aperto* BatchLinux::keep(TrashFolder cestino) {
  aperti_.push_back(std::make_unique<Aperto>());
  // A volume of its own gets no room from what is kept on the home's.
  if (cestino.cima.empty()) cestino.riserva = riserva_;
  aperti_.back()->cestino = std::move(cestino);
  return aperti_.back().get();
}

Result<BatchLinux::Aperto*> BatchLinux::homeTrash() {
  auto casa =
      riserva_ == nullptr ? openHomeTrash() : riserva_->conRiserva(homeTrashPath(), openHomeTrash);
  if (!casa) return casa.error();
  return keep(std::move(*casa));
}

Result<BatchLinux::Aperto*> BatchLinux::trashFor(std::string_view cartella, Volume volume) {
  for (const auto& aperto : aperti_) {
    if (aperto->cestino.info && aperto->cestino.volume == volume) return aperto.get();
  }
  if (const auto casa = homeTrashVolume(); casa && *casa == volume) return homeTrash();
  auto cestino = openVolumeTrash(topOfVolume(cartella, volume));
  if (!cestino) return cestino.error();
  return keep(std::move(*cestino));
}

Result<BatchLinux::Aperto*> BatchLinux::trashAt(const std::string& nelCestino) {
  const std::string_view files = std::string_view(nelCestino).substr(0, nelCestino.rfind('/'));
  for (const auto& aperto : aperti_) {
    const std::string& suo = aperto->cestino.percorso;
    if (!aperto->cestino.info && files == suo) return aperto.get();
    if (files.size() == suo.size() + kFiles.size() && files.starts_with(suo) &&
        files.ends_with(kFiles)) {
      return aperto.get();
    }
  }
  auto cestino = !senzaSchede_.empty() && files == senzaSchede_
                     ? openPlainTrash(senzaSchede_)
                     : openTrashHolding(nelCestino, home_);
  if (!cestino) return cestino.error();
  return keep(std::move(*cestino));
}

std::string BatchLinux::freeName(Aperto& aperto, const std::string& nome) {
  unsigned numero = 1;
  for (;;) {
    const std::string coda = numero == 1 ? std::string() : "." + std::to_string(numero);
    const std::size_t massimo = kNameMax - recordName({}).size() - coda.size();
    std::string scelto = nome.substr(0, massimo) + coda;
    // A record without an item is rare, and making the new one finds it in time: at first one look
    // is enough.
    const bool preso = aperto.promessi.contains(scelto) ||
                       existsAt(aperto.cestino.files.get(), scelto) ||
                       (numero > 1 && existsAt(aperto.cestino.info.get(), recordName(scelto)));
    if (!preso) {
      aperto.promessi.insert(scelto);
      return scelto;
    }
    // Where many items share a name the numbers are not tried anew for each of them.
    unsigned& provati = aperto.contatori.try_emplace(nome, 1).first->second;
    numero = ++provati;
  }
}

Result<TrashPlan> BatchLinux::plan(std::string_view percorso) {
  const Split parti = split(percorso);
  if (parti.nome.empty()) return errnoError(EINVAL);
  TrashPlan piano;
  piano.percorso = percorso;
  const auto cartella = cartella_.open(parti.cartella);
  if (!cartella) return itemStays(cartella.error(), piano.percorso);
  const auto voce = itemAt(*cartella, parti.nome.c_str());
  if (!voce) return itemStays(voce.error(), piano.percorso);
  if (!sameMount(voce->volume, cartella_.volume()))
    return itemStays(errnoError(EBUSY), piano.percorso);
  if (voce->type == EntryType::directory) {
    const auto solo = montati_.nothingBelow(cartella_.realPath(parti.nome));
    if (!solo) return solo.error();
  }
  const auto aperto = trashFor(parti.cartella, cartella_.volume());
  if (!aperto) return trashRefuses(aperto.error(), piano.percorso, {});
  piano.nelCestino = (*aperto)->cestino.percorso + "/files/" + freeName(**aperto, parti.nome);
  piano.dev = voce->volume.dev;
  piano.ino = voce->ino;
  piano.type = voce->type;
  piano.mtimeNs = voce->mtimeNs;
  piano.lunghezza = voce->size;
  return piano;
}

void BatchLinux::announce(std::span<const TrashPlan* const> piani) {
  pronte_.reset();
  if (piani.size() < kWorthAThread) return;
  std::vector<RecordsAhead::Record> schede;
  schede.reserve(piani.size());
  for (const TrashPlan* piano : piani) {
    const auto aperto = trashAt(piano->nelCestino);
    if (!aperto) continue;
    schede.push_back({&(*aperto)->cestino, split(piano->nelCestino).nome, piano->percorso});
  }
  pronte_.emplace(std::move(schede), data_, operazione_);
}

Result<std::string> BatchLinux::move(const TrashPlan& piano) {
  const Split da = split(piano.percorso);
  const auto cartella = cartella_.open(da.cartella);
  if (!cartella) return itemStays(cartella.error(), piano.percorso);
  const auto aperto = trashAt(piano.nelCestino);
  if (!aperto) return trashRefuses(aperto.error(), piano.percorso, {});
  const TrashFolder& cestino = (*aperto)->cestino;
  const std::string nome = split(piano.nelCestino).nome;
  const auto look = lookAgain(*cartella, da.nome, piano, cestino.overlay);
  if (!look) return itemStays(look.error(), piano.percorso);
  if (look->directory) {
    const auto solo = montati_.nothingBelow(cartella_.realPath(da.nome));
    if (!solo) return solo.error();
  }
  auto pronta = pronte_ ? pronte_->take(cestino, nome) : std::nullopt;
  if (!pronta) pronta = writeRecord(cestino, nome, piano.percorso, data_, operazione_);
  if (!*pronta) return trashRefuses(pronta->error(), piano.percorso, cestino.percorso);
  const auto rinomina = [&] {
    return renameExclusively(*cartella, da.nome, cestino.files.get(), nome);
  };
  const auto mosso = cestino.riserva == nullptr
                         ? rinomina()
                         : cestino.riserva->conRiserva(cestino.percorso, rinomina);
  if (!mosso) {
    removeRecord(cestino, nome);
    if (mosso.error().kind == ErrorKind::denied && !writable(cestino.files.get())) {
      return trashRefuses(mosso.error(), piano.percorso, cestino.percorso);
    }
    const bool sotto = look->directory && cestino.overlay && mosso.error().code == EXDEV;
    return itemStays(sotto ? fromBelow() : mosso.error(), piano.percorso);
  }
  if (!arrived(cestino.files.get(), nome, piano, *look) &&
      undo(**aperto, nome, *cartella, da.nome)) {
    return errnoError(EINVAL);
  }
  if (look->directory) (*aperto)->arrivate.push_back({nome, piano.size});
  return piano.nelCestino;
}

/// Something else was put at the path between the look and the rename: it goes back.
Result<void> BatchLinux::undo(const Aperto& aperto, const std::string& nelCestino, int cartella,
                              const std::string& nome) {
  auto tornato = renameExclusively(aperto.cestino.files.get(), nelCestino, cartella, nome);
  if (tornato) removeRecord(aperto.cestino, nelCestino);
  return tornato;
}

std::string BatchLinux::locate(const TrashPlan& piano) {
  const std::string nome = split(piano.nelCestino).nome;
  const auto aperto = trashAt(piano.nelCestino);
  if (nome.empty() || !aperto) return {};
  const TrashFolder& cestino = (*aperto)->cestino;
  if (!existsAt(cestino.files.get(), nome)) return {};
  const bool suNumero = piano.ino != 0 && isItem(cestino.files.get(), nome, piano);
  if (!cestino.info) return piano.ino == 0 || suNumero ? piano.nelCestino : std::string();
  if (!operazione_.empty()) {
    const std::string mossoDa = recordedOperation(cestino, nome);
    if (!mossoDa.empty() && mossoDa != operazione_) return {};
  }
  const auto da = recordedPath(cestino, nome);
  const bool scheda = da && !da->empty();
  return (scheda ? *da == piano.percorso : suNumero) ? piano.nelCestino : std::string();
}

Result<void> BatchLinux::searchable(const TrashPlan& piano) {
  const auto aperto = trashAt(piano.nelCestino);
  return aperto ? lookIn((*aperto)->cestino, piano) : surelyGone(piano, aperto.error());
}

Result<void> BatchLinux::putBack(std::string_view nelCestino, std::string_view destinazione) {
  std::string nome = split(nelCestino).nome;
  const Split a = split(destinazione);
  if (nome.empty() || a.nome.empty()) return errnoError(EINVAL);
  const auto aperto = trashAt(std::string(nelCestino));
  if (!aperto) return aperto.error();
  const auto cartella = cartella_.open(a.cartella, ItemFolder::Missing::make);
  if (!cartella) return placeRefuses(cartella.error(), std::string(destinazione));
  const int files = (*aperto)->cestino.files.get();
  if (auto mosso = renameExclusively(files, nome, *cartella, a.nome); !mosso) {
    if (mosso.error().kind == ErrorKind::denied && !writable(files)) {
      const std::string suo(nelCestino.substr(0, nelCestino.rfind('/')));
      return trashRefuses(mosso.error(), std::string(destinazione), suo);
    }
    return placeRefuses(mosso.error(), std::string(destinazione));
  }
  (*aperto)->tornate.push_back(std::move(nome));
  return {};
}

/// Its record is still there, and `sync` leaves that of an item that lies in the Trash.
Result<void> BatchLinux::undoPutBack(std::string_view nelCestino, std::string_view destinazione) {
  const Split da = split(destinazione);
  const auto aperto = trashAt(std::string(nelCestino));
  if (!aperto) return aperto.error();
  const auto cartella = cartella_.open(da.cartella);
  if (!cartella) return cartella.error();
  return renameExclusively(*cartella, da.nome, (*aperto)->cestino.files.get(),
                           split(nelCestino).nome);
}

/// Only a record of this very path, or one cut short, is taken away: the name may be somebody
/// else's by now.
void BatchLinux::abandon(const TrashPlan& piano) {
  const std::string nome = split(piano.nelCestino).nome;
  const auto aperto = trashAt(piano.nelCestino);
  if (nome.empty() || !aperto || !(*aperto)->cestino.info) return;
  const TrashFolder& cestino = (*aperto)->cestino;
  if (existsAt(cestino.files.get(), nome)) return;
  const auto da = recordedPath(cestino, nome);
  if (da && (da->empty() || *da == piano.percorso)) removeRecord(cestino, nome);
}

Result<void> BatchLinux::sync() {
  pronte_.reset();
  Result<void> esito;
  for (const auto& aperto : aperti_) {
    const auto tornate = std::exchange(aperto->tornate, {});
    const bool schede = static_cast<bool>(aperto->cestino.info);
    if (schede && (!tornate.empty() || !aperto->arrivate.empty())) {
      recordDirectorySizes(aperto->cestino, std::exchange(aperto->arrivate, {}));
    }
    if (::syncfs(aperto->cestino.files.get()) != 0) esito = errnoError(errno);
    if (schede) removeRecords(aperto->cestino, tornate);
  }
  return esito;
}

}  // namespace

TrashCanLinux::TrashCanLinux(posix::Riserva* riserva)
    : riserva_(riserva), casaVera_(realHomeTrashPath()) {}

std::unique_ptr<TrashBatch> TrashCanLinux::begin() {
  return std::make_unique<BatchLinux>(riserva_, senzaSchede_);
}

bool TrashCanLinux::insideTrash(std::string_view percorso) const {
  // Nearly no path has the beginning that both names share.
  if (percorso.find(kVolumeTrash) != std::string_view::npos &&
      (passesThrough(percorso, kVolumeTrash) || passesThrough(percorso, ownVolumeTrash()))) {
    return true;
  }
  const std::string casa = homeTrashPath();
  return isInside(percorso, casa) || isInside(casa, percorso) || isInside(percorso, casaVera_) ||
         isInside(casaVera_, percorso);
}

}  // namespace pellak::native
