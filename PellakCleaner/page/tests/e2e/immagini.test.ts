import * as fs from "node:fs";
import * as path from "node:path";
import { afterEach, beforeEach, describe, test } from "vitest";
import { type Casa, casaPiena } from "./casa";
import { Finestra } from "./finestra";
import { aMeta, conScena } from "./scena";

/** Pictures of every view, to be looked at: PELLAK_IMMAGINI names the folder they go to. */

const CARTELLA = process.env.PELLAK_IMMAGINI;
const MISURE = [
  [1100, 740],
  [780, 520],
] as const;

describe.skipIf(!CARTELLA)("pictures", () => {
  let casa: Casa;
  beforeEach(() => {
    casa = casaPiena();
    fs.mkdirSync(CARTELLA ?? "", { recursive: true });
  });
  afterEach(() => casa.togli());

  test.each([false, true])("every view, dark: %s", { timeout: 170_000 }, async (scuro) => {
    const finestra = await Finestra.apri(casa.home, { scuro, ritocco: conScena });
    const { page } = finestra;
    const ritrai = async (nome: string) => {
      for (const [width, height] of MISURE) {
        await page.setViewportSize({ width, height });
        await page.waitForTimeout(150);
        const file = `${nome}-${width}-${scuro ? "scuro" : "chiaro"}.png`;
        await page.screenshot({ path: path.join(CARTELLA ?? "", file) });
      }
    };
    if (!scuro) await ritrai("benvenuto");
    await finestra.scansionaTutto();
    await finestra.page.evaluate((p) => {
      (globalThis as unknown as { addExcludedFolder: (p: string) => void }).addExcludedFolder(p);
    }, `${casa.home}/Documenti/foto del 2019`);
    const viste = await page
      .locator("[data-vista]")
      .evaluateAll((voci) => voci.map((v) => v.getAttribute("data-vista") ?? ""));
    for (const vista of viste) {
      await finestra.vai(vista);
      await page.waitForTimeout(vista === "mappa" ? 900 : 100);
      const chiuse = page.locator('main .scheda-apri[aria-expanded="false"]');
      if ((await chiuse.count()) > 0) await chiuse.first().click();
      await ritrai(vista);
    }
    await finestra.vai("applicazioni");
    const app = page.locator('[data-finding="apps"] .scheda-apri[aria-expanded="false"]');
    if ((await app.count()) > 0) await app.click();
    await page.locator('[data-finding="apps"] .pulsante-icona[aria-expanded]').first().click();
    await page.locator('[data-finding="apps"] .casella').first().check();
    await ritrai("applicazioni-dettagli");
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="npm-cache"] .casella').first().check();
    await page.locator('[data-finding="pip-cache"] .casella').first().check();
    await ritrai("sviluppo-selezione");
    await page.locator("[data-ricerca]").fill("content");
    await ritrai("sviluppo-filtro");
    await page.locator("[data-ricerca]").fill("mai vista");
    await ritrai("sviluppo-niente");
    await page.getByRole("button", { name: "Cancella filtro" }).click();
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    await ritrai("conferma");
    fs.rmSync(path.join(casa.home, ".cache/pip/wheels"));
    await page.locator("dialog").getByRole("button", { name: "Sposta nel Cestino" }).click();
    await page.getByRole("button", { name: "Rimetti a posto" }).waitFor();
    await ritrai("avviso");
    await finestra.vai("registro");
    await page.waitForTimeout(200);
    await page.locator(".scheda-apri").first().click();
    await ritrai("registro-pieno");
    await finestra.chiudi();
    if (scuro) return;
    const aMezzo = await Finestra.apri(casa.home, { ritocco: aMeta });
    await aMezzo.page.screenshot({ path: path.join(CARTELLA ?? "", "in-corso-1100-chiaro.png") });
    await aMezzo.vai("duplicati");
    await aMezzo.page.screenshot({ path: path.join(CARTELLA ?? "", "in-corso-duplicati.png") });
    await aMezzo.chiudi();
  });
});
