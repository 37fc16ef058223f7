import { beforeEach, expect, test } from "vitest";
import { api } from "../../src/api";
import { avviso } from "../../src/avvisi";
import { ripristina, spostaNelCestino } from "../../src/cestino";
import { Canale } from "./canale";

const statoVuoto = { sections: [], busy: false, ver: 1 };
const op = (id: string, tot: number) => ({ id, ts: 1, azione: id, tot, items: [] });

let canale: Canale;
beforeEach(() => {
  canale = new Canale();
});

test("the notice tells moved, failed and skipped, and undoes exactly what was recorded", async () => {
  canale
    .poi("/api/trash", {
      ok: 2,
      failed: [
        { percorso: "/x", err: "permesso negato" },
        { percorso: "/y", err: "permesso negato da macOS", causa: "la cartella non è scrivibile" },
      ],
    })
    .poi("/api/trash_sel", { ok: 0, failed: [], saltati: ["Editor (app aperta)"] })
    .poi("/api/keep_all", { err: "niente da cestinare" })
    .poi("/api/log", { ops: [op("nostra", 2048), op("di prima", 4096)] })
    .poi("/api/state", statoVuoto);
  await spostaNelCestino([
    () => api("/api/trash", { id: "a" }),
    () => api("/api/trash_sel", { id: "b", groups: [0], firsts: ["/b"] }),
    () => api("/api/keep_all", { scelte: [] }),
  ]);
  expect(avviso.value).toEqual({
    tono: "fatto",
    testo: "2 elementi spostati nel Cestino, 2.0 KiB.",
    falliti: [
      { cosa: "/x", perche: "permesso negato" },
      { cosa: "/y", perche: "la cartella non è scrivibile" },
      { cosa: "", perche: "Editor (app aperta)" },
      { cosa: "", perche: "niente da cestinare" },
    ],
    operazioni: ["nostra"],
  });
  expect(canale.rotte().at(-1)).toBe("/api/state");
});

test("when nothing moved there is nothing to undo", async () => {
  canale.poi("/api/trash", { err: "nessun elemento trattabile" }).poi("/api/state", statoVuoto);
  await spostaNelCestino([() => api("/api/trash", { id: "a" })]);
  expect(avviso.value).toMatchObject({ tono: "errore", operazioni: [] });
  expect(canale.rotte()).not.toContain("/api/log");
});

test("a second click while one move is on its way does nothing", async () => {
  canale.poi("/api/log", { ops: [op("una", 1)] }).poi("/api/state", statoVuoto);
  const prima = spostaNelCestino([() => api("/api/trash", { id: "a" })]);
  await spostaNelCestino([() => api("/api/trash", { id: "a" })]);
  expect(canale.rotte()).toEqual(["/api/trash"]);
  canale.rispondi(canale.richieste[0]?.id ?? 0, { ok: 1, failed: [] });
  await prima;
  expect(avviso.value?.operazioni).toEqual(["una"]);
});

test("a restore adds up its operations and keeps each failure", async () => {
  canale
    .poi("/api/restore", {
      ok: true,
      items: 2,
      errors: ["a.txt: non è più nel Cestino"],
      failed: [{ percorso: "/a.txt", err: "non è più nel Cestino" }],
    })
    .poi("/api/restore", { err: "operazione non trovata" })
    .poi("/api/state", statoVuoto);
  await ripristina(["nuova", "vecchia"]);
  expect(canale.richieste.slice(0, 2).map((r) => r.body)).toEqual([
    { op: "nuova" },
    { op: "vecchia" },
  ]);
  expect(avviso.value?.testo).toMatch(/^2 elementi rimessi/);
  expect(avviso.value?.falliti).toHaveLength(2);
});
