import { execFileSync } from "node:child_process";
import * as fs from "node:fs";
import * as path from "node:path";
import { afterEach, beforeEach, describe, expect, test } from "vitest";
import type { Finding, RispostaRegistro, RispostaStato } from "../../src/rotte";
import { dimensione } from "../../src/testo";
import { type Casa, OSTILE, ROTTO_MOSTRATO, STRANO, casaPiena } from "./casa";
import { Finestra, PROGRAMMA, ritrai } from "./finestra";

/** Every file and folder below the home folder but what the program keeps for itself. */
function albero(casa: Casa): string[] {
  return fs
    .readdirSync(casa.home, { recursive: true, encoding: "utf8" })
    .filter((nome) => !nome.startsWith("Library") && !nome.startsWith(".local"))
    .sort();
}

describe("moving to the Trash and putting back", () => {
  let casa: Casa;
  let finestra: Finestra;
  beforeEach(async () => {
    casa = casaPiena();
    finestra = await Finestra.apri(casa.home);
    await finestra.scansionaTutto();
  });
  afterEach(async () => {
    await finestra.chiudi();
    casa.togli();
    expect(finestra.errori).toEqual([]);
  });

  const avviso = () => finestra.page.locator(".avviso-testo");
  const avvisa = async (testo: RegExp) => {
    await avviso().getByText(testo).waitFor();
    await ritrai(finestra.page, "avviso");
  };
  const conferma = async (titolo: RegExp) => {
    const dialogo = finestra.page.getByRole("dialog");
    await dialogo.getByRole("heading", { name: titolo }).waitFor();
    const testo = (await dialogo.innerText()).replaceAll("\n/", "/");
    await ritrai(finestra.page, "conferma");
    await dialogo.getByRole("button", { name: "Sposta nel Cestino" }).click();
    return testo;
  };

  test("sidebar, overview, section, cards and terminal tell the same numbers", async () => {
    const { page } = finestra;
    const dalTerminale = <T>(comando: string) =>
      JSON.parse(
        execFileSync(PROGRAMMA, [comando, "--json"], {
          env: { HOME: casa.home, PATH: process.env.PATH ?? "" },
          encoding: "utf8",
        }),
      ) as T;
    const byte = (f: Finding) => [f.id, f.count, f.total, f.libera];
    const stato = await finestra.api<RispostaStato>("/api/state");
    const findings = stato.sections.flatMap((s) => s.findings);
    expect(dalTerminale<Finding[]>("show").map(byte)).toEqual(findings.map(byte));
    const altro = dalTerminale<RispostaStato>("scan");
    expect(altro.libera).toBe(stato.libera);
    const somme = (s: RispostaStato) =>
      s.sections.map(({ id, total, libera }) => [id, total, libera]);
    expect(somme(altro)).toEqual(somme(stato));

    expect(await page.locator(".cifra-numero").innerText()).toBe(dimensione(stato.libera));
    for (const { id, name, libera, findings: sue } of stato.sections.filter((s) => s.total > 0)) {
      const misura = dimensione(libera || sue.reduce((somma, f) => somma + f.total, 0));
      await finestra.vai("panoramica");
      const riga = page.locator(".sezioni-riga", { hasText: name });
      expect(await riga.locator(".misura").innerText()).toBe(misura);
      const laterale = page.locator(`[data-vista="${id}"] .laterale-conteggio`);
      expect(await laterale.innerText()).toBe(misura);
      await finestra.vai(id);
      expect(await page.locator(".testata-stato").innerText()).toContain(misura);
      for (const f of sue) {
        const parti = f.id === "duplicates" ? f.groups : [f];
        const parole = parti.map((una) =>
          f.mode === "delete"
            ? `libera ${dimensione(una.libera)}`
            : `${dimensione(f.total)} segnalati`,
        );
        const schede = page.locator(`[data-finding="${f.id}"] .misura-forte`);
        expect(await schede.allInnerTexts(), f.id).toEqual(parole);
      }
    }
  });

  test("chosen entries move, exactly they, and come back, where they are listed again", async () => {
    const { page } = finestra;
    const prima = albero(casa);
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="npm-cache"] .scheda-apri').click();
    const riga = page.getByRole("row", { name: /content-v2/ });
    expect(await riga.locator(".percorso").textContent()).toBe("~/.npm/_cacache");
    await riga.click();
    await page.getByLabel(`Seleziona ${OSTILE}`, { exact: true }).check();
    await page.getByLabel(`Seleziona ${ROTTO_MOSTRATO}`, { exact: true }).check();
    await page.locator('[data-finding="pip-cache"] .casella').first().check();
    expect(await page.locator('[aria-label="Selezione"]').innerText()).toMatch(
      /4 elementi selezionati\s*libera almeno 4,6 MiB/,
    );

    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    await page.keyboard.press("Escape");
    expect(albero(casa)).toEqual(prima);

    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    const testo = await conferma(/Spostare 4 elementi/);
    expect(testo).toMatch(/npm: cache, 3 elementi\s+libera almeno 3,9 MiB/);
    expect(testo).toMatch(/pip: cache, 1 elemento\s+libera almeno 700 KiB/);
    expect(testo).toContain("«Rimetti a posto»");
    expect(testo).toContain("~/.npm/_cacache/content-v2");
    await avvisa(/^4 elementi spostati nel Cestino, 4,6 MiB\.$/);
    const tolti = prima.filter((nome) => !albero(casa).includes(nome));
    expect(tolti).toEqual([
      ".cache/pip/wheels",
      `.npm/_cacache/${OSTILE}`,
      `.npm/_cacache/${OSTILE}/dati`,
      ".npm/_cacache/content-v2",
      ".npm/_cacache/content-v2/dati",
      `.npm/_cacache/${ROTTO_MOSTRATO}`,
    ]);
    expect(await page.locator('[aria-label="Selezione"]').count()).toBe(0);
    expect(await page.locator('[data-finding="pip-cache"]').count()).toBe(0);

    await page.getByRole("button", { name: "Rimetti a posto" }).click();
    await avvisa(/^4 elementi rimessi al loro posto\.$/);
    expect(albero(casa)).toEqual(prima);
    await page.locator('[data-finding="pip-cache"]').waitFor();
    expect(await page.getByRole("row").count(), "the section was scanned again").toBe(7);
  });

  test("everything goes with the keyboard alone, and the focus is never lost", async () => {
    const { page } = finestra;
    const premi = async (...tasti: string[]) => {
      for (const tasto of tasti) await page.keyboard.press(tasto);
    };
    const fuoco = () =>
      page.evaluate(() => {
        const el = document.activeElement;
        return el?.getAttribute("aria-label") ?? el?.textContent ?? "";
      });
    await page.locator("[data-vista=panoramica]").focus();
    await premi("End", "Home", "ArrowDown", "Enter");
    expect(await page.getByRole("heading", { level: 1 }).innerText()).toBe("Sviluppo");
    await premi("Control+f");
    expect(await fuoco()).toBe("Filtra schede, file, cartelle");
    for (let i = 0; i < 5 && (await fuoco()) !== "Seleziona tutto in npm: cache"; i++) {
      await premi("Tab");
    }
    await premi("Space");
    await page.locator('[aria-label="Selezione"]').waitFor();
    for (let i = 0; i < 20 && (await fuoco()) !== "Sposta nel Cestino"; i++) await premi("Tab");
    await premi("Enter");
    await page.getByRole("dialog").waitFor();
    expect(await fuoco()).toBe("Sposta nel Cestino");
    await premi("Enter");
    await avvisa(/^7 elementi spostati/);
    expect(await fuoco()).toContain("7 elementi spostati");
    await premi("Tab");
    expect(await fuoco()).toBe("Apri il Cestino");
    await premi("Tab");
    expect(await fuoco()).toBe("Rimetti a posto");
    await premi("Enter");
    await avvisa(/^7 elementi rimessi/);
    await premi("Escape");
    expect(await page.locator(".avviso").count()).toBe(0);
  });

  test("with a filter actions take what is shown; choice, filter and place stay", async () => {
    const { page } = finestra;
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="pip-cache"] .casella').first().check();
    const filtro = page.locator("[data-ricerca]");
    await filtro.fill("content-v2");
    expect(await page.locator("[data-finding]").count(), "cards without a match go").toBe(1);
    expect(await page.locator(".trovate span").innerText()).toMatch(/^1 di \d+ voci, 3 MiB$/);
    await page.locator('[data-finding="npm-cache"] .casella').first().check();
    const barra = page.locator('[aria-label="Selezione"]');
    expect(await barra.innerText()).toMatch(
      /1 elemento selezionato\s+libera almeno 3 MiB\s+1 .*nascosto dal/,
    );

    await finestra.vai("duplicati");
    await page.getByText(/^Cerca in: .*~\/Documenti, ~\/Immagini\.$/).waitFor();
    await page.locator("[data-ricerca]").fill("relazione");
    await page.getByRole("button", { name: "Pulizia completa (1 copia)" }).click();
    const testo = await conferma(/Spostare 1 copia/);
    expect(testo).toMatch(/Restano\s+~\/Documenti\/.*\s+Vanno nel Cestino\s+~\/Documenti\//);
    await avvisa(/^1 elemento spostato/);
    await page.locator("[data-ricerca]").fill("mai vista");
    await page.getByRole("button", { name: "Cancella filtro" }).click();
    expect(await page.locator(".copia").count(), "only the filtered group went").toBe(3);

    const segno = page.locator('[data-vista="sviluppo"] .laterale-scelta');
    await segno.waitFor();
    await finestra.vai("sviluppo");
    expect(await page.locator(".avviso").count(), "a notice stays in its view").toBe(0);
    expect(await filtro.inputValue()).toBe("content-v2");
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    expect(await conferma(/Spostare 1 elemento/)).toContain("1 nascosto dal filtro resta dov'è");
    await avvisa(/^1 elemento spostato/);
    expect(casa.esiste(".npm/_cacache/content-v2")).toBe(false);
    expect(casa.esiste(".cache/pip/wheels")).toBe(true);
    await page.getByRole("button", { name: "Cancella filtro" }).click();
    expect(await barra.innerText()).toMatch(/1 elemento selezionato\s+libera almeno 700 KiB/);
  });

  test("the log restores one item, then the rest, and says which are back", async () => {
    const { page } = finestra;
    const prima = albero(casa);
    await finestra.vai("sviluppo");
    await page.locator('[data-finding="npm-cache"] .casella').first().check();
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    await conferma(/Spostare 7 elementi/);
    await avvisa(/^7 elementi spostati/);

    await finestra.vai("registro");
    const operazione = page.locator("[data-operazione]");
    await operazione.getByRole("button", { name: "Categoria · npm: cache" }).click();
    const voce = operazione
      .locator("li")
      .filter({ has: page.locator(".nome", { hasText: OSTILE }) });
    await voce.getByRole("button", { name: "Ripristina" }).click();
    await voce.getByText("Al suo posto").waitFor();
    expect(casa.esiste(`.npm/_cacache/${OSTILE}/dati`)).toBe(true);
    expect(casa.esiste(".npm/_cacache/content-v2")).toBe(false);

    await operazione.getByRole("button", { name: "Ripristina il resto" }).click();
    await operazione.getByText("Rimesso al suo posto").waitFor();
    expect(await page.locator(".avviso-falliti").count(), "what was back is no failure").toBe(0);
    expect(albero(casa)).toEqual(prima);
  });

  test("what changed since the scan is named with its reason and stays listed", async () => {
    const { page } = finestra;
    await finestra.vai("sviluppo");
    fs.appendFileSync(path.join(casa.home, ".cache/pip/wheels"), "ancora");
    await page.locator('[data-finding="pip-cache"] .casella').first().check();
    await page.locator('[data-finding="yarn-cache"] .casella').first().check();
    await page.getByRole("button", { name: "Sposta nel Cestino" }).click();
    await conferma(/Spostare 2 elementi/);
    await avvisa(/^1 elemento spostato/);
    expect(await avviso().innerText()).toMatch(/wheels\s*lo stato è cambiato: ricarica e riprova/);
    await page.locator('[data-finding="pip-cache"]').waitFor();
  });

  test("duplicates: the copy to keep can't be discarded, the others go as chosen", async () => {
    const { page } = finestra;
    await finestra.vai("duplicati");
    const copie = page.locator(".copia");
    const copia = (nome: string) => copie.filter({ hasText: nome });
    const primoPiede = page.locator(".insieme-piede").first();

    await copia("estate/mare.jpg").getByRole("radio").check();
    expect(await copia("estate/mare.jpg").getByRole("checkbox").count()).toBe(0);
    await copia("mare (1).jpg").getByRole("checkbox").check();
    await primoPiede.getByRole("button", { name: "Scarta queste copie" }).click();
    await conferma(/Scartare 1 copia/);
    await avvisa(/^1 elemento spostato/);
    expect(casa.esiste("Immagini/copie/mare (1).jpg")).toBe(false);
    await expect.poll(() => page.locator(".copia").count()).toBe(4);

    await copia("estate/mare.jpg").getByRole("radio").check();
    await primoPiede.getByRole("button", { name: "Tieni solo questa" }).click();
    await conferma(/Tenere una sola copia/);
    await avvisa(/^1 elemento spostato/);
    expect(casa.esiste("Immagini/estate/mare.jpg")).toBe(true);
    expect(casa.esiste(`Documenti/${OSTILE}.jpg`)).toBe(false);
    await expect.poll(() => page.locator(".copia").count()).toBe(2);
  });

  test("the complete cleaning keeps the chosen copies and can be undone whole", async () => {
    const { page } = finestra;
    const prima = albero(casa);
    await finestra.vai("duplicati");
    await page.locator(".copia", { hasText: "estate/mare.jpg" }).getByRole("radio").check();
    await page.getByRole("button", { name: "Pulizia completa (3 copie)" }).click();
    await conferma(/Spostare 3 copie/);
    await avvisa(/^3 elementi spostati/);
    expect(casa.esiste("Immagini/estate/mare.jpg")).toBe(true);
    expect(casa.esiste(`Documenti/${OSTILE}.jpg`)).toBe(false);
    expect(casa.esiste("Documenti/relazione.pdf")).toBe(true);
    expect(casa.esiste(`Documenti/${STRANO}.pdf`)).toBe(false);
    const { ops } = await finestra.api<RispostaRegistro>("/api/log");
    expect(ops).toHaveLength(1);

    await page.getByRole("button", { name: "Rimetti a posto" }).click();
    await avvisa(/^3 elementi rimessi/);
    expect(albero(casa)).toEqual(prima);
  });
});
