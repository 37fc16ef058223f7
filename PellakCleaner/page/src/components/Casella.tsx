import { useLayoutEffect, useRef } from "preact/hooks";
import "./Casella.css";

interface Proprieta {
  /** "parte": some of what it stands for is chosen. */
  stato: boolean | "parte";
  cambia: (scelta: boolean) => void;
  etichetta: string;
  tabIndex?: number;
  disabled?: boolean;
}

export function Casella({ stato, cambia, etichetta, tabIndex, disabled }: Proprieta) {
  const campo = useRef<HTMLInputElement>(null);
  useLayoutEffect(() => {
    if (campo.current) campo.current.indeterminate = stato === "parte";
  });
  return (
    <input
      ref={campo}
      type="checkbox"
      class="casella"
      aria-label={etichetta}
      checked={stato === true}
      disabled={disabled ?? false}
      onChange={(evento) => cambia(evento.currentTarget.checked)}
      onClick={(evento) => evento.stopPropagation()}
      {...(tabIndex === undefined ? {} : { tabIndex })}
    />
  );
}
