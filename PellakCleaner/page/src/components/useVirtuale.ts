import {
  type Range,
  Virtualizer,
  defaultRangeExtractor,
  elementScroll,
  observeElementOffset,
  observeElementRect,
} from "@tanstack/virtual-core";
import type { RefObject } from "preact";
import { useEffect, useLayoutEffect, useMemo, useReducer, useRef, useState } from "preact/hooks";
import { useScorrimento } from "./Vista";

interface Opzioni {
  quante: number;
  altezza: (indice: number) => number;
  /** A row that stays drawn wherever the view is scrolled to: the one with the focus. */
  sempre?: number;
  /** Moves when the heights of rows move without their number. */
  versione?: unknown;
}

function conSempre(range: Range, sempre: number | undefined): number[] {
  const righe = defaultRangeExtractor(range);
  if (sempre === undefined || sempre >= range.count || righe.includes(sempre)) return righe;
  return [...righe, sempre].sort((a, b) => a - b);
}

/** Draws only the rows of a long list that can be seen. The list lies anywhere in the view. */
export function useVirtuale({ quante, altezza, sempre, versione }: Opzioni) {
  const scorrimento = useScorrimento();
  const radice = useRef<HTMLDivElement>(null);
  const [margine, setMargine] = useState(0);
  const [, ridisegna] = useReducer((n: number) => n + 1, 0);

  const opzioni = {
    count: quante,
    estimateSize: altezza,
    getScrollElement: () => scorrimento.current,
    // A list that appears in a view already scrolled leaves it where it is.
    initialOffset: () => scorrimento.current?.scrollTop ?? 0,
    scrollMargin: margine,
    overscan: 3,
    scrollPaddingStart: 8,
    scrollPaddingEnd: 8,
    rangeExtractor: (range: Range) => conSempre(range, sempre),
    observeElementRect,
    observeElementOffset,
    scrollToFn: elementScroll,
    onChange: () => ridisegna(0),
  };
  // Made once; what changes is handed over right after.
  const virtuale = useMemo(() => new Virtualizer<HTMLElement, HTMLElement>(opzioni), []);
  virtuale.setOptions(opzioni);
  useLayoutEffect(() => virtuale._didMount(), [virtuale]);
  useLayoutEffect(() => virtuale._willUpdate());
  useLayoutEffect(() => virtuale.measure(), [virtuale, versione, quante]);
  useMargine(radice, scorrimento, setMargine, virtuale.isScrolling);
  return { virtuale, radice, margine };
}

/** How far below the top of the scrolled content the list begins; things above it may change. */
function useMargine(
  radice: RefObject<HTMLElement>,
  scorrimento: RefObject<HTMLElement>,
  imposta: (margine: number) => void,
  scorre: boolean,
): void {
  const misura = () => {
    const lista = radice.current;
    const vista = scorrimento.current;
    if (!lista || !vista) return;
    const sopra = lista.getBoundingClientRect().top - vista.getBoundingClientRect().top;
    imposta(Math.round(sopra + vista.scrollTop));
  };
  // Not while scrolling: nothing above moves then, and measuring makes the browser lay out twice.
  useLayoutEffect(() => {
    if (!scorre) misura();
  });
  useEffect(() => {
    const contenuto = scorrimento.current?.firstElementChild;
    if (!contenuto) return;
    const osserva = new ResizeObserver(misura);
    osserva.observe(contenuto);
    return () => osserva.disconnect();
  }, []);
}
