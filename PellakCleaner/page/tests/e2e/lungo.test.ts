import { execFileSync } from "node:child_process";
import * as fs from "node:fs";
import * as path from "node:path";
import { afterAll, beforeAll, expect, test } from "vitest";
import { Casa } from "./casa";
import { Finestra } from "./finestra";

const QUANTE = 20_000;

/** An entry of the browser's trace, times in microseconds; `tdur` is the thread's own. */
interface Evento {
  name: string;
  pid: number;
  tid: number;
  /** Both absent, or the second, where the trace began or ended within the task. */
  dur?: number;
  tdur?: number;
  args?: { name?: string };
}

let casa: Casa;
let finestra: Finestra;
beforeAll(async () => {
  casa = new Casa();
  const cartella = path.join(casa.home, ".npm/_cacache");
  fs.mkdirSync(cartella, { recursive: true });
  for (let i = 0; i < QUANTE; i++) fs.writeFileSync(path.join(cartella, `voce-${i}`), "x");
  // Of so many the page gets the 2,000 largest; the others need no content.
  execFileSync(
    "sh",
    ["-c", "mkdir tante && cd tante && seq 198000 | xargs touch && seq 2000 | split -l 1 -a 3"],
    {
      cwd: casa.home,
    },
  );
  finestra = await Finestra.apri(casa.home);
  await finestra.scansionaTutto();
  await finestra.vai("sviluppo");
  await finestra.page.locator('[role="grid"] [role="row"]').first().waitFor();
});
afterAll(async () => {
  await finestra.chiudi();
  casa.togli();
});

/**
 * What the page's main thread itself computes in its longest task while `azione` runs, in ms.
 * The time it waits for a core that other programs hold is not the page's.
 */
async function compitoPiuLungo(azione: () => Promise<unknown>): Promise<number> {
  const { page } = finestra;
  const browser = page.context().browser();
  await browser?.startTracing(page, { categories: ["disabled-by-default-devtools.timeline"] });
  await azione();
  await page.waitForTimeout(150);
  const { traceEvents } = JSON.parse(String(await browser?.stopTracing())) as {
    traceEvents: Evento[];
  };
  const principali = new Set(
    traceEvents.filter((e) => e.args?.name === "CrRendererMain").map((e) => e.pid),
  );
  const compiti = traceEvents.filter(
    (e) => e.name === "RunTask" && e.pid === e.tid && principali.has(e.pid),
  );
  return Math.max(...compiti.map((e) => (e.tdur ?? e.dur ?? 0) / 1000));
}

async function scorriTutto(): Promise<void> {
  const { page } = finestra;
  for (const passo of [900, 300, -700]) {
    for (let i = 0; i < 20; i++) {
      await page.mouse.wheel(0, passo);
      await page.waitForTimeout(16);
    }
  }
  for (const parte of [0.25, 0.9, 0.5, 1]) {
    await page.locator(".corpo").evaluate((el, p) => (el.scrollTop = el.scrollHeight * p), parte);
    await page.waitForTimeout(80);
  }
  await page.locator(`[aria-rowindex="${QUANTE}"]`).waitFor();
}

const LUNGO = 50;
const PASSATE = 3;

test("a list of 20,000 entries scrolls without a task over 50 ms", async () => {
  const { page } = finestra;
  expect(await page.getByRole("grid").getAttribute("aria-rowcount")).toBe(String(QUANTE));
  const visto = await compitoPiuLungo(() =>
    page.evaluate(() => {
      const fine = performance.now() + 400;
      while (performance.now() < fine);
    }),
  );
  expect(visto, "a long task is seen").toBeGreaterThan(LUNGO);

  // A busy machine can make a task longer, never shorter: the best pass is nearest to the page.
  await page.mouse.move(700, 500);
  let lungo = Infinity;
  for (let i = 0; i < PASSATE && lungo > LUNGO; i++) {
    await page.locator(".corpo").evaluate((el) => (el.scrollTop = 0));
    await page.waitForTimeout(250);
    lungo = Math.min(lungo, await compitoPiuLungo(scorriTutto));
    expect(await page.locator('[role="row"]').count()).toBeLessThan(60);
  }
  expect(lungo).toBeLessThan(LUNGO);
});

test("the keyboard moves, chooses and keeps its place", async () => {
  const { page } = finestra;
  const attiva = () =>
    page.evaluate(() => document.activeElement?.getAttribute("aria-rowindex") ?? "");
  await page.locator(".corpo").evaluate((el) => (el.scrollTop = 0));
  await page.locator('[aria-rowindex="1"]').focus();
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Space");
  await page.keyboard.press("ArrowDown");
  await page.keyboard.press("Space");
  expect(await attiva()).toBe("3");
  expect(await page.locator('[aria-label="Selezione"]').innerText()).toContain(
    "2 elementi selezionati",
  );
  await page.keyboard.press("End");
  await expect.poll(attiva).toBe(String(QUANTE));
  await page.mouse.wheel(0, -100_000);
  await page.waitForTimeout(200);
  expect(await attiva(), "the row with the focus stays").toBe(String(QUANTE));
  await page.keyboard.press("Control+f");
  await page.keyboard.type("voce-1999");
  await expect.poll(() => page.getByRole("grid").getAttribute("aria-rowcount")).toBe("11");
  await page.keyboard.press("Escape");
  expect(await page.getByRole("grid").getAttribute("aria-rowcount")).toBe(String(QUANTE));
});

test("a folder of 200,000 files opens at once and follows the pointer without a long task", async () => {
  const { page } = finestra;
  await finestra.vai("mappa");
  const cartella = page.locator('.tessera[data-nome="tante"]');
  let [lungo, risposta] = [Infinity, Infinity];
  for (let i = 0; i < PASSATE && (lungo > LUNGO || risposta > 300); i++) {
    await cartella.waitFor();
    const visto = await compitoPiuLungo(async () => {
      const inizio = Date.now();
      await cartella.click({ position: { x: 12, y: 8 } });
      await page.locator(".briciole", { hasText: "tante" }).waitFor();
      risposta = Math.min(risposta, Date.now() - inizio);
      await page.locator(".testata-stato", { hasText: /200\.000.*i 2\.000 più grandi/ }).waitFor();
      for (let x = 300; x < 700; x += 20) await page.mouse.move(x, 300 + (x % 60));
    });
    lungo = Math.min(lungo, visto);
    await page.keyboard.press("Backspace");
  }
  expect(lungo).toBeLessThan(LUNGO);
  expect(risposta, "ms to an answer").toBeLessThan(300);
});

test("a long operation is followed in any view, stopped, and undone", async () => {
  const { page } = finestra;
  const corre = page.locator(".avviso-attesa");
  const quanti = () => fs.readdirSync(path.join(casa.home, ".npm/_cacache")).length;
  await finestra.vai("sviluppo");
  await page.locator('[data-finding="npm-cache"] .casella').first().check();
  await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
  await page.getByRole("dialog").getByRole("button", { name: "Sposta nel Cestino" }).click();
  await corre.getByText(/di 20\.000/).waitFor();
  await finestra.vai("registro");
  expect(await corre.getByRole("progressbar").getAttribute("aria-valuenow")).not.toBeNull();
  await corre.getByRole("button", { name: "Interrompi" }).click();
  await page.getByText(/elementi spostati nel Cestino.*Interrotto/).waitFor();
  expect(quanti()).toBeGreaterThan(0);
  expect(quanti()).toBeLessThan(QUANTE);
  await page.getByRole("button", { name: "Rimetti a posto" }).click();
  await page.getByText(/rimessi al loro posto/).waitFor();
  expect(quanti()).toBe(QUANTE);

  const mosse = await finestra.api<{ ok: number }>("/api/trash", { id: "npm-cache" });
  expect(mosse.ok).toBe(QUANTE);
  await finestra.vai("panoramica");
  await finestra.vai("registro");
  const ripristina = page.getByRole("button", { name: "Ripristina" });
  await ripristina.first().click();
  await corre.getByText("Ripristino 20.000").waitFor();
  expect(
    await corre.getByRole("progressbar").getAttribute("aria-valuenow"),
    "no end known",
  ).toBeNull();
  expect(await ripristina.first().isDisabled()).toBe(true);
  await page.getByText("20.000 elementi rimessi al loro posto").waitFor();
  expect(quanti()).toBe(QUANTE);
});
