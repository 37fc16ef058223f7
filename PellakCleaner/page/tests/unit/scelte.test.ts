import { beforeEach, expect, test } from "vitest";
import {
  type SceltaCopie,
  conTenuta,
  conVia,
  liberaCopie,
  liberaPulizia,
  percheResta,
  puliziaCompleta,
  sceltaDi,
} from "../../src/sections/duplicati";
import { inOrdine, intera, mostrata, quante } from "../../src/sections/mostrate";
import {
  chiavi,
  conScelte,
  elencoDi,
  liberaScelti,
  riepilogo,
  senzaScelti,
  spostamenti,
  statoDi,
} from "../../src/sections/selezione";
import type { Finding } from "../../src/rotte";
import { Canale } from "./canale";
import { finding, gruppo, voce } from "./esempi";

let canale: Canale;
beforeEach(() => {
  canale = new Canale();
});

const fatto = { ok: 1, failed: [] };

test("the choice counts only what is still there and may be moved", () => {
  const cache = finding("cache", { items: [voce("/a", 3), voce("/b", 4)] });
  const report = finding("report", { mode: "report", items: [voce("/r", 9)] });
  let scelte = conScelte(new Map(), "cache", ["/a", "/sparito"], true);
  scelte = conScelte(scelte, "report", ["/r"], true);
  scelte = conScelte(scelte, "app", ["/x.app"], true);
  const app = finding("app", { groups: [gruppo(["/y.app"]), gruppo(["/x.app", "/dati"], 20)] });
  const scelti = riepilogo([cache, report, app].map(intera), scelte);
  expect(scelti.map((s) => [s.finding.id, s.libera])).toEqual([
    ["cache", 3],
    ["app", 20],
  ]);
});

test("a choice frees each path once, and of it what nothing else holds", () => {
  const uno = finding("uno", {
    items: [voce("/c/x", 5), { ...voce("/c/y", 9), libera: 2 }, voce("/c/x/dentro", 4)],
  });
  const due = finding("due", { items: [voce("/c/x", 5), voce("/c/xy", 7)] });
  const app = finding("app", { groups: [gruppo(["/c/x/app"], 4), gruppo(["/d"], 100)] });
  const scelti = riepilogo(
    [uno, due, app].map(intera),
    new Map([uno, due, app].map((f) => [f.id, new Set(chiavi(intera(f)))])),
  );
  expect(liberaScelti(scelti)).toBe(5 + 2 + 7 + 100);

  const pari = { ...gruppo(["/1", "/2", "/3"]), libera: 20 };
  expect([liberaCopie(pari, ["/2"]), liberaCopie(pari, ["/2", "/3"])]).toEqual([10, 20]);
  const impari = { ...pari, libera: 10, libere: [10, 0, 10] };
  expect([liberaCopie(impari, ["/2"]), liberaCopie(impari, ["/1", "/3"])]).toEqual([0, 20]);
  const insiemi = [pari, impari].map((g, indice) => ({ gruppo: g, indice }));
  expect(liberaPulizia(insiemi, new Map())).toBe(20 + 10);
});

test("moves name exactly the chosen entries and guard a group by its first path", async () => {
  const cache = finding("cache", { items: [voce("/a", 3), voce("/b", 4)] });
  const app = finding("app", { groups: [gruppo(["/y.app"]), gruppo(["/x.app", "/dati"])] });
  const residui = finding("residui", { groups: [gruppo(["/1"]), gruppo(["/2"]), gruppo(["/3"])] });
  let scelte = conScelte(new Map(), "cache", ["/b"], true);
  scelte = conScelte(scelte, "app", ["/x.app"], true);
  scelte = conScelte(scelte, "residui", ["/3", "/1"], true);
  canale.poi("/api/trash", fatto).poi("/api/trash_group", fatto).poi("/api/trash_sel", fatto);
  const scelti = riepilogo([cache, app, residui].map(intera), scelte);
  for (const { quanti, sposta } of spostamenti(scelti)) await sposta(0, quanti);
  expect(canale.richieste.map(({ path, body }) => [path, body])).toEqual([
    ["/api/trash", { id: "cache", items: ["/b"] }],
    ["/api/trash_group", { id: "app", group: 1, first: "/x.app" }],
    ["/api/trash_sel", { id: "residui", groups: [0, 2], firsts: ["/1", "/3"] }],
  ]);
});

test("no sequence of clicks chooses every copy for discarding", () => {
  const insieme = gruppo(["/a", "/b", "/c"]);
  let scelta: SceltaCopie = sceltaDi(insieme, new Map());
  for (const passo of ["/a", "/b", "/c"]) {
    for (const via of ["/a", "/b", "/c"]) scelta = conVia(scelta, via, true);
    expect(scelta.via.has(scelta.tenuta)).toBe(false);
    expect(scelta.via.size).toBe(2);
    scelta = conTenuta(scelta, passo);
    expect(scelta.via.has(passo)).toBe(false);
  }
});

test("a choice outlives copies that are gone: another copy is kept, none gone is discarded", () => {
  const scelte = new Map([["/a", { tenuta: "/sparita", via: new Set(["/a", "/b", "/altra"]) }]]);
  expect(sceltaDi(gruppo(["/a", "/b"]), scelte)).toEqual({ tenuta: "/a", via: new Set(["/b"]) });
});

test("parts of a lot never shift the groups of a later part", async () => {
  const insiemi = Array.from({ length: 4 }, (_, indice) => ({
    gruppo: { ...gruppo([`/${indice}a`, `/${indice}b`]), tieni: `/${indice}b` },
    indice,
  }));
  const scelte = new Map([["/1a", { tenuta: "/1a", via: new Set<string>() }]]);
  const { sposta } = puliziaCompleta(insiemi.slice(0, 3), scelte);
  void sposta(0, 2);
  void sposta(2, 1);
  const finding_ = finding("residui", { groups: insiemi.map((i) => i.gruppo) });
  const tutti = conScelte(new Map(), "residui", chiavi(intera(finding_)), true);
  const [lotto] = spostamenti(riepilogo([intera(finding_)], tutti));
  void lotto?.sposta(0, 3);
  void lotto?.sposta(3, 1);
  expect(canale.richieste.map(({ body }) => body.scelte ?? body.groups)).toEqual([
    [
      { group: 2, first: "/2a", keep: "/2b" },
      { group: 1, first: "/1a", keep: "/1a" },
    ],
    [{ group: 0, first: "/0a", keep: "/0b" }],
    [1, 2, 3],
    [0],
  ]);
});

test("the copy that stays is the program's until the user chooses, and why is said", () => {
  const casi: [string[], number, RegExp][] = [
    [["/h/Foto (1).jpg", "/h/foto.jpg", "/h/copia di foto.jpg"], 1, /nome da copia/],
    [["/h/Downloads/a", "/h/Documenti/a"], 1, /download/],
    [["/h/Documenti/a", "/h/Immagini/a"], 0, /più vecchia/],
  ];
  for (const [percorsi, quale, motivo] of casi) {
    const suo = { ...gruppo(percorsi), tieni: percorsi[quale] ?? "" };
    expect(sceltaDi(suo, new Map()).tenuta).toBe(suo.tieni);
    expect(percheResta(suo, sceltaDi(suo, new Map()), "/h")).toMatch(motivo);
    const altra = conTenuta(sceltaDi(suo, new Map()), percorsi[1 - quale] ?? "");
    expect(percheResta(suo, altra, "/h")).toMatch(/scelta tu/);
  }
});

test("a filter looks at cards, files and folders; all means what it lets through", () => {
  const cache = finding("Cache di npm", {
    items: [voce("/h/.npm/beta", 1), voce("/h/x/Gamma", 3), voce("/h/b/alfa", 2)],
  });
  const app = finding("App", { groups: [gruppo(["/y.app", "/h/dati/beta"], 9)] });
  const trova = (f: Finding, filtro: string, ordine: "spazio" | "nome" = "spazio") =>
    mostrata(f, { filtro, ordine }, "/h");
  const nomi = (filtro: string, ordine?: "nome") => chiavi(trova(cache, filtro, ordine));
  expect(nomi(" GAMMA ")).toEqual(["/h/x/Gamma"]);
  expect(nomi("x/")).toEqual(["/h/x/Gamma"]);
  expect(nomi("/h"), "the home folder's own name is none").toEqual([]);
  expect(nomi("cache", "nome")).toEqual(["/h/b/alfa", "/h/.npm/beta", "/h/x/Gamma"]);
  expect(quante(trova(app, "beta"))).toBe(1);

  const filtrata = trova(cache, "beta");
  const scelte = conScelte(new Map(), cache.id, chiavi(filtrata), true);
  expect(statoDi(filtrata, scelte.get(cache.id) ?? new Set())).toBe(true);
  expect(statoDi(intera(cache), scelte.get(cache.id) ?? new Set())).toBe("parte");
  expect(riepilogo([trova(cache, "alfa")], scelte)).toEqual([]);
  expect(senzaScelti(scelte, riepilogo([filtrata], scelte)).size).toBe(0);
});

test("cards stand in the order of the rows, those that only report last", () => {
  const carta = (id: string, size: number, mode = "delete") =>
    intera(finding(id, { mode, items: [voce(`/${id}`, size)] }));
  const carte = [carta("b", 1), carta("r", 99, "report"), carta("a", 2), carta("C", 5)];
  const ids = (ordine: "spazio" | "nome") => inOrdine(carte, ordine).map((m) => m.finding.id);
  expect(ids("spazio")).toEqual(["C", "a", "b", "r"]);
  expect(ids("nome")).toEqual(["a", "b", "C", "r"]);
});

test("many paths are confirmed as the folders they lie in", () => {
  const percorsi = Array.from({ length: 30 }, (_, i) => `/h/${i < 20 ? "a" : `b${i}`}/f${i}`);
  const { righe, altri } = elencoDi(percorsi);
  expect(righe[0]).toEqual({ percorso: "/h/a", misura: "20 elementi" });
  expect([righe.length, altri]).toEqual([8, "3 altre cartelle"]);
  expect(elencoDi(percorsi.slice(0, 2)).righe.map((r) => r.percorso)).toEqual([
    "/h/a/f0",
    "/h/a/f1",
  ]);
});
