import { beforeEach, expect, test, vi } from "vitest";
import { statoMostrato } from "../../src/libera";
import type { Finding } from "../../src/rotte";
import { Canale, respiro } from "./canale";
import { finding, sezione, voce } from "./esempi";

/** Fresh modules for each test: version and timers live in them. */
async function carica() {
  vi.resetModules();
  await import("../../src/api");
  return { ...(await import("../../src/polling")), store: await import("../../src/store") };
}

let canale: Canale;
beforeEach(() => {
  canale = new Canale();
});

const piena = (ver: number, path = "/a", busy = false) => ({
  sections: [sezione("sviluppo", [finding("npm-cache", { items: [voce(path, 5)] })])],
  busy,
  ver,
});

test("the known version goes along; an unchanged state leaves everything as it is", async () => {
  const { poll, store } = await carica();
  canale.poi("/api/state", piena(3)).poi("/api/state", { ver: 3, busy: false, invariato: true });
  await poll();
  const prima = store.sezioni.value;
  await poll();
  expect(canale.richieste.map((r) => r.body)).toEqual([{}, { ver: 3 }]);
  expect(store.sezioni.value).toBe(prima);
});

test("a new state keeps the entry lists that did not move, and only those", async () => {
  const { poll, store } = await carica();
  const voci = () => store.sezioni.value[0]?.findings[0]?.items;
  canale.poi("/api/state", piena(1)).poi("/api/state", piena(2)).poi("/api/state", piena(3, "/b"));
  await poll();
  const prima = voci();
  await poll();
  expect(voci()).toBe(prima);
  await poll();
  expect(voci()).toEqual([voce("/b", 5)]);
});

test("calls during a request make one more after it, never two at once", async () => {
  const { poll } = await carica();
  const tutte = Promise.all([poll(), poll(), poll()]);
  await respiro();
  expect(canale.richieste).toHaveLength(1);
  canale.rispondi(canale.richieste[0]?.id ?? 0, piena(1));
  await respiro();
  expect(canale.richieste).toHaveLength(2);
  canale.rispondi(canale.richieste[1]?.id ?? 0, piena(2));
  await tutte;
  expect(canale.richieste).toHaveLength(2);
});

test("a failed request does not end the polling of a running scan", async () => {
  vi.useFakeTimers();
  const { poll, store } = await carica();
  canale.poi("/api/state", piena(1, "/a", true)).poi("/api/state", { err: "programma occupato" });
  canale.poi("/api/state", piena(2, "/a", false));
  await poll();
  await vi.advanceTimersByTimeAsync(1100);
  expect(canale.richieste).toHaveLength(3);
  expect(store.occupato.value).toBe(false);
  await vi.advanceTimersByTimeAsync(5000);
  expect(canale.richieste).toHaveLength(3);
  vi.useRealTimers();
});

test("the line about a section has its sum in the two words, and never reads clean unlooked", () => {
  const svuotata = finding("cache", { items: [{ ...voce("/a", 4096), libera: 1024 }] });
  const report = finding("grandi", { mode: "report", libera: 0, items: [voce("/g", 2048)] });
  const riga = (findings: Finding[], status: string, dati = {}) =>
    statoMostrato(sezione("x", findings, { status, ...dati }));
  expect(riga([svuotata], "Recuperabili 4.0 KiB.")).toBe("Libera almeno 1 KiB.");
  expect(riga([report], "Recuperabili 2.0 KiB.")).toBe("2 KiB segnalati.");
  expect(riga([svuotata, report], "Recuperabili 6.0 KiB.")).toBe(
    "Libera almeno 1 KiB, 2 KiB segnalati.",
  );
  expect(riga([], "Niente da segnalare.")).toBe("Niente da segnalare.");
  expect(riga([report], "Recuperabili 2.0 KiB. Risultati non salvati: disco pieno.")).toBe(
    "2 KiB segnalati. Risultati non salvati: disco pieno.",
  );
  const manca = { disponibile: false };
  expect(riga([], "Niente da segnalare.", manca)).toMatch(/^Ricerca non disponibile/);
  expect(riga([], "Errore: disco", manca)).toMatch(/^Errore: disco Ricerca non completa/);
  expect(riga([report], "Recuperabili 2.0 KiB.", manca)).toMatch(/^2 KiB segnalati\. Ricerca/);
  expect(riga([], "Scansione: npm: cache...", { ...manca, scanning: true })).toBe(
    "Scansione di npm: cache…",
  );
  expect(riga([], "Niente da segnalare.", { ...manca, scandibile: false })).toMatch(/^Non ancora/);
});
