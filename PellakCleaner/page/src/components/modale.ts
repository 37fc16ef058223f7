/** Whether the engine opens modal dialogs itself; Safari's does from 15.4. */
export const conModali =
  typeof HTMLDialogElement === "function" && "showModal" in HTMLDialogElement.prototype;

/** Makes an element modal by hand, as far as the keyboard goes: the focus stays on its buttons, and
 * Esc dismisses it. Returns what ends that. */
export function rendiModale(finestra: HTMLElement, annulla: () => void): () => void {
  const pulsanti = () => Array.from(finestra.querySelectorAll("button"));
  const premuto = (evento: KeyboardEvent) => {
    if (evento.key !== "Escape" && evento.key !== "Tab") return;
    evento.preventDefault();
    if (evento.key === "Escape") return annulla();
    const tutti = pulsanti();
    const qui = tutti.findIndex((pulsante) => pulsante === document.activeElement);
    const prossimo = evento.shiftKey
      ? (qui > 0 ? qui : tutti.length) - 1
      : (qui + 1) % tutti.length;
    tutti[prossimo]?.focus();
  };
  document.addEventListener("keydown", premuto);
  pulsanti().pop()?.focus();
  return () => document.removeEventListener("keydown", premuto);
}
