import { FolderOpen, Trash2 } from "lucide-preact";
import { useMemo, useState } from "preact/hooks";
import { api } from "../api";
import { alLavoro, chiedi, mostra, spostaNelCestino } from "../cestino";
import { frecce } from "../components/frecce";
import { Interruttore } from "../components/Interruttore";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Scheda } from "../components/Scheda";
import { conferma } from "../dialogo";
import { liberaAlmeno } from "../libera";
import { poll } from "../polling";
import { type Gruppo, fallita } from "../rotte";
import { mostrabile, quanti } from "../testo";
import { Icona } from "./Icona";
import type { ProprietaScheda } from "./Sezione";
import { vaglia } from "./ordine";
import { NOTA_CESTINO, chiaveGruppo, nomeGruppo } from "./selezione";
import { usePorzione } from "./usePorzione";

interface Elemento {
  gruppo: Gruppo;
  indice: number;
}

/** Startup items: a switch each; one that is off stays in the list. */
export function SchedaAvvio({ finding, vaglio }: ProprietaScheda) {
  const [aperta, setAperta] = useState(true);
  const { filtro, ordine } = vaglio;
  const elementi = useMemo(
    () =>
      vaglia<Elemento>(
        finding.groups.map((gruppo, indice) => ({ gruppo, indice })),
        { filtro, ordine },
        ({ gruppo }) => `${chiaveGruppo(gruppo)}/${nomeGruppo(gruppo)}`,
        ({ gruppo }) => gruppo.size,
      ),
    [finding.groups, filtro, ordine],
  );
  const { porzione, altre, mostraAltre } = usePorzione(elementi);
  return (
    <Scheda
      finding={finding}
      nomi={["elemento", "elementi"]}
      misurata={false}
      aperta={aperta || filtro !== ""}
      cambia={setAperta}
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

interface ProprietaElemento extends Elemento {
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
      righe: [{ testo: percorso, misura: liberaAlmeno(gruppo.libera) }],
      nota: NOTA_CESTINO,
      conferma: "Sposta nel Cestino",
    });
    if (!si) return;
    await spostaNelCestino([
      async () => {
        const risposta = await api("/api/avvio", { id, group: indice, delete: true });
        if (fallita(risposta)) return risposta;
        return { ok: Number(risposta.ok), failed: risposta.failed ?? [] };
      },
    ]);
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
