import { beforeEach, expect, test, vi } from "vitest";
import { apriMappa, statoMappa, vai } from "../../src/tools/mappaStato";
import { Canale } from "./canale";

const mappa = (path: string, tot: number, misurando: boolean) => ({
  path,
  tot,
  tot_h: "",
  items: [],
  ...(misurando ? { misurando } : {}),
});

let canale: Canale;
beforeEach(() => {
  canale = new Canale();
  vi.useFakeTimers();
  return () => vi.useRealTimers();
});

test("the folder is asked for again while it is measured, and only while the view is open", async () => {
  canale
    .poi("/api/mappa", mappa("/casa", 1, true))
    .poi("/api/mappa", mappa("/casa", 2, true))
    .poi("/api/mappa", mappa("/casa", 3, false));
  const chiudi = apriMappa();
  await vi.advanceTimersByTimeAsync(5000);
  expect(canale.richieste.map((r) => r.body.path)).toEqual(["~", "/casa", "/casa"]);
  expect(statoMappa.value.mappa?.tot).toBe(3);

  canale.poi("/api/mappa", mappa("/casa/x", 1, true));
  await vai("/casa/x");
  chiudi();
  await vi.advanceTimersByTimeAsync(5000);
  expect(canale.richieste).toHaveLength(4);
});

test("a folder shows what the map above knows of it before its own answer is there", async () => {
  const chiudi = apriMappa();
  const figli = [{ nome: "f", dir: false, size: 2048 }];
  const x = { nome: "x", dir: true, size: 4096, size_h: "4.0 KiB", figli, quanti: 7 };
  canale.poi("/api/mappa", { ...mappa("/casa", 1, false), items: [x] });
  await vai("/casa");
  void vai("/casa/x");
  expect(statoMappa.value.mappa).toMatchObject({ path: "/casa/x", tot: 4096, quanti: 7 });
  expect(statoMappa.value.mappa?.items.map((v) => v.nome)).toEqual(["f"]);
  void vai("/altrove");
  expect(statoMappa.value.mappa).toBeNull();
  chiudi();
});

test("the reply of a folder left meanwhile changes nothing; a refusal is shown", async () => {
  const chiudi = apriMappa();
  void vai("/lenta");
  canale.poi("/api/mappa", { err: "cartella non leggibile (permessi)" });
  await vai("/chiusa");
  const lenta = canale.richieste.find((r) => r.body.path === "/lenta");
  canale.rispondi(lenta?.id ?? 0, mappa("/lenta", 9, false));
  await vi.advanceTimersByTimeAsync(10);
  expect(statoMappa.value).toEqual({
    percorso: "/chiusa",
    mappa: null,
    errore: "cartella non leggibile (permessi)",
  });
  chiudi();
});
