const PASSI: Record<string, number> = { ArrowDown: 1, ArrowUp: -1 };

/** Arrow up and down in a list of like rows: to the same control of the next row, or its last. */
export function frecce(evento: KeyboardEvent): void {
  const passo = PASSI[evento.key];
  const { target, currentTarget: lista } = evento;
  if (!passo || !(lista instanceof HTMLElement) || !(target instanceof HTMLElement)) return;
  const righe = [...lista.children];
  const qui = righe.findIndex((riga) => riga.contains(target));
  const comandi = (riga: Element | undefined) => [
    ...(riga?.querySelectorAll<HTMLElement>("button, input") ?? []),
  ];
  const posto = comandi(righe[qui]).indexOf(target);
  const vicini = comandi(righe[qui + passo]);
  const meta = vicini[Math.min(posto, vicini.length - 1)];
  if (!meta) return;
  evento.preventDefault();
  meta.focus();
}
