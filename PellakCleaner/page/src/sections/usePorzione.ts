import { useState } from "preact/hooks";

const PASSO = 200;

/** The first entries of a list, and more on request. */
export function usePorzione<T>(voci: readonly T[]) {
  const [quante, setQuante] = useState(PASSO);
  return {
    porzione: voci.slice(0, quante),
    altre: Math.max(0, voci.length - quante),
    mostraAltre: () => setQuante(quante + PASSO),
  };
}
