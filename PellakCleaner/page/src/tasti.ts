import { avviso, chiudiAvviso } from "./avvisi";
import { domanda } from "./dialogo";

function cerca(evento: KeyboardEvent): void {
  const campo = document.querySelector<HTMLInputElement>("main [data-ricerca]");
  if (!campo) return;
  evento.preventDefault();
  campo.focus();
  campo.select();
}

/** The keys that work everywhere: Cmd/Ctrl-F, and Esc for the notice (fields and dialogs have
 * their own Esc). */
function premuto(evento: KeyboardEvent): void {
  if (domanda.value || evento.defaultPrevented) return;
  if ((evento.metaKey || evento.ctrlKey) && evento.key.toLowerCase() === "f") cerca(evento);
  else if (evento.key === "Escape" && avviso.value) chiudiAvviso();
}

export function seguiTasti(): () => void {
  document.addEventListener("keydown", premuto);
  return () => document.removeEventListener("keydown", premuto);
}
