import { ChevronRight, FolderOpen } from "lucide-preact";
import { useMemo, useState } from "preact/hooks";
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
import { vaglia } from "./ordine";
import { chiaveGruppo, chiavi, nomeGruppo, sceglibile } from "./selezione";
import { usePorzione } from "./usePorzione";

const testoDi = (gruppo: Gruppo) => `${chiaveGruppo(gruppo)}/${nomeGruppo(gruppo)}`;
const byteDi = (gruppo: Gruppo) => gruppo.size;

/** A finding made of groups: applications with their data, leftovers, browsers, updates. */
export function SchedaGruppi({ finding, sola, vaglio, scelte, scegli }: ProprietaScheda) {
  const [aperta, setAperta] = useState(sola);
  const { filtro, ordine } = vaglio;
  const gruppi = useMemo(
    () => vaglia(finding.groups, { filtro, ordine }, testoDi, byteDi),
    [finding.groups, filtro, ordine],
  );
  const { porzione, altre, mostraAltre } = usePorzione(gruppi);
  const scelta = sceglibile(finding);
  const tutti = scelte ? scelte.size >= finding.groups.length || "parte" : false;
  return (
    <Scheda
      finding={finding}
      aperta={aperta || filtro !== ""}
      cambia={setAperta}
      casella={
        scelta &&
        finding.id !== "apps" && (
          <Casella
            stato={tutti}
            cambia={(si) => scegli(chiavi(finding), si)}
            etichetta={`Seleziona tutto: ${mostrabile(finding.name)}`}
          />
        )
      }
    >
      {gruppi.length === 0 && <p class="elenco-vuoto">Nessuna voce con questo nome.</p>}
      <ul class="gruppi" onKeyDown={frecce}>
        {porzione.map((gruppo) => (
          <UnGruppo
            key={chiaveGruppo(gruppo)}
            gruppo={gruppo}
            misurato={!finding.unmeasured}
            scelto={scelta ? (scelte?.has(chiaveGruppo(gruppo)) ?? false) : null}
            scegli={(si) => scegli([chiaveGruppo(gruppo)], si)}
          />
        ))}
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
}

function UnGruppo({ gruppo, misurato, scelto, scegli }: ProprietaGruppo) {
  const [aperto, setAperto] = useState(false);
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
        {misurato && <span class="misura">{gruppo.size_h}</span>}
        {dettagli > 0 && (
          <button
            type="button"
            class="pulsante-icona"
            aria-expanded={aperto}
            aria-label={`Dettagli di ${nome}`}
            onClick={() => setAperto(!aperto)}
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
