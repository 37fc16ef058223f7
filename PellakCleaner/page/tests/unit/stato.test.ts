import { beforeEach, expect, test, vi } from "vitest";
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

test("what can be freed leaves out reports, installed applications and startup items", async () => {
  const { store } = await carica();
  const conta = (id: string, dati: object) => finding(id, { items: [voce(`/${id}`, 7)], ...dati });
  const tutte = [
    conta("npm-cache", {}),
    conta("large-files", { mode: "report" }),
    conta("apps", { kind: "app" }),
    conta("startup-user", { kind: "avvio" }),
    conta("app-leftovers", {}),
  ];
  expect(store.byteLiberabili(sezione("x", tutte))).toBe(14);
});
