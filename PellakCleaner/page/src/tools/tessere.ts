import { hierarchy, treemap, treemapSquarify } from "d3-hierarchy";
import type { VoceMappa } from "../rotte";

/** One rectangle of the map; without an entry it stands for all that were too small to draw. */
export interface Tessera {
  voce: VoceMappa | null;
  altre: number;
  x: number;
  y: number;
  largo: number;
  alto: number;
}

/** More can't be told apart and would only slow the page down. */
const MASSIMO = 240;
/** Share of the area under which a rectangle is a speck. */
const MINIMO = 1 / 1500;

interface Nodo {
  voce: VoceMappa | null;
  altre: number;
  byte: number;
}

function nodi(voci: readonly VoceMappa[]): Nodo[] {
  const misurate = voci.filter((v) => v.size > 0).sort((a, b) => b.size - a.size);
  const tot = misurate.reduce((somma, v) => somma + v.size, 0);
  const grandi = misurate.slice(0, MASSIMO).filter((v) => v.size >= tot * MINIMO);
  const resto = misurate.slice(grandi.length);
  const lista: Nodo[] = grandi.map((voce) => ({ voce, altre: 0, byte: voce.size }));
  const byte = resto.reduce((somma, v) => somma + v.size, 0);
  if (byte > 0) lista.push({ voce: null, altre: resto.length, byte });
  return lista;
}

/** Where the entries lie in an area of this size, largest first. */
export function tessere(voci: readonly VoceMappa[], largo: number, alto: number): Tessera[] {
  if (largo <= 0 || alto <= 0) return [];
  const radice = hierarchy<Nodo & { children?: Nodo[] }>({
    voce: null,
    altre: 0,
    byte: 0,
    children: nodi(voci),
  }).sum((n) => (n.children ? 0 : n.byte));
  const disposta = treemap<Nodo & { children?: Nodo[] }>()
    .tile(treemapSquarify.ratio(1.4))
    .size([largo, alto])
    .paddingInner(2)
    .round(true)(radice);
  return (disposta.children ?? []).map(({ data, x0, y0, x1, y1 }) => ({
    voce: data.voce,
    altre: data.altre,
    x: x0,
    y: y0,
    largo: x1 - x0,
    alto: y1 - y0,
  }));
}
