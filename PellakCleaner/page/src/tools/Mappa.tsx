import { type Signal, useSignal } from "@preact/signals";
import {
  ChartPie,
  ChevronRight,
  CornerLeftUp,
  File,
  Folder,
  FolderOpen,
  RefreshCw,
} from "lucide-preact";
import { useEffect, useId, useMemo } from "preact/hooks";
import { mostra } from "../cestino";
import { Anello } from "../components/Anello";
import { Elenco } from "../components/Elenco";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Ricerca } from "../components/Ricerca";
import { AreaScorrevole, Vista } from "../components/Vista";
import { Vuoto } from "../components/Vuoto";
import type { FiglioMappa, RispostaMappa, VoceMappa } from "../rotte";
import { casa, visibile } from "../store";
import { conDimensioni, frase, mostrabile, numero, quanti } from "../testo";
import type { Vista as DatiVista } from "../vista";
import { type Indicata, MappaAlbero } from "./MappaAlbero";
import {
  apriMappa,
  briciole,
  dentro,
  filtroMappa,
  misuraDiNuovo,
  sopra,
  statoMappa,
  vai,
} from "./mappaStato";
import { tinte } from "./tessere";
import { coloreDi, tipoDi } from "./tipi";
import "./Mappa.css";

export const mappa: DatiVista = {
  id: "mappa",
  nome: "Mappa del disco",
  gruppo: "disco",
  Icona: ChartPie,
  Contenuto: Mappa,
  scansiona: () => void misuraDiNuovo(),
};

function indietroConBackspace(evento: KeyboardEvent): void {
  if (evento.key !== "Backspace" || evento.target instanceof HTMLInputElement) return;
  const fuori = sopra(statoMappa.value.percorso);
  if (!fuori) return;
  evento.preventDefault();
  void vai(fuori);
}

/** Where the space goes: one folder as rectangles and as a list. */
function Mappa() {
  const { percorso, mappa: dati, errore } = statoMappa.value;
  useEffect(() => (visibile.value ? apriMappa() : undefined), [visibile.value]);
  useEffect(() => {
    document.addEventListener("keydown", indietroConBackspace);
    return () => document.removeEventListener("keydown", indietroConBackspace);
  }, []);
  const fuori = sopra(percorso);
  return (
    <Vista
      titolo="Mappa del disco"
      piena
      stato={dati && <StatoCartella dati={dati} />}
      azioni={
        <>
          <PulsanteIcona
            Icona={CornerLeftUp}
            etichetta="Cartella superiore"
            disabled={!fuori}
            onClick={() => fuori && void vai(fuori)}
          />
          <PulsanteIcona
            Icona={RefreshCw}
            etichetta="Misura di nuovo"
            disabled={!dati}
            onClick={() => void misuraDiNuovo()}
          />
          <Pulsante
            Icona={FolderOpen}
            disabled={!dati}
            onClick={() => dati && void mostra(dati.path)}
          >
            Mostra
          </Pulsante>
        </>
      }
      sotto={<Briciole percorso={percorso} />}
    >
      {errore && <Vuoto Icona={Folder}>{frase(errore)}.</Vuoto>}
      {dati && <Cartella key={dati.path} dati={dati} />}
      {!dati && !errore && (
        <div class="vuoto">
          <Anello etichetta="attesa" grande />
        </div>
      )}
    </Vista>
  );
}

function StatoCartella({ dati }: { dati: RispostaMappa }) {
  return (
    <>
      <span class="misura">{conDimensioni(dati.tot_h)}</span>
      {dati.misurando ? (
        <>
          <Anello etichetta="misura in corso" /> misura in corso
        </>
      ) : (
        ` in ${quanti(dati.quanti ?? dati.items.length, "elemento", "elementi")}`
      )}
      {!dati.misurando &&
        (dati.quanti ?? 0) > dati.items.length &&
        `, mostrati i ${numero(dati.items.length)} più grandi`}
      {dati.non_leggibili !== undefined &&
        `, ${quanti(dati.non_leggibili, "non leggibile", "non leggibili")}`}
    </>
  );
}

function Briciole({ percorso }: { percorso: string }) {
  const lista = percorso.startsWith("/") ? briciole(percorso, casa.value) : [];
  return (
    <nav class="briciole" aria-label="Cartelle">
      {lista.map((passo, i) => (
        <span key={passo.percorso} class="briciola">
          {i > 0 && <ChevronRight size={13} aria-hidden="true" />}
          <button
            type="button"
            {...(i === lista.length - 1 ? { "aria-current": "location" as const } : {})}
            onClick={() => void vai(passo.percorso)}
          >
            <bdi>{mostrabile(passo.nome)}</bdi>
          </button>
        </span>
      ))}
    </nav>
  );
}

function Cartella({ dati }: { dati: RispostaMappa }) {
  const filtro = filtroMappa.value;
  const voci = useMemo(() => {
    const cercato = filtro.trim().toLowerCase();
    return cercato ? dati.items.filter((v) => v.nome.toLowerCase().includes(cercato)) : dati.items;
  }, [dati.items, filtro]);
  const indicata = useSignal<Indicata | null>(null);
  const elenco = useId();
  const entra = (voce: VoceMappa, figlio?: FiglioMappa) => {
    const percorso = dentro(dati.path, voce.nome);
    if (figlio?.dir) void vai(dentro(percorso, figlio.nome));
    else void (voce.dir ? vai(percorso) : mostra(percorso));
  };
  if (dati.items.length === 0) return <Vuoto Icona={FolderOpen}>La cartella è vuota.</Vuoto>;
  return (
    <div class="mappa">
      <MappaAlbero dati={dati} entra={entra} indicata={indicata} elenco={elenco} />
      <div class="mappa-lista">
        <Ricerca
          valore={filtro}
          cambia={(testo) => (filtroMappa.value = testo)}
          etichetta="Filtra per nome"
        />
        <Lista dati={dati} voci={voci} entra={entra} indicata={indicata} id={elenco} />
      </div>
    </div>
  );
}

interface ProprietaLista {
  dati: RispostaMappa;
  voci: readonly VoceMappa[];
  entra: (voce: VoceMappa) => void;
  indicata: Signal<Indicata | null>;
  id: string;
}

function Lista({ dati, voci, entra, indicata, id }: ProprietaLista) {
  const massimo = Math.max(1, dati.items[0]?.size ?? 1);
  const tinta = useMemo(() => tinte(dati.items), [dati.items]);
  if (voci.length === 0) return <p class="elenco-vuoto">Nessuna voce con questo nome.</p>;
  return (
    <AreaScorrevole classe="mappa-scorri" ricorda={`mappa ${dati.path}`}>
      <Elenco
        etichetta="Contenuto della cartella"
        voci={voci}
        altezza={34}
        id={id}
        apri={entra}
        clic={entra}
        accesa={voci.findIndex((v) => v.nome === indicata.value?.nome)}
        segui={indicata.value?.qui === "albero"}
        indica={(voce) => {
          indicata.value = voce && { nome: voce.nome, qui: "elenco" };
        }}
        riga={(voce, attiva) => {
          const nome = mostrabile(voce.nome);
          const Icona = voce.dir ? Folder : File;
          return (
            <>
              <div role="gridcell" class="cella-nome">
                <span class="mappa-nome">
                  <Icona size={15} aria-label={voce.dir ? "cartella" : "file"} />
                  <bdi class="nome" title={nome}>
                    {nome}
                  </bdi>
                </span>
                <span class="mappa-barra" aria-hidden="true">
                  <span
                    class={voce.dir ? "sfondo-voce" : "sfondo-tipo"}
                    style={{
                      width: `${Math.max(0, (voce.size / massimo) * 100)}%`,
                      ...(voce.dir
                        ? { "--tinta": String(tinta.get(voce.nome)) }
                        : coloreDi(tipoDi(voce.nome, false))),
                    }}
                  />
                </span>
              </div>
              <div role="gridcell" class="cella-misura misura">
                {conDimensioni(voce.size_h)}
              </div>
              <div role="gridcell" class="cella-azioni">
                <PulsanteIcona
                  Icona={FolderOpen}
                  etichetta={`Mostra ${nome}`}
                  tabIndex={attiva ? 0 : -1}
                  onClick={(evento) => {
                    evento.stopPropagation();
                    void mostra(dentro(dati.path, voce.nome));
                  }}
                />
              </div>
            </>
          );
        }}
      />
    </AreaScorrevole>
  );
}
