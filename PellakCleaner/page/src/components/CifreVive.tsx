import type { ComponentChildren } from "preact";
import { useEffect, useState } from "preact/hooks";
import { visibile } from "../store";
import "./CifreVive.css";

export interface CifraViva {
  nome: string;
  valore: string;
  /** A small plot beside the value. */
  grafico?: ComponentChildren;
}

interface Proprieta {
  cifre: readonly CifraViva[];
  /** When they were read, in milliseconds since 1970; 0 while they never were. */
  lette: number;
}

/** How old a value is. */
export function eta(millisecondi: number): string {
  const secondi = Math.max(0, Math.round(millisecondi / 1000));
  if (secondi < 1) return "aggiornato ora";
  if (secondi < 60) return `aggiornato ${secondi} s fa`;
  const minuti = Math.floor(secondi / 60);
  return minuti < 60 ? `aggiornato ${minuti} min fa` : "aggiornato più di un'ora fa";
}

/** The live figures of a view's head, with their age. */
export function CifreVive({ cifre, lette }: Proprieta) {
  return (
    <dl class="cifre-vive">
      {cifre.map(({ nome, valore, grafico }) => (
        <div key={nome} class="cifra-viva">
          <dt>{nome}</dt>
          <dd>
            {valore}
            {grafico}
          </dd>
        </div>
      ))}
      {lette > 0 && <Eta lette={lette} />}
    </dl>
  );
}

function Eta({ lette }: { lette: number }) {
  const [adesso, setAdesso] = useState(Date.now());
  useEffect(() => {
    if (!visibile.value) return undefined;
    setAdesso(Date.now());
    const orologio = window.setInterval(() => setAdesso(Date.now()), 1000);
    return () => window.clearInterval(orologio);
  }, [visibile.value, lette]);
  return (
    <div class="cifra-viva cifra-viva-eta">
      <dt class="nascosto">Lettura</dt>
      <dd>{eta(adesso - lette)}</dd>
    </div>
  );
}
