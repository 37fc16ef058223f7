import * as fs from "node:fs";
import * as path from "node:path";
import { afterEach, beforeEach, describe, expect, test } from "vitest";
import type { RispostaImpostazioni } from "../../src/rotte";
import { type Casa, casaPiena } from "./casa";
import { Finestra } from "./finestra";

describe("map, settings, polling", () => {
  let casa: Casa;
  let finestra: Finestra;
  beforeEach(async () => {
    casa = casaPiena();
    finestra = await Finestra.apri(casa.home);
  });
  afterEach(async () => {
    await finestra.chiudi();
    casa.togli();
    expect(finestra.errori).toEqual([]);
  });

  test("the map fills in, goes in with Enter and click, out with Backspace", async () => {
    const { page } = finestra;
    await finestra.vai("mappa");
    const stato = page.locator(".testata-stato");
    await stato.getByText(/in \d+ elementi/).waitFor();
    const righe = page.locator(".mappa-lista [role=row]");
    expect(await righe.first().innerText()).toMatch(/Filmati\s+530 MiB/);

    await righe.first().focus();
    await page.keyboard.press("Enter");
    await page.locator(".mappa-lista").getByText("viaggio.mkv").waitFor();
    expect(await page.locator(".briciole").innerText()).toMatch(/Cartella utente\s*Filmati/);
    expect(await righe.allInnerTexts()).toHaveLength(2);

    await page.keyboard.press("Backspace");
    const accesa = page.locator(".riga-accesa");
    await page.locator('.tessera-interna[title^="Filmati/viaggio"]').hover();
    await expect.poll(() => accesa.innerText()).toContain("Filmati");
    const archivio = page.locator('.tessera[data-nome="Archivio"]');
    await archivio.focus();
    await expect.poll(() => accesa.innerText()).toContain("Archivio");
    await page.keyboard.press("ArrowUp");
    expect(await page.evaluate(() => document.activeElement?.textContent)).toContain("Filmati");
    await archivio.click({ position: { x: 12, y: 8 } });
    await page.locator('.tessera[data-tipo="archivi"]').waitFor();
    await page.locator(".briciole").getByText("Cartella utente").click();
    await page.locator(".tessera", { hasText: "Filmati" }).waitFor();

    // In the search field Backspace is the field's own.
    await page.keyboard.press("Control+f");
    await page.keyboard.type("imm");
    await page.keyboard.press("Backspace");
    expect(await righe.allInnerTexts()).toHaveLength(1);
    expect(await page.locator(".briciole").innerText()).toBe("Cartella utente");
    await finestra.vai("registro");
    await finestra.vai("mappa");
    expect(await page.locator("[data-ricerca]").inputValue(), "the filter stays").toBe("im");
    expect(await righe.allInnerTexts()).toHaveLength(1);
  });

  test("settings: saved at once, never outside the range, folders one by one, reset", async () => {
    const { page } = finestra;
    const file = path.join(
      casa.home,
      "Library/Application Support/PellakCleaner/impostazioni.json",
    );
    const valori = async () =>
      (await finestra.api<RispostaImpostazioni>("/api/settings", {})).valori;
    await finestra.vai("impostazioni");
    const minimo = page.getByLabel("Dimensione minima");
    await minimo.fill("12");
    await minimo.press("Enter");
    await page.getByRole("switch", { name: "Memoria" }).click();
    await expect.poll(async () => (await valori()).menu_ram).toBe(false);
    expect((await valori()).dup_min_mb).toBe(12);
    expect(JSON.parse(fs.readFileSync(file, "utf8"))).toMatchObject({ dup_min_mb: 12 });

    await minimo.fill("1");
    await page.waitForTimeout(300);
    expect((await valori()).dup_min_mb, "half typed").toBe(12);
    await minimo.pressSequentially("4");
    expect(await minimo.inputValue()).toBe("14");
    await expect.poll(async () => (await valori()).dup_min_mb, { timeout: 4000 }).toBe(14);
    await minimo.fill("12");
    await minimo.press("Enter");
    await expect.poll(async () => (await valori()).dup_min_mb).toBe(12);

    await minimo.fill("1001");
    expect(await minimo.getAttribute("aria-invalid")).toBe("true");
    await minimo.press("Tab");
    expect(await minimo.inputValue()).toBe("12");
    expect((await valori()).dup_min_mb).toBe(12);

    await page.evaluate(() => {
      const { addExcludedFolder } = globalThis as unknown as {
        addExcludedFolder: (p: string) => void;
      };
      for (const nome of ["/uno", "/due", "/due", "/tre"]) addExcludedFolder(nome);
    });
    await page.getByRole("button", { name: "Togli /due" }).click();
    await expect.poll(async () => (await valori()).dup_exclude).toEqual(["/uno", "/tre"]);

    await page.getByRole("button", { name: "Valori iniziali" }).click();
    await page.getByRole("dialog").getByRole("button", { name: "Ripristina" }).click();
    await expect.poll(() => fs.existsSync(file)).toBe(false);
    await expect.poll(() => minimo.inputValue()).toBe("5");
    await page.getByRole("button", { name: "Aggiungi…" }).click();
    await expect.poll(() => finestra.parole).toEqual(["ready", "pickFolder"]);
  });

  test("the state is asked for every half second while busy, never while hidden", async () => {
    const { page, richieste } = finestra;
    const quante = () => richieste.filter((r) => r === "/api/state").length;
    await page.waitForTimeout(1200);
    expect(quante(), "idle").toBe(1);

    await page.evaluate(() => {
      const g = globalThis as unknown as {
        V: { scanAllPending: boolean };
        api: (p: string, b: object) => Promise<unknown>;
        poll: () => Promise<void>;
      };
      g.V.scanAllPending = true;
      return g.api("/api/scan", { section: "all" }).then(g.poll);
    });
    await page.getByText(/^Ultima scansione/).waitFor();
    await page.waitForTimeout(600);
    const dopo = quante();
    await page.evaluate(() => window.__pellakVisible?.(false));
    await finestra.api("/api/scan", { section: "all" });
    await page.evaluate(() => (globalThis as unknown as { poll: () => unknown }).poll());
    await page.waitForTimeout(1500);
    expect(quante(), "hidden: only the one asked for by name").toBe(dopo + 1);
    await page.evaluate(() => window.__pellakVisible?.(true));
    await expect.poll(quante).toBeGreaterThan(dopo + 1);
  });
});
