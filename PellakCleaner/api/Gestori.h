#pragma once

#include "api/Risposta.h"
#include "api/Rotte.h"
#include "api/Servizi.h"

/// The handlers of the route table, named after their routes.
namespace pellak::api::gestori {

// RotteStato.cpp
Risposta state(Servizi& servizi, Json corpo);
Risposta scan(Servizi& servizi, Json corpo);
Risposta stop(Servizi& servizi, Json corpo);
Risposta voci(Servizi& servizi, Json corpo);
Risposta icon(Servizi& servizi, Json corpo);
Risposta icons(Servizi& servizi, Json corpo);

// RotteImpostazioni.cpp
Risposta settings(Servizi& servizi, Json corpo);

// RotteFile.cpp
Risposta apri(Servizi& servizi, Json corpo);
Risposta mostra(Servizi& servizi, Json corpo);
Risposta reveal(Servizi& servizi, Json corpo);

// RotteCestino.cpp
Risposta trash(Servizi& servizi, Json corpo);
Risposta trashGroup(Servizi& servizi, Json corpo);
Risposta trashSel(Servizi& servizi, Json corpo);
Risposta keep(Servizi& servizi, Json corpo);
Risposta keepAll(Servizi& servizi, Json corpo);
Risposta dupScarta(Servizi& servizi, Json corpo);
Risposta restore(Servizi& servizi, Json corpo);
Risposta log(Servizi& servizi, Json corpo);

// RotteMappa.cpp
Risposta mappa(Servizi& servizi, Json corpo);

// RotteSistema.cpp
Risposta perms(Servizi& servizi, Json corpo);
Risposta permsFda(Servizi& servizi, Json corpo);
Risposta permsAutomation(Servizi& servizi, Json corpo);
Risposta appAttiva(Servizi& servizi, Json corpo);
/// Stands in the table for work that this version does not offer.
Risposta nonDisponibile(Servizi& servizi, Json corpo);

}  // namespace pellak::api::gestori
