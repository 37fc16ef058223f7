import type { Sezione } from "../rotte";
import { suMac } from "../store";

/** Descriptions that name what only macOS has, as they read elsewhere. */
const SU_LINUX: Record<string, string> = {
  pulizia: "Installer datati, Cestino e cache delle applicazioni: pulizia mirata, voce per voce.",
  sistema:
    "Snapshot del disco e backup dei dispositivi: spazio gestito dal sistema. Quadro completo e strumento corretto per ogni intervento.",
};

export function descrizione(sezione: Sezione): string {
  return (suMac.value ? undefined : SU_LINUX[sezione.id]) ?? sezione.desc;
}
