import { useLayoutEffect, useMemo, useRef, useState } from "preact/hooks";
import type { RispostaMappa, VoceMappa } from "../rotte";
import { mostrabile, quanti } from "../testo";
import { type Tessera, tessere } from "./tessere";
import { type Tipo, nomiTipi, tipoDi } from "./tipi";

interface Proprieta {
  dati: RispostaMappa;
  entra: (voce: VoceMappa) => void;
}

/** The folder's children as areas. One stop for Tab; arrows go by size, Enter goes in. */
export function MappaAlbero({ dati, entra }: Proprieta) {
  const area = useRef<HTMLDivElement>(null);
  const [[largo, alto], setMisura] = useState([0, 0]);
  const [attiva, setAttiva] = useState(0);
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
  const voci = lista.filter((t) => t.voce);

  function tasto(evento: KeyboardEvent) {
    const avanti = evento.key === "ArrowRight" || evento.key === "ArrowDown";
    const indietro = evento.key === "ArrowLeft" || evento.key === "ArrowUp";
    if (!avanti && !indietro) return;
    evento.preventDefault();
    const meta = Math.min(Math.max(attiva + (avanti ? 1 : -1), 0), voci.length - 1);
    setAttiva(meta);
    area.current?.querySelectorAll("button")[meta]?.focus();
  }

  return (
    <div class="mappa-albero">
      <div class="tessere" role="group" aria-label="Mappa" ref={area} onKeyDown={tasto}>
        {lista.map((tessera, i) => (
          <UnaTessera
            key={tessera.voce?.nome ?? "/"}
            tessera={tessera}
            attiva={i === Math.min(attiva, voci.length - 1)}
            entra={entra}
          />
        ))}
      </div>
      <Legenda lista={lista} />
    </div>
  );
}

interface ProprietaTessera {
  tessera: Tessera;
  attiva: boolean;
  entra: (voce: VoceMappa) => void;
}

function UnaTessera({ tessera, attiva, entra }: ProprietaTessera) {
  const { voce, altre, x, y, largo, alto } = tessera;
  const posto = { left: `${x}px`, top: `${y}px`, width: `${largo}px`, height: `${alto}px` };
  if (!voce) {
    const testo = quanti(altre, "altro", "altri");
    return (
      <div class="tessera tessera-altri" style={posto} title={testo}>
        {largo > 52 && alto > 24 && <span class="tessera-nome">{testo}</span>}
      </div>
    );
  }
  const nome = mostrabile(voce.nome);
  return (
    <button
      type="button"
      class={`tessera sfondo-${tipoDi(voce.nome, voce.dir)}`}
      style={posto}
      tabIndex={attiva ? 0 : -1}
      title={`${nome}\n${voce.size_h}`}
      onClick={() => entra(voce)}
    >
      <bdi class={largo > 52 && alto > 24 ? "tessera-nome" : "nascosto"}>{nome}</bdi>{" "}
      <span class={largo > 52 && alto > 42 ? "tessera-misura" : "nascosto"}>{voce.size_h}</span>
    </button>
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
            <span class={`pallino sfondo-${tipo}`} />
            {nomiTipi[tipo]}
          </li>
        ))}
    </ul>
  );
}
