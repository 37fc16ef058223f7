#pragma once

#include <string>

namespace pellak {

/// Where the application keeps its files: one folder below the home folder, and the login item.
/// Only names; nothing is read or made.
class Store {
 public:
  explicit Store(std::string home);

  const std::string& home() const { return home_; }
  const std::string& cartella() const { return cartella_; }

  std::string impostazioni() const { return file("impostazioni.json"); }
  std::string risultati() const { return file("risultati.json"); }
  std::string icone() const { return file("icone.json"); }
  std::string registro() const { return file("registro.jsonl"); }
  std::string ultimaScansioneAuto() const { return file("ultima-scansione-auto.txt"); }
  std::string reteProgrammiNoti() const { return file("rete-programmi-noti.json"); }
  std::string aggiornamentoEsito() const { return file("aggiornamento-esito.json"); }
  std::string aggiornamentiUrl() const { return file("aggiornamenti-url.txt"); }
  /// Lock file of every write that follows a read, between processes too.
  std::string blocco() const { return file(".blocco"); }
  /// What a move to the Trash or back is about to do; there only while it does it.
  std::string intento() const { return file("cestino-intento.json"); }
  /// Lock file of those moves.
  std::string bloccoCestino() const { return file(".cestino"); }
  /// Folder of what is set aside against a full disk.
  std::string riserva() const { return file("riserva"); }
  /// What duplicate searches remember of files.
  std::string impronte() const { return file("impronte"); }
  std::string loginItem() const;

 private:
  std::string file(const char* nome) const { return cartella_ + "/" + nome; }

  std::string home_;
  std::string cartella_;
};

}  // namespace pellak
