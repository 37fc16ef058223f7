import { hierarchy, treemap, treemapSquarify } from "d3-hierarchy";
import type { FiglioMappa, VoceMappa } from "../rotte";

export interface Posto {
  x: number;
  y: number;
  largo: number;
  alto: number;
}

/** A rectangle inside a folder's; without an entry it stands for the rest of the folder. */
export interface TesseraInterna extends Posto {
  figlio: FiglioMappa | null;
}

/** One rectangle of the map; without an entry it stands for all that were too small to draw. */
export interface Tessera extends Posto {
  voce: VoceMappa | null;
  altre: number;
  /** What a folder holds, where there is room for it. */
  interne: TesseraInterna[];
}

/** More can't be told apart and would only slow the page down. */
const MASSIMO = 240;
/** So many are drawn even where they are small: a folder that outweighs all hides none of them. */
const ALMENO = 40;
/** Share of the area under which a rectangle is a speck; none is drawn smaller. */
const MINIMO = 1 / 1200;
/** The strip with a folder's name, above what it holds. */
const TITOLO = 18;
const BORDO = 3;
/** A folder's rectangle that is smaller shows nothing of its inside. */
const MIN_LARGO = 64;
const MIN_ALTO = 56;

interface Pezzo<T> {
  dato: T;
  byte: number;
}

interface Nodo<T> extends Partial<Pezzo<T>> {
  children?: Nodo<T>[];
}

function disponi<T>(pezzi: readonly Pezzo<T>[], area: Posto): (Posto & { dato: T })[] {
  if (area.largo <= 0 || area.alto <= 0 || pezzi.length === 0) return [];
  const radice = hierarchy<Nodo<T>>({ children: [...pezzi] }).sum((n) => n.byte ?? 0);
  const disposta = treemap<Nodo<T>>()
    .tile(treemapSquarify.ratio(1.4))
    .size([area.largo, area.alto])
    .paddingInner(2)
    .round(true)(radice);
  return (disposta.children ?? []).map(({ data, x0, y0, x1, y1 }) => ({
    dato: data.dato as T,
    x: area.x + x0,
    y: area.y + y0,
    largo: x1 - x0,
    alto: y1 - y0,
  }));
}

/** Largest first; folders that are still being measured come in at the smallest size and grow. */
function pezziDi(voci: readonly VoceMappa[]): Pezzo<VoceMappa | number>[] {
  const mostrabili = voci.filter((v) => v.size !== 0).sort((a, b) => b.size - a.size);
  const tot = mostrabili.reduce((somma, v) => somma + Math.max(0, v.size), 0) || 1;
  const grandi = mostrabili
    .slice(0, MASSIMO)
    .filter((v, i) => i < ALMENO || v.size >= tot * MINIMO || v.size < 0);
  const byte = (v: VoceMappa) => Math.max(v.size, tot * MINIMO);
  const lista: Pezzo<VoceMappa | number>[] = grandi.map((v) => ({ dato: v, byte: byte(v) }));
  const resto = mostrabili.slice(grandi.length);
  if (resto.length > 0) {
    const somma = resto.reduce((s, v) => s + Math.max(0, v.size), 0);
    lista.push({ dato: resto.length, byte: Math.max(somma, tot * MINIMO) });
  }
  return lista;
}

function interne(voce: VoceMappa, posto: Posto): TesseraInterna[] {
  const figli = voce.figli ?? [];
  if (figli.length === 0 || posto.largo < MIN_LARGO || posto.alto < MIN_ALTO) return [];
  const noti = figli.reduce((somma, f) => somma + f.size, 0);
  const pezzi: Pezzo<FiglioMappa | null>[] = figli.map((f) => ({ dato: f, byte: f.size }));
  // The rest is no entry; where it outweighs them, the folder is better shown whole.
  if (voce.size > noti) pezzi.push({ dato: null, byte: voce.size - noti });
  return disponi(pezzi, {
    x: posto.x + BORDO,
    y: posto.y + TITOLO,
    largo: posto.largo - 2 * BORDO,
    alto: posto.alto - TITOLO - BORDO,
  })
    .filter((t) => t.largo > 1 && t.alto > 1)
    .map(({ dato, ...dove }) => ({ figlio: dato, ...dove }));
}

/** Where the entries lie in an area of this size, largest first. */
export function tessere(voci: readonly VoceMappa[], largo: number, alto: number): Tessera[] {
  return disponi(pezziDi(voci), { x: 0, y: 0, largo, alto }).map(({ dato, ...posto }) =>
    typeof dato === "number"
      ? { voce: null, altre: dato, interne: [], ...posto }
      : { voce: dato, altre: 0, interne: interne(dato, posto), ...posto },
  );
}

/** A hue for every folder, by its name's place among all: it stays while sizes grow in. */
export function tinte(voci: readonly VoceMappa[]): Map<string, number> {
  const nomi = voci.filter((v) => v.dir).map((v) => v.nome);
  nomi.sort((a, b) => (a < b ? -1 : 1));
  return new Map(nomi.map((nome, i) => [nome, Math.round(210 + i * 137.5) % 360]));
}

const VERSI: Record<string, readonly [number, number]> = {
  ArrowRight: [1, 0],
  ArrowLeft: [-1, 0],
  ArrowDown: [0, 1],
  ArrowUp: [0, -1],
};

/** The nearest rectangle in the direction of an arrow key; -1 where there is none. */
export function vicina(lista: readonly Posto[], da: number, tasto: string): number {
  const verso = VERSI[tasto];
  const qui = lista[da];
  if (!verso || !qui) return -1;
  const [dx, dy] = verso;
  const centro = (p: Posto) => [p.x + p.largo / 2, p.y + p.alto / 2] as const;
  const [cx, cy] = centro(qui);
  let meglio = -1;
  let minore = Infinity;
  lista.forEach((p, i) => {
    // Beyond the edge in that direction, and as little aside as can be.
    const oltre = dx !== 0 ? (dx > 0 ? p.x - qui.x - qui.largo : qui.x - p.x - p.largo) : 0;
    const sotto = dy !== 0 ? (dy > 0 ? p.y - qui.y - qui.alto : qui.y - p.y - p.alto) : 0;
    if (i === da || oltre + sotto < 0) return;
    const [px, py] = centro(p);
    const lontano = dx !== 0 ? oltre + 2 * Math.abs(py - cy) : sotto + 2 * Math.abs(px - cx);
    if (lontano < minore) [meglio, minore] = [i, lontano];
  });
  return meglio;
}
