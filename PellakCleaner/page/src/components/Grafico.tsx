import { type Punto, tratti } from "./serie";
import "./Grafico.css";

interface Proprieta {
  /** What is drawn: "Processore". */
  nome: string;
  serie: readonly Punto[];
  /** The value at the upper edge; absent, the largest of the series. */
  massimo?: number;
  formato: (valore: number) => string;
  largo?: number;
  alto?: number;
}

/** The last two minutes of a value; its text tells the newest and the largest. */
export function Grafico({ nome, serie, massimo, formato, largo = 96, alto = 22 }: Proprieta) {
  const picco = Math.max(0, ...serie.map((p) => p.valore));
  const ultimo = serie.at(-1);
  const testo = ultimo
    ? `${nome}, ultimi due minuti: ora ${formato(ultimo.valore)}, massimo ${formato(picco)}`
    : `${nome}: nessun valore`;
  // Half a line is left at both edges, so that none is cut off.
  const pezzi = tratti(serie, massimo ?? picco, largo, alto - 2);
  return (
    <svg class="grafico" width={largo} height={alto} role="img" aria-label={testo}>
      <g transform="translate(0 1)">
        {pezzi.map((punti, i) => (
          <Tratto key={i} punti={punti} fondo={alto - 2} />
        ))}
      </g>
    </svg>
  );
}

function Tratto({ punti, fondo }: { punti: [number, number][]; fondo: number }) {
  const linea = punti.map(([x, y]) => `${x.toFixed(1)},${y.toFixed(1)}`).join(" ");
  const [primo, ultimo] = [punti[0]?.[0] ?? 0, punti.at(-1)?.[0] ?? 0];
  return (
    <>
      <polygon class="grafico-area" points={`${primo},${fondo} ${linea} ${ultimo},${fondo}`} />
      <polyline class="grafico-linea" points={linea} />
    </>
  );
}
