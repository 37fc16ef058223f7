import { computed, signal } from "@preact/signals";
import type { Errore, Esito, Percorso, Richiesta, Risposta } from "./rotte";

/** The only file that touches the native side's message channels. */

export type Parola = "ready" | "pickFolder" | "restart" | "quit" | "fdaPending";

interface Canale<M> {
  postMessage(messaggio: M): void;
}

declare global {
  interface Window {
    webkit?: {
      messageHandlers?: {
        api?: Canale<{ id: number; path: string; body: object }>;
        pellak?: Canale<Parola>;
      };
    };
    __apiDone?: (id: number, stato: number, testo: string) => void;
  }
}

const attese = new Map<number, (risposta: object) => void>();
let ultimoId = 0;

/** Longer than this and the wait is shown. */
const PAZIENZA = 300;
const lente = signal(0);
/** Whether a request has been without its reply for a while. */
export const inAttesa = computed(() => lente.value > 0);

/** Runs `poi` when the reply is there, and counts the request as slow from some moment on. */
function conPazienza(poi: (risposta: object) => void): (risposta: object) => void {
  let lenta = false;
  const orologio = setTimeout(() => {
    lenta = true;
    lente.value += 1;
  }, PAZIENZA);
  return (risposta) => {
    clearTimeout(orologio);
    if (lenta) lente.value -= 1;
    poi(risposta);
  };
}

/**
 * One request. Always settles, never rejects: a failure is a reply with "err", whether the native
 * side said so or could not be reached.
 */
export function api<P extends Percorso>(
  path: P,
  body: Richiesta<P> = {} as Richiesta<P>,
): Promise<Risposta<Esito<P>>> {
  const canale = window.webkit?.messageHandlers?.api;
  if (!canale) return Promise.resolve<Errore>({ err: "programma non raggiungibile" });
  return new Promise((risolvi) => {
    const id = ++ultimoId;
    attese.set(id, conPazienza(risolvi as (risposta: object) => void));
    canale.postMessage({ id, path, body });
  });
}

/** One word to the native side. */
export function invia(parola: Parola): void {
  window.webkit?.messageHandlers?.pellak?.postMessage(parola);
}

function leggi(testo: string): object {
  try {
    const letto: unknown = JSON.parse(testo);
    if (typeof letto === "object" && letto !== null && Object.keys(letto).length > 0) return letto;
  } catch {
    // Falls through: a reply that is no JSON is a failure like any other.
  }
  return { err: "risposta non leggibile" };
}

window.__apiDone = (id, _stato, testo) => {
  const risolvi = attese.get(id);
  if (!risolvi) return;
  attese.delete(id);
  risolvi(leggi(testo));
};
