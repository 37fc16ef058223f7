import { signal } from "@preact/signals";
import { ChevronRight } from "lucide-preact";
import { useRef } from "preact/hooks";
import { vista } from "../store";
import { type GruppoViste, type Vista, titoliGruppi } from "../vista";
import { viste } from "../viste";
import { Anello } from "./Anello";
import "./BarraLaterale.css";

const gruppi = (Object.keys(titoliGruppi) as GruppoViste[])
  .map((gruppo) => ({ gruppo, sue: viste.filter((v) => v.gruppo === gruppo) }))
  .filter(({ sue }) => sue.length > 0);
/** Always in sight, below what scrolls. */
const FISSO: GruppoViste = "programma";

const chiusi = signal<ReadonlySet<GruppoViste>>(new Set());

function piega(gruppo: GruppoViste, chiudi: boolean): void {
  const nuovi = new Set(chiusi.value);
  if (chiudi) nuovi.add(gruppo);
  else nuovi.delete(gruppo);
  chiusi.value = nuovi;
}

const PASSI: Record<string, (da: number, ultima: number) => number> = {
  ArrowDown: (da) => da + 1,
  ArrowUp: (da) => da - 1,
  Home: () => 0,
  End: (_da, ultima) => ultima,
};

/** Where the arrows stop: the views, and the titles of folded groups. */
const FERMATE = '[data-vista], .laterale-titolo[aria-expanded="false"]';

/**
 * The views in groups; one stop for Tab. Arrows up and down open the next view, left and right
 * fold and unfold the group.
 */
export function BarraLaterale() {
  const radice = useRef<HTMLElement>(null);

  function muovi(evento: KeyboardEvent) {
    const qui = document.activeElement as HTMLElement;
    const gruppo = qui.closest<HTMLElement>("[data-gruppo]")?.dataset.gruppo as GruppoViste;
    const voci = [...(radice.current?.querySelectorAll<HTMLElement>(FERMATE) ?? [])];
    const passo = PASSI[evento.key];
    if (passo) {
      const dove = passo(voci.indexOf(qui), voci.length - 1);
      const meta = voci[Math.min(Math.max(dove, 0), voci.length - 1)];
      meta?.focus();
      if (meta?.dataset.vista) vista.value = meta.dataset.vista;
    } else if (evento.key === "ArrowLeft" && pieghevole(gruppo)) piega(gruppo, true);
    else if (evento.key === "ArrowRight") piega(gruppo, false);
    else return;
    evento.preventDefault();
  }

  return (
    <nav class="laterale" aria-label="Viste" ref={radice} onKeyDown={muovi}>
      <div class="laterale-scorri">
        {gruppi
          .filter(({ gruppo }) => gruppo !== FISSO)
          .map((g) => (
            <Gruppo key={g.gruppo} {...g} />
          ))}
      </div>
      {gruppi
        .filter(({ gruppo }) => gruppo === FISSO)
        .map((g) => (
          <Gruppo key={g.gruppo} {...g} />
        ))}
    </nav>
  );
}

const pieghevole = (gruppo: GruppoViste) => gruppo !== FISSO && titoliGruppi[gruppo] !== "";

function Gruppo({ gruppo, sue }: { gruppo: GruppoViste; sue: Vista[] }) {
  const aperto = !chiusi.value.has(gruppo);
  // The view on screen never hides in a folded group.
  const mostrate = aperto ? sue : sue.filter((v) => v.id === vista.value);
  return (
    <div class="laterale-gruppo" data-gruppo={gruppo}>
      {pieghevole(gruppo) && (
        <h2>
          <button
            type="button"
            class="laterale-titolo"
            aria-expanded={aperto}
            tabIndex={-1}
            onClick={() => piega(gruppo, aperto)}
          >
            {titoliGruppi[gruppo]}
            <ChevronRight size={12} aria-hidden="true" />
          </button>
        </h2>
      )}
      <ul aria-label={titoliGruppi[gruppo] || "Inizio"}>
        {mostrate.map((v) => (
          <li key={v.id}>
            <VoceLaterale vista={v} />
          </li>
        ))}
      </ul>
    </div>
  );
}

function VoceLaterale({ vista: v }: { vista: Vista }) {
  const scelta = vista.value === v.id;
  const conteggio = v.conteggio?.() ?? "";
  return (
    <button
      type="button"
      class={v.spenta?.() ? "laterale-voce laterale-spenta" : "laterale-voce"}
      data-vista={v.id}
      aria-current={scelta ? "page" : undefined}
      tabIndex={scelta ? 0 : -1}
      onClick={() => {
        vista.value = v.id;
      }}
    >
      <v.Icona
        size={15}
        aria-hidden="true"
        class="laterale-icona"
        {...(v.colore ? { style: { color: v.colore } } : {})}
      />
      <span class="laterale-nome">{v.nome}</span>
      {v.conScelta?.() && (
        <span class="laterale-scelta" role="img" aria-label="con elementi selezionati" />
      )}
      {v.inCorso?.() ? (
        <Anello etichetta="scansione in corso" />
      ) : v.inCoda?.() ? (
        <span class="laterale-conteggio">in coda</span>
      ) : (
        conteggio && <span class={`laterale-conteggio ${v.parola?.() ?? ""}`}>{conteggio}</span>
      )}
    </button>
  );
}
