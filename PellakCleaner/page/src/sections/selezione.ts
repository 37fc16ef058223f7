import { api } from "../api";
import { type Spostamento, spostaNelCestino } from "../cestino";
import { type Elenco, conferma } from "../dialogo";
import { liberaAlmeno } from "../libera";
import { type Finding, type Gruppo, type Voce, fallita } from "../rotte";
import { cartellaDi, nomeDi, numero, quanti } from "../testo";
import type { Insieme } from "./duplicati";
import { type Mostrata, liberaMostrata } from "./mostrate";

/** What is chosen in a section, across its findings. */

/** Finding id to keys: the path of an entry, the first path of a group. */
export type Scelte = ReadonlyMap<string, ReadonlySet<string>>;

export interface Scelto {
  finding: Finding;
  voci: Voce[];
  gruppi: Insieme[];
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

/** The keys of what is shown: what "all" means. */
export function chiavi({ voci, gruppi }: Mostrata): string[] {
  return [...voci.map((v) => v.path), ...gruppi.map(({ gruppo }) => chiaveGruppo(gruppo))];
}

/** Whether all, some or nothing of what is shown is chosen. */
export function statoDi(mostrata: Mostrata, scelte: ReadonlySet<string>): boolean | "parte" {
  const tutte = chiavi(mostrata);
  const sue = scelte.size === 0 ? 0 : tutte.filter((chiave) => scelte.has(chiave)).length;
  if (sue === 0) return false;
  return sue === tutte.length || "parte";
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

/** What of the choice is among these; entries that are gone count no more. */
export function riepilogo(mostrate: readonly Mostrata[], scelte: Scelte): Scelto[] {
  return mostrate.flatMap((mostrata) => {
    const { finding } = mostrata;
    const sue = scelte.get(finding.id);
    if (!sue || !sceglibile(finding)) return [];
    const voci = mostrata.voci.filter((v) => sue.has(v.path));
    const gruppi = mostrata.gruppi
      .filter(({ gruppo }) => sue.has(chiaveGruppo(gruppo)))
      .sort((a, b) => a.indice - b.indice);
    if (voci.length + gruppi.length === 0) return [];
    return [{ finding, voci, gruppi, libera: liberaMostrata({ finding, voci, gruppi }) }];
  });
}

/** The choice without what was just moved. */
export function senzaScelti(scelte: Scelte, scelti: readonly Scelto[]): Scelte {
  return scelti.reduce((resto, s) => conScelte(resto, s.finding.id, chiavi(s), false), scelte);
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
function spostaGruppo(id: string, { indice, gruppo }: Insieme): Spostamento["sposta"] {
  return async () => {
    const corpo = { id, group: indice, first: chiaveGruppo(gruppo) };
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

/** The last groups go first: those that are gone leave the list and move the ones after them. */
function spostaGruppi(id: string, gruppi: readonly Insieme[]): Spostamento["sposta"] {
  return (da, n) => {
    const parte = gruppi.slice(Math.max(0, gruppi.length - da - n), gruppi.length - da);
    return api("/api/trash_sel", {
      id,
      groups: parte.map((g) => g.indice),
      firsts: parte.map((g) => chiaveGruppo(g.gruppo)),
    });
  };
}

export function spostamenti(scelti: readonly Scelto[]): Spostamento[] {
  return scelti.flatMap(({ finding: { id }, voci, gruppi }) => {
    const lista: Spostamento[] = [];
    if (voci.length > 0) {
      const percorsi = voci.map((v) => v.path);
      const sposta: Spostamento["sposta"] = (da, n) =>
        api("/api/trash", { id, items: percorsi.slice(da, da + n) });
      lista.push({ quanti: voci.length, sposta });
    }
    const [primo] = gruppi;
    if (primo) {
      const sposta = gruppi.length === 1 ? spostaGruppo(id, primo) : spostaGruppi(id, gruppi);
      lista.push({ quanti: gruppi.length, sposta });
    }
    return lista;
  });
}

export const NOTA_CESTINO =
  "Lo spazio torna libero quando svuoti il Cestino. Fino ad allora si rimette tutto al suo posto: " +
  "subito con «Rimetti a posto», più tardi dal Registro.";

const RIGHE_MOSTRATE = 8;

/** A few paths whole, many as the folders they lie in, the fullest first. */
export function elencoDi(percorsi: readonly string[], titolo?: string): Elenco {
  const testa = titolo === undefined ? {} : { titolo };
  if (percorsi.length <= RIGHE_MOSTRATE) {
    return { ...testa, righe: percorsi.map((percorso) => ({ percorso })) };
  }
  const cartelle = new Map<string, number>();
  for (const percorso of percorsi) {
    const cartella = cartellaDi(percorso);
    cartelle.set(cartella, (cartelle.get(cartella) ?? 0) + 1);
  }
  const ordinate = [...cartelle].sort((a, b) => b[1] - a[1]);
  const righe = ordinate
    .slice(0, RIGHE_MOSTRATE)
    .map(([percorso, n]) => ({ percorso, misura: quanti(n, "elemento", "elementi") }));
  const resto = ordinate.length - righe.length;
  return resto > 0
    ? { ...testa, righe, altri: quanti(resto, "altra cartella", "altre cartelle") }
    : { ...testa, righe };
}

/** What choosing all that the filter lets through is called. */
export function testoSeleziona(n: number): string {
  return n === 1 ? "Seleziona la voce trovata" : `Seleziona le ${numero(n)} trovate`;
}

export function testoNascosti(nascosti: number): string {
  return nascosti === 1
    ? "1 nascosto dal filtro resta dov'è"
    : `${numero(nascosti)} nascosti dal filtro restano dove sono`;
}

/** Asks, moves, tells; `nascosti` chosen ones are not among them. True when the moves were made. */
export async function cestinaScelti(scelti: readonly Scelto[], nascosti: number): Promise<boolean> {
  const percorsi = scelti.flatMap((s) => [
    ...s.voci.map((v) => v.path),
    ...s.gruppi.flatMap(({ gruppo }) => gruppo.paths),
  ]);
  const righe = scelti.map((s) => ({
    testo: `${s.finding.name}, ${quanti(s.voci.length + s.gruppi.length, "elemento", "elementi")}`,
    ...(s.finding.unmeasured ? {} : { misura: liberaAlmeno(s.libera) }),
  }));
  const si = await conferma({
    titolo: `Spostare ${quanti(quantiScelti(scelti), "elemento", "elementi")} nel Cestino?`,
    righe: nascosti > 0 ? [...righe, { testo: `${testoNascosti(nascosti)}.` }] : righe,
    elenchi: [elencoDi(percorsi)],
    nota: NOTA_CESTINO,
    conferma: "Sposta nel Cestino",
  });
  if (si) await spostaNelCestino(spostamenti(scelti));
  return si;
}
