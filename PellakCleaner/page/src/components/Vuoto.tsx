import type { LucideIcon } from "lucide-preact";
import type { ComponentChildren } from "preact";
import "./Vuoto.css";

/** What stands where there is nothing to list. */
export function Vuoto({ Icona, children }: { Icona: LucideIcon; children: ComponentChildren }) {
  return (
    <div class="vuoto">
      <Icona size={28} strokeWidth={1.5} aria-hidden="true" />
      <div class="vuoto-testo">{children}</div>
    </div>
  );
}
