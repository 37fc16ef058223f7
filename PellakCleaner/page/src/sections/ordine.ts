import { nomeDi } from "../testo";

export type Ordine = "spazio" | "nome";

/** What a list of a section is filtered and sorted by. */
export interface Vaglio {
  filtro: string;
  ordine: Ordine;
}

/** The entries whose text holds the filter, largest first or by the last path component. */
export function vaglia<T>(
  voci: readonly T[],
  { filtro, ordine }: Vaglio,
  percorso: (voce: T) => string,
  byte: (voce: T) => number,
): T[] {
  const cercato = filtro.trim().toLowerCase();
  const passate = cercato
    ? voci.filter((v) => percorso(v).toLowerCase().includes(cercato))
    : [...voci];
  if (ordine === "spazio") return passate.sort((a, b) => byte(b) - byte(a));
  // Keys once, not in every comparison: lists of twenty thousand are ordinary.
  return passate
    .map((voce) => {
      const testo = percorso(voce);
      return { voce, testo, nome: nomeDi(testo).toLowerCase() };
    })
    .sort((a, b) => confronta(a.nome, b.nome) || confronta(a.testo, b.testo))
    .map(({ voce }) => voce);
}

function confronta(a: string, b: string): number {
  if (a === b) return 0;
  return a < b ? -1 : 1;
}
