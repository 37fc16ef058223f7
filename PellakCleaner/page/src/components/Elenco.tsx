import type { ComponentChildren } from "preact";
import { useLayoutEffect, useRef, useState } from "preact/hooks";
import { useRighe } from "./useRighe";
import { useVirtuale } from "./useVirtuale";
import "./Elenco.css";

interface Proprieta<T> {
  etichetta: string;
  voci: readonly T[];
  altezza: number;
  /** The cells of one row; `attiva` tells whether Tab may stop in it. */
  riga: (voce: T, attiva: boolean) => ComponentChildren;
  /** Present when rows can be chosen. */
  scelta?: (voce: T) => boolean;
  alterna?: (voce: T) => void;
  /** What Enter does. */
  apri?: (voce: T) => void;
  /** What a click does, where it does not choose. */
  clic?: (voce: T) => void;
  /** The row that lights up because something points at it; `segui`: it is brought into sight. */
  accesa?: number;
  segui?: boolean;
  /** The row that pointer or focus is on; none when they leave. */
  indica?: (voce: T | null) => void;
  id?: string;
}

/**
 * A long list of which only what can be seen is drawn. One stop for Tab; arrows, Home, End and
 * Page keys move, Space chooses, Enter opens.
 */
export function Elenco<T>(props: Proprieta<T>) {
  const { voci, altezza, etichetta } = props;
  const [attiva, setAttiva] = useState(0);
  const daFocalizzare = useRef(false);
  const corrente = Math.min(attiva, Math.max(voci.length - 1, 0));
  const { virtuale, radice } = useVirtuale({
    quante: voci.length,
    altezza: () => altezza,
    sempre: corrente,
  });
  const righe = useRighe(
    virtuale.getVirtualItems().map((posto) => posto.index),
    corrente,
  );

  useLayoutEffect(() => {
    if (!daFocalizzare.current) return;
    daFocalizzare.current = false;
    radice.current
      ?.querySelector<HTMLElement>(`[data-indice="${corrente}"]`)
      ?.focus({ preventScroll: true });
  });

  useLayoutEffect(() => {
    if (props.segui && props.accesa !== undefined && props.accesa >= 0) {
      virtuale.scrollToIndex(props.accesa, { align: "auto" });
    }
  }, [props.accesa]);

  function vai(a: number) {
    const meta = Math.min(Math.max(a, 0), voci.length - 1);
    daFocalizzare.current = true;
    setAttiva(meta);
    virtuale.scrollToIndex(meta, { align: "auto" });
  }

  function tasto(evento: KeyboardEvent) {
    const voce = voci[corrente];
    const pagina = Math.max(1, Math.floor((virtuale.scrollRect?.height ?? altezza) / altezza) - 1);
    const suRiga = (evento.target as HTMLElement).getAttribute("role") === "row";
    if (evento.key === "ArrowDown") vai(corrente + 1);
    else if (evento.key === "ArrowUp") vai(corrente - 1);
    else if (evento.key === "PageDown") vai(corrente + pagina);
    else if (evento.key === "PageUp") vai(corrente - pagina);
    else if (evento.key === "Home") vai(0);
    else if (evento.key === "End") vai(voci.length - 1);
    else if (evento.key === " " && suRiga && voce && props.alterna) props.alterna(voce);
    else if (evento.key === "Enter" && suRiga && voce && props.apri) props.apri(voce);
    else return;
    evento.preventDefault();
  }

  return (
    <div
      class="elenco"
      role="grid"
      aria-label={etichetta}
      aria-rowcount={voci.length}
      {...(props.scelta ? { "aria-multiselectable": true } : {})}
      ref={radice}
      {...(props.id ? { id: props.id } : {})}
      onKeyDown={tasto}
      onPointerLeave={() => props.indica?.(null)}
      style={{ height: `${virtuale.getTotalSize()}px` }}
    >
      {righe.map(({ indice, chiave }) => {
        const voce = voci[indice];
        if (voce === undefined) return null;
        const scelta = props.scelta?.(voce);
        return (
          <div
            key={chiave}
            role="row"
            class={indice === props.accesa ? "riga riga-accesa" : "riga"}
            data-indice={indice}
            aria-rowindex={indice + 1}
            tabIndex={indice === corrente ? 0 : -1}
            {...(scelta === undefined ? {} : { "aria-selected": scelta })}
            onFocusIn={() => {
              setAttiva(indice);
              props.indica?.(voce);
            }}
            onPointerEnter={() => props.indica?.(voce)}
            onClick={() => (props.alterna ?? props.clic)?.(voce)}
            style={{ height: `${altezza}px`, top: `${indice * altezza}px` }}
          >
            {props.riga(voce, indice === corrente)}
          </div>
        );
      })}
    </div>
  );
}
