import { afterAll, beforeAll, describe, expect, test } from "vitest";
import { type Casa, OSTILE, ROTTO_MOSTRATO, STRANO, STRANO_MOSTRATO, casaPiena } from "./casa";
import { Finestra, PAGINA, ritrai, senzaDifetti } from "./finestra";
import { aMetaScansione, conScena } from "./scena";

const VISTE_CON_NOMI =
  "sviluppo applicazioni duplicati grandi privacy avvio mappa registro permessi impostazioni";

const VISTE_CON_BYTE = ["sviluppo", "mappa", "registro"];

/** Texts, tooltips and spoken names that hold a sign able to disguise what is around it. */
function segniNascosti({ page }: Finestra): Promise<string[]> {
  return page.evaluate(() => {
    const nascosti = /[\u0000-\u0009\u202a-\u202e\u2066-\u2069\uef80-\uefff]/;
    const testi = [document.body.innerText];
    for (const el of document.querySelectorAll("[title], [aria-label]")) {
      testi.push(el.getAttribute("title") ?? "", el.getAttribute("aria-label") ?? "");
    }
    return testi.filter((testo) => nascosti.test(testo));
  });
}

async function viste(finestra: Finestra): Promise<string[]> {
  const voci = finestra.page.locator("[data-vista]");
  return voci.evaluateAll((lista) => lista.map((v) => v.getAttribute("data-vista") ?? ""));
}

/** Opens whatever is folded in the view. */
async function distendi({ page }: Finestra): Promise<void> {
  for (;;) {
    const chiusa = page.locator('main button[aria-expanded="false"]').first();
    if ((await chiusa.count()) === 0) break;
    await chiusa.click();
  }
  for (const dettaglio of await page.locator("main details:not([open]) summary").all()) {
    await dettaglio.click();
  }
}

describe.each([false, true])("every view, dark: %s", (scuro) => {
  let casa: Casa;
  let finestra: Finestra;
  beforeAll(async () => {
    casa = casaPiena();
    let scena = aMetaScansione;
    let trattenuta: Promise<void> | undefined;
    finestra = await Finestra.apri(casa.home, {
      scuro,
      ritocco: (rotta, risposta) => {
        if (rotta.startsWith("/api/trash")) return trattenuta;
        return scena(rotta, risposta);
      },
    });
    const { page } = finestra;
    await page.locator(".passo-attuale").waitFor();
    expect(await page.locator("body").innerText()).not.toMatch(/\b0 B\b/);
    expect(await page.locator(".cifra-numero").innerText()).toBe("3 di 8 sezioni");
    await senzaDifetti(finestra, "first scan");
    await ritrai(page, `scansione-${scuro ? "scuro" : "chiaro"}`);
    scena = conScena;
    await page.reload();
    await page.locator(".benvenuto").waitFor();
    await senzaDifetti(finestra, "first launch");
    await finestra.scansionaTutto();
    await page.evaluate((p) => {
      (globalThis as unknown as { addExcludedFolder: (p: string) => void }).addExcludedFolder(p);
    }, `/altrove/${OSTILE}${STRANO}`);
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="npm-cache"] .casella').first().check();
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    expect(await page.getByRole("dialog").innerText()).toContain(OSTILE);
    let rilascia = (): void => undefined;
    trattenuta = new Promise((f) => (rilascia = f));
    await page.getByRole("dialog").getByRole("button", { name: "Sposta nel Cestino" }).click();
    await page.getByRole("progressbar").waitFor();
    await senzaDifetti(finestra, "move");
    rilascia();
    await page.getByRole("button", { name: "Rimetti a posto" }).waitFor();
    await senzaDifetti(finestra, "notice");
    await page.getByRole("button", { name: "Rimetti a posto" }).click();
    await page.getByText(/rimessi al loro posto/).waitFor();
    await finestra.scansionaTutto();
  });
  afterAll(async () => {
    await finestra.chiudi();
    casa.togli();
  });

  test("a file name never becomes markup", async () => {
    for (const vista of await viste(finestra)) {
      await finestra.vai(vista);
      if (vista === "mappa") await finestra.page.locator(".tessera").first().waitFor();
      if (vista === "mappa") {
        await finestra.page.getByRole("row", { name: /^cartella Documenti/ }).click();
        await finestra.page.getByRole("row", { name: OSTILE }).waitFor();
      }
      await distendi(finestra);
      if (VISTE_CON_NOMI.includes(vista)) {
        const testo = await finestra.page.locator("main").innerText();
        expect(testo, vista).toContain(OSTILE);
        expect(testo, vista).toContain(STRANO_MOSTRATO);
        if (VISTE_CON_BYTE.includes(vista)) expect(testo, vista).toContain(ROTTO_MOSTRATO);
      }
      expect(await segniNascosti(finestra), vista).toEqual([]);
      const estranei = "main img:not(.icona-app), main script, main style, main iframe, [onerror]";
      expect(await finestra.page.locator(estranei).count(), vista).toBe(0);
    }
    expect(await finestra.page.evaluate(() => "violato" in window)).toBe(false);
    expect(finestra.errori).toEqual([]);
  });

  test("the policy stops foreign scripts and every address outside the page", async () => {
    const esito = await finestra.page.evaluate(async () => {
      const script = document.createElement("script");
      script.textContent = "window.violato = 2";
      document.body.append(script);
      script.remove();
      const rete = await fetch(location.href).then(
        () => "reached",
        () => "stopped",
      );
      return { script: "violato" in window, rete };
    });
    expect(esito).toEqual({ script: false, rete: "stopped" });
    expect(PAGINA.length).toBeLessThan(400_000);
    expect(PAGINA.match(/\b(?:src|href)\s*=\s*["'][^"']/g) ?? []).toEqual([]);
  });

  test("axe finds nothing", { timeout: 120_000 }, async () => {
    for (const vista of await viste(finestra)) {
      await finestra.vai(vista);
      if (vista === "mappa") await finestra.page.locator(".tessera").first().waitFor();
      await distendi(finestra);
      await senzaDifetti(finestra, vista);
    }
    const { page } = finestra;
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="npm-cache"] .casella').first().check();
    await page.locator("[data-ricerca]").fill("content");
    await senzaDifetti(finestra, "filter and choice");
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    await senzaDifetti(finestra, "question");
    await page.keyboard.press("Escape");
    await page.locator("[data-ricerca]").fill("mai vista");
    await senzaDifetti(finestra, "nothing found");
    await page.getByRole("button", { name: "Cancella filtro" }).click();
    await page.getByRole("button", { name: "Deseleziona" }).click();
  });

  test.each([
    [1100, 740],
    [780, 520],
  ])("nothing is cut off or pushed out at %i x %i", async (width, height) => {
    const { page } = finestra;
    await page.setViewportSize({ width, height });
    for (const vista of await viste(finestra)) {
      await finestra.vai(vista);
      await ritrai(page, `${vista}-${width}-${scuro ? "scuro" : "chiaro"}`);
      const fuori = await page.evaluate(() => {
        const lista: string[] = [];
        for (const el of document.querySelectorAll("main button, main input, nav button, h1")) {
          const r = el.getBoundingClientRect();
          if (r.width > 0 && (r.left < 0 || r.right > innerWidth + 0.5)) lista.push(el.outerHTML);
        }
        for (const el of document.querySelectorAll(".laterale-nome, .pulsante, .scelta span")) {
          if (el.scrollWidth > el.clientWidth + 1) lista.push(`cut: ${el.outerHTML}`);
        }
        for (const fine of document.querySelectorAll(".percorso-fine")) {
          const inizio = fine.previousElementSibling?.clientWidth ?? 0;
          if (inizio > 16 && fine.scrollWidth > fine.clientWidth + 1) lista.push(fine.outerHTML);
        }
        const { scrollWidth } = document.documentElement;
        if (scrollWidth > innerWidth) lista.push(`page ${scrollWidth}`);
        return lista;
      });
      expect(fuori, vista).toEqual([]);
    }
  });
});
