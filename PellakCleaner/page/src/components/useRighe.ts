import { useRef } from "preact/hooks";

/** A row that is drawn: its place in the list and the key of the element that shows it. */
export interface RigaDisegnata {
  indice: number;
  chiave: number;
}

/**
 * Which element shows which row, after the view has moved. A short way keeps every row in its
 * element. A long one hands the elements that are there on to the new rows, in their order:
 * changing a text costs a fraction of building a row. The row with the focus (`fissa`) always
 * keeps its element, and no element passes it by.
 */
export function riassegna(
  prima: readonly RigaDisegnata[],
  indici: readonly number[],
  fissa: number,
): RigaDisegnata[] {
  const chiavi = new Map(prima.map((riga) => [riga.indice, riga.chiave]));
  let libera = Math.max(-1, ...chiavi.values()) + 1;
  const rimaste = indici.filter((indice) => chiavi.has(indice)).length;
  if (rimaste * 2 >= indici.length) {
    return indici.map((indice) => ({ indice, chiave: chiavi.get(indice) ?? libera++ }));
  }
  const sopra = prima.filter((riga) => riga.indice < fissa).map((riga) => riga.chiave);
  const sotto = prima.filter((riga) => riga.indice > fissa).map((riga) => riga.chiave);
  return indici.map((indice) => {
    const riusata = indice === fissa ? chiavi.get(fissa) : (indice < fissa ? sopra : sotto).shift();
    return { indice, chiave: riusata ?? libera++ };
  });
}

/** The rows to draw now, each with the element that shows it best. */
export function useRighe(indici: readonly number[], fissa: number): RigaDisegnata[] {
  const disegnate = useRef<RigaDisegnata[]>([]);
  disegnate.current = riassegna(disegnate.current, indici, fissa);
  return disegnate.current;
}
