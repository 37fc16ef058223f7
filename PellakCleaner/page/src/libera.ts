import type { Finding, Sezione } from "./rotte";
import { conDimensioni, dimensione, unSoloDuePunti } from "./testo";

/**
 * The two words for room on the disk. "libera": what emptying the Trash surely gives back;
 * "segnalati": what is only reported.
 */

/** How the amount of a choice reads, before it is moved. */
export function liberaAlmeno(byte: number): string {
  return byte > 0 ? `libera almeno ${dimensione(byte)}` : "forse non libera spazio";
}

export function byteSegnalati(findings: readonly Finding[]): number {
  return findings.reduce(
    (somma, f) => somma + (f.mode !== "delete" && !f.unmeasured ? f.total : 0),
    0,
  );
}

/** What a running scan is at, without the words that every such line begins with. */
export function fase({ status }: Sezione): string {
  const testo = conDimensioni(status).replace(/^Scansione:\s*/, "");
  return testo.replace(/\.\.\.$/, "…");
}

/** The room a section is about: what it frees, else what it reports. */
export function misuraDi(sezione: Sezione): { testo: string; classe: "libera" | "segnalati" } {
  const segnalati = sezione.libera > 0 ? 0 : byteSegnalati(sezione.findings);
  if (segnalati > 0) return { testo: dimensione(segnalati), classe: "segnalati" };
  return { testo: sezione.libera > 0 ? dimensione(sezione.libera) : "", classe: "libera" };
}

/** Where this version or system can't look for anything: there is nothing to start either. */
export function preclusa(sezione: Sezione): boolean {
  return sezione.scandibile === false && sezione.findings.every((f) => f.count === 0);
}

const PRECLUSA = "Non ancora disponibile in questa versione.";
const INCOMPLETA = "Ricerca non completa in questa versione.";
/** Where nothing was found, nothing tells whether anything was looked for. */
const ASSENTE = "Ricerca non disponibile, o non del tutto, in questa versione.";

/** What the native line about a section becomes: its sum in the two words. */
function inDueParole(sezione: Sezione): string {
  const segnalati = byteSegnalati(sezione.findings);
  const parole = [
    ...(sezione.libera > 0 ? [liberaAlmeno(sezione.libera)] : []),
    ...(segnalati > 0 ? [`${dimensione(segnalati)} segnalati`] : []),
  ].join(", ");
  return parole && `${parole.charAt(0).toUpperCase()}${parole.slice(1)}.`;
}

/**
 * The line about a section. A sum is told as it is now, after what went to the Trash; where not
 * everything could be looked for, nothing may read as clean.
 */
export function statoMostrato(sezione: Sezione): string {
  const { status } = sezione;
  if (preclusa(sezione)) return PRECLUSA;
  if (sezione.scanning)
    return status.startsWith("Scansione:") ? `Scansione di ${fase(sezione)}` : fase(sezione);
  const [, prima = "", resto = ""] = /^(.*?(?:\.(?= )|$))(.*)$/s.exec(status) ?? [];
  const somma = prima.startsWith("Recuperabili ");
  const stato = somma ? inDueParole(sezione) : unSoloDuePunti(conDimensioni(prima));
  if (sezione.disponibile) return `${stato}${resto}`.trim();
  if (stato && (somma || GRAVE.test(stato))) return `${stato}${resto} ${INCOMPLETA}`;
  return `${ASSENTE}${resto}`;
}

/** A warning or an error stays, whatever else is to be said. */
const GRAVE = /^(Errore|ATTENZIONE|Scansione interrotta)/;
