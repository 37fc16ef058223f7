import { computed, signal } from "@preact/signals";
import { type Errore, perche } from "./rotte";
import { vista } from "./store";
import { frase, unSoloDuePunti } from "./testo";

/** A recorded operation and how many items it moved. */
export interface OperazioneFatta {
  id: string;
  quanti: number;
  /** What of it is back already: that it is in the Trash no more is no failure. */
  tornati?: ReadonlySet<string>;
}

/** What an action led to. It belongs to the view in which it is told. */
export interface Avviso {
  tono: "fatto" | "errore";
  testo: string;
  /** What did not work and why. */
  falliti: { cosa: string; perche: string }[];
  /** Something lies in the Trash now: it can be opened from here. */
  nelCestino: boolean;
  /** The operations that "Rimetti a posto" puts back, newest first. */
  operazioni: OperazioneFatta[];
}

const avvisi = signal<ReadonlyMap<string, Avviso>>(new Map());

/** The notice of the view on screen; stays until it is closed or the next one takes its place. */
export const avviso = computed(() => avvisi.value.get(vista.value) ?? null);

/** Whether a notice leaves by itself: nothing can be done from it and nothing went wrong. */
export function passeggero(a: Avviso): boolean {
  return a.tono === "fatto" && a.operazioni.length === 0 && a.falliti.length === 0;
}

export function mostraAvviso(nuovo: Partial<Avviso> & { testo: string }): void {
  const vuoto: Avviso = {
    tono: "fatto",
    testo: "",
    falliti: [],
    nelCestino: false,
    operazioni: [],
  };
  avvisi.value = new Map(avvisi.value).set(vista.value, { ...vuoto, ...nuovo });
}

export function mostraErrore(errore: Errore, prima = ""): void {
  const testo = unSoloDuePunti(prima ? `${prima}: ${perche(errore)}` : perche(errore));
  mostraAvviso({ tono: "errore", testo: `${frase(testo)}.` });
}

export function chiudiAvviso(quale = avviso.value): void {
  const altri = [...avvisi.value].filter(([, a]) => a !== quale);
  avvisi.value = new Map(altri);
}
