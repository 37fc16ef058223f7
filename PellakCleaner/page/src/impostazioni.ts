import { api } from "./api";
import { mostraErrore } from "./avvisi";
import { type Impostazioni, type RispostaImpostazioni, fallita } from "./rotte";
import { impostazioni, limiti, radici } from "./store";

/** Reading and writing the settings; the answer is always what is shown. */

let lettura: Promise<void> | null = null;

async function leggi(): Promise<void> {
  const risposta = await api("/api/settings", {});
  if (fallita(risposta)) {
    mostraErrore(risposta, "Impostazioni");
    lettura = null;
    return;
  }
  impostazioni.value = risposta.valori;
  limiti.value = risposta.limiti ?? {};
  radici.value = risposta.radici ?? {};
}

export function caricaImpostazioni(daCapo = false): Promise<void> {
  if (daCapo) lettura = null;
  lettura ??= leggi();
  return lettura;
}

async function scrivi(corpo: Partial<Impostazioni> & { reset?: true }): Promise<boolean> {
  const risposta = await api("/api/settings", corpo);
  if (fallita(risposta)) {
    mostraErrore(risposta, "Impostazioni");
    return false;
  }
  impostazioni.value = (risposta as RispostaImpostazioni).valori;
  return true;
}

export function cambia(corpo: Partial<Impostazioni>): Promise<boolean> {
  return scrivi(corpo);
}

export function azzera(): Promise<boolean> {
  return scrivi({ reset: true });
}

let coda: Promise<unknown> = Promise.resolve();

/** The list is written whole, so changes of it wait for one another. */
function cambiaEscluse(nuove: (vecchie: string[]) => string[]): Promise<unknown> {
  coda = coda.then(async () => {
    await caricaImpostazioni();
    const vecchie = impostazioni.value?.dup_exclude;
    if (vecchie) await scrivi({ dup_exclude: nuove(vecchie) });
  });
  return coda;
}

/** One folder of the folder chooser; several arrive as several calls. */
export function aggiungiEsclusa(percorso: string): Promise<unknown> {
  return cambiaEscluse((vecchie) =>
    vecchie.includes(percorso) ? vecchie : [...vecchie, percorso],
  );
}

export function togliEsclusa(percorso: string): Promise<unknown> {
  return cambiaEscluse((vecchie) => vecchie.filter((altra) => altra !== percorso));
}
