import { useEffect, useId, useRef, useState } from "preact/hooks";
import { numero } from "../testo";
import "./CampoNumero.css";

interface Proprieta {
  id: string;
  valore: number;
  minimo: number;
  massimo: number;
  unita: string;
  salva: (valore: number) => Promise<unknown>;
}

/** The number that a text stands for when it is a whole one inside the range. */
export function ammesso(testo: string, minimo: number, massimo: number): number | null {
  if (!/^\d+$/.test(testo.trim())) return null;
  const valore = Number(testo);
  return valore >= minimo && valore <= massimo ? valore : null;
}

/** How long nothing is typed before a number counts as finished. */
const PAUSA = 1500;

/**
 * A whole number with its range; saved on Enter, on leaving the field, after a pause and by the
 * arrows. A value outside the range is said so and never sent. What is being typed stays as it is
 * whatever value comes in.
 */
export function CampoNumero({ id, valore, minimo, massimo, unita, salva }: Proprieta) {
  const [bozza, setBozza] = useState<string | null>(null);
  const nota = useId();
  const testo = bozza ?? String(valore);
  const letto = ammesso(testo, minimo, massimo);
  const scritta = useRef<string | null>(null);
  scritta.current = bozza;

  /** Sends what is typed; it stays on screen until the answer is there. */
  async function finisci(lascia: boolean) {
    const finita = scritta.current;
    if (finita === null) return;
    const nuovo = ammesso(finita, minimo, massimo);
    if (nuovo !== null && nuovo !== valore) await salva(nuovo);
    if (lascia) setBozza((adesso) => (adesso === finita ? null : adesso));
  }

  useEffect(() => {
    if (bozza === null) return;
    const orologio = window.setTimeout(() => void finisci(false), PAUSA);
    return () => window.clearTimeout(orologio);
  }, [bozza]);

  return (
    <div class="campo-numero">
      <div class="campo-numero-riga">
        <input
          id={id}
          type="number"
          inputMode="numeric"
          min={minimo}
          max={massimo}
          step={1}
          value={testo}
          aria-invalid={letto === null}
          aria-describedby={nota}
          onInput={(evento) => setBozza(evento.currentTarget.value)}
          onBlur={() => void finisci(true)}
          onKeyDown={(evento) => {
            if (evento.key === "Escape") setBozza(null);
            if (evento.key === "Enter") void finisci(false);
          }}
        />
        <span class="unita">{unita}</span>
      </div>
      <span id={nota} class={letto === null ? "limite limite-fuori" : "limite"}>
        da {numero(minimo)} a {numero(massimo)}
      </span>
    </div>
  );
}
