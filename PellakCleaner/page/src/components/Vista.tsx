import type { ComponentChildren } from "preact";
import { createContext } from "preact";
import type { RefObject } from "preact";
import { useContext, useLayoutEffect, useRef, useState } from "preact/hooks";
import { inAttesa } from "../api";
import { vista } from "../store";
import { Anello } from "./Anello";
import { Avvisi } from "./Avvisi";
import "./Vista.css";

const Scorrimento = createContext<RefObject<HTMLElement> | null>(null);

/** The element of the view that scrolls. */
export function useScorrimento(): RefObject<HTMLElement> {
  const scorrimento = useContext(Scorrimento);
  if (!scorrimento) throw new Error("outside a view");
  return scorrimento;
}

interface ProprietaArea {
  classe: string;
  /** Under which name the place it is scrolled to is kept while it is not on screen. */
  ricorda?: string;
  children: ComponentChildren;
}

const posti = new Map<string, number>();

/** An area that scrolls by itself and tells the lists in it so. */
export function AreaScorrevole({ classe, ricorda, children }: ProprietaArea) {
  const scorrimento = useRef<HTMLDivElement>(null);
  useLayoutEffect(() => {
    const area = scorrimento.current;
    if (!area || ricorda === undefined) return;
    area.scrollTop = posti.get(ricorda) ?? 0;
    return () => void posti.set(ricorda, area.scrollTop);
  }, [ricorda]);
  return (
    <div class={classe} ref={scorrimento}>
      <div class="interno">
        <Scorrimento.Provider value={scorrimento}>{children}</Scorrimento.Provider>
      </div>
    </div>
  );
}

interface Proprieta {
  titolo: string;
  /** One line under the title. */
  stato?: ComponentChildren;
  azioni?: ComponentChildren;
  strumenti?: ComponentChildren;
  /** A line below the title: where one is, or live figures and their age. */
  sotto?: ComponentChildren;
  piede?: ComponentChildren;
  /** The content fills the height and scrolls by itself. */
  piena?: boolean;
  children: ComponentChildren;
}

/** What every view is made of: a head that stays, a content that scrolls, notices and a foot. */
export function Vista(props: Proprieta) {
  const { titolo, stato, azioni, strumenti, sotto, piede, piena, children } = props;
  const [questa] = useState(() => vista.value);
  return (
    <main class="vista" aria-label={titolo}>
      <header class="testata">
        <h1>{titolo}</h1>
        {strumenti && <div class="testata-strumenti">{strumenti}</div>}
        {(azioni || inAttesa.value) && (
          <div class="testata-azioni">
            {inAttesa.value && <Anello etichetta="attesa" />}
            {azioni}
          </div>
        )}
        {stato && (
          <p class="testata-stato" role="status">
            {stato}
          </p>
        )}
        {sotto && <div class="testata-sotto">{sotto}</div>}
      </header>
      <AreaScorrevole classe={piena ? "corpo corpo-pieno" : "corpo"} ricorda={questa}>
        {children}
      </AreaScorrevole>
      <Avvisi />
      {piede}
    </main>
  );
}
