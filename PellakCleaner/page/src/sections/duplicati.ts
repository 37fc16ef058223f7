import { api } from "../api";
import type { Spostamento } from "../cestino";
import type { Gruppo } from "../rotte";
import { nomeDi } from "../testo";

/** Which copies stay and which go, group by group. */

/** One group as it stands in the finding. */
export interface Insieme {
  gruppo: Gruppo;
  indice: number;
}

/** What the user chose in a group, by the group's first path. */
export interface SceltaCopie {
  tenuta: string;
  via: ReadonlySet<string>;
}

export type SceltePerGruppo = ReadonlyMap<string, SceltaCopie>;

export function primaCopia(gruppo: Gruppo): string {
  return gruppo.paths[0] ?? "";
}

/** The choice that holds for a group: copies that are gone drop out, one copy is always kept. */
export function sceltaDi(gruppo: Gruppo, scelte: SceltePerGruppo): SceltaCopie {
  const scelta = scelte.get(primaCopia(gruppo));
  const solita = gruppo.tieni ?? primaCopia(gruppo);
  const tenuta = scelta && gruppo.paths.includes(scelta.tenuta) ? scelta.tenuta : solita;
  const via = new Set(gruppo.paths.filter((p) => p !== tenuta && scelta?.via.has(p)));
  return { tenuta, via };
}

/** The copy to keep can't be discarded: choosing it takes it out of those that go. */
export function conTenuta(scelta: SceltaCopie, tenuta: string): SceltaCopie {
  const via = new Set(scelta.via);
  via.delete(tenuta);
  return { tenuta, via };
}

export function conVia(scelta: SceltaCopie, percorso: string, si: boolean): SceltaCopie {
  const via = new Set(scelta.via);
  if (si && percorso !== scelta.tenuta) via.add(percorso);
  else via.delete(percorso);
  return { tenuta: scelta.tenuta, via };
}

export function tieniSolo({ gruppo, indice }: Insieme, keep: string): Spostamento {
  const sposta = () => api("/api/keep", { group: indice, keep, first: primaCopia(gruppo) });
  return { quanti: 1, sposta };
}

export function scarta({ indice }: Insieme, paths: string[]): Spostamento {
  return {
    quanti: 1,
    sposta: () => api("/api/dup_scarta", { id: "duplicates", group: indice, paths }),
  };
}

/**
 * These groups, each with the copy that is shown as kept. The last go first: a finished one leaves
 * the list and moves those after it.
 */
export function puliziaCompleta(insiemi: readonly Insieme[], scelte: SceltePerGruppo): Spostamento {
  const tutte = insiemi
    .map(({ gruppo, indice }) => ({
      group: indice,
      first: primaCopia(gruppo),
      keep: sceltaDi(gruppo, scelte).tenuta,
    }))
    .sort((a, b) => b.group - a.group);
  return {
    quanti: tutte.length,
    sposta: (da, n) => api("/api/keep_all", { scelte: tutte.slice(da, da + n) }),
  };
}

const NUMERATO = /\(\d+\)/;
/** Where files only pass through, as systems name it. */
const DI_PASSAGGIO = ["Downloads", "Scaricati", "Desktop", "Scrivania"];

function nomeDiCopia(percorso: string): boolean {
  const nome = nomeDi(percorso).toLowerCase();
  return NUMERATO.test(nome) || nome.includes("copia") || nome.includes("copy");
}

function diPassaggio(percorso: string, home: string): boolean {
  return DI_PASSAGGIO.some((nome) => percorso.startsWith(`${home}/${nome}/`));
}

/** Why this copy is the one that stays, in the words of who looks at the list. */
export function percheResta(gruppo: Gruppo, scelta: SceltaCopie, home: string): string {
  if (scelta.tenuta !== (gruppo.tieni ?? primaCopia(gruppo))) return "l'hai scelta tu";
  const altre = gruppo.paths.filter((p) => p !== scelta.tenuta);
  if (altre.every(nomeDiCopia) && !nomeDiCopia(scelta.tenuta)) {
    return "le altre hanno un nome da copia";
  }
  if (altre.every((p) => diPassaggio(p, home)) && !diPassaggio(scelta.tenuta, home)) {
    return "le altre sono fra i download o sulla scrivania";
  }
  return "la più vecchia fra le copie adatte";
}

export function copieInPiu(insiemi: readonly Insieme[]): number {
  return insiemi.reduce((somma, { gruppo }) => somma + Math.max(0, gruppo.paths.length - 1), 0);
}

/** What emptying the Trash surely frees when these copies go and another one stays. */
export function liberaCopie(gruppo: Gruppo, via: readonly string[]): number {
  const { libere } = gruppo;
  if (libere) return via.reduce((somma, p) => somma + (libere[gruppo.paths.indexOf(p)] ?? 0), 0);
  return Math.floor(gruppo.libera / Math.max(1, gruppo.paths.length - 1)) * via.length;
}

/** The same of the complete cleaning. */
export function liberaPulizia(insiemi: readonly Insieme[], scelte: SceltePerGruppo): number {
  return insiemi.reduce((somma, { gruppo }) => {
    const { tenuta } = sceltaDi(gruppo, scelte);
    const via = gruppo.paths.filter((p) => p !== tenuta);
    return somma + liberaCopie(gruppo, via);
  }, 0);
}
