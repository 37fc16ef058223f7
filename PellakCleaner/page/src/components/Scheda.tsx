import { ChevronRight } from "lucide-preact";
import type { ComponentChildren } from "preact";
import { useId } from "preact/hooks";
import type { Finding } from "../rotte";
import { dimensione, mostrabile, quanti } from "../testo";
import "./Scheda.css";

interface Proprieta {
  finding: Finding;
  /** What a count of entries is called: one, many. */
  nomi?: readonly [string, string];
  /** Whether the sum of the sizes says something. */
  misurata?: boolean;
  aperta: boolean;
  cambia: (aperta: boolean) => void;
  /** Left of the name: the box that chooses all. */
  casella?: ComponentChildren;
  azioni?: ComponentChildren;
  children: ComponentChildren;
}

/** One finding: what it is, how much it holds, what may be done with it; open, its entries. */
export function Scheda(props: Proprieta) {
  const { finding, aperta, casella, azioni, children } = props;
  const { nomi = ["voce", "voci"], misurata = !finding.unmeasured } = props;
  const id = useId();
  // Many notes begin with these words themselves.
  const soloReport = finding.mode !== "delete" && !finding.note.startsWith("SOLO REPORT");
  const note = Boolean(finding.note || finding.hint || azioni);
  const classi = [
    "scheda scheda-riga",
    note && "scheda-annotata",
    casella && "scheda-scegli",
    !aperta && "scheda-chiusa",
  ];
  return (
    <section
      class={classi.filter(Boolean).join(" ")}
      data-finding={finding.id}
      aria-labelledby={id}
    >
      <div class="scheda-testa">
        {casella}
        <div class={soloReport ? "scheda-titoli scheda-titoli-etichetta" : "scheda-titoli"}>
          <h2 id={id}>
            <button
              type="button"
              class="scheda-apri"
              aria-expanded={aperta}
              onClick={() => props.cambia(!aperta)}
            >
              <ChevronRight size={15} aria-hidden="true" class="scheda-freccia" />
              <bdi>{mostrabile(finding.name)}</bdi>
            </button>
          </h2>
          {soloReport && <span class="etichetta">Solo segnalazione</span>}
        </div>
        <p class="scheda-misure">
          <span class="scheda-conteggio">{quanti(finding.count, nomi[0], nomi[1])}</span>
          {misurata && <Misura finding={finding} />}
        </p>
      </div>
      {note && (
        <div class="scheda-note">
          {finding.note && <p>{mostrabile(finding.note)}</p>}
          {finding.hint && <p class="scheda-consiglio">{mostrabile(finding.hint)}</p>}
          {azioni && <div class="scheda-azioni">{azioni}</div>}
        </div>
      )}
      {aperta && children}
    </section>
  );
}

/** In the two words; where less comes free than the entries take, that too. */
function Misura({ finding }: { finding: Finding }) {
  if (finding.mode !== "delete") {
    return <span class="misura misura-forte segnalati">{finding.total_h} segnalati</span>;
  }
  const libera = dimensione(finding.libera);
  return (
    <>
      {libera !== finding.total_h && <span class="scheda-conteggio">di {finding.total_h}</span>}
      <span class="misura misura-forte libera">libera {libera}</span>
    </>
  );
}
