import { nomeDi } from "../testo";

export type Ordine = "spazio" | "nome";

/** What a list of a section is filtered and sorted by. */
export interface Vaglio {
  filtro: string;
  ordine: Ordine;
}

interface Lettura<T> {
  /** What the filter looks in: names and paths, one a line. */
  testo: (voce: T) => string;
  /** The path whose last component sorts. */
  nome: (voce: T) => string;
  byte: (voce: T) => number;
  /** The home folder, whose own name is no match: every path begins with it. */
  home: string;
}

/** Whether a text of names and paths holds the filter; an empty one is held by all. */
export function contiene(testo: string, filtro: string, home: string): boolean {
  const cercato = filtro.trim().toLowerCase();
  if (!cercato) return true;
  const senza = home.length > 1 ? testo.replaceAll(`${home}/`, "~/") : testo;
  return senza.toLowerCase().includes(cercato);
}

/** The entries that the filter lets through, largest first or by the last path component. */
export function vaglia<T>(
  voci: readonly T[],
  { filtro, ordine }: Vaglio,
  { testo, nome, byte, home }: Lettura<T>,
): T[] {
  const passate = filtro.trim() ? voci.filter((v) => contiene(testo(v), filtro, home)) : [...voci];
  if (ordine === "spazio") return passate.sort((a, b) => byte(b) - byte(a));
  // Keys once, not in every comparison: lists of twenty thousand are ordinary.
  return passate
    .map((voce) => {
      const intero = nome(voce);
      return { voce, intero, nome: nomeDi(intero).toLowerCase() };
    })
    .sort((a, b) => confronta(a.nome, b.nome) || confronta(a.intero, b.intero))
    .map(({ voce }) => voce);
}

export function confronta(a: string, b: string): number {
  if (a === b) return 0;
  return a < b ? -1 : 1;
}
