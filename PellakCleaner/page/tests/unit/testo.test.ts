import { expect, test } from "vitest";
import { ammesso } from "../../src/components/CampoNumero";
import {
  conDimensioni,
  conTilde,
  dimensione,
  mostrabile,
  numero,
  quando,
  unSoloDuePunti,
} from "../../src/testo";
import { briciole, dentro, sopra } from "../../src/tools/mappaStato";

test("sizes round as the native side's and read as Italians write them", () => {
  const casi = [0, 1023, 1024, 1536, 1_048_575, 1_048_576, 1024 ** 6, -2048];
  const attesi = "0 B, 1.023 B, 1 KiB, 1,5 KiB, 1.024 KiB, 1 MiB, 1.024 PiB, -2 KiB";
  expect(casi.map(dimensione).join(", ")).toBe(attesi);
  expect(conDimensioni("Recuperabili 1.6 GiB. Scaricati 84.0 MiB di 10 B")).toBe(
    "Recuperabili 1,6 GiB. Scaricati 84 MiB di 10 B",
  );
  expect([0, 999, 2000, 50_000, 1_234_567, -2000].map(numero)).toEqual([
    "0",
    "999",
    "2.000",
    "50.000",
    "1.234.567",
    "-2.000",
  ]);
  expect(unSoloDuePunti("Categoria: npm: cache")).toBe("Categoria · npm: cache");
  expect(unSoloDuePunti("npm: cache")).toBe("npm: cache");
});

test("signs that could disguise a name become visible, text stays as it is", () => {
  expect(mostrabile("già\u{1f600}「日本」 ~<b>&amp;")).toBe("già\u{1f600}「日本」 ~<b>&amp;");
  expect(mostrabile("foto\u202egnp.exe")).toBe("foto\ufffdgnp.exe");
  expect(mostrabile("a\nb\tc\u0000\uefff")).toBe("a\u240ab\ufffdc\ufffd\ufffd");
});

test("times go by the calendar day, not by 24 hours", () => {
  const adesso = new Date(2026, 10, 23, 0, 30);
  const s = (data: Date) => data.getTime() / 1000;
  expect(quando(s(new Date(2026, 10, 23, 0, 5)), adesso)).toBe("oggi alle 00:05");
  expect(quando(s(new Date(2026, 10, 22, 23, 59)), adesso)).toBe("ieri alle 23:59");
  expect(quando(s(new Date(2026, 10, 21, 23, 59)), adesso)).toContain("21 novembre 2026");
  expect(quando(0, adesso)).toBe("");
});

test("the home folder shortens its own paths only", () => {
  expect(conTilde("/home/anna/x", "/home/anna")).toBe("~/x");
  expect(conTilde("/home/annabella/x", "/home/anna")).toBe("/home/annabella/x");
  expect(conTilde("/x", "")).toBe("/x");
});

test("a typed number counts only when whole and inside the range", () => {
  expect(["5", " 1000 "].map((testo) => ammesso(testo, 1, 1000))).toEqual([5, 1000]);
  for (const testo of ["0", "1001", "", "7.5", "1e2", "-5"]) {
    expect(ammesso(testo, 1, 1000), testo).toBeNull();
  }
});

test("folders of the map: up ends at the root, the trail begins at the home folder", () => {
  expect([sopra("/a/b"), sopra("/a"), sopra("/"), sopra("~")]).toEqual(["/a", "/", null, null]);
  expect([dentro("/", "a"), dentro("/a", "b")]).toEqual(["/a", "/a/b"]);
  const percorsi = (p: string, casa: string) => briciole(p, casa).map((b) => b.percorso);
  expect(percorsi("/home/anna/x/y", "/home/anna")).toEqual([
    "/home/anna",
    "/home/anna/x",
    "/home/anna/x/y",
  ]);
  expect(percorsi("/home/annabella", "/home/anna")).toEqual(["/", "/home", "/home/annabella"]);
});
