import { h, render } from "preact";
import { act } from "preact/test-utils";
import { beforeEach, expect, test, vi } from "vitest";
import { api } from "../../src/api";
import { avviso, mostraAvviso } from "../../src/avvisi";
import { type Spostamento, fermaLavoro, ripristina, spostaNelCestino } from "../../src/cestino";
import { Avvisi } from "../../src/components/Avvisi";
import { vista } from "../../src/store";
import { Canale } from "./canale";
import { sezione } from "./esempi";

const statoVuoto = { sections: [], busy: false, ver: 1 };
const uno = (sposta: Spostamento["sposta"]): Spostamento => ({ quanti: 1, sposta });

let canale: Canale;
beforeEach(() => {
  canale = new Canale();
});

test("the notice tells moved, failed and skipped, and undoes exactly what was recorded", async () => {
  canale
    .poi("/api/trash", {
      ok: 2,
      failed: [{ percorso: "/x", err: "permesso negato", causa: "il file è bloccato" }],
      op: "nostra",
      tot: 2048,
    })
    .poi("/api/trash_sel", { ok: 0, failed: [], saltati: ["Editor (app aperta)"] })
    .poi("/api/keep_all", { err: "niente da cestinare" })
    .poi("/api/state", statoVuoto);
  await spostaNelCestino([
    uno(() => api("/api/trash", { id: "a" })),
    uno(() => api("/api/trash_sel", { id: "b", groups: [0], firsts: ["/b"] })),
    uno(() => api("/api/keep_all", { scelte: [] })),
  ]);
  expect(avviso.value).toEqual({
    tono: "fatto",
    testo: "2 elementi spostati nel Cestino, 2 KiB.",
    nelCestino: true,
    falliti: [
      { cosa: "/x", perche: "il file è bloccato" },
      { cosa: "", perche: "Editor (app aperta)" },
      { cosa: "", perche: "niente da cestinare" },
    ],
    operazioni: [{ id: "nostra", quanti: 2 }],
  });
  expect(canale.rotte().at(-1)).toBe("/api/state");
});

test("when nothing moved there is nothing to undo", async () => {
  canale.poi("/api/trash", { err: "nessun elemento trattabile" }).poi("/api/state", statoVuoto);
  await spostaNelCestino([uno(() => api("/api/trash", { id: "a" }))]);
  expect(avviso.value).toMatchObject({ tono: "errore", operazioni: [] });
  expect(canale.rotte()).not.toContain("/api/log");
});

test("a large lot goes in parts that can be stopped, and all of them can be undone", async () => {
  canale.poi("/api/state", statoVuoto);
  const parti: [number, number][] = [];
  const sposta: Spostamento["sposta"] = (da, n) => {
    parti.push([da, n]);
    if (parti.length === 2) fermaLavoro();
    return Promise.resolve({ ok: n, failed: [], op: `op${parti.length}`, tot: n });
  };
  const fine = spostaNelCestino([{ quanti: 50_000, sposta }, uno(sposta)]);
  await spostaNelCestino([uno(sposta)]);
  await fine;
  expect(parti).toEqual([
    [0, 500],
    [500, 1000],
  ]);
  expect(avviso.value?.testo).toMatch(
    /^1\.500 elementi spostati nel Cestino, 1,5 KiB\. Interrotto/,
  );
  expect(avviso.value?.operazioni.map((o) => o.id)).toEqual(["op2", "op1"]);
});

const conSviluppo = { ...statoVuoto, sections: [sezione("sviluppo", [])] };

test("a restore adds up, keeps each failure and scans the section again that it came from", async () => {
  vista.value = "sviluppo";
  canale
    .poi("/api/trash", { ok: 18, failed: [], op: "nuova", tot: 1 })
    .poi("/api/restore", {
      ok: true,
      items: 18,
      errors: ["a.txt: via"],
      failed: [{ percorso: "/a.txt", err: "via" }],
    })
    .poi("/api/restore", { err: "operazione non trovata" })
    .poi("/api/scan", { ok: true })
    .poi("/api/state", conSviluppo)
    .poi("/api/state", conSviluppo);
  await spostaNelCestino([uno(() => api("/api/trash", { id: "a" }))]);
  await ripristina([
    { id: "nuova", quanti: 18 },
    { id: "vecchia", quanti: 1 },
  ]);
  expect(canale.richieste.slice(2).map((r) => r.body)).toEqual([
    { op: "nuova" },
    { op: "vecchia" },
    { section: "sviluppo" },
    { ver: 1 },
  ]);
  expect(avviso.value?.testo).toBe("18 elementi rimessi al loro posto.");
  expect(avviso.value?.falliti).toHaveLength(2);
  vista.value = "registro";
  expect(avviso.value, "a notice does not follow into other views").toBeNull();
});

test("a finished notice leaves by itself, unless it can be undone or something failed", () => {
  vi.useFakeTimers();
  render(h(Avvisi, {}), document.body);
  const dopo = (ms: number, nuovo: Parameters<typeof mostraAvviso>[0]) => {
    act(() => mostraAvviso(nuovo));
    act(() => void vi.advanceTimersByTime(ms));
    return document.querySelector(".avviso-testo")?.textContent;
  };
  expect(dopo(4000, { testo: "Fatto." })).toBe("Fatto.");
  expect(dopo(10_000, { testo: "Altro." })).toBeUndefined();
  const operazioni = [{ id: "op", quanti: 1 }];
  expect(dopo(60_000, { testo: "Spostato.", operazioni })).toContain("Spostato.");
  expect(dopo(60_000, { testo: "Guasto.", tono: "errore" })).toContain("Guasto.");
  vi.useRealTimers();
});
