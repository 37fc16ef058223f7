import { useId } from "preact/hooks";
import "./Scelta.css";

interface Proprieta<T extends string> {
  etichetta: string;
  opzioni: readonly (readonly [T, string])[];
  valore: T;
  cambia: (valore: T) => void;
}

/** A few exclusive choices side by side. */
export function Scelta<T extends string>({ etichetta, opzioni, valore, cambia }: Proprieta<T>) {
  const nome = useId();
  return (
    <fieldset class="scelta">
      <legend class="nascosto">{etichetta}</legend>
      {opzioni.map(([chiave, testo]) => (
        <label key={chiave}>
          <input
            type="radio"
            name={nome}
            checked={valore === chiave}
            onChange={() => cambia(chiave)}
          />
          <span>{testo}</span>
        </label>
      ))}
    </fieldset>
  );
}
