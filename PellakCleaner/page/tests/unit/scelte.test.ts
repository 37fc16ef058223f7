import { beforeEach, expect, test } from "vitest";
import {
  GRUPPI_PER_RICHIESTA,
  type SceltaCopie,
  conTenuta,
  conVia,
  liberaCopie,
  liberaPulizia,
  puliziaCompleta,
  sceltaDi,
} from "../../src/sections/duplicati";
import { vaglia } from "../../src/sections/ordine";
import {
  chiavi,
  conScelte,
  liberaScelti,
  riepilogo,
  spostamenti,
} from "../../src/sections/selezione";
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
  const scelti = riepilogo([cache, report, app], scelte);
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
    [uno, due, app],
    new Map([uno, due, app].map((f) => [f.id, new Set(chiavi(f))])),
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
  for (const sposta of spostamenti(riepilogo([cache, app, residui], scelte))) await sposta();
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

test("the complete cleaning names the kept copy of every group, the last groups first", async () => {
  const insiemi = Array.from({ length: GRUPPI_PER_RICHIESTA + 2 }, (_, indice) => ({
    gruppo: { ...gruppo([`/${indice}a`, `/${indice}b`]), tieni: `/${indice}b` },
    indice,
  }));
  const scelte = new Map([["/1a", { tenuta: "/1a", via: new Set<string>() }]]);
  canale.poi("/api/keep_all", fatto).poi("/api/keep_all", fatto);
  for (const sposta of puliziaCompleta(insiemi, scelte)) await sposta();
  const [prima, seconda] = canale.richieste.map(({ body }) => body.scelte as { group: number }[]);
  expect(prima?.map((s) => s.group)).toEqual(insiemi.slice(2).map((i) => i.indice));
  expect(seconda).toEqual([
    { group: 0, first: "/0a", keep: "/0b" },
    { group: 1, first: "/1a", keep: "/1a" },
  ]);
});

test("sorting by name goes by the last component without case, filtering by the whole path", () => {
  const voci = [voce("/z/Beta", 1), voce("/a/gamma", 3), voce("/b/alfa", 2), voce("/a/BETA", 9)];
  const per = (filtro: string, ordine: "spazio" | "nome") =>
    vaglia(
      voci,
      { filtro, ordine },
      (v) => v.path,
      (v) => v.size,
    ).map((v) => v.path);
  expect(per("", "nome")).toEqual(["/b/alfa", "/a/BETA", "/z/Beta", "/a/gamma"]);
  expect(per(" /A/", "spazio")).toEqual(["/a/BETA", "/a/gamma"]);
});
