/** Texts made of data: sizes, times, paths, counts. */

const UNITA = ["B", "KiB", "MiB", "GiB", "TiB", "PiB"];

/** "1,6 GiB", "84 MiB": the native side's steps and rounding, written as Italians do. */
export function dimensione(byte: number): string {
  let valore = Math.abs(byte);
  let unita = 0;
  while (unita < UNITA.length - 1 && valore >= 1024) {
    valore /= 1024;
    unita += 1;
  }
  const cifre = unita === 0 ? String(Math.round(valore)) : valore.toFixed(1);
  return `${byte < 0 ? "-" : ""}${conVirgola(cifre)} ${UNITA[unita]}`;
}

function conVirgola(cifre: string): string {
  const [intere = "", decimali = "0"] = cifre.split(".");
  return conPunti(intere) + (decimali === "0" ? "" : `,${decimali}`);
}

/** A point before every three figures, from a thousand on: engines differ in where they begin. */
function conPunti(cifre: string): string {
  return cifre.replace(/\B(?=(?:\d{3})+$)/g, ".");
}

/** The native side's texts with their sizes written that way too. */
export function conDimensioni(testo: string): string {
  return testo.replace(
    /(\d+(?:\.\d)?)( (?:[KMGTP]iB|B)\b)/g,
    (_tutto, cifre: string, unita: string) => conVirgola(cifre) + unita,
  );
}

/** A whole number: "12", "2.000". */
export function numero(valore: number): string {
  return conPunti(String(valore));
}

export function quanti(valore: number, uno: string, tanti: string): string {
  return `${numero(valore)} ${valore === 1 ? uno : tanti}`;
}

const ora = new Intl.DateTimeFormat("it-IT", { hour: "2-digit", minute: "2-digit" });
const giornoOra = new Intl.DateTimeFormat("it-IT", {
  day: "numeric",
  month: "long",
  year: "numeric",
  hour: "2-digit",
  minute: "2-digit",
});

const mezzanotte = (data: Date) =>
  new Date(data.getFullYear(), data.getMonth(), data.getDate()).getTime();

/** "oggi alle 14:05", "ieri alle 9:30", else the date; nothing for a time that is not known. */
export function quando(secondi: number, adesso = new Date()): string {
  if (secondi <= 0) return "";
  const data = new Date(secondi * 1000);
  const giorni = Math.round((mezzanotte(adesso) - mezzanotte(data)) / 86_400_000);
  if (giorni === 0) return `oggi alle ${ora.format(data)}`;
  if (giorni === 1) return `ieri alle ${ora.format(data)}`;
  return giornoOra.format(data);
}

/**
 * A name or path as it may be shown: bytes that were no text, control characters and marks that
 * turn the reading direction round become visible signs, so that no name can pose as another.
 */
export function mostrabile(testo: string): string {
  return testo.replace(
    /[\u0000-\u001f\u007f-\u009f\u200e\u200f\u2028\u2029\u202a-\u202e\u2066-\u2069\uef80-\uefff]/g,
    (segno) => (segno === "\n" ? "\u240a" : "\ufffd"),
  );
}

/** The last component of a path. */
export function nomeDi(percorso: string): string {
  return percorso.slice(percorso.lastIndexOf("/") + 1) || percorso;
}

/** The folder a path lies in. */
export function cartellaDi(percorso: string): string {
  const barra = percorso.lastIndexOf("/");
  if (barra < 0) return "";
  return percorso.slice(0, barra) || "/";
}

/** Folders without those that lie in another one of them. */
export function senzaContenute(cartelle: readonly string[]): string[] {
  return [...new Set(cartelle)].filter(
    (una) => !cartelle.some((altra) => altra !== una && una.startsWith(`${altra}/`)),
  );
}

/** A path below the home folder with "~" in its place. */
export function conTilde(percorso: string, casa: string): string {
  if (!casa || casa === "/") return percorso;
  if (percorso === casa) return "~";
  return percorso.startsWith(`${casa}/`) ? `~${percorso.slice(casa.length)}` : percorso;
}

/** Where a text would hold two colons, the first becomes a dot: "Categoria · npm: cache". */
export function unSoloDuePunti(testo: string): string {
  return /: .*: /.test(testo) ? testo.replace(": ", " · ") : testo;
}

/** A failure's words as a sentence. */
export function frase(testo: string): string {
  return testo.charAt(0).toUpperCase() + testo.slice(1);
}
