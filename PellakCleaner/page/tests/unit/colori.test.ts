import * as fs from "node:fs";
import * as path from "node:path";
import { describe, expect, test } from "vitest";

const fogli = fs.readFileSync(path.join(__dirname, "../../src/styles/tokens.css"), "utf8");
const [chiaro = "", scuro = ""] = fogli.split("@media (prefers-color-scheme: dark)");

function colori(testo: string): Record<string, string> {
  return Object.fromEntries(
    [...testo.matchAll(/--([\w-]+): (#[0-9a-f]{6});/g)].map(([, nome, valore]) => [nome, valore]),
  ) as Record<string, string>;
}

function luce(colore: string): number {
  const [r = 0, g = 0, b = 0] = [1, 3, 5]
    .map((i) => parseInt(colore.slice(i, i + 2), 16) / 255)
    .map((c) => (c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4));
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}

function contrasto(a = "", b = ""): number {
  const [poca = 0, tanta = 0] = [luce(a), luce(b)].sort((x, y) => x - y);
  return (tanta + 0.05) / (poca + 0.05);
}

/** Marks and edges of controls, on every ground they stand on: what no checker of pages looks at. */
describe.each([
  ["light", colori(chiaro)],
  ["dark", colori(scuro)],
])("%s", (_nome, c) => {
  test.each([
    ["bordo-controllo", "piano fondo piano-sotto"],
    ["accento-scelto", "piano fondo accento-velo"],
    ["sull-accento", "accento-scelto"],
    ["accento", "piano fondo fondo-laterale premi accento-velo"],
  ])("%s holds 3:1 on %s", (segno, fondi) => {
    for (const fondo of fondi.split(" ")) {
      expect(contrasto(c[segno], c[fondo]), fondo).toBeGreaterThanOrEqual(3);
    }
  });
});
