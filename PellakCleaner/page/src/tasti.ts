import { avviso, chiudiAvviso } from "./avvisi";
import { domanda } from "./dialogo";
import { vista } from "./store";
import { cercaVista, viste } from "./viste";

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

const MODIFICATORI = new Set(["Shift", "Control", "Alt", "Meta", "AltGraph", "CapsLock"]);

/** Whether the keyboard leads: engines disagree on what a key after a click means for the ring. */
function conTasti(evento: KeyboardEvent): void {
  if (!MODIFICATORI.has(evento.key)) document.documentElement.dataset.tasti = "";
}

function conPuntatore(): void {
  delete document.documentElement.dataset.tasti;
}

export function seguiTasti(): () => void {
  document.addEventListener("keydown", premuto);
  document.addEventListener("keydown", conTasti, true);
  document.addEventListener("pointerdown", conPuntatore, true);
  return () => {
    document.removeEventListener("keydown", premuto);
    document.removeEventListener("keydown", conTasti, true);
    document.removeEventListener("pointerdown", conPuntatore, true);
  };
}

/** What the window's menu asks for; its keys come in this way too. */
export function dalMenu(cosa: "vista" | "scansiona" | "impostazioni", posto = 0): void {
  if (domanda.value) return;
  if (cosa === "scansiona") cercaVista(vista.value).scansiona?.();
  else if (cosa === "impostazioni") vista.value = "impostazioni";
  else vista.value = viste[posto]?.id ?? vista.value;
}
