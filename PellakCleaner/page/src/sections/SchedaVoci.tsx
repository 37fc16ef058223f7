import { ExternalLink, FolderOpen } from "lucide-preact";
import { memo } from "preact/compat";
import { useMemo } from "preact/hooks";
import { apri, mostra } from "../cestino";
import { Casella } from "../components/Casella";
import { Elenco } from "../components/Elenco";
import { Percorso } from "../components/Percorso";
import { PulsanteIcona } from "../components/Pulsante";
import { Scheda } from "../components/Scheda";
import type { Voce } from "../rotte";
import { cartellaDi, dimensione, mostrabile, nomeDi } from "../testo";
import type { ProprietaScheda } from "./Sezione";
import { apertura, ricordaAperta } from "./memoria";
import { chiavi, conScelte, sceglibile, statoDi, testoSeleziona } from "./selezione";

const ALTEZZA = 44;

const NESSUNA: ReadonlySet<string> = new Set();

/** A finding that is a flat list of files and folders. */
export function SchedaVoci({ mostrata, sola, filtro, memoria }: ProprietaScheda) {
  const { finding, voci } = mostrata;
  const scelte = memoria.scelte.value.get(finding.id) ?? NESSUNA;
  const scegli = (quali: string[], si: boolean) => {
    memoria.scelte.value = conScelte(memoria.scelte.value, finding.id, quali, si);
  };
  const scelta = sceglibile(finding);
  const tutte = useMemo(() => statoDi(mostrata, scelte), [voci, scelte]);
  return (
    <Scheda
      finding={finding}
      {...(filtro ? { trovate: mostrata } : {})}
      aperta={apertura(memoria, finding.id, sola, filtro)}
      cambia={(si) => ricordaAperta(memoria, finding.id, si)}
      casella={
        scelta && (
          <Casella
            stato={tutte}
            cambia={(si) => scegli(chiavi(mostrata), si)}
            etichetta={`${filtro ? testoSeleziona(voci.length) : "Seleziona tutto"} in ${mostrabile(finding.name)}`}
          />
        )
      }
    >
      <Elenco
        etichetta={mostrabile(finding.name)}
        voci={voci}
        altezza={ALTEZZA}
        riga={(voce, attiva) => (
          <RigaVoce
            voce={voce}
            attiva={attiva}
            misurata={!finding.unmeasured}
            scelta={scelta ? scelte.has(voce.path) : null}
            scegli={scegli}
          />
        )}
        apri={(voce) => void mostra(voce.path)}
        {...(scelta
          ? {
              scelta: (voce: Voce) => scelte.has(voce.path),
              alterna: (voce: Voce) => scegli([voce.path], !scelte.has(voce.path)),
            }
          : {})}
      />
    </Scheda>
  );
}

interface ProprietaRiga {
  voce: Voce;
  attiva: boolean;
  misurata: boolean;
  /** Nothing when the finding is only a report. */
  scelta: boolean | null;
  scegli: (chiavi: string[], si: boolean) => void;
}

const RigaVoce = memo(
  function RigaVoce({ voce, attiva, misurata, scelta, scegli }: ProprietaRiga) {
    const nome = mostrabile(nomeDi(voce.path));
    const tabIndex = attiva ? 0 : -1;
    return (
      <>
        {scelta !== null && (
          <div role="gridcell" class="cella-casella">
            <Casella
              stato={scelta}
              cambia={(si) => scegli([voce.path], si)}
              etichetta={`Seleziona ${nome}`}
              tabIndex={-1}
            />
          </div>
        )}
        <div role="gridcell" class="cella-nome">
          <bdi class="nome" title={nome}>
            {nome}
          </bdi>
          <Percorso percorso={cartellaDi(voce.path)} classe="sotto" />
        </div>
        <div role="gridcell" class="cella-data">
          {voce.when}
        </div>
        <div role="gridcell" class="cella-misura misura">
          {misurata ? dimensione(voce.size) : ""}
          {scelta !== null && voce.libera !== undefined && (
            <span class="sotto">libera {dimensione(voce.libera)}</span>
          )}
        </div>
        <div role="gridcell" class="cella-azioni">
          <AzioniVoce percorso={voce.path} nome={nome} tabIndex={tabIndex} />
        </div>
      </>
    );
  },
  (a, b) =>
    a.voce === b.voce &&
    a.attiva === b.attiva &&
    a.scelta === b.scelta &&
    a.misurata === b.misurata,
);

interface ProprietaAzioni {
  percorso: string;
  nome: string;
  tabIndex?: number;
}

/** "Mostra" and "Apri" of one path. */
export function AzioniVoce({ percorso, nome, tabIndex = 0 }: ProprietaAzioni) {
  return (
    <>
      <PulsanteIcona
        Icona={FolderOpen}
        etichetta={`Mostra ${nome}`}
        tabIndex={tabIndex}
        onClick={(evento) => {
          evento.stopPropagation();
          void mostra(percorso);
        }}
      />
      <PulsanteIcona
        Icona={ExternalLink}
        etichetta={`Apri ${nome}`}
        tabIndex={tabIndex}
        onClick={(evento) => {
          evento.stopPropagation();
          void apri(percorso);
        }}
      />
    </>
  );
}
