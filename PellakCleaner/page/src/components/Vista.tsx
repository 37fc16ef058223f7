import type { ComponentChildren } from "preact";
import { createContext } from "preact";
import type { RefObject } from "preact";
import { useContext, useRef } from "preact/hooks";
import { Avvisi } from "./Avvisi";
import "./Vista.css";

const Scorrimento = createContext<RefObject<HTMLElement> | null>(null);

/** The element of the view that scrolls. */
export function useScorrimento(): RefObject<HTMLElement> {
  const scorrimento = useContext(Scorrimento);
  if (!scorrimento) throw new Error("outside a view");
  return scorrimento;
}

/** An area that scrolls by itself and tells the lists in it so. */
export function AreaScorrevole({
  classe,
  children,
}: {
  classe: string;
  children: ComponentChildren;
}) {
  const scorrimento = useRef<HTMLDivElement>(null);
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
  return (
    <main class="vista" aria-label={titolo}>
      <header class="testata">
        <div class="testata-titoli">
          <h1>{titolo}</h1>
          {stato && (
            <p class="testata-stato" role="status">
              {stato}
            </p>
          )}
        </div>
        {strumenti && <div class="testata-strumenti">{strumenti}</div>}
        {azioni && <div class="testata-azioni">{azioni}</div>}
        {sotto && <div class="testata-sotto">{sotto}</div>}
      </header>
      <AreaScorrevole classe={piena ? "corpo corpo-pieno" : "corpo"}>{children}</AreaScorrevole>
      <Avvisi />
      {piede}
    </main>
  );
}
