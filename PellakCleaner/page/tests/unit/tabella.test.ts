import { expect, test } from "vitest";
import { eta } from "../../src/components/CifreVive";
import { riordina } from "../../src/components/ordineTabella";
import { FINESTRA, aggiungi, tratti } from "../../src/components/serie";

interface Riga {
  k: string;
  v: number;
}

const riga = (testo: string): Riga[] =>
  testo.split(" ").map((t) => ({ k: t.charAt(0), v: Number(t.slice(1)) }));

function ordinate(voci: string, prima: string, ferma = false): string {
  const righe = riordina(
    riga(voci),
    (r) => r.k,
    (r) => r.v,
    true,
    [...prima],
    ferma,
  );
  return righe.map((r) => r.k).join("");
}

test("rows of equal worth keep their place; others are sorted", () => {
  expect(ordinate("a5 b5 c5 d9", "cba")).toBe("dcba");
  expect(ordinate("a1 b2 c3", "abc")).toBe("cba");
  expect(ordinate("c3 b3 a3", "")).toBe("cba");
});

test("while it waits every row keeps its place, gone ones leave, new ones follow", () => {
  expect(ordinate("a1 b2 c3", "abc", true)).toBe("abc");
  expect(ordinate("c9 a1 x2 y8", "abc", true)).toBe("acyx");
});

test("a series holds two minutes, and a pause is a gap", () => {
  let serie = [{ quando: 0, valore: 1 }];
  for (const t of [50, 52, 90, 92, 121]) {
    serie = aggiungi(serie, { quando: t * 1000, valore: t });
  }
  expect(serie.map((p) => p.quando / 1000)).toEqual([50, 52, 90, 92, 121]);
  const pezzi = tratti(serie, 242, FINESTRA / 1000, 100);
  expect(pezzi.map((p) => p.map(([x]) => Math.round(x)))).toEqual([[49, 51], [89, 91], [120]]);
  expect(pezzi.at(-1)?.[0]?.[1]).toBe(50);
  expect([0, 2400, 61_000, 4_000_000].map(eta)).toEqual([
    "aggiornato ora",
    "aggiornato 2 s fa",
    "aggiornato 1 min fa",
    "aggiornato più di un'ora fa",
  ]);
});
