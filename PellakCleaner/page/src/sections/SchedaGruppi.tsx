import { ChevronRight, FolderOpen } from "lucide-preact";
import { mostra } from "../cestino";
import { Casella } from "../components/Casella";
import { frecce } from "../components/frecce";
import { Percorso } from "../components/Percorso";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Scheda } from "../components/Scheda";
import type { Gruppo } from "../rotte";
import { dimensione, mostrabile, nomeDi, quanti } from "../testo";
import { Icona } from "./Icona";
import type { ProprietaScheda } from "./Sezione";
import { apertura, ricordaAperta } from "./memoria";
import {
  chiaveGruppo,
  chiavi,
  conScelte,
  nomeGruppo,
  sceglibile,
  statoDi,
  testoSeleziona,
} from "./selezione";
import { usePorzione } from "./usePorzione";

const NESSUNO: ReadonlySet<string> = new Set();

/** A finding made of groups: applications with their data, leftovers, browsers, updates. */
export function SchedaGruppi({ mostrata, sola, filtro, memoria }: ProprietaScheda) {
  const { finding, gruppi } = mostrata;
  const scelte = memoria.scelte.value.get(finding.id) ?? NESSUNO;
  const scegli = (quali: string[], si: boolean) => {
    memoria.scelte.value = conScelte(memoria.scelte.value, finding.id, quali, si);
  };
  const { porzione, altre, mostraAltre } = usePorzione(gruppi);
  const scelta = sceglibile(finding);
  return (
    <Scheda
      finding={finding}
      {...(filtro ? { trovate: mostrata } : {})}
      aperta={apertura(memoria, finding.id, sola, filtro)}
      cambia={(si) => ricordaAperta(memoria, finding.id, si)}
      casella={
        scelta &&
        finding.id !== "apps" && (
          <Casella
            stato={statoDi(mostrata, scelte)}
            cambia={(si) => scegli(chiavi(mostrata), si)}
            etichetta={`${filtro ? testoSeleziona(gruppi.length) : "Seleziona tutto"} in ${mostrabile(finding.name)}`}
          />
        )
      }
    >
      <ul class="gruppi" onKeyDown={frecce}>
        {porzione.map(({ gruppo }) => {
          const chiave = chiaveGruppo(gruppo);
          const dettagli = `${finding.id}/${chiave}`;
          return (
            <UnGruppo
              key={chiave}
              gruppo={gruppo}
              misurato={!finding.unmeasured}
              scelto={scelta ? scelte.has(chiave) : null}
              scegli={(si) => scegli([chiave], si)}
              aperto={memoria.aperte.value.get(dettagli) ?? false}
              apri={(si) => ricordaAperta(memoria, dettagli, si)}
            />
          );
        })}
      </ul>
      {altre > 0 && (
        <Pulsante tipo="testo" onClick={mostraAltre}>
          Mostra {quanti(altre, "altra voce", "altre voci")}
        </Pulsante>
      )}
    </Scheda>
  );
}

interface ProprietaGruppo {
  gruppo: Gruppo;
  misurato: boolean;
  scelto: boolean | null;
  scegli: (si: boolean) => void;
  aperto: boolean;
  apri: (si: boolean) => void;
}

function UnGruppo({ gruppo, misurato, scelto, scegli, aperto, apri }: ProprietaGruppo) {
  const nome = mostrabile(nomeGruppo(gruppo));
  const dettagli = gruppo.paths.length + gruppo.deboli.length;
  return (
    <li class="gruppo">
      <div class="gruppo-testa">
        {scelto !== null && (
          <Casella stato={scelto} cambia={scegli} etichetta={`Seleziona ${nome}`} />
        )}
        <Icona dati={gruppo.icon_src} />
        <div class="cella-nome">
          <bdi class="nome">{nome}</bdi>
          <span class="sotto">{mostrabile(gruppo.desc ?? "") || mostrabile(gruppo.bundle)}</span>
        </div>
        {misurato && <span class="misura">{dimensione(gruppo.size)}</span>}
        {dettagli > 0 && (
          <button
            type="button"
            class="pulsante-icona"
            aria-expanded={aperto}
            aria-label={`Dettagli di ${nome}`}
            onClick={() => apri(!aperto)}
          >
            <ChevronRight size={15} aria-hidden="true" class="scheda-freccia" />
          </button>
        )}
      </div>
      {aperto && <Dettagli gruppo={gruppo} />}
    </li>
  );
}

/** Every path of a group; those only weakly tied to it apart, they stay where they are. */
function Dettagli({ gruppo }: { gruppo: Gruppo }) {
  return (
    <div class="gruppo-dettagli">
      <ul>
        {gruppo.paths.map((percorso, i) => (
          <RigaPercorso key={percorso} percorso={percorso} byte={gruppo.pesi[i]} />
        ))}
      </ul>
      {gruppo.deboli.length > 0 && (
        <>
          <h3>Legame incerto: restano al loro posto</h3>
          <ul>
            {gruppo.deboli.map((percorso) => (
              <RigaPercorso key={percorso} percorso={percorso} />
            ))}
          </ul>
        </>
      )}
    </div>
  );
}

function RigaPercorso({ percorso, byte }: { percorso: string; byte?: number | undefined }) {
  return (
    <li class="riga-percorso">
      <Percorso percorso={percorso} />
      {byte !== undefined && <span class="misura">{dimensione(byte)}</span>}
      <PulsanteIcona
        Icona={FolderOpen}
        etichetta={`Mostra ${mostrabile(nomeDi(percorso))}`}
        onClick={() => void mostra(percorso)}
      />
    </li>
  );
}
