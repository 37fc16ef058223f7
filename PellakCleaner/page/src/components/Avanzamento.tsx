import "./Avanzamento.css";

interface Proprieta {
  etichetta: string;
  /** Share of the whole, 0 to 1; nothing while it can't be told. */
  quota: number | null;
}

/** How far something is; a bar that moves where only the end can be told. */
export function Avanzamento({ etichetta, quota }: Proprieta) {
  const noto = quota !== null;
  const valore = noto ? Math.min(100, Math.max(0, Math.round(quota * 100))) : 0;
  return (
    <div
      class={noto ? "avanzamento" : "avanzamento avanzamento-ignoto"}
      role="progressbar"
      aria-label={etichetta}
      {...(noto ? { "aria-valuenow": valore, "aria-valuemin": 0, "aria-valuemax": 100 } : {})}
    >
      <span style={noto ? { width: `${valore}%` } : {}} />
    </div>
  );
}
