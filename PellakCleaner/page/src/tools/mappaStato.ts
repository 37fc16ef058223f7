import { signal } from "@preact/signals";
import { api } from "../api";
import { type RispostaMappa, fallita } from "../rotte";
import { casa, visibile } from "../store";
import { dimensione } from "../testo";

/** The folder that the map shows; asked for again while its sizes are still being measured. */

export interface StatoMappa {
  percorso: string;
  mappa: RispostaMappa | null;
  errore: string;
}

const INTERVALLO = 500;

export const statoMappa = signal<StatoMappa>({ percorso: "", mappa: null, errore: "" });

/** What the list is filtered by: it stays with the view, and goes with the folder. */
export const filtroMappa = signal("");

let richiesta = 0;
let timer: number | undefined;
let aperta = false;

async function chiedi(percorso: string, force: boolean): Promise<void> {
  const questa = ++richiesta;
  window.clearTimeout(timer);
  const corpo = { path: percorso, livelli: 2 as const };
  const risposta = await api("/api/mappa", force ? { ...corpo, force } : corpo);
  // A newer folder was chosen meanwhile.
  if (questa !== richiesta) return;
  if (fallita(risposta)) {
    statoMappa.value = { percorso, mappa: null, errore: risposta.err };
    return;
  }
  if (percorso === "~") casa.value = risposta.path;
  statoMappa.value = { percorso: risposta.path, mappa: risposta, errore: "" };
  if (risposta.misurando && aperta && visibile.value) {
    timer = window.setTimeout(() => void chiedi(risposta.path, false), INTERVALLO);
  }
}

/** What is known of a folder before it was asked for: what its parent's map shows of it. */
function anticipo(percorso: string): RispostaMappa | null {
  const { mappa } = statoMappa.value;
  if (!mappa || sopra(percorso) !== mappa.path) return null;
  const voce = mappa.items.find((v) => v.dir && dentro(mappa.path, v.nome) === percorso);
  if (!voce?.figli) return null;
  return {
    path: percorso,
    tot: voce.size,
    tot_h: voce.size_h,
    items: voce.figli.map((f) => ({ ...f, size_h: dimensione(f.size) })),
    misurando: true,
    ...(voce.quanti === undefined ? {} : { quanti: voce.quanti }),
  };
}

/** Goes to a folder. What is known of it shows at once, the rest when the answer is there. */
export function vai(percorso: string): Promise<void> {
  if (percorso !== statoMappa.value.percorso) {
    filtroMappa.value = "";
    statoMappa.value = { percorso, mappa: anticipo(percorso), errore: "" };
  }
  return chiedi(percorso, false);
}

export function misuraDiNuovo(): Promise<void> {
  return chiedi(statoMappa.value.percorso || "~", true);
}

/** The view is on screen: asks at once, as sizes may have moved. */
export function apriMappa(): () => void {
  aperta = true;
  void chiedi(statoMappa.value.percorso || "~", false);
  return () => {
    aperta = false;
    richiesta += 1;
    window.clearTimeout(timer);
  };
}

export function sopra(percorso: string): string | null {
  if (!percorso.startsWith("/") || percorso === "/") return null;
  return percorso.slice(0, percorso.lastIndexOf("/")) || "/";
}

export function dentro(percorso: string, nome: string): string {
  return percorso.endsWith("/") ? percorso + nome : `${percorso}/${nome}`;
}

/** The folders from the home folder (or the root, outside it) down to this one. */
export function briciole(percorso: string, home: string): { nome: string; percorso: string }[] {
  const sotto = home !== "" && (percorso === home || percorso.startsWith(`${home}/`));
  const base = sotto ? home : "/";
  const resto = percorso.slice(base.length).split("/").filter(Boolean);
  const lista = [{ nome: sotto ? "Cartella utente" : "Disco", percorso: base }];
  let qui = base;
  for (const nome of resto) {
    qui = dentro(qui, nome);
    lista.push({ nome, percorso: qui });
  }
  return lista;
}
