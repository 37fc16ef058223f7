import { api } from "./api";
import { fallita } from "./rotte";
import { permessi } from "./store";

/** Reads anew which protected places can be read; what was known stays on a failure. */
export async function caricaPermessi(): Promise<void> {
  const risposta = await api("/api/perms");
  if (!fallita(risposta)) permessi.value = risposta;
}
