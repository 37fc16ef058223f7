import { type ReadonlySignal, type Signal, computed, signal } from "@preact/signals";
import { cercaSezione } from "../store";
import type { SceltePerGruppo } from "./duplicati";
import { intera } from "./mostrate";
import type { Ordine } from "./ordine";
import { type Scelte, riepilogo } from "./selezione";

/** What a section's view keeps while another one is on screen. */
export interface Memoria {
  filtro: Signal<string>;
  ordine: Signal<Ordine>;
  scelte: Signal<Scelte>;
  /** Of the duplicates. */
  copie: Signal<SceltePerGruppo>;
  /** What was opened or closed by hand: findings by id, groups by finding and first path. */
  aperte: Signal<ReadonlyMap<string, boolean>>;
  /** Whether something that is still there is chosen. */
  conScelta: ReadonlySignal<boolean>;
}

const memorie = new Map<string, Memoria>();

function nuova(sezione: string): Memoria {
  const scelte = signal<Scelte>(new Map());
  const copie = signal<SceltePerGruppo>(new Map());
  const conScelta = computed(() => {
    if ([...copie.value.values()].some(({ via }) => via.size > 0)) return true;
    if (scelte.value.size === 0) return false;
    const findings = cercaSezione(sezione)?.findings ?? [];
    return riepilogo(findings.map(intera), scelte.value).length > 0;
  });
  return {
    filtro: signal(""),
    ordine: signal<Ordine>("spazio"),
    scelte,
    copie,
    aperte: signal<ReadonlyMap<string, boolean>>(new Map()),
    conScelta,
  };
}

export function memoria(sezione: string): Memoria {
  let sua = memorie.get(sezione);
  if (!sua) memorie.set(sezione, (sua = nuova(sezione)));
  return sua;
}

/** Whether a card is open: as it was left, at first when it is the only one; filtered, always. */
export function apertura(di: Memoria, chiave: string, sola: boolean, filtro: string): boolean {
  return filtro !== "" || (di.aperte.value.get(chiave) ?? sola);
}

export function ricordaAperta(di: Memoria, chiave: string, aperta: boolean): void {
  di.aperte.value = new Map(di.aperte.value).set(chiave, aperta);
}
