import {
  AppWindow,
  Archive,
  BrushCleaning,
  CodeXml,
  Copy,
  EyeOff,
  FileClock,
  type LucideIcon,
  Power,
} from "lucide-preact";
import { misuraDi, preclusa } from "../libera";
import { cercaSezione } from "../store";
import type { Vista } from "../vista";
import { numero } from "../testo";
import { Sezione, scansiona } from "./Sezione";
import { memoria } from "./memoria";

function sezione(id: string, nome: string, Icona: LucideIcon): Vista {
  return {
    id,
    nome,
    gruppo: "pulizia",
    Icona,
    colore: `var(--sezione-${id})`,
    Contenuto: () => <Sezione id={id} />,
    conteggio: () => conteggio(id),
    spenta: () => cercaSezione(id) !== null && attiva(id) === null,
    conScelta: () => memoria(id).conScelta.value,
    scansiona: () => void scansiona(id),
    parola: () => parola(id),
    inCorso: () => attiva(id)?.scanning ?? false,
    inCoda: () => attiva(id)?.queued ?? false,
  };
}

/** The section where it can be scanned: another one has no part in what a scan of all is at. */
function attiva(id: string) {
  const dati = cercaSezione(id);
  return dati && !preclusa(dati) ? dati : null;
}

function conteggio(id: string): string {
  const dati = cercaSezione(id);
  if (dati?.avvio_n) return numero(dati.avvio_n);
  return dati ? misuraDi(dati).testo : "";
}

function parola(id: string) {
  const dati = cercaSezione(id);
  return dati && !dati.avvio_n ? misuraDi(dati).classe : undefined;
}

/** The eight sections in catalogue order. */
export const sezioniViste: Vista[] = [
  sezione("sviluppo", "Sviluppo", CodeXml),
  sezione("applicazioni", "Applicazioni", AppWindow),
  sezione("duplicati", "Duplicati", Copy),
  sezione("grandi", "File grandi e vecchi", FileClock),
  sezione("pulizia", "Pulizia generale", BrushCleaning),
  sezione("privacy", "Privacy", EyeOff),
  sezione("avvio", "App di avvio", Power),
  sezione("sistema", "Backup e snapshot", Archive),
];
