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
