import "./Quadrante.css";

interface Proprieta {
  /** What is shown, for who does not see it: "Carica". */
  nome: string;
  /** 0 to 100. */
  percento: number;
  /** A word below the figure: "in carica". */
  nota?: string;
  tono?: "normale" | "buono" | "attenzione";
}

/** A share of a whole as a dial; its text says the same. */
export function Quadrante({ nome, percento, nota, tono = "normale" }: Proprieta) {
  const valore = Math.min(100, Math.max(0, Math.round(percento)));
  const testo = nota ? `${nome}: ${valore} %, ${nota}` : `${nome}: ${valore} %`;
  return (
    <div class={`quadrante quadrante-${tono}`} role="img" aria-label={testo}>
      <svg viewBox="0 0 120 120" aria-hidden="true">
        <circle class="quadrante-fondo" cx="60" cy="60" r="52" />
        {valore > 0 && (
          <circle
            class="quadrante-arco"
            cx="60"
            cy="60"
            r="52"
            pathLength="100"
            stroke-dasharray={`${valore} 100`}
            transform="rotate(-90 60 60)"
          />
        )}
      </svg>
      <p aria-hidden="true">
        <span class="quadrante-cifra">{valore} %</span>
        {nota && <span class="sotto">{nota}</span>}
      </p>
    </div>
  );
}
