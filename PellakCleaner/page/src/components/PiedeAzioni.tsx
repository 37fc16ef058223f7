import type { LucideIcon } from "lucide-preact";
import type { ComponentChildren } from "preact";
import { Pulsante } from "./Pulsante";
import "./PiedeAzioni.css";

interface Azione {
  testo: string;
  esegui: () => void;
  tipo?: "primario" | "normale" | "testo";
  Icona?: LucideIcon;
  disabled?: boolean;
}

interface Proprieta {
  etichetta: string;
  /** What waits, and how much of it: "3 modifiche in sospeso". */
  testo: string;
  /** Beside it: what it comes to, or what the action asks for. */
  nota?: ComponentChildren;
  azioni: readonly Azione[];
}

/** The foot of a view: what waits there, and what can be done with it. */
export function PiedeAzioni({ etichetta, testo, nota, azioni }: Proprieta) {
  return (
    <section class="piede" aria-label={etichetta}>
      <p class="piede-testo" role="status">
        <strong>{testo}</strong>
        {nota}
      </p>
      {azioni.map(({ testo: nome, esegui, tipo = "normale", Icona, disabled = false }) => (
        <Pulsante
          key={nome}
          tipo={tipo}
          disabled={disabled}
          onClick={esegui}
          {...(Icona ? { Icona } : {})}
        >
          {nome}
        </Pulsante>
      ))}
    </section>
  );
}
