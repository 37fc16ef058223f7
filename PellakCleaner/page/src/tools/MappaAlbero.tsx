import { type Signal, useComputed } from "@preact/signals";
import { useLayoutEffect, useMemo, useRef, useState } from "preact/hooks";
import type { FiglioMappa, RispostaMappa, VoceMappa } from "../rotte";
import { conDimensioni, dimensione, mostrabile, quanti } from "../testo";
import { type Posto, type Tessera, tessere, tinte, vicina } from "./tessere";
import { type Tipo, coloreDi, nomiTipi, tipoDi } from "./tipi";

export interface Indicata {
  nome: string;
  qui: "albero" | "elenco";
}

interface Proprieta {
  dati: RispostaMappa;
  entra: (voce: VoceMappa, figlio?: FiglioMappa) => void;
  /** The entry that pointer or focus is on, here or in the list. */
  indicata: Signal<Indicata | null>;
  /** The list that says the same. */
  elenco: string;
}

/**
 * The folder's children as areas, those of large folders with what they hold. One stop for Tab;
 * arrows go to the neighbours, Enter goes in.
 */
export function MappaAlbero({ dati, entra, indicata, elenco }: Proprieta) {
  const area = useRef<HTMLDivElement>(null);
  const [[largo, alto], setMisura] = useState([0, 0]);
  const [attiva, setAttiva] = useState<string | null>(null);
  useLayoutEffect(() => {
    const elemento = area.current;
    if (!elemento) return;
    const misura = () => setMisura([elemento.clientWidth, elemento.clientHeight]);
    misura();
    const osserva = new ResizeObserver(misura);
    osserva.observe(elemento);
    return () => osserva.disconnect();
  }, []);
  const lista = useMemo(() => tessere(dati.items, largo, alto), [dati.items, largo, alto]);
  const tinta = useMemo(() => tinte(dati.items), [dati.items]);
  const voci = lista.filter((t) => t.voce);
  const corrente = Math.max(
    0,
    voci.findIndex((t) => t.voce?.nome === attiva),
  );

  function tasto(evento: KeyboardEvent) {
    const meta = voci[vicina(voci, corrente, evento.key)]?.voce;
    if (!evento.key.startsWith("Arrow")) return;
    evento.preventDefault();
    if (!meta) return;
    setAttiva(meta.nome);
    const pulsanti = [...(area.current?.querySelectorAll<HTMLElement>("button") ?? [])];
    pulsanti.find((p) => p.dataset.nome === meta.nome)?.focus();
  }

  return (
    <div class="mappa-albero">
      <div
        class={dati.misurando ? "tessere tessere-crescono" : "tessere"}
        role="group"
        aria-label="Mappa"
        aria-controls={elenco}
        ref={area}
        onKeyDown={tasto}
        onPointerLeave={() => (indicata.value = null)}
      >
        {lista.map((tessera) =>
          tessera.voce ? (
            <UnaTessera
              key={tessera.voce.nome}
              {...tessera}
              voce={tessera.voce}
              tinta={tinta.get(tessera.voce.nome)}
              perTipo={tinta.size === 0}
              attiva={tessera.voce === voci[corrente]?.voce}
              indicata={indicata}
              entra={entra}
              suFuoco={setAttiva}
            />
          ) : (
            <Altre key="/" tessera={tessera} />
          ),
        )}
      </div>
      {tinta.size === 0 && <Legenda lista={voci} />}
    </div>
  );
}

const stile = ({ x, y, largo, alto }: Posto) => ({
  left: `${x}px`,
  top: `${y}px`,
  width: `${largo}px`,
  height: `${alto}px`,
});

function Altre({ tessera }: { tessera: Tessera }) {
  const testo = quanti(tessera.altre, "altro", "altri");
  return (
    <div class="tessera tessera-altri" style={stile(tessera)} title={testo}>
      {tessera.largo > 52 && tessera.alto > 24 && <span class="tessera-nome">{testo}</span>}
    </div>
  );
}

interface ProprietaTessera extends Tessera {
  voce: VoceMappa;
  tinta: number | undefined;
  /** Files are coloured by kind where there are no folders. */
  perTipo: boolean;
  attiva: boolean;
  indicata: Signal<Indicata | null>;
  entra: Proprieta["entra"];
  suFuoco: (nome: string) => void;
}

function UnaTessera(props: ProprietaTessera) {
  const { voce, tinta, perTipo, attiva, indicata, entra, suFuoco, interne, largo, alto } = props;
  const conMisura = interne.length > 0 ? largo > 140 : largo > 68 && alto > 42;
  const accesa = useComputed(() => indicata.value?.nome === voce.nome);
  const nome = mostrabile(voce.nome);
  const tipo = tipoDi(voce.nome, voce.dir);
  const colore = tinta === undefined ? coloreDi(tipo) : { "--tinta": String(tinta) };
  const misurata = voce.size >= 0;
  const classi = [
    "tessera",
    voce.dir ? "tessera-cartella" : perTipo ? "sfondo-tipo" : "tessera-file",
    interne.length > 0 && "tessera-aperta",
    !misurata && "tessera-ignota",
    accesa.value && "tessera-accesa",
  ];
  const indica = () => (indicata.value = { nome: voce.nome, qui: "albero" });
  return (
    <>
      <button
        type="button"
        class={classi.filter(Boolean).join(" ")}
        style={{ ...stile(props), ...colore }}
        data-nome={voce.nome}
        data-tipo={tipo}
        tabIndex={attiva ? 0 : -1}
        title={`${nome}\n${conDimensioni(voce.size_h)}`}
        onClick={() => entra(voce)}
        onPointerEnter={indica}
        onFocus={() => {
          suFuoco(voce.nome);
          indica();
        }}
      >
        <bdi class={largo > 36 && alto > 18 ? "tessera-nome" : "nascosto"}>{nome}</bdi>{" "}
        <span class={conMisura ? "tessera-misura" : "nascosto"}>{conDimensioni(voce.size_h)}</span>
      </button>
      {interne.map((t) => {
        const figlio = t.figlio;
        if (!figlio) return null;
        const suo = mostrabile(figlio.nome);
        return (
          <div
            key={figlio.nome}
            aria-hidden="true"
            class={figlio.dir ? "tessera-interna tessera-interna-cartella" : "tessera-interna"}
            style={{ ...stile(t), ...colore }}
            title={`${nome}/${suo}\n${dimensione(figlio.size)}`}
            onClick={() => entra(voce, figlio)}
            onPointerEnter={indica}
          >
            {t.largo > 44 && t.alto > 18 && <bdi>{suo}</bdi>}
          </div>
        );
      })}
    </>
  );
}

function Legenda({ lista }: { lista: Tessera[] }) {
  const presenti = new Set(lista.flatMap((t) => (t.voce ? [tipoDi(t.voce.nome, t.voce.dir)] : [])));
  return (
    <ul class="legenda">
      {(Object.keys(nomiTipi) as Tipo[])
        .filter((tipo) => presenti.has(tipo))
        .map((tipo) => (
          <li key={tipo}>
            <span class="pallino sfondo-tipo" style={coloreDi(tipo)} />
            {nomiTipi[tipo]}
          </li>
        ))}
    </ul>
  );
}
