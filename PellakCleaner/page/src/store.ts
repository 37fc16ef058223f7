import { computed, signal } from "@preact/signals";
import type { Finding, Impostazioni, RispostaPermessi, RispostaStato, Sezione } from "./rotte";

/** Everything the views share. Views read signals; only the functions of this page write them. */

export const sezioni = signal<Sezione[]>([]);
/** What emptying the Trash surely frees once all that can be moved is in it. */
export const libera = signal(0);
export const occupato = signal(false);
/** Whether the first state has arrived. */
export const pronto = signal(false);

export const vista = signal("panoramica");

export const permessi = signal<RispostaPermessi | null>(null);
/** Nothing where the system does not tell. */
export const disco = computed(() => permessi.value?.disco ?? null);
/** Whose words the texts use; the native side tells. */
export const suMac = computed(() => permessi.value?.sistema === "macos");
export const impostazioni = signal<Impostazioni | null>(null);
export const limiti = signal<Record<string, [number, number]>>({});
/** The folders that the searches of some sections enter, by section. */
export const radici = signal<Record<string, string[]>>({});
/** The home folder; empty until a reply has told it. */
export const casa = signal("");

/** Whether the window can be seen: nothing is asked while it can't. */
export const visibile = signal(!document.hidden);

export const inScansione = computed(() => sezioni.value.find((s) => s.scanning) ?? null);
export const mancanti = computed(() => sezioni.value.filter((s) => s.queued || s.scanning).length);
export const maiScansionato = computed(
  () => pronto.value && sezioni.value.every((s) => !s.scanned),
);

export function cercaSezione(id: string): Sezione | null {
  return sezioni.value.find((s) => s.id === id) ?? null;
}

export const ultimaScansione = computed(() =>
  sezioni.value.reduce((ultima, s) => Math.max(ultima, s.last_scan), 0),
);

function stesseVoci(a: Finding, b: Finding): boolean {
  return (
    a.items.length === b.items.length &&
    a.items.every((voce, i) => {
      const altra = b.items[i];
      return (
        altra !== undefined &&
        voce.path === altra.path &&
        voce.size === altra.size &&
        voce.mtime === altra.mtime &&
        voce.libera === altra.libera
      );
    })
  );
}

/** Keeps the old list of entries where nothing moved, so that nothing is sorted or drawn again. */
function riusa(nuove: Sezione[], vecchie: Sezione[]): Sezione[] {
  const note = new Map<string, Finding>();
  for (const sezione of vecchie) for (const f of sezione.findings) note.set(f.id, f);
  for (const sezione of nuove) {
    for (const finding of sezione.findings) {
      const nota = note.get(finding.id);
      if (nota && stesseVoci(nota, finding)) finding.items = nota.items;
    }
  }
  return nuove;
}

export function accogliStato(stato: RispostaStato): void {
  sezioni.value = riusa(stato.sections, sezioni.value);
  libera.value = stato.libera;
  pronto.value = true;
}
