import { ChevronRight, TriangleAlert } from "lucide-preact";
import { Percorso } from "../components/Percorso";
import { Pulsante } from "../components/Pulsante";
import type { Sezione } from "../rotte";
import { vista } from "../store";
import { numero, quanti } from "../testo";

/** What the scan was not allowed to read, and where. */
export function Negati({ sezione }: { sezione: Sezione }) {
  return (
    <section class="striscia striscia-attenzione" aria-label="Percorsi non leggibili">
      <TriangleAlert size={17} aria-hidden="true" />
      <details class="striscia-testo">
        <summary>
          <ChevronRight size={15} aria-hidden="true" class="scheda-freccia" />
          {quanti(sezione.denied, "percorso non leggibile", "percorsi non leggibili")}
        </summary>
        <ul class="negati">
          {sezione.denied_top.map(({ cartella, quanti: volte }) => (
            <li key={cartella}>
              <Percorso percorso={cartella} />
              <span class="misura">{numero(volte)}</span>
            </li>
          ))}
        </ul>
      </details>
      <Pulsante
        onClick={() => {
          vista.value = "permessi";
        }}
      >
        Vedi i permessi
      </Pulsante>
    </section>
  );
}
