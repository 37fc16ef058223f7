import { api } from "../api";
import { type Spostamento, spostaNelCestino } from "../cestino";
import { conferma } from "../dialogo";
import { liberaAlmeno } from "../libera";
import { type Finding, type Gruppo, type Voce, fallita } from "../rotte";
import { nomeDi, quanti } from "../testo";

/** What is chosen in a section, across its findings. */

/** Finding id to keys: the path of an entry, the first path of a group. */
export type Scelte = ReadonlyMap<string, ReadonlySet<string>>;

export interface Scelto {
  finding: Finding;
  voci: Voce[];
  gruppi: { indice: number; gruppo: Gruppo }[];
  /** What emptying the Trash surely frees once these are in it. */
  libera: number;
}

export function chiaveGruppo(gruppo: Gruppo): string {
  return gruppo.paths[0] ?? gruppo.name;
}

export function nomeGruppo(gruppo: Gruppo): string {
  return gruppo.name || nomeDi(chiaveGruppo(gruppo));
}

/** Whether entries of this finding can be chosen for the Trash. */
export function sceglibile(finding: Finding): boolean {
  return (
    finding.mode === "delete" && finding.id !== "duplicates" && !finding.kind.startsWith("avvio")
  );
}

export function chiavi(finding: Finding): string[] {
  return [...finding.items.map((v) => v.path), ...finding.groups.map(chiaveGruppo)];
}

export function conScelte(scelte: Scelte, finding: string, quali: string[], si: boolean): Scelte {
  const nuove = new Map(scelte);
  const sue = new Set(scelte.get(finding));
  for (const chiave of quali) {
    if (si) sue.add(chiave);
    else sue.delete(chiave);
  }
  if (sue.size > 0) nuove.set(finding, sue);
  else nuove.delete(finding);
  return nuove;
}

/** What of the choice is still there; entries that are gone count no more. */
export function riepilogo(findings: readonly Finding[], scelte: Scelte): Scelto[] {
  return findings.flatMap((finding) => {
    const sue = scelte.get(finding.id);
    if (!sue || !sceglibile(finding)) return [];
    const voci = finding.items.filter((v) => sue.has(v.path));
    const gruppi = finding.groups
      .map((gruppo, indice) => ({ indice, gruppo }))
      .filter(({ gruppo }) => sue.has(chiaveGruppo(gruppo)));
    if (voci.length + gruppi.length === 0) return [];
    const libera =
      voci.reduce((somma, v) => somma + (v.libera ?? v.size), 0) +
      gruppi.reduce((somma, { gruppo }) => somma + gruppo.libera, 0);
    return [{ finding, voci, gruppi, libera }];
  });
}

export function quantiScelti(scelti: readonly Scelto[]): number {
  return scelti.reduce((somma, s) => somma + s.voci.length + s.gruppi.length, 0);
}

/** Of all that is chosen: what lies in two lists, or in a folder that goes too, counts once. */
export function liberaScelti(scelti: readonly Scelto[]): number {
  const voci = new Map(scelti.flatMap((s) => s.voci.map((v) => [v.path, v.libera ?? v.size])));
  const corto = [...voci.keys()].reduce((min, path) => Math.min(min, path.length), Infinity);
  const inAltra = (path: string) => {
    for (let fine = path.lastIndexOf("/"); fine >= corto; fine = path.lastIndexOf("/", fine - 1)) {
      if (voci.has(path.slice(0, fine))) return true;
    }
    return false;
  };
  const gruppi = scelti
    .flatMap((s) => s.gruppi)
    .filter(({ gruppo }) => !gruppo.paths.some((p) => voci.has(p) || inAltra(p)));
  return [...voci].reduce(
    (somma, [path, byte]) => somma + (inAltra(path) ? 0 : byte),
    gruppi.reduce((somma, { gruppo }) => somma + gruppo.libera, 0),
  );
}

/** One group; an application that runs is closed first when the user agrees. */
function spostaGruppo(id: string, group: number, first: string): Spostamento {
  return async () => {
    const corpo = { id, group, first };
    const risposta = await api("/api/trash_group", corpo);
    if (!fallita(risposta) || !risposta.chiudibile) return risposta;
    const si = await conferma({
      titolo: `${risposta.nomeApp ?? "L'app"} è aperta`,
      righe: [{ testo: "Va chiusa prima di spostarla. Salva prima i documenti aperti." }],
      conferma: "Chiudi e sposta",
    });
    return si ? api("/api/trash_group", { ...corpo, chiudiPrima: true }) : risposta;
  };
}

export function spostamenti(scelti: readonly Scelto[]): Spostamento[] {
  return scelti.flatMap(({ finding, voci, gruppi }) => {
    const lista: Spostamento[] = [];
    if (voci.length > 0) {
      lista.push(() => api("/api/trash", { id: finding.id, items: voci.map((v) => v.path) }));
    }
    const [primo] = gruppi;
    if (primo && gruppi.length === 1) {
      lista.push(spostaGruppo(finding.id, primo.indice, chiaveGruppo(primo.gruppo)));
    } else if (primo) {
      const groups = gruppi.map((g) => g.indice);
      const firsts = gruppi.map((g) => chiaveGruppo(g.gruppo));
      lista.push(() => api("/api/trash_sel", { id: finding.id, groups, firsts }));
    }
    return lista;
  });
}

const NOMI_MOSTRATI = 5;

export const NOTA_CESTINO =
  "Lo spazio torna libero quando svuoti il Cestino. Fino ad allora si rimette tutto al suo posto: " +
  "subito con Annulla, più tardi dal Registro.";

/** Asks, moves, tells. True when the moves were made. */
export async function cestinaScelti(scelti: readonly Scelto[]): Promise<boolean> {
  const totale = quantiScelti(scelti);
  const nomi = scelti.flatMap((s) => [
    ...s.voci.map((v) => nomeDi(v.path)),
    ...s.gruppi.map((g) => nomeGruppo(g.gruppo)),
  ]);
  const si = await conferma({
    titolo: `Spostare ${quanti(totale, "elemento", "elementi")} nel Cestino?`,
    righe: scelti.map((s) => ({
      testo: `${s.finding.name}: ${quanti(s.voci.length + s.gruppi.length, "elemento", "elementi")}`,
      ...(s.finding.unmeasured ? {} : { misura: liberaAlmeno(s.libera) }),
    })),
    nomi: nomi.slice(0, NOMI_MOSTRATI),
    altri: Math.max(0, nomi.length - NOMI_MOSTRATI),
    nota: NOTA_CESTINO,
    conferma: "Sposta nel Cestino",
  });
  if (si) await spostaNelCestino(spostamenti(scelti));
  return si;
}
