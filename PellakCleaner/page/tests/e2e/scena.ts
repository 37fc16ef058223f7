import type { Finding, RispostaStato } from "../../src/rotte";
import { finding, gruppo } from "../unit/esempi";
import { OSTILE, STRANO } from "./casa";
import type { Ritocco } from "./finestra";

const NOME = OSTILE + STRANO;

/** What no made-up home can make the program find: applications, startup items, refusals. */

const applicazioni = [
  finding("updates", {
    name: "Aggiornamenti",
    mode: "report",
    kind: "aggiornamenti",
    unmeasured: true,
    groups: [gruppo(["/Applications/Taccuino.app"], 0, { name: "Taccuino", desc: "2.1 → 2.4" })],
  }),
  finding("apps", {
    name: "App installate",
    kind: "app",
    total: 900_000_000,
    total_h: "858.3 MiB",
    groups: [
      gruppo([`/Applications/${NOME}.app`, `/home/tu/.config/${NOME}`], 600_000_000, {
        name: `Editor ${NOME}`,
        bundle: `org.esempio.${NOME}`,
        size_h: "572.2 MiB",
        pesi: [590_000_000, 10_000_000],
        deboli: [`/home/tu/.cache/${NOME}`],
      }),
      gruppo(["/Applications/Calcolo.app"], 300_000_000, {
        name: "Calcolo",
        bundle: "org.esempio.calcolo",
        size_h: "286.1 MiB",
        pesi: [300_000_000],
      }),
    ],
  }),
];

const avvio = [
  finding("startup-user", {
    name: "Elementi di avvio (utente)",
    kind: "avvio",
    note: "Programmi avviati automaticamente all'accesso.",
    groups: [
      gruppo(["/home/tu/.config/autostart/sincronia.desktop"], 4096, {
        name: "org.esempio.sincronia",
        desc: "esegue: /opt/sincronia/bin/agente --silenzioso",
        size_h: "4.0 KiB",
      }),
      gruppo([`/home/tu/.config/autostart/${NOME}.desktop`], 4096, {
        name: `org.esempio.${NOME}`,
        desc: `esegue: ${NOME}`,
        spento: true,
        admin: true,
        size_h: "4.0 KiB",
      }),
    ],
  }),
];

const privacy = [
  finding("browser-privacy", {
    name: "Browser",
    kind: "browser",
    total: 52_428_800,
    total_h: "50.0 MiB",
    hint: "Chiudi prima il browser: finché è aperto riscrive i suoi file.",
    groups: [
      gruppo([`/home/tu/.mozilla/${NOME}/cookies.sqlite`], 52_428_800, {
        name: `Navigatore ${NOME}`,
        desc: "Cronologia, cookie, cache",
        size_h: "50.0 MiB",
        pesi: [52_428_800],
      }),
    ],
  }),
];

export const conScena: Ritocco = (rotta, risposta) => {
  if (rotta === "/api/perms" && Array.isArray(risposta.luoghi)) {
    risposta.luoghi.push({
      nome: "Archivio di posta",
      percorso: `~/${NOME}`,
      leggibile: false,
      fda_denied: true,
    });
    risposta.fda_denied = true;
    risposta.disco = { totale: 500_107_862_016, libero: 183_500_000_000, usato: 316_607_862_016 };
  }
  if (rotta !== "/api/state" || !Array.isArray(risposta.sections)) return;
  const stato = risposta as unknown as RispostaStato;
  const inPiu: Record<string, Finding[]> = { applicazioni, avvio, privacy };
  for (const sezione of stato.sections) {
    const findings = sezione.scanned ? inPiu[sezione.id] : undefined;
    if (!findings) continue;
    sezione.findings = findings;
    sezione.total = findings.reduce((somma, f) => somma + f.total, 0);
    sezione.disponibile = sezione.id !== "privacy";
    sezione.libera = sezione.id === "privacy" ? sezione.total : 0;
    stato.libera += sezione.libera;
    sezione.total_h = findings.at(-1)?.total_h ?? "";
    sezione.status = `Recuperabili ${sezione.total_h}.`;
    if (sezione.id === "avvio") sezione.avvio_n = 2;
    if (sezione.id === "avvio") sezione.status = "";
    if (sezione.id === "applicazioni") Object.assign(sezione, { apps_n: 2, apps_h: "858.3 MiB" });
    if (sezione.id === "privacy") {
      sezione.denied = 12;
      sezione.denied_top = [{ cartella: `~/.config/${NOME}`, quanti: 12 }];
    }
  }
};

/** The first scan, with three of its sections done. */
export const aMetaScansione: Ritocco = (rotta, risposta) => {
  if (rotta !== "/api/state") return;
  risposta.busy = true;
  for (const [i, sezione] of ((risposta.sections ?? []) as RispostaStato["sections"]).entries()) {
    Object.assign(sezione, { scanned: i < 3, scanning: i === 3, queued: i > 3 });
    Object.assign(sezione, { findings: [], total: 0, libera: 0 });
  }
};
