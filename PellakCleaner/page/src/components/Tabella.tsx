import { type Signal, signal } from "@preact/signals";
import { ChevronDown, ChevronUp } from "lucide-preact";
import type { ComponentChildren } from "preact";
import { useLayoutEffect, useRef, useState } from "preact/hooks";
import { AreaScorrevole } from "./Vista";
import { type OrdineTabella, type Valore, riordina } from "./ordineTabella";
import { useVirtuale } from "./useVirtuale";
import "./Tabella.css";

export interface Colonna<T> {
  chiave: string;
  titolo: string;
  cella: (voce: T) => ComponentChildren;
  /** What the column sorts by. */
  valore: (voce: T) => Valore;
  /** A CSS width; numbers need one, so that a digit more moves nothing. */
  larghezza: string;
  /** At the right, in figures of one width; the first click on the header puts the largest up. */
  numerica?: boolean;
  /** Gives way in a narrow window. */
  cedevole?: boolean;
}

/** What of a table outlives its view: how it is sorted and which row is chosen. */
export interface StatoTabella {
  ordine: Signal<OrdineTabella>;
  scelta: Signal<string | null>;
}

export function statoTabella(colonna: string, decrescente: boolean): StatoTabella {
  return { ordine: signal({ colonna, decrescente }), scelta: signal<string | null>(null) };
}

interface Proprieta<T> {
  etichetta: string;
  colonne: readonly Colonna<T>[];
  voci: readonly T[];
  /** What makes a row the same one after a refresh: of a process, its pid and its start. */
  chiave: (voce: T) => string;
  stato: StatoTabella;
  /** What Enter and a double click do. */
  apri?: (voce: T) => void;
}

const ALTEZZA = 32;

/** The rows as they are to be shown. They stay where they are while the user points at them. */
function useRigheOrdinate<T>({ colonne, voci, chiave, stato }: Proprieta<T>, ferma: boolean): T[] {
  const ordine = stato.ordine.value;
  const prima = useRef<{ ordine: OrdineTabella; chiavi: string[] }>({ ordine, chiavi: [] });
  const colonna = colonne.find((c) => c.chiave === ordine.colonna) ?? colonne[0];
  const nuovoOrdine = prima.current.ordine !== ordine || prima.current.chiavi.length === 0;
  const righe = riordina(
    voci,
    chiave,
    (voce) => colonna?.valore(voce) ?? 0,
    ordine.decrescente,
    prima.current.chiavi,
    ferma && !nuovoOrdine,
  );
  prima.current = { ordine, chiavi: righe.map(chiave) };
  return righe;
}

/**
 * A table of live data. One stop for Tab; arrows, Home, End and Page keys move, Space chooses. A
 * click on a header sorts. The order waits while the pointer or the focus is on the rows.
 */
export function Tabella<T>(props: Proprieta<T>) {
  const larghezze = (quali: readonly Colonna<T>[]) => quali.map((c) => c.larghezza).join(" ");
  const colonne = {
    "--colonne": larghezze(props.colonne),
    "--colonne-strette": larghezze(props.colonne.filter((c) => !c.cedevole)),
  };
  return (
    <AreaScorrevole classe="tabella">
      <div
        role="grid"
        aria-label={props.etichetta}
        aria-rowcount={props.voci.length + 1}
        style={colonne}
      >
        <Intestazione colonne={props.colonne} ordine={props.stato.ordine} />
        <Righe {...props} />
      </div>
    </AreaScorrevole>
  );
}

interface ProprietaIntestazione<T> {
  colonne: readonly Colonna<T>[];
  ordine: Signal<OrdineTabella>;
}

function Intestazione<T>({ colonne, ordine }: ProprietaIntestazione<T>) {
  const { colonna, decrescente } = ordine.value;
  return (
    <div role="row" class="tabella-riga tabella-intestazione" aria-rowindex={1}>
      {colonne.map((c) => {
        const sua = c.chiave === colonna;
        const Freccia = decrescente ? ChevronDown : ChevronUp;
        return (
          <div
            key={c.chiave}
            role="columnheader"
            class={classeCella(c)}
            aria-sort={sua ? (decrescente ? "descending" : "ascending") : "none"}
          >
            <button
              type="button"
              onClick={() => {
                const giu = sua ? !decrescente : Boolean(c.numerica);
                ordine.value = { colonna: c.chiave, decrescente: giu };
              }}
            >
              {c.titolo}
              {sua && <Freccia size={13} aria-hidden="true" />}
            </button>
          </div>
        );
      })}
    </div>
  );
}

function classeCella<T>({ numerica, cedevole }: Colonna<T>): string {
  return ["tabella-cella", numerica && "tabella-numero", cedevole && "tabella-cedevole"]
    .filter(Boolean)
    .join(" ");
}

const PASSI: Record<string, (da: number, pagina: number, ultima: number) => number> = {
  ArrowDown: (da) => da + 1,
  ArrowUp: (da) => da - 1,
  PageDown: (da, pagina) => da + pagina,
  PageUp: (da, pagina) => da - pagina,
  Home: () => 0,
  End: (_da, _pagina, ultima) => ultima,
};

function Righe<T>(props: Proprieta<T>) {
  const { colonne, chiave, stato, apri } = props;
  const [indicata, setIndicata] = useState(false);
  const [aFuoco, setAFuoco] = useState(false);
  const [attiva, setAttiva] = useState<string | null>(null);
  const daFocalizzare = useRef(false);
  const righe = useRigheOrdinate(props, indicata || aFuoco);
  const corrente = Math.max(
    0,
    righe.findIndex((voce) => chiave(voce) === (attiva ?? stato.scelta.value)),
  );
  const { virtuale, radice } = useVirtuale({
    quante: righe.length,
    altezza: () => ALTEZZA,
    sempre: corrente,
  });
  useLayoutEffect(() => {
    if (!daFocalizzare.current) return;
    daFocalizzare.current = false;
    radice.current?.querySelector<HTMLElement>('[tabindex="0"]')?.focus({ preventScroll: true });
  });

  function tasto(evento: KeyboardEvent) {
    const ultima = righe.length - 1;
    const pagina = Math.max(1, Math.floor((virtuale.scrollRect?.height ?? 0) / ALTEZZA) - 2);
    const meta = PASSI[evento.key]?.(corrente, pagina, ultima);
    const voce = righe[corrente];
    if (meta !== undefined) {
      const dove = Math.min(Math.max(meta, 0), ultima);
      const quella = righe[dove];
      if (quella === undefined) return;
      setAttiva(chiave(quella));
      daFocalizzare.current = true;
      virtuale.scrollToIndex(dove, { align: "auto" });
    } else if (evento.key === " " && voce) stato.scelta.value = chiave(voce);
    else if (evento.key === "Enter" && voce && apri) apri(voce);
    else return;
    evento.preventDefault();
  }

  return (
    <div
      role="rowgroup"
      class="tabella-righe"
      ref={radice}
      style={{ height: `${virtuale.getTotalSize()}px` }}
      onKeyDown={tasto}
      onPointerEnter={() => setIndicata(true)}
      onPointerLeave={() => setIndicata(false)}
      onFocusIn={() => setAFuoco(true)}
      onFocusOut={(evento) => {
        // A row that goes takes the focus with it and hands it to nobody.
        if (!radice.current?.contains(evento.relatedTarget as Node | null)) setAFuoco(false);
      }}
    >
      {virtuale.getVirtualItems().map(({ index }) => {
        const voce = righe[index];
        if (voce === undefined) return null;
        const sua = chiave(voce);
        return (
          <div
            key={sua}
            role="row"
            class="tabella-riga"
            aria-rowindex={index + 2}
            aria-selected={stato.scelta.value === sua}
            tabIndex={index === corrente ? 0 : -1}
            style={{ top: `${index * ALTEZZA}px`, height: `${ALTEZZA}px` }}
            onFocusIn={() => setAttiva(sua)}
            onClick={() => {
              stato.scelta.value = sua;
            }}
            onDblClick={() => apri?.(voce)}
          >
            {colonne.map((c) => (
              <div key={c.chiave} role="gridcell" class={classeCella(c)}>
                {c.cella(voce)}
              </div>
            ))}
          </div>
        );
      })}
    </div>
  );
}

interface ProprietaBarra {
  /** Share of the whole, 0 to 1. */
  quota: number;
  children: ComponentChildren;
}

/** A number with a bar of its share below it. */
export function CellaConBarra({ quota, children }: ProprietaBarra) {
  const larga = Math.min(1, Math.max(0, quota)) * 100;
  return (
    <span class="cella-barra">
      {children}
      <span class="cella-barra-fondo" aria-hidden="true">
        <span style={{ width: `${larga}%` }} />
      </span>
    </span>
  );
}
