import type { LucideIcon } from "lucide-preact";
import type { ComponentType } from "preact";

export type GruppoViste = "inizio" | "pulizia" | "disco" | "sistema" | "programma";

export const titoliGruppi: Record<GruppoViste, string> = {
  inizio: "",
  pulizia: "Pulizia",
  disco: "Disco",
  sistema: "Sistema",
  programma: "Pellak Cleaner",
};

/** One entry of the sidebar and what it shows. */
export interface Vista {
  id: string;
  nome: string;
  gruppo: GruppoViste;
  Icona: LucideIcon;
  Contenuto: ComponentType;
  /** The colour of a section in the sidebar and in the bar of the overview. */
  colore?: string;
  /** A count or a live value at the right end of the entry; read while drawing, so it follows the
   * signals. */
  conteggio?: () => string;
  /** What the menu's "Scansiona questa vista" does; absent, nothing. */
  scansiona?: () => void;
  /** Which of the two words for room on the disk that text is about. */
  parola?: () => "libera" | "segnalati" | undefined;
  /** Whether something is chosen in it; marked in the sidebar. */
  conScelta?: () => boolean;
  /** Whether it has nothing to offer here: shown dim. */
  spenta?: () => boolean;
  inCorso?: () => boolean;
  inCoda?: () => boolean;
}
