import { signal } from "@preact/signals";
import { api } from "./api";
import { type Avviso, chiudiAvviso, mostraAvviso, mostraErrore } from "./avvisi";
import { poll } from "./polling";
import { type Operazione, type Risposta, type RispostaCestino, fallita, perche } from "./rotte";
import { dimensione, quanti } from "./testo";

/** Moving to the Trash and putting back: what every view does the same way. */

export type Spostamento = () => Promise<Risposta<RispostaCestino>>;

/** Whether a move or a restore is on its way: no second one starts meanwhile. */
export const alLavoro = signal(false);

interface Bilancio {
  mossi: number;
  operazioni: number;
  falliti: Avviso["falliti"];
}

async function esegui(spostamenti: Spostamento[]): Promise<Bilancio> {
  const bilancio: Bilancio = { mossi: 0, operazioni: 0, falliti: [] };
  for (const sposta of spostamenti) {
    const risposta = await sposta();
    if (fallita(risposta)) {
      bilancio.falliti.push({ cosa: "", perche: perche(risposta) });
      continue;
    }
    bilancio.mossi += risposta.ok;
    if (risposta.ok > 0) bilancio.operazioni += 1;
    for (const fallito of risposta.failed) {
      bilancio.falliti.push({ cosa: fallito.percorso, perche: perche(fallito) });
    }
    for (const saltato of risposta.saltati ?? []) {
      bilancio.falliti.push({ cosa: "", perche: saltato });
    }
    if (risposta.avviso) bilancio.falliti.push({ cosa: "", perche: risposta.avviso });
  }
  return bilancio;
}

/** The operations just recorded: requests are answered in order, so they are the newest ones. */
async function ultimeOperazioni(quante: number): Promise<Operazione[]> {
  if (quante === 0) return [];
  const registro = await api("/api/log");
  return fallita(registro) ? [] : registro.ops.slice(0, quante);
}

/** Runs the moves one after the other and tells what came of them. */
export async function spostaNelCestino(spostamenti: Spostamento[]): Promise<void> {
  if (alLavoro.value) return;
  alLavoro.value = true;
  chiudiAvviso();
  try {
    const bilancio = await esegui(spostamenti);
    const operazioni = await ultimeOperazioni(bilancio.operazioni);
    const byte = operazioni.reduce((somma, op) => somma + op.tot, 0);
    const quantita = operazioni.length > 0 ? `, ${dimensione(byte)}` : "";
    mostraAvviso({
      tono: bilancio.mossi > 0 ? "fatto" : "errore",
      testo:
        bilancio.mossi > 0
          ? `${quanti(bilancio.mossi, "elemento spostato", "elementi spostati")} nel Cestino${quantita}.`
          : "Nessun elemento spostato.",
      falliti: bilancio.falliti,
      operazioni: operazioni.map((op) => op.id),
    });
    await poll();
  } finally {
    alLavoro.value = false;
  }
}

/** Puts whole operations back, or the one item `index` of a single operation. */
export async function ripristina(operazioni: string[], index?: number): Promise<void> {
  if (alLavoro.value) return;
  alLavoro.value = true;
  chiudiAvviso();
  try {
    let rimessi = 0;
    const falliti: Avviso["falliti"] = [];
    for (const op of operazioni) {
      const risposta = await api("/api/restore", index === undefined ? { op } : { op, index });
      if (fallita(risposta)) {
        falliti.push({ cosa: "", perche: perche(risposta) });
        continue;
      }
      rimessi += risposta.items;
      for (const fallito of risposta.failed ?? []) {
        falliti.push({ cosa: fallito.percorso, perche: perche(fallito) });
      }
      if (risposta.avviso) falliti.push({ cosa: "", perche: risposta.avviso });
    }
    mostraAvviso({
      tono: rimessi > 0 ? "fatto" : "errore",
      testo:
        rimessi > 0
          ? `${quanti(rimessi, "elemento rimesso", "elementi rimessi")} al suo posto. La prossima scansione lo mostra di nuovo.`
          : "Nessun elemento rimesso al suo posto.",
      falliti,
    });
    await poll();
  } finally {
    alLavoro.value = false;
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
