/** The last two minutes of a value that is read again and again. */

export interface Punto {
  /** Milliseconds since 1970. */
  quando: number;
  valore: number;
}

export const FINESTRA = 120_000;
/** Nothing is read while the window is hidden: a longer pause than this is a gap. */
const PAUSA = 10_000;

export function aggiungi(serie: readonly Punto[], punto: Punto): Punto[] {
  return [...serie.filter((p) => p.quando > punto.quando - FINESTRA), punto];
}

/** The pieces between the gaps, in an area of this size; the newest value is at its right edge. */
export function tratti(
  serie: readonly Punto[],
  massimo: number,
  largo: number,
  alto: number,
): [number, number][][] {
  const fine = serie.at(-1)?.quando ?? 0;
  const pezzi: [number, number][][] = [];
  let prima = -Infinity;
  for (const { quando, valore } of serie) {
    const x = largo * (1 - (fine - quando) / FINESTRA);
    const y = alto * (1 - Math.min(1, Math.max(0, valore / Math.max(massimo, Number.EPSILON))));
    if (quando - prima > PAUSA) pezzi.push([]);
    pezzi.at(-1)?.push([x, y]);
    prima = quando;
  }
  return pezzi;
}
