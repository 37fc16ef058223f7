import { expect, test } from "vitest";
import { frecce } from "../../src/components/frecce";
import { type RigaDisegnata, riassegna } from "../../src/components/useRighe";

const finestra = (da: number, quante: number, fissa: number) =>
  [...new Set([fissa, ...Array.from({ length: quante }, (_, i) => da + i)])].sort((a, b) => a - b);

test("rows share no element, and the one with the focus keeps its own and its neighbours' side", () => {
  let righe: RigaDisegnata[] = [];
  let fissa = 0;
  let creati = 0;
  for (const da of [0, 3, 40, 41, 300, 290, 12, 0, 7, 200, 180, 150]) {
    const prima = righe;
    righe = riassegna(prima, finestra(da, 20, fissa), fissa);
    expect(righe.map((r) => r.indice)).toEqual(finestra(da, 20, fissa));
    const chiavi = righe.map((r) => r.chiave);
    expect(new Set(chiavi).size).toBe(chiavi.length);
    const ferma = (elenco: RigaDisegnata[]) => elenco.findIndex((r) => r.indice === fissa);
    if (prima.length > 0) {
      expect(chiavi[ferma(righe)]).toBe(prima[ferma(prima)]?.chiave);
      const sopra = prima.slice(0, ferma(prima)).map((r) => r.chiave);
      expect(chiavi.slice(ferma(righe)).filter((c) => sopra.includes(c))).toEqual([]);
    }
    creati += chiavi.filter((c) => !prima.some((r) => r.chiave === c)).length;
    if (da === 12) fissa = 15;
  }
  expect(creati).toBeLessThan(150);
});

test("a long way builds no element anew, a short one moves none", () => {
  const prima = riassegna([], finestra(0, 20, 0), 0);
  const lontano = riassegna(prima, finestra(500, 19, 0), 0);
  expect(lontano.map((r) => r.chiave)).toEqual(prima.map((r) => r.chiave));
  const vicino = riassegna(lontano, finestra(505, 19, 0), 0);
  for (const { indice, chiave } of vicino.slice(1, 15)) {
    expect(lontano.find((r) => r.indice === indice)?.chiave).toBe(chiave);
  }
});

test("arrows go to the same control of the next row, at the ends nowhere", () => {
  const riga = (n: number) => `<li>${"<button></button>".repeat(n)}</li>`;
  document.body.innerHTML = `<ul>${riga(3)}${riga(2)}${riga(3)}</ul>`;
  document.querySelector("ul")?.addEventListener("keydown", frecce);
  const comandi = [...document.querySelectorAll("button")];
  const premi = (key: string) =>
    document.activeElement?.dispatchEvent(new KeyboardEvent("keydown", { key, bubbles: true }));
  comandi[2]?.focus();
  const passi = ["ArrowDown", "ArrowDown", "ArrowDown", "ArrowUp", "a"].map((tasto) => {
    premi(tasto);
    return comandi.indexOf(document.activeElement as HTMLButtonElement);
  });
  expect(passi).toEqual([4, 6, 6, 4, 4]);
});
