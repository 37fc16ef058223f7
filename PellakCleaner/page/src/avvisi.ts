import { signal } from "@preact/signals";
import { type Errore, perche } from "./rotte";
import { frase } from "./testo";

/** What an action led to; stays until it is closed or the next one takes its place. */
export interface Avviso {
  tono: "fatto" | "errore";
  testo: string;
  /** What did not work and why. */
  falliti: { cosa: string; perche: string }[];
  /** The operations that "Annulla" puts back, newest first. */
  operazioni: string[];
}

export const avviso = signal<Avviso | null>(null);

export function mostraAvviso(nuovo: Partial<Avviso> & { testo: string }): void {
  avviso.value = { tono: "fatto", falliti: [], operazioni: [], ...nuovo };
}

export function mostraErrore(errore: Errore, prima = ""): void {
  const testo = prima ? `${prima}: ${perche(errore)}` : perche(errore);
  mostraAvviso({ tono: "errore", testo: `${frase(testo)}.` });
}

export function chiudiAvviso(): void {
  avviso.value = null;
}
