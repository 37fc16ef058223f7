import { useRef } from "preact/hooks";
import type { Finding, Gruppo, Voce } from "../rotte";
import { casa } from "../store";
import type { Insieme } from "./duplicati";
import { type Vaglio, confronta, contiene, vaglia } from "./ordine";
import { chiaveGruppo, nomeGruppo } from "./selezione";

/** What of a finding is shown, in the order in which it is: every action works on this. */
export interface Mostrata {
  finding: Finding;
  voci: readonly Voce[];
  gruppi: readonly Insieme[];
}

/** A finding without any filter. */
export function intera(finding: Finding): Mostrata {
  const gruppi = finding.groups.map((gruppo, indice) => ({ gruppo, indice }));
  return { finding, voci: finding.items, gruppi };
}

const testoDiGruppo = (gruppo: Gruppo) =>
  [gruppo.name, gruppo.bundle, ...gruppo.paths, ...gruppo.deboli].join("\n");

/** A card whose own name matches shows everything it holds. */
export function mostrata(finding: Finding, vaglio: Vaglio, home = casa.value): Mostrata {
  const filtro = contiene(finding.name, vaglio.filtro, "") ? "" : vaglio.filtro;
  const suo = { filtro, ordine: vaglio.ordine };
  const voci = vaglia(finding.items, suo, {
    testo: (v) => v.path,
    nome: (v) => v.path,
    byte: (v) => v.size,
    home,
  });
  const gruppi = vaglia(intera(finding).gruppi, suo, {
    testo: ({ gruppo }) => testoDiGruppo(gruppo),
    nome: ({ gruppo }) => `${chiaveGruppo(gruppo)}/${nomeGruppo(gruppo)}`,
    byte: ({ gruppo }) => gruppo.waste ?? gruppo.size,
    home,
  });
  return { finding, voci, gruppi };
}

export function quante({ voci, gruppi }: Mostrata): number {
  return voci.length + gruppi.length;
}

/** Bytes of what is shown; of duplicates, those of the copies in excess. */
export function byteMostrati({ voci, gruppi }: Mostrata): number {
  return (
    voci.reduce((somma, v) => somma + v.size, 0) +
    gruppi.reduce((somma, { gruppo }) => somma + (gruppo.waste ?? gruppo.size), 0)
  );
}

/** What emptying the Trash surely frees once what is shown is in it. */
export function liberaMostrata({ voci, gruppi }: Mostrata): number {
  return (
    voci.reduce((somma, v) => somma + (v.libera ?? v.size), 0) +
    gruppi.reduce((somma, { gruppo }) => somma + gruppo.libera, 0)
  );
}

/** Cards in the order of the rows, those that only report after those that can be acted on. */
export function inOrdine(mostrate: readonly Mostrata[], ordine: Vaglio["ordine"]): Mostrata[] {
  const report = ({ finding }: Mostrata) => Number(finding.mode !== "delete");
  const byte = ({ finding }: Mostrata) =>
    finding.unmeasured ? -1 : finding.mode === "delete" ? finding.libera : finding.total;
  return [...mostrate].sort(
    (a, b) =>
      report(a) - report(b) ||
      (ordine === "spazio"
        ? byte(b) - byte(a)
        : confronta(a.finding.name.toLowerCase(), b.finding.name.toLowerCase())),
  );
}

interface Nota {
  finding: Finding;
  vaglio: Vaglio;
  home: string;
  esito: Mostrata;
}

/** The cards to show. Long lists that did not change are not filtered and sorted again. */
export function useMostrate(findings: readonly Finding[], vaglio: Vaglio): Mostrata[] {
  const note = useRef(new Map<string, Nota>());
  const home = casa.value;
  const tutte = findings.map((finding) => {
    const nota = note.current.get(finding.id);
    const vale =
      nota &&
      nota.finding.items === finding.items &&
      nota.finding.groups === finding.groups &&
      nota.finding.name === finding.name &&
      nota.vaglio.filtro === vaglio.filtro &&
      nota.vaglio.ordine === vaglio.ordine &&
      nota.home === home;
    const esito = vale ? { ...nota.esito, finding } : mostrata(finding, vaglio, home);
    note.current.set(finding.id, { finding, vaglio, home, esito });
    return esito;
  });
  return inOrdine(
    tutte.filter((m) => quante(m) > 0),
    vaglio.ordine,
  );
}
