import { expect, test } from "vitest";
import type { VoceMappa } from "../../src/rotte";
import { type Posto, tessere, tinte, vicina } from "../../src/tools/tessere";

const voce = (nome: string, size: number, altro: Partial<VoceMappa> = {}): VoceMappa => ({
  nome,
  dir: false,
  size,
  size_h: "",
  ...altro,
});

const dentro = (a: Posto, b: Posto) =>
  a.x >= b.x && a.y >= b.y && a.x + a.largo <= b.x + b.largo && a.y + a.alto <= b.y + b.alto;
const separati = (a: Posto, b: Posto) =>
  a.x + a.largo <= b.x || b.x + b.largo <= a.x || a.y + a.alto <= b.y || b.y + b.alto <= a.y;

function controlla(lista: readonly Posto[], area: Posto): void {
  lista.forEach((a, i) => {
    expect(dentro(a, area)).toBe(true);
    for (const b of lista.slice(i + 1)) expect(separati(a, b)).toBe(true);
  });
}

test("areas follow the sizes; forty stand out even beside a giant, the rest is gathered", () => {
  const voci = [600, 300, 100].map((size, i) => voce(`v${i}`, size));
  for (let i = 0; i < 500; i++) voci.push(voce(`p${i}`, 0.01));
  voci.push(voce("ignota", -1, { dir: true }));
  const lista = tessere(voci, 1000, 600);
  controlla(lista, { x: 0, y: 0, largo: 1000, alto: 600 });
  const area = (i: number) => (lista[i]?.largo ?? 0) * (lista[i]?.alto ?? 0);
  expect(area(0) / area(1)).toBeCloseTo(2, 0);
  expect(lista).toHaveLength(41);
  expect(lista.find((t) => !t.voce)).toMatchObject({ altre: 464 });
  expect(Math.min(...lista.map((_, i) => area(i)))).toBeGreaterThan(150);
});

test("a large folder shows what it holds, in its own area and to the same scale", () => {
  const figli = [50, 30].map((size, i) => ({ nome: `f${i}`, dir: i > 0, size }));
  const grande = voce("cartella", 100, { dir: true, figli });
  const [fuori, piccola] = tessere([grande, voce("altra", 1, { dir: true, figli })], 800, 600);
  if (!fuori || !piccola) throw new Error("no areas");
  controlla(fuori.interne, fuori);
  expect(fuori.interne.map((t) => t.figlio?.nome)).toEqual(["f0", "f1", undefined]);
  expect(piccola.interne).toEqual([]);
});

test("arrows go to the neighbour they point at; hues stay while sizes grow", () => {
  const posto = (x: number, y: number, largo = 10, alto = 10) => ({ x, y, largo, alto });
  const lista = [posto(0, 0, 10, 22), posto(12, 0), posto(12, 12), posto(24, 0, 10, 22)];
  expect(["ArrowRight", "ArrowDown", "ArrowLeft"].map((t) => vicina(lista, 1, t))).toEqual([
    3, 2, 0,
  ]);
  expect(vicina(lista, 0, "ArrowUp")).toBe(-1);
  const nomi = ["b", "a", "c"];
  const prima = tinte(nomi.map((n) => voce(n, -1, { dir: true })));
  const dopo = tinte([...nomi].reverse().map((n, i) => voce(n, i, { dir: true })));
  expect([...dopo].sort()).toEqual([...prima].sort());
  expect(new Set(prima.values()).size).toBe(3);
});
