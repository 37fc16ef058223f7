import { Trash2 } from "lucide-preact";
import { alLavoro } from "../cestino";
import { liberaAlmeno } from "../libera";
import { type Scelto, liberaScelti, quantiScelti } from "../sections/selezione";
import { quanti } from "../testo";
import { Pulsante } from "./Pulsante";
import "./BarraSelezione.css";

interface Proprieta {
  scelti: readonly Scelto[];
  svuota: () => void;
  cestina: () => void;
}

/** What is chosen, how much it frees, and the one thing to do with it. */
export function BarraSelezione({ scelti, svuota, cestina }: Proprieta) {
  if (scelti.length === 0) return null;
  return (
    <section class="selezione" aria-label="Selezione">
      <p role="status">
        <strong>
          {quanti(quantiScelti(scelti), "elemento selezionato", "elementi selezionati")}
        </strong>
        <span class="misura libera">{liberaAlmeno(liberaScelti(scelti))}</span>
      </p>
      <Pulsante tipo="testo" onClick={svuota}>
        Deseleziona
      </Pulsante>
      <Pulsante tipo="primario" Icona={Trash2} disabled={alLavoro.value} onClick={cestina}>
        Sposta nel Cestino
      </Pulsante>
    </section>
  );
}
