import { type ChildProcessWithoutNullStreams, spawn } from "node:child_process";
import * as fs from "node:fs";
import { type Server, createServer } from "node:http";
import type { AddressInfo } from "node:net";
import * as path from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";
import axe from "axe-core";
import { type Browser, type Page, chromium } from "playwright-core";
import { expect } from "vitest";

const QUI = path.dirname(fileURLToPath(import.meta.url));
/** The built page, as it was when the tests began. */
export const PAGINA = fs.readFileSync(path.join(QUI, "../../dist/ui.html"), "utf8");
export const PROGRAMMA =
  process.env.PELLAK_PROGRAMMA ?? path.join(QUI, "../../../../build/release/pellak-cleaner");
export const CHROMIUM = process.env.PELLAK_CHROMIUM ?? "/usr/bin/chromium";

interface Messaggio {
  id: number;
  path: string;
  body: object;
}

interface Chiamata {
  call: string;
  id: number;
  status: number;
  reply: Record<string, unknown>;
}

/** Changes a reply on its way to the page, or holds it: for what can't be met on this machine. */
export type Ritocco = (
  rotta: string,
  risposta: Record<string, unknown>,
) => Promise<void> | undefined | void;

export interface Opzioni {
  larga?: number;
  alta?: number;
  scuro?: boolean;
  ritocco?: Ritocco;
}

/** A picture of what is there, for people, in the folder that PELLAK_IMMAGINI names. */
export async function ritrai(page: Page, nome: string): Promise<void> {
  const cartella = process.env.PELLAK_IMMAGINI;
  if (cartella) await page.screenshot({ path: path.join(cartella, `${nome}.png`) });
}

/** The built page in a browser, joined to a program of its own through its stdio bridge. */
export class Finestra {
  readonly richieste: string[] = [];
  readonly parole: string[] = [];
  readonly errori: string[] = [];
  private readonly rotte = new Map<number, string>();

  private constructor(
    readonly page: Page,
    private readonly browser: Browser,
    private readonly server: Server,
    private readonly programma: ChildProcessWithoutNullStreams,
    private readonly ritocco: Ritocco | undefined,
  ) {}

  static async apri(home: string, opzioni: Opzioni = {}): Promise<Finestra> {
    const { larga = 1100, alta = 740, scuro = false } = opzioni;
    const server = createServer((_richiesta, risposta) => {
      risposta.setHeader("Content-Type", "text/html; charset=utf-8");
      risposta.end(PAGINA);
    });
    await new Promise<void>((fatto) => server.listen(0, "127.0.0.1", fatto));
    const browser = await chromium.launch({
      executablePath: CHROMIUM,
      args: ["--no-sandbox", "--disable-gpu", "--force-color-profile=srgb"],
    });
    const page = await browser.newPage({
      viewport: { width: larga, height: alta },
      colorScheme: scuro ? "dark" : "light",
      reducedMotion: "reduce",
      locale: "it-IT",
      timezoneId: "UTC",
    });
    const programma = spawn(PROGRAMMA, ["bridge"], {
      env: { HOME: home, PATH: process.env.PATH ?? "", TZ: "UTC", LANG: "C.UTF-8" },
    });
    const finestra = new Finestra(page, browser, server, programma, opzioni.ritocco);
    try {
      await finestra.collega();
      await page.goto(`http://127.0.0.1:${(server.address() as AddressInfo).port}/`);
      await page.locator(".cifra, .benvenuto").first().waitFor();
    } catch (errore) {
      await finestra.chiudi();
      throw errore;
    }
    return finestra;
  }

  private async collega(): Promise<void> {
    const { page, programma } = this;
    page.on("pageerror", (errore) => this.errori.push(String(errore)));
    page.on("console", (riga) => {
      if (riga.type() === "error" && !riga.text().includes("favicon"))
        this.errori.push(riga.text());
    });
    programma.stderr.on("data", (testo) => this.errori.push(String(testo)));
    createInterface({ input: programma.stdout }).on("line", (riga) => void this.consegna(riga));
    await page.exposeBinding("versoProgramma", (_da, canale: string, body: unknown) =>
      this.manda(canale, body),
    );
    await page.addInitScript(() => {
      const verso = (globalThis as unknown as { versoProgramma: (c: string, b: unknown) => void })
        .versoProgramma;
      window.webkit = {
        messageHandlers: {
          api: { postMessage: (messaggio) => verso("api", messaggio) },
          pellak: { postMessage: (parola) => verso("pellak", parola) },
        },
      };
    });
  }

  private manda(canale: string, body: unknown): void {
    if (canale === "pellak") {
      this.parole.push(String(body));
      this.programma.stdin.write(`${JSON.stringify({ channel: "pellak", body })}\n`);
      return;
    }
    const messaggio = body as Messaggio;
    this.richieste.push(messaggio.path);
    this.rotte.set(messaggio.id, messaggio.path);
    this.programma.stdin.write(`${JSON.stringify({ channel: "api", ...messaggio })}\n`);
  }

  private async consegna(riga: string): Promise<void> {
    const { call, id, status, reply } = JSON.parse(riga) as Chiamata;
    if (call !== "__apiDone") return;
    await this.ritocco?.(this.rotte.get(id) ?? "", reply);
    const testo = JSON.stringify(reply);
    await this.page
      .evaluate(([i, s, t]) => window.__apiDone?.(i, s, t), [id, status, testo] as const)
      .catch(() => undefined);
  }

  async vai(vista: string): Promise<void> {
    await this.page.locator(`[data-vista="${vista}"]`).click();
    await this.page.locator(`[data-vista="${vista}"][aria-current="page"]`).waitFor();
    // One frame for the layout effects, one for what they changed.
    await this.page.evaluate(
      () => new Promise((f) => requestAnimationFrame(() => requestAnimationFrame(f))),
    );
  }

  /** A full scan from the overview's button to its end. */
  async scansionaTutto(): Promise<void> {
    await this.vai("panoramica");
    await this.page.getByRole("button", { name: "Scansiona tutto" }).click();
    await this.page.getByText(/^Ultima scansione/).waitFor({ timeout: 50_000 });
    await this.page.getByRole("button", { name: "Scansiona tutto" }).waitFor();
  }

  api<T>(path: string, body: object = {}): Promise<T> {
    return this.page.evaluate(
      ([p, b]) =>
        (globalThis as unknown as { api: (p: string, b: object) => Promise<unknown> }).api(p, b),
      [path, body] as const,
    ) as Promise<T>;
  }

  async chiudi(): Promise<void> {
    await this.browser.close();
    this.programma.stdin.end();
    this.programma.kill();
    this.server.close();
  }
}

export async function senzaDifetti({ page }: Finestra, dove: string): Promise<void> {
  await page.evaluate(axe.source);
  const { violations } = await page.evaluate(() =>
    (globalThis as unknown as { axe: typeof axe }).axe.run(),
  );
  expect(
    violations.map((v) => `${v.id}: ${v.nodes.map((n) => n.html).join(" | ")}`),
    dove,
  ).toEqual([]);
}
