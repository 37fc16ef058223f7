import { readFileSync, readdirSync } from "node:fs";
import { expect, test } from "vitest";
import { api } from "../../src/api";
import { Canale } from "./canale";

test("each reply settles its own request, whatever the order, and only once", async () => {
  const canale = new Canale();
  const prima = api("/api/log");
  const seconda = api("/api/mappa", { path: "/x" });
  const [una, altra] = canale.richieste;
  canale.rispondi(altra?.id ?? 0, { path: "/x", tot: 1, tot_h: "1 B", items: [] });
  canale.rispondi(altra?.id ?? 0, { err: "di nuovo" });
  canale.rispondi(una?.id ?? 0, { ops: [] });
  canale.rispondi(99_999, { err: "di nessuno" });
  expect(await prima).toEqual({ ops: [] });
  expect(await seconda).toMatchObject({ path: "/x" });
});

test.each(["{}", "", "[1", "null", "7"])("a reply %j is a failure, not a hang", async (testo) => {
  const canale = new Canale();
  const attesa = api("/api/stop");
  canale.rispondi(canale.richieste[0]?.id ?? 0, testo);
  expect(await attesa).toEqual({ err: "risposta non leggibile" });
});

test("without a native side every request fails at once", async () => {
  delete window.webkit;
  expect(await api("/api/state")).toEqual({ err: "programma non raggiungibile" });
});

test("every route that the page names is in the program's table", () => {
  const tabella = readFileSync("../api/Rotte.cpp", "utf8");
  const note = new Set([...tabella.matchAll(/\{"(\/api\/[a-z_/]+)"/g)].map((m) => m[1]));
  const usate = [...readFileSync("src/rotte.ts", "utf8").matchAll(/"(\/api\/[a-z_/]+)":/g)];
  expect(note.size).toBeGreaterThan(40);
  expect(usate.length).toBeGreaterThan(15);
  expect(usate.map((m) => m[1]).filter((rotta) => !note.has(rotta))).toEqual([]);
});

test("no source of the page sets text as markup", () => {
  const sorgenti = readdirSync("src", { recursive: true, encoding: "utf8" }).filter((f) =>
    /\.tsx?$/.test(f),
  );
  expect(sorgenti.length).toBeGreaterThan(30);
  const vietati =
    /innerHTML|outerHTML|insertAdjacentHTML|document\.write|createContextualFragment/i;
  expect(sorgenti.filter((f) => vietati.test(readFileSync(`src/${f}`, "utf8")))).toEqual([]);
});
