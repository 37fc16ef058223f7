import { FolderOpen, Trash2 } from "lucide-preact";
import { api } from "../api";
import { alLavoro, chiedi, mostra, spostaNelCestino } from "../cestino";
import { frecce } from "../components/frecce";
import { Interruttore } from "../components/Interruttore";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Scheda } from "../components/Scheda";
import { conferma } from "../dialogo";
import { liberaAlmeno } from "../libera";
import { poll } from "../polling";
import { fallita } from "../rotte";
import { mostrabile, quanti } from "../testo";
import { Icona } from "./Icona";
import type { ProprietaScheda } from "./Sezione";
import type { Insieme } from "./duplicati";
import { apertura, ricordaAperta } from "./memoria";
import { NOTA_CESTINO, chiaveGruppo, nomeGruppo } from "./selezione";
import { usePorzione } from "./usePorzione";

/** Startup items: a switch each; one that is off stays in the list. */
export function SchedaAvvio({ mostrata, filtro, memoria }: ProprietaScheda) {
  const { finding, gruppi } = mostrata;
  const { porzione, altre, mostraAltre } = usePorzione(gruppi);
  return (
    <Scheda
      finding={finding}
      nomi={["elemento", "elementi"]}
      misurata={false}
      {...(filtro ? { trovate: mostrata } : {})}
      aperta={apertura(memoria, finding.id, true, filtro)}
      cambia={(si) => ricordaAperta(memoria, finding.id, si)}
    >
      <ul class="gruppi" onKeyDown={frecce}>
        {porzione.map(({ gruppo, indice }) => (
          <UnElemento
            key={chiaveGruppo(gruppo)}
            id={finding.id}
            gruppo={gruppo}
            indice={indice}
            cestinabile={finding.mode === "delete"}
          />
        ))}
      </ul>
      {altre > 0 && (
        <Pulsante tipo="testo" onClick={mostraAltre}>
          Mostra {quanti(altre, "altro elemento", "altri elementi")}
        </Pulsante>
      )}
    </Scheda>
  );
}

interface ProprietaElemento extends Insieme {
  id: string;
  cestinabile: boolean;
}

function UnElemento({ id, gruppo, indice, cestinabile }: ProprietaElemento) {
  const nome = mostrabile(nomeGruppo(gruppo));
  const percorso = chiaveGruppo(gruppo);

  async function accendi(attivo: boolean) {
    const voci = [{ id, group: indice }];
    await chiedi(api("/api/avvio", { voci, attivo }), nome);
    await poll();
  }

  async function cestina() {
    const si = await conferma({
      titolo: `Spostare «${nome}» nel Cestino?`,
      righe: [],
      elenchi: [{ righe: [{ percorso, misura: liberaAlmeno(gruppo.libera) }] }],
      nota: NOTA_CESTINO,
      conferma: "Sposta nel Cestino",
    });
    if (!si) return;
    const sposta = async () => {
      const risposta = await api("/api/avvio", { id, group: indice, delete: true });
      if (fallita(risposta)) return risposta;
      return { ...risposta, ok: Number(risposta.ok), failed: risposta.failed ?? [] };
    };
    await spostaNelCestino([{ quanti: 1, sposta }]);
  }

  return (
    <li class="gruppo">
      <div class="gruppo-testa">
        <Icona dati={gruppo.icon_src} />
        <div class="cella-nome">
          <span class="nome-riga">
            <bdi class={gruppo.spento ? "nome nome-spento" : "nome"}>{nome}</bdi>
            {gruppo.admin && <span class="etichetta">chiede la password</span>}
          </span>
          <bdi class="sotto">{mostrabile(gruppo.desc ?? "")}</bdi>
        </div>
        <PulsanteIcona
          Icona={FolderOpen}
          etichetta={`Mostra ${nome}`}
          onClick={() => void mostra(percorso)}
        />
        {cestinabile && (
          <PulsanteIcona
            Icona={Trash2}
            etichetta={`Sposta ${nome} nel Cestino`}
            disabled={alLavoro.value}
            onClick={() => void cestina()}
          />
        )}
        <Interruttore
          acceso={!gruppo.spento}
          etichetta={`${nome} all'avvio`}
          cambia={(attivo) => void accendi(attivo)}
        />
      </div>
    </li>
  );
}
