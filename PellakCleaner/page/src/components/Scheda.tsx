import { ChevronRight } from "lucide-preact";
import type { ComponentChildren } from "preact";
import { useId } from "preact/hooks";
import type { Finding } from "../rotte";
import { type Mostrata, byteMostrati, liberaMostrata, quante } from "../sections/mostrate";
import { conDimensioni, dimensione, frase, mostrabile, numero, quanti } from "../testo";
import "./Scheda.css";

/** Lists that the scan cuts, at so many entries or more. */
const TETTI: Record<string, number> = { "large-files": 25, "large-old": 25 };

interface Proprieta {
  finding: Finding;
  /** What a count of entries is called: one, many. */
  nomi?: readonly [string, string];
  /** Present when a filter is on: what it lets through. */
  trovate?: Mostrata;
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
  const { nomi = ["voce", "voci"], misurata = !finding.unmeasured, trovate } = props;
  const parte = trovate ? `${numero(quante(trovate))} di ` : "";
  const id = useId();
  const soloReport = finding.mode !== "delete";
  const testo = notaDi(finding);
  const note = Boolean(testo || finding.hint || azioni);
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
          <span class="scheda-conteggio">
            {parte}
            {quanti(finding.count, nomi[0], nomi[1])}
          </span>
          {misurata && <Misura finding={finding} trovate={trovate} />}
        </p>
      </div>
      {note && (
        <div class="scheda-note">
          {testo && <p>{mostrabile(testo)}</p>}
          {finding.hint && (
            <p class="scheda-consiglio">{mostrabile(conDimensioni(finding.hint))}</p>
          )}
          {azioni && <div class="scheda-azioni">{azioni}</div>}
        </div>
      )}
      {aperta && children}
    </section>
  );
}

/** The note without the words that the chip says; with the cap where the list is cut at one. */
function notaDi(finding: Finding): string {
  const senza = frase(conDimensioni(finding.note.replace(/^SOLO REPORT:\s*/, "")));
  const tetto = TETTI[finding.id];
  const pieno = tetto !== undefined && finding.count >= tetto;
  return pieno ? `Sono elencati i ${numero(finding.count)} più grandi. ${senza}` : senza;
}

/** In the two words; where less comes free than the entries take, that too. */
function Misura({ finding, trovate }: { finding: Finding; trovate: Mostrata | undefined }) {
  const misura = dimensione(trovate ? byteMostrati(trovate) : finding.total);
  if (finding.mode !== "delete") {
    return <span class="misura misura-forte segnalati">{misura} segnalati</span>;
  }
  const libera = dimensione(trovate ? liberaMostrata(trovate) : finding.libera);
  return (
    <>
      {libera !== misura && <span class="scheda-conteggio">di {misura}</span>}
      <span class="misura misura-forte libera">libera {libera}</span>
    </>
  );
}
