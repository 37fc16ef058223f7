import { batch, effect, untracked } from "@preact/signals";
import { api } from "./api";
import { fallita } from "./rotte";
import { accogliStato, occupato, visibile, vista } from "./store";

const INTERVALLO = 500;

/** What the native side sets before it starts a scan of its own: see `poll`. */
export const V = { scanAllPending: false };

let ver: number | undefined;
let timer: number | undefined;
let inVolo: Promise<void> | null = null;
let ancora = false;

async function chiedi(): Promise<void> {
  const risposta = await api("/api/state", ver === undefined ? {} : { ver });
  if (fallita(risposta)) return;
  batch(() => {
    ver = risposta.ver;
    occupato.value = risposta.busy;
    if ("sections" in risposta) accogliStato(risposta);
  });
}

function prossima(): void {
  window.clearTimeout(timer);
  timer = undefined;
  if (occupato.value && visibile.value) timer = window.setTimeout(() => void poll(), INTERVALLO);
}

/**
 * Asks for the state now and goes on every 500 ms while a scan runs and the window can be seen.
 * A call during a running request makes one more request after it, never two at once.
 */
export async function poll(): Promise<void> {
  if (V.scanAllPending) {
    V.scanAllPending = false;
    vista.value = "panoramica";
  }
  if (inVolo) {
    ancora = true;
    return inVolo;
  }
  inVolo = (async () => {
    do {
      ancora = false;
      await chiedi();
    } while (ancora);
  })();
  await inVolo;
  inVolo = null;
  prossima();
}

/** Follows the window's visibility: the native word and the document's own. */
export function seguiVisibilita(): void {
  let mostrata = true;
  const aggiorna = () => {
    visibile.value = mostrata && !document.hidden;
  };
  window.__pellakVisible = (valore) => {
    mostrata = valore;
    aggiorna();
  };
  document.addEventListener("visibilitychange", aggiorna);
  effect(() => {
    if (visibile.value) untracked(() => void poll());
    else window.clearTimeout(timer);
  });
}

declare global {
  interface Window {
    __pellakVisible?: (visibile: boolean) => void;
  }
}
