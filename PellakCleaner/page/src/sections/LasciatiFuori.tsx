import { ChevronRight, CircleSlash } from "lucide-preact";
import { Percorso } from "../components/Percorso";
import type { Finding } from "../rotte";
import { mostrabile, quanti } from "../testo";

/** What the scan came by and held back, each place once, with the reason. */
export function LasciatiFuori({ findings }: { findings: readonly Finding[] }) {
  const perche = new Map(
    findings.flatMap((f) => (f.perche_no ?? []).map((voce) => [voce.percorso, voce.perche])),
  );
  if (perche.size === 0) return null;
  return (
    <section class="striscia" aria-label="Lasciati fuori">
      <CircleSlash size={17} aria-hidden="true" />
      <details class="striscia-testo">
        <summary>
          <ChevronRight size={15} aria-hidden="true" class="scheda-freccia" />
          {quanti(perche.size, "elemento lasciato fuori", "elementi lasciati fuori")}
        </summary>
        <ul class="negati">
          {[...perche].map(([percorso, motivo]) => (
            <li key={percorso}>
              <Percorso percorso={percorso} />
              <span>{mostrabile(motivo)}</span>
            </li>
          ))}
        </ul>
      </details>
    </section>
  );
}
