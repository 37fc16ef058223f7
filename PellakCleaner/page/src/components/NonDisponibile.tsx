import type { LucideIcon } from "lucide-preact";
import type { ComponentChildren } from "preact";
import { frase, mostrabile } from "../testo";
import "./Vuoto.css";
import "./NonDisponibile.css";

interface Proprieta {
  Icona: LucideIcon;
  /** What is missing: "Firewall". */
  nome: string;
  /** The native side's sentence. */
  motivo: string;
  /** What can be done instead. */
  children?: ComponentChildren;
}

/** What a view shows when this system lacks what it is about. */
export function NonDisponibile({ Icona, nome, motivo, children }: Proprieta) {
  return (
    <section class="vuoto non-disponibile" aria-label={`${nome}: non disponibile`}>
      <span class="non-disponibile-icona">
        <Icona size={26} strokeWidth={1.5} aria-hidden="true" />
      </span>
      <h2>Non disponibile su questo sistema</h2>
      <p>{mostrabile(frase(motivo))}</p>
      {children}
    </section>
  );
}
