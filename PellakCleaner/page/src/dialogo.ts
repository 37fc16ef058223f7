import { signal } from "@preact/signals";

export interface Elenco {
  titolo?: string;
  righe: { percorso: string; misura?: string }[];
  altri?: string;
}

/** A question that has to be answered before anything happens. */
export interface Domanda {
  titolo: string;
  /** What exactly happens, one line for each thing. */
  righe: { testo: string; misura?: string }[];
  /** Paths of what is concerned, as far as they fit; `altri` tells how many more there are. */
  elenchi?: Elenco[];
  nota?: string;
  conferma: string;
}

export const domanda = signal<(Domanda & { rispondi: (si: boolean) => void }) | null>(null);

/** Shows the question; false when it is dismissed. */
export function conferma(testo: Domanda): Promise<boolean> {
  domanda.value?.rispondi(false);
  return new Promise((risolvi) => {
    domanda.value = {
      ...testo,
      rispondi: (si) => {
        domanda.value = null;
        risolvi(si);
      },
    };
  });
}
