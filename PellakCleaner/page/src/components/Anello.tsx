import "./Anello.css";

/** A ring that turns while something runs whose end can't be foretold. */
export function Anello({ etichetta, grande }: { etichetta: string; grande?: boolean }) {
  const lato = grande ? 22 : 14;
  return (
    <svg
      class="anello"
      width={lato}
      height={lato}
      viewBox="0 0 20 20"
      role="img"
      aria-label={etichetta}
    >
      <circle class="anello-fondo" cx="10" cy="10" r="7.5" />
      <circle class="anello-arco" cx="10" cy="10" r="7.5" pathLength="100" />
    </svg>
  );
}
