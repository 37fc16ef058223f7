import { Trash2 } from "lucide-preact";
import { alLavoro } from "../cestino";
import { liberaAlmeno } from "../libera";
import { type Scelto, liberaScelti, quantiScelti, testoNascosti } from "../sections/selezione";
import { quanti } from "../testo";
import { Pulsante } from "./Pulsante";
import "./BarraSelezione.css";

interface Proprieta {
  scelti: readonly Scelto[];
  /** How many more are chosen that the filter hides: nothing here touches them. */
  nascosti: number;
  svuota: () => void;
  cestina: () => void;
}

/** What is chosen, how much it frees, and the one thing to do with it. */
export function BarraSelezione({ scelti, nascosti, svuota, cestina }: Proprieta) {
  const quantiSono = quantiScelti(scelti);
  if (quantiSono + nascosti === 0) return null;
  return (
    <section class="selezione" aria-label="Selezione">
      <p role="status">
        <strong>{quanti(quantiSono, "elemento selezionato", "elementi selezionati")}</strong>
        {quantiSono > 0 && <span class="misura libera">{liberaAlmeno(liberaScelti(scelti))}</span>}
        {nascosti > 0 && <span class="selezione-nascosti">{testoNascosti(nascosti)}</span>}
      </p>
      <Pulsante tipo="testo" disabled={quantiSono === 0} onClick={svuota}>
        Deseleziona
      </Pulsante>
      <Pulsante
        tipo="primario"
        Icona={Trash2}
        disabled={alLavoro.value || quantiSono === 0}
        onClick={cestina}
      >
        Sposta nel Cestino
      </Pulsante>
    </section>
  );
}
