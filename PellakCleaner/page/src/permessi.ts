import { api } from "./api";
import { fallita } from "./rotte";
import { casa, permessi } from "./store";

/** Reads anew which places can be read and how full the disk is; a failure leaves what was known. */
export async function caricaPermessi(): Promise<void> {
  const risposta = await api("/api/perms");
  if (fallita(risposta)) return;
  permessi.value = risposta;
  if (risposta.casa) casa.value = risposta.casa;
}
