import { computed, signal } from "@preact/signals";
import { api } from "./api";
import {
  type Avviso,
  type OperazioneFatta,
  chiudiAvviso,
  mostraAvviso,
  mostraErrore,
} from "./avvisi";
import { poll } from "./polling";
import { type Risposta, type RispostaCestino, fallita, perche } from "./rotte";
import { cercaSezione, occupato, vista } from "./store";
import { dimensione, quanti } from "./testo";

/** Moving to the Trash and putting back: what every view does the same way. */

/** Things to move that may go in several requests. */
export interface Spostamento {
  quanti: number;
  /** Moves `n` of them, those after the first `da`. */
  sposta: (da: number, n: number) => Promise<Risposta<RispostaCestino>>;
}

/** What is on its way, for the eye: in any view. */
export interface Lavoro {
  nome: string;
  fatti: number;
  totale: number;
  /** It goes in one request: how far it is can't be told, nor can it be stopped. */
  intero: boolean;
  /** Whether it was asked to stop: it does after the request that runs. */
  fermato: boolean;
}

export const lavoro = signal<Lavoro | null>(null);
/** Whether a move or a restore is on its way: no second one starts meanwhile. */
export const alLavoro = computed(() => lavoro.value !== null);
/** A scan begins neither during one of them nor during another scan. */
export const scansioneBloccata = computed(() => alLavoro.value || occupato.value);

export function fermaLavoro(): void {
  if (lavoro.value) lavoro.value = { ...lavoro.value, fermato: true };
}

function avanza(fatti: number): void {
  if (lavoro.value) lavoro.value = { ...lavoro.value, fatti };
}

const fermato = () => lavoro.value?.fermato ?? true;

/** Which section's scan an operation came from: it is scanned again when the items are back. */
const sezioneDi = new Map<string, string>();

interface Bilancio {
  mossi: number;
  byte: number;
  operazioni: OperazioneFatta[];
  falliti: Avviso["falliti"];
}

function annota(bilancio: Bilancio, risposta: Risposta<RispostaCestino>): void {
  const { falliti } = bilancio;
  if (fallita(risposta)) {
    falliti.push({ cosa: "", perche: perche(risposta) });
    return;
  }
  bilancio.mossi += risposta.ok;
  bilancio.byte += risposta.tot ?? 0;
  if (risposta.op) bilancio.operazioni.unshift({ id: risposta.op, quanti: risposta.ok });
  for (const voce of risposta.failed) falliti.push({ cosa: voce.percorso, perche: perche(voce) });
  for (const saltato of risposta.saltati ?? []) falliti.push({ cosa: "", perche: saltato });
  if (risposta.avviso) falliti.push({ cosa: "", perche: risposta.avviso });
}

/** Small lots go whole; large ones in parts of about this long, so that they can be stopped. */
const DURATA = 1200;
const PRIMA_PARTE = 500;
const PARTE_MASSIMA = 20_000;

async function esegui(spostamenti: readonly Spostamento[], bilancio: Bilancio): Promise<void> {
  let parte = PRIMA_PARTE;
  let fatti = 0;
  for (const { quanti: totale, sposta } of spostamenti) {
    for (let da = 0; da < totale && !fermato();) {
      const n = Math.min(parte, totale - da);
      const inizio = performance.now();
      annota(bilancio, await sposta(da, n));
      const durata = Math.max(performance.now() - inizio, 1);
      const giusta = Math.round((n * DURATA) / durata);
      parte = Math.min(Math.max(giusta, PRIMA_PARTE), parte * 2, PARTE_MASSIMA);
      da += n;
      fatti += n;
      avanza(fatti);
    }
  }
}

/** Runs the moves one after the other and tells what came of them. */
export async function spostaNelCestino(spostamenti: readonly Spostamento[]): Promise<void> {
  if (alLavoro.value) return;
  const totale = spostamenti.reduce((somma, s) => somma + s.quanti, 0);
  const sezione = vista.value;
  const nome = "Spostamento nel Cestino";
  lavoro.value = { nome, fatti: 0, totale, intero: totale === 1, fermato: false };
  chiudiAvviso();
  try {
    const bilancio: Bilancio = { mossi: 0, byte: 0, operazioni: [], falliti: [] };
    await esegui(spostamenti, bilancio);
    const { mossi, byte, operazioni, falliti } = bilancio;
    for (const { id } of operazioni) sezioneDi.set(id, sezione);
    const fermo = fermato() ? " Interrotto: il resto è dov'era." : "";
    const quanto = `${quanti(mossi, "elemento spostato", "elementi spostati")} nel Cestino`;
    mostraAvviso({
      tono: mossi > 0 ? "fatto" : "errore",
      testo:
        mossi > 0 ? `${quanto}, ${dimensione(byte)}.${fermo}` : `Nessun elemento spostato.${fermo}`,
      nelCestino: mossi > 0,
      falliti,
      operazioni,
    });
    await poll();
  } finally {
    lavoro.value = null;
  }
}

/** Scans again the sections that hold what came back, one after the other. */
async function riscansiona(sezioni: ReadonlySet<string>): Promise<void> {
  for (const section of sezioni) await api("/api/scan", { section });
}

/** Puts whole operations back, or the one item `index` of a single operation. */
export async function ripristina(
  operazioni: readonly OperazioneFatta[],
  index?: number,
): Promise<void> {
  if (alLavoro.value) return;
  const totale = index === undefined ? operazioni.reduce((somma, o) => somma + o.quanti, 0) : 1;
  const intero = operazioni.length === 1;
  lavoro.value = { nome: "Ripristino", fatti: 0, totale, intero, fermato: false };
  chiudiAvviso();
  try {
    let rimessi = 0;
    let trattati = 0;
    const falliti: Avviso["falliti"] = [];
    const sezioni = new Set<string>();
    let note = true;
    for (const { id: op, quanti: suoi, tornati } of operazioni) {
      if (fermato()) break;
      const risposta = await api("/api/restore", index === undefined ? { op } : { op, index });
      avanza((trattati += suoi));
      if (fallita(risposta)) {
        falliti.push({ cosa: "", perche: perche(risposta) });
        continue;
      }
      rimessi += risposta.items;
      const sezione = sezioneDi.get(op);
      if (sezione && cercaSezione(sezione)) sezioni.add(sezione);
      else note = false;
      for (const fallito of risposta.failed ?? []) {
        if (tornati?.has(fallito.percorso)) continue;
        falliti.push({ cosa: fallito.percorso, perche: perche(fallito) });
      }
      if (risposta.avviso) falliti.push({ cosa: "", perche: risposta.avviso });
    }
    const dopo = note ? "" : " La prossima scansione ne tiene conto.";
    mostraAvviso({
      tono: rimessi > 0 ? "fatto" : "errore",
      testo:
        rimessi > 0
          ? `${quanti(rimessi, "elemento rimesso al suo posto", "elementi rimessi al loro posto")}.${dopo}`
          : "Nessun elemento rimesso al suo posto.",
      falliti,
    });
    if (rimessi > 0) await riscansiona(sezioni);
    await poll();
  } finally {
    lavoro.value = null;
  }
}

/** A request whose only news is a refusal. */
export async function chiedi(
  richiesta: Promise<Risposta<object>>,
  prima: string,
): Promise<boolean> {
  const risposta = await richiesta;
  if (fallita(risposta)) mostraErrore(risposta, prima);
  return !fallita(risposta);
}

export const mostra = (path: string) => chiedi(api("/api/mostra", { path }), "Mostra");
export const apri = (path: string) => chiedi(api("/api/apri", { path }), "Apri");
export const apriCestino = () => chiedi(api("/api/mostra", { cestino: true }), "Apri il Cestino");
