import { computed, signal } from "@preact/signals";
import type { Finding, Impostazioni, RispostaPermessi, RispostaStato, Sezione } from "./rotte";

/** Everything the views share. Views read signals; only the functions of this page write them. */

export const sezioni = signal<Sezione[]>([]);
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

/**
 * The native side's line about a section. Its sum is of the last scan; what went to the Trash
 * since is taken off here, so that the line says the same as the numbers around it.
 */
export function statoMostrato(sezione: Sezione): string {
  if (sezione.scanning || !sezione.status.startsWith("Recuperabili ")) return sezione.status;
  return sezione.total > 0 ? `Recuperabili ${sezione.total_h}.` : "";
}

/** Findings that moving to the Trash makes room with; applications are there to be used. */
export function liberabile(finding: Finding): boolean {
  return (
    finding.mode === "delete" &&
    !finding.unmeasured &&
    finding.id !== "apps" &&
    !finding.kind.startsWith("avvio")
  );
}

export function byteLiberabili(sezione: Sezione): number {
  return sezione.findings.reduce((somma, f) => somma + (liberabile(f) ? f.total : 0), 0);
}

export const totaleLiberabile = computed(() =>
  sezioni.value.reduce((somma, s) => somma + byteLiberabili(s), 0),
);

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
        voce.mtime === altra.mtime
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
  pronto.value = true;
}
