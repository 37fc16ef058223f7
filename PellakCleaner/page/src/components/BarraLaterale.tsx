import { useRef } from "preact/hooks";
import { vista } from "../store";
import { type GruppoViste, type Vista, titoliGruppi } from "../vista";
import { viste } from "../viste";
import { Anello } from "./Anello";
import "./BarraLaterale.css";

const gruppi = (Object.keys(titoliGruppi) as GruppoViste[])
  .map((gruppo) => ({ gruppo, sue: viste.filter((v) => v.gruppo === gruppo) }))
  .filter(({ sue }) => sue.length > 0);

const PASSI: Record<string, (da: number) => number> = {
  ArrowDown: (da) => da + 1,
  ArrowUp: (da) => da - 1,
  Home: () => 0,
  End: () => viste.length - 1,
};

/** The views in groups; one stop for Tab, arrows move inside. */
export function BarraLaterale() {
  const radice = useRef<HTMLElement>(null);

  function muovi(evento: KeyboardEvent) {
    const passo = PASSI[evento.key];
    if (!passo) return;
    const voci = [...(radice.current?.querySelectorAll("button") ?? [])];
    const da = voci.indexOf(document.activeElement as HTMLButtonElement);
    evento.preventDefault();
    voci[Math.min(Math.max(passo(da), 0), voci.length - 1)]?.focus();
  }

  return (
    <nav class="laterale" aria-label="Viste" ref={radice} onKeyDown={muovi}>
      {gruppi.map(({ gruppo, sue }) => (
        <div class="laterale-gruppo" key={gruppo}>
          {titoliGruppi[gruppo] && <h2>{titoliGruppi[gruppo]}</h2>}
          <ul>
            {sue.map((v) => (
              <li key={v.id}>
                <VoceLaterale vista={v} />
              </li>
            ))}
          </ul>
        </div>
      ))}
    </nav>
  );
}

function VoceLaterale({ vista: v }: { vista: Vista }) {
  const scelta = vista.value === v.id;
  const conteggio = v.conteggio?.() ?? "";
  return (
    <button
      type="button"
      class="laterale-voce"
      data-vista={v.id}
      aria-current={scelta ? "page" : undefined}
      tabIndex={scelta ? 0 : -1}
      onClick={() => {
        vista.value = v.id;
      }}
    >
      <v.Icona
        size={16}
        aria-hidden="true"
        class="laterale-icona"
        {...(v.colore ? { style: { color: v.colore } } : {})}
      />
      <span class="laterale-nome">{v.nome}</span>
      {v.inCorso?.() ? (
        <Anello etichetta="scansione in corso" />
      ) : v.inCoda?.() ? (
        <span class="laterale-conteggio">in coda</span>
      ) : (
        conteggio && <span class="laterale-conteggio">{conteggio}</span>
      )}
    </button>
  );
}
