import type { LucideIcon } from "lucide-preact";
import type { ComponentChildren, JSX } from "preact";
import "./Pulsante.css";

interface Proprieta extends Omit<JSX.ButtonHTMLAttributes<HTMLButtonElement>, "icon"> {
  children: ComponentChildren;
  tipo?: "primario" | "normale" | "testo";
  Icona?: LucideIcon;
}

export function Pulsante({ children, tipo = "normale", Icona, ...resto }: Proprieta) {
  return (
    <button type="button" class={`pulsante pulsante-${tipo}`} {...resto}>
      {Icona && <Icona size={15} aria-hidden="true" />}
      {children}
    </button>
  );
}

interface ProprietaIcona extends Omit<JSX.ButtonHTMLAttributes<HTMLButtonElement>, "icon"> {
  Icona: LucideIcon;
  etichetta: string;
}

export function PulsanteIcona({ Icona, etichetta, ...resto }: ProprietaIcona) {
  return (
    <button
      type="button"
      class="pulsante-icona"
      aria-label={etichetta}
      title={etichetta}
      {...resto}
    >
      <Icona size={15} aria-hidden="true" />
    </button>
  );
}
