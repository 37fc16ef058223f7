import { useEffect, useId, useState } from "preact/hooks";
import { numero } from "../testo";
import "./CampoNumero.css";

interface Proprieta {
  id: string;
  valore: number;
  minimo: number;
  massimo: number;
  unita: string;
  salva: (valore: number) => void;
}

/** The number that a text stands for when it is a whole one inside the range. */
export function ammesso(testo: string, minimo: number, massimo: number): number | null {
  if (!/^\d+$/.test(testo.trim())) return null;
  const valore = Number(testo);
  return valore >= minimo && valore <= massimo ? valore : null;
}

/** A whole number with its range; saved on Enter, on leaving the field and by the arrows. A value
 * outside the range is said so and never sent. */
export function CampoNumero({ id, valore, minimo, massimo, unita, salva }: Proprieta) {
  const [testo, setTesto] = useState(String(valore));
  const nota = useId();
  useEffect(() => setTesto(String(valore)), [valore]);
  const letto = ammesso(testo, minimo, massimo);

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
          onInput={(evento) => setTesto(evento.currentTarget.value)}
          onChange={(evento) => {
            const nuovo = ammesso(evento.currentTarget.value, minimo, massimo);
            if (nuovo !== null && nuovo !== valore) salva(nuovo);
          }}
          onBlur={() => {
            if (letto === null) setTesto(String(valore));
          }}
          onKeyDown={(evento) => {
            if (evento.key === "Escape") setTesto(String(valore));
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
