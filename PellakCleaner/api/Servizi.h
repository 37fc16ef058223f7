#pragma once

#include <string>

#include "PellakCore/Engine.h"
#include "PellakCore/Impostazioni.h"
#include "commands/Comandi.h"
#include "platform/Applications.h"
#include "platform/FileManager.h"
#include "platform/Files.h"
#include "platform/SystemProbe.h"
#include "platform/ToolFamily.h"
#include "trash/OperazioniCestino.h"

namespace pellak::api {

/// What a handler may work with. Everything referred to outlives the router and may be used from
/// any thread.
struct Servizi {
  Engine& engine;
  Impostazioni& impostazioni;
  FileManager& fileManager;
  Applications& applicazioni;
  Files& files;
  Comandi& comandi;
  SystemProbe& probe;
  FamigliaStrumenti famiglia;
  trash::OperazioniCestino& cestino;
  std::string home;  ///< absolute, bytes
};

}  // namespace pellak::api
