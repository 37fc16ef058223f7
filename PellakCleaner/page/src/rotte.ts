/** What goes through the channel: one type for each reply, and the table of routes. */

export interface Errore {
  err: string;
  /** The true reason on this system, where the native side knows one: shown instead of `err`. */
  causa?: string;
  /** The refusal of an application that runs: it may be asked to quit first. */
  chiudibile?: boolean;
  nomeApp?: string;
}

export type Risposta<T> = T | Errore;

export interface Voce {
  path: string;
  size: number;
  size_h: string;
  when: string;
  mtime: number;
  /** What emptying the Trash surely frees; absent when it is all of `size`. */
  libera?: number;
}

export interface Gruppo {
  name: string;
  bundle: string;
  size: number;
  size_h: string;
  icon_src: string;
  url: string;
  spento: boolean;
  admin: boolean;
  system: boolean;
  desc?: string;
  pesi: number[];
  deboli: string[];
  paths: string[];
  waste?: number;
  waste_h?: string;
  /** Of a duplicate set: the copy that stays when nobody chooses. */
  tieni?: string;
  libera: number;
  /** Of copies that free different amounts: one for each path. */
  libere?: number[];
}

export interface Finding {
  id: string;
  name: string;
  mode: string;
  note: string;
  hint: string;
  unmeasured: boolean;
  total: number;
  total_h: string;
  count: number;
  kind: string;
  items: Voce[];
  groups: Gruppo[];
  libera: number;
  /** What the scan held back. */
  perche_no?: { percorso: string; perche: string }[];
}

export interface Sezione {
  id: string;
  name: string;
  desc: string;
  scanning: boolean;
  scanned: boolean;
  queued: boolean;
  status: string;
  denied: number;
  denied_top: { cartella: string; quanti: number }[];
  last_scan: number;
  total: number;
  total_h: string;
  findings: Finding[];
  apps_n?: number;
  apps_h?: string;
  updates_n?: number;
  avvio_n?: number;
  libera: number;
  /** False: something of this section can't be looked for. */
  disponibile: boolean;
  /** False: nothing of it can; absent otherwise. */
  scandibile?: boolean;
}

/** Bytes of the volume that holds the home folder. */
export interface Disco {
  totale: number;
  /** What the user can still write. */
  libero: number;
  usato: number;
}

export interface RispostaStato {
  sections: Sezione[];
  busy: boolean;
  ver: number;
  libera: number;
}

/** The short reply to a request that already knows this version. */
export interface RispostaInvariata {
  invariato: true;
  busy: boolean;
  ver: number;
}

export interface RispostaRegistro {
  ops: Operazione[];
}

export interface Operazione {
  id: string;
  ts: number;
  azione: string;
  tot: number;
  nota?: string;
  items: { orig: string; trash?: string; rip: boolean }[];
}

export interface RispostaMappa {
  path: string;
  tot: number;
  tot_h: string;
  items: VoceMappa[];
  non_leggibili?: number;
  misurando?: boolean;
  /** All children; `items` holds the largest. */
  quanti?: number;
}

export interface VoceMappa {
  nome: string;
  dir: boolean;
  size: number;
  size_h: string;
  /** The largest entries of a large folder, once they are known, and how many it holds. */
  figli?: FiglioMappa[];
  quanti?: number;
}

export interface FiglioMappa {
  nome: string;
  dir: boolean;
  size: number;
}

export interface RispostaPermessi {
  luoghi: { nome: string; percorso: string; leggibile: boolean; fda_denied: boolean }[];
  fda_denied: boolean;
  sistema?: "macos" | "linux";
  /** The home folder, and the room on its volume where the system tells it. */
  casa?: string;
  disco?: Disco;
}

export interface Impostazioni {
  dup_min_mb: number;
  large_min_mb: number;
  large_age_days: number;
  cache_age_days: number;
  leftover_age_days: number;
  installer_age_days: number;
  auto_days: number;
  login_item: boolean;
  menu_disk: boolean;
  menu_ram: boolean;
  menu_cpu: boolean;
  menu_net: boolean;
  menu_batt: boolean;
  menu_bar_live: boolean;
  rete_avvisi: boolean;
  dup_exclude: string[];
}

export interface RispostaImpostazioni {
  valori: Impostazioni;
  default?: Impostazioni;
  limiti?: Record<string, [number, number]>;
  /** The folders that the searches of two sections enter. */
  radici?: Record<string, string[]>;
}

/** An item that did not move, or did not come back. */
export interface Fallito {
  percorso: string;
  err: string;
  causa?: string;
}

export interface RispostaCestino {
  ok: number;
  failed: Fallito[];
  /** The record of what moved, and its bytes. */
  op?: string;
  tot?: number;
  saltati?: string[];
  quante?: number;
  avviso?: string;
}

export interface RispostaRipristino {
  ok: true;
  items: number;
  errors: string[];
  /** The same failures with their paths; only when there are any. */
  failed?: Fallito[];
  avviso?: string;
}

export interface Riuscita {
  ok: true;
}

export interface RispostaAvvio {
  ok: number | true;
  failed?: Fallito[];
  op?: string;
  tot?: number;
}

export type RichiestaAvvio =
  | { voci: { id: string; group: number }[]; attivo: boolean }
  | { id: string; group: number; delete: true };

interface UnaRotta<Richiesta, Esito> {
  richiesta: Richiesta;
  esito: Esito;
}

export interface Rotte {
  "/api/state": UnaRotta<{ ver?: number }, RispostaStato | RispostaInvariata>;
  "/api/scan": UnaRotta<{ section?: string }, Riuscita>;
  "/api/stop": UnaRotta<object, Riuscita>;
  "/api/log": UnaRotta<object, RispostaRegistro>;
  "/api/mappa": UnaRotta<{ path?: string; force?: boolean; livelli?: 2 }, RispostaMappa>;
  "/api/apri": UnaRotta<{ path: string }, Riuscita>;
  "/api/mostra": UnaRotta<{ path: string } | { cestino: true }, Riuscita>;
  "/api/reveal": UnaRotta<{ id: string; group: number }, Riuscita>;
  "/api/perms": UnaRotta<object, RispostaPermessi>;
  "/api/perms/fda": UnaRotta<object, Riuscita>;
  "/api/settings": UnaRotta<Partial<Impostazioni> & { reset?: true }, RispostaImpostazioni>;
  "/api/trash": UnaRotta<{ id: string; items?: string[] }, RispostaCestino>;
  "/api/trash_group": UnaRotta<
    { id: string; group: number; first: string; chiudiPrima?: boolean },
    RispostaCestino
  >;
  "/api/trash_sel": UnaRotta<
    { id: string; groups: number[]; firsts: string[]; chiudiPrima?: boolean },
    RispostaCestino
  >;
  "/api/keep": UnaRotta<{ group: number; keep: string; first: string }, RispostaCestino>;
  "/api/keep_all": UnaRotta<
    { scelte: { group: number; first: string; keep: string }[] },
    RispostaCestino
  >;
  "/api/dup_scarta": UnaRotta<{ id: string; group: number; paths: string[] }, RispostaCestino>;
  "/api/restore": UnaRotta<{ op: string; index?: number }, RispostaRipristino>;
  "/api/avvio": UnaRotta<RichiestaAvvio, RispostaAvvio>;
}

export type Percorso = keyof Rotte;
export type Richiesta<P extends Percorso> = Rotte[P]["richiesta"];
export type Esito<P extends Percorso> = Rotte[P]["esito"];

/** Why, in the words to show. */
export function perche(fallito: { err: string; causa?: string }): string {
  return fallito.causa || fallito.err;
}

export function fallita<T extends object>(risposta: Risposta<T>): risposta is Errore {
  return "err" in risposta;
}
