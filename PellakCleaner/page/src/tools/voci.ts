import type { Impostazioni } from "../rotte";

/** The settings as they stand on the page: cards, names, units. */

type Chiavi<T> = {
  [C in keyof Impostazioni]: Impostazioni[C] extends T ? C : never;
}[keyof Impostazioni];
export type ChiaveInteri = Chiavi<number>;
export type ChiaveSiNo = Chiavi<boolean>;

interface VoceIntera {
  chiave: ChiaveInteri;
  nome: string;
  unita: string;
  nota?: string;
}

interface VoceSiNo {
  chiave: ChiaveSiNo;
  nome: string;
  nota?: string;
}

interface SchedaImpostazioni {
  titolo: string;
  interi: VoceIntera[];
  siNo: VoceSiNo[];
  /** The list of excluded folders stands here. */
  escluse?: boolean;
}

export const schede: SchedaImpostazioni[] = [
  {
    titolo: "Duplicati",
    interi: [{ chiave: "dup_min_mb", nome: "Dimensione minima", unita: "MB" }],
    siNo: [],
    escluse: true,
  },
  {
    titolo: "File grandi e vecchi",
    interi: [
      { chiave: "large_min_mb", nome: "Grande è un file da almeno", unita: "MB" },
      { chiave: "large_age_days", nome: "Vecchio è un file fermo da", unita: "giorni" },
    ],
    siNo: [],
  },
  {
    titolo: "Pulizia",
    interi: [
      {
        chiave: "cache_age_days",
        nome: "Lascia stare le cache usate negli ultimi",
        unita: "giorni",
      },
      { chiave: "leftover_age_days", nome: "Residui di app: fermi da almeno", unita: "giorni" },
      { chiave: "installer_age_days", nome: "Installer: vecchi di almeno", unita: "giorni" },
    ],
    siNo: [],
  },
  {
    titolo: "Automatico",
    interi: [
      {
        chiave: "auto_days",
        nome: "Controllo periodico ogni",
        unita: "giorni",
        nota: "Cerca soltanto e avvisa quanto si può liberare. 0: mai.",
      },
    ],
    siNo: [{ chiave: "login_item", nome: "Apri all'accesso" }],
  },
  {
    titolo: "Barra dei menu",
    interi: [],
    siNo: [
      { chiave: "menu_disk", nome: "Disco" },
      { chiave: "menu_ram", nome: "Memoria" },
      { chiave: "menu_cpu", nome: "Processore" },
      { chiave: "menu_net", nome: "Rete" },
      { chiave: "menu_batt", nome: "Batteria" },
      { chiave: "menu_bar_live", nome: "Valori in tempo reale nella barra" },
    ],
  },
  {
    titolo: "Rete",
    interi: [],
    siNo: [
      {
        chiave: "rete_avvisi",
        nome: "Avvisa quando un programma usa la rete per la prima volta",
      },
    ],
  },
];
