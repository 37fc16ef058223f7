import type { Finding, Gruppo, RispostaStato } from "../../src/rotte";
import { OSTILE, STRANO } from "./casa";
import type { Ritocco } from "./finestra";

const NOME = OSTILE + STRANO;

/** What no made-up home can make the program find: applications, startup items, refusals. */

function gruppo(dati: Partial<Gruppo>): Gruppo {
  return {
    name: "",
    bundle: "",
    size: 0,
    size_h: "0 B",
    icon_src: "",
    url: "",
    spento: false,
    admin: false,
    system: false,
    pesi: [],
    deboli: [],
    paths: [],
    libera: dati.size ?? 0,
    ...dati,
  };
}

function finding(dati: Partial<Finding>): Finding {
  const groups = dati.groups ?? [];
  return {
    id: "",
    name: "",
    mode: "delete",
    note: "",
    hint: "",
    unmeasured: false,
    total: 0,
    total_h: "0 B",
    count: groups.length + (dati.items?.length ?? 0),
    kind: "",
    items: [],
    groups,
    libera: dati.total ?? 0,
    ...dati,
  };
}

const applicazioni = [
  finding({
    id: "updates",
    name: "Aggiornamenti",
    mode: "report",
    kind: "aggiornamenti",
    unmeasured: true,
    groups: [
      gruppo({ name: "Taccuino", desc: "2.1 → 2.4", paths: ["/Applications/Taccuino.app"] }),
    ],
  }),
  finding({
    id: "apps",
    name: "App installate",
    kind: "app",
    total: 900_000_000,
    total_h: "858.3 MiB",
    groups: [
      gruppo({
        name: `Editor ${NOME}`,
        bundle: `org.esempio.${NOME}`,
        size: 600_000_000,
        size_h: "572.2 MiB",
        paths: [`/Applications/${NOME}.app`, `/home/tu/.config/${NOME}`],
        pesi: [590_000_000, 10_000_000],
        deboli: [`/home/tu/.cache/${NOME}`],
      }),
      gruppo({
        name: "Calcolo",
        bundle: "org.esempio.calcolo",
        size: 300_000_000,
        size_h: "286.1 MiB",
        paths: ["/Applications/Calcolo.app"],
        pesi: [300_000_000],
      }),
    ],
  }),
];

const avvio = [
  finding({
    id: "startup-user",
    name: "Elementi di avvio (utente)",
    kind: "avvio",
    note: "Programmi avviati automaticamente all'accesso.",
    groups: [
      gruppo({
        name: "org.esempio.sincronia",
        desc: "esegue: /opt/sincronia/bin/agente --silenzioso",
        size: 4096,
        size_h: "4.0 KiB",
        paths: ["/home/tu/.config/autostart/sincronia.desktop"],
      }),
      gruppo({
        name: `org.esempio.${NOME}`,
        desc: `esegue: ${NOME}`,
        spento: true,
        admin: true,
        size: 4096,
        size_h: "4.0 KiB",
        paths: [`/home/tu/.config/autostart/${NOME}.desktop`],
      }),
    ],
  }),
];

const privacy = [
  finding({
    id: "browser-privacy",
    name: "Browser",
    kind: "browser",
    total: 52_428_800,
    total_h: "50.0 MiB",
    hint: "Chiudi prima il browser: finché è aperto riscrive i suoi file.",
    groups: [
      gruppo({
        name: `Navigatore ${NOME}`,
        desc: "Cronologia, cookie, cache",
        size: 52_428_800,
        size_h: "50.0 MiB",
        paths: [`/home/tu/.mozilla/${NOME}/cookies.sqlite`],
        pesi: [52_428_800],
      }),
    ],
  }),
];

/** A scan that stands still in the middle, for the picture of it. */
export const aMeta: Ritocco = (rotta, risposta) => {
  conScena(rotta, risposta);
  if (rotta !== "/api/state" || !Array.isArray(risposta.sections)) return;
  const stato = risposta as unknown as RispostaStato;
  stato.busy = true;
  stato.sections.forEach((sezione, i) => {
    sezione.scanning = i === 2;
    sezione.queued = i > 2;
    if (i === 2) sezione.status = "Ricerca duplicati (può richiedere minuti)...";
  });
};

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
