import axe from "axe-core";
import * as path from "node:path";
import { fileURLToPath } from "node:url";
import { type Browser, type Page, chromium } from "playwright-core";
import { afterAll, beforeAll, describe, expect, test } from "vitest";
import { build } from "vite";
import { CHROMIUM, ritrai } from "./finestra";

const RADICE = fileURLToPath(new URL("../../", import.meta.url));
const PANNELLI = ["tabella", "schede", "quadranti", "comandi"];

let browser: Browser;
beforeAll(async () => {
  await build({ configFile: path.join(RADICE, "vite.galleria.config.ts"), logLevel: "warn" });
  browser = await chromium.launch({ executablePath: CHROMIUM, args: ["--no-sandbox"] });
});
afterAll(() => browser.close());

async function apri(scuro: boolean): Promise<Page> {
  const page = await browser.newPage({
    viewport: { width: 1100, height: 740 },
    colorScheme: scuro ? "dark" : "light",
    reducedMotion: "reduce",
  });
  await page.goto(`file://${path.join(RADICE, "dist/galleria.html")}`);
  return page;
}

const chiama = (page: Page, nome: string, argomento = "") =>
  page.evaluate(
    ([f, a]) => (globalThis as unknown as Record<string, (a: string) => void>)[f]?.(a),
    [nome, argomento] as const,
  );

describe.each([false, true])("every part, dark: %s", (scuro) => {
  test("axe finds nothing, nothing sticks out", { timeout: 120_000 }, async () => {
    const page = await apri(scuro);
    await page.evaluate(axe.source);
    for (const pannello of PANNELLI) {
      await chiama(page, "mostraPannello", pannello);
      for (const [width, height] of [[1100, 740] as const, [780, 520] as const]) {
        await page.setViewportSize({ width, height });
        const { violations } = await page.evaluate(() =>
          (globalThis as unknown as { axe: typeof axe }).axe.run(),
        );
        expect(violations.map((v) => `${v.id}: ${v.nodes.map((n) => n.html)}`)).toEqual([]);
        expect(
          await page.evaluate(() => document.documentElement.scrollWidth),
          pannello,
        ).toBeLessThanOrEqual(width);
        await ritrai(page, `parti-${pannello}-${width}-${scuro ? "scuro" : "chiaro"}`);
      }
    }
    await page.close();
  });
});

test("a live table waits under the pointer and the focus; choice and scroll stay", async () => {
  const page = await apri(false);
  const righe = page.locator(".tabella-righe [role=row]");
  const nomi = async () =>
    (await righe.allInnerTexts()).slice(0, 8).map((testo) => testo.split("\n")[0]);
  const scorri = async (a: number) => {
    await page.locator(".tabella").evaluate((el, y) => (el.scrollTop = y), a);
    await page.evaluate(() => new Promise((f) => requestAnimationFrame(() => setTimeout(f, 30))));
  };
  const prima = await nomi();
  await chiama(page, "aggiorna");
  const ferme = await nomi();
  expect(ferme).not.toEqual(prima);

  await righe.nth(2).click();
  await chiama(page, "aggiorna");
  expect(await nomi(), "the pointer is on it").toEqual(ferme);
  await page.keyboard.press("ArrowDown");
  const fuoco = await page.evaluate(() => ({
    anello: getComputedStyle(document.activeElement ?? document.body).outlineStyle,
    nome: document.activeElement?.firstElementChild?.textContent,
  }));
  expect(fuoco, "a key after a click shows the focus").toEqual({ anello: "solid", nome: ferme[3] });
  await page.mouse.move(400, 20);
  await chiama(page, "aggiorna");
  expect(await nomi(), "the focus is on it").toEqual(ferme);

  await page.setViewportSize({ width: 780, height: 520 });
  expect(await page.getByRole("columnheader", { name: "PID" }).count()).toBe(0);
  await page.getByRole("button", { name: "Processo", exact: true }).click();
  const testata = page.getByRole("columnheader", { name: "Processo", exact: true });
  expect(await testata.getAttribute("aria-sort")).toBe("ascending");
  expect((await nomi())[0]).toBe("aiutante");
  await page.mouse.move(400, 20);
  await scorri(900);
  await chiama(page, "aggiorna");
  expect(await page.locator(".tabella").evaluate((el) => el.scrollTop)).toBe(900);
  const scelta = page.locator('[aria-selected="true"] :first-child').first();
  for (let y = 0; y < 4000 && (await scelta.count()) === 0; y += 300) await scorri(y);
  expect(await scelta.innerText()).toBe(ferme[2]);
  await page.close();
});
