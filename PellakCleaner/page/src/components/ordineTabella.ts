/** Which column a table is sorted by, and which way. */
export interface OrdineTabella {
  colonna: string;
  decrescente: boolean;
}

export type Valore = number | string;

function confronta(a: Valore, b: Valore): number {
  if (typeof a === "string" && typeof b === "string") return a.localeCompare(b, "it");
  return Number(a) - Number(b);
}

/**
 * The rows in their order, given the keys as they stood before. Rows of equal worth keep the place
 * they had, so that nothing jumps about without a reason. While `ferma`, all rows keep it: those
 * that went leave, those that came stand at the end.
 */
export function riordina<T>(
  voci: readonly T[],
  chiave: (voce: T) => string,
  valore: (voce: T) => Valore,
  decrescente: boolean,
  prima: readonly string[],
  ferma: boolean,
): T[] {
  const posti = new Map(prima.map((k, i) => [k, i]));
  const posto = (voce: T) => posti.get(chiave(voce)) ?? prima.length;
  const verso = decrescente ? -1 : 1;
  return voci
    .map((voce) => ({ voce, posto: posto(voce), valore: valore(voce) }))
    .sort((a, b) => {
      const perValore = verso * confronta(a.valore, b.valore);
      const perPosto = a.posto - b.posto;
      return ferma ? perPosto || perValore : perValore || perPosto;
    })
    .map(({ voce }) => voce);
}
