import { Trash2 } from "lucide-preact";
import { alLavoro } from "../cestino";
import { liberaAlmeno } from "../libera";
import { type Scelto, liberaScelti, quantiScelti, testoNascosti } from "../sections/selezione";
import { quanti } from "../testo";
import { PiedeAzioni } from "./PiedeAzioni";

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
    <PiedeAzioni
      etichetta="Selezione"
      testo={quanti(quantiSono, "elemento selezionato", "elementi selezionati")}
      nota={
        <>
          {quantiSono > 0 && (
            <span class="misura libera">{liberaAlmeno(liberaScelti(scelti))}</span>
          )}
          {nascosti > 0 && <span class="attenzione">{testoNascosti(nascosti)}</span>}
        </>
      }
      azioni={[
        { testo: "Deseleziona", tipo: "testo", disabled: quantiSono === 0, esegui: svuota },
        {
          testo: "Sposta nel Cestino",
          tipo: "primario",
          Icona: Trash2,
          disabled: alLavoro.value || quantiSono === 0,
          esegui: cestina,
        },
      ]}
    />
  );
}
