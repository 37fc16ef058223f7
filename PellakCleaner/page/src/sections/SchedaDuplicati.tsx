import { FolderOpen } from "lucide-preact";
import { useMemo } from "preact/hooks";
import { type Spostamento, alLavoro, mostra, spostaNelCestino } from "../cestino";
import { Percorso } from "../components/Percorso";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { useVirtuale } from "../components/useVirtuale";
import { conferma } from "../dialogo";
import { liberaAlmeno } from "../libera";
import type { Finding } from "../rotte";
import { casa } from "../store";
import { dimensione, frase, mostrabile, nomeDi, numero, quanti } from "../testo";
import type { ProprietaScheda } from "./Sezione";
import {
  type Insieme,
  type SceltaCopie,
  type SceltePerGruppo,
  conTenuta,
  conVia,
  copieInPiu,
  liberaCopie,
  liberaPulizia,
  percheResta,
  primaCopia,
  puliziaCompleta,
  scarta,
  sceltaDi,
  tieniSolo,
} from "./duplicati";
import { NOTA_CESTINO, elencoDi } from "./selezione";
import "./SchedaDuplicati.css";

type Riga =
  | { tipo: "testa"; insieme: Insieme }
  | { tipo: "copia"; insieme: Insieme; percorso: string }
  | { tipo: "piede"; insieme: Insieme };

/** The foot counts the room to the next group. */
const ALTEZZE = { testa: 46, copia: 36, piede: 60 };

function righeDi(insiemi: readonly Insieme[]): Riga[] {
  return insiemi.flatMap((insieme) => [
    { tipo: "testa" as const, insieme },
    ...insieme.gruppo.paths.map((percorso) => ({ tipo: "copia" as const, insieme, percorso })),
    { tipo: "piede" as const, insieme },
  ]);
}

const chiaveDi = (riga: Riga) => primaCopia(riga.insieme.gruppo);

/** The duplicates: one card a group, all positions visible, one copy always kept. */
export function SchedaDuplicati({ mostrata, filtro, memoria }: ProprietaScheda) {
  const { finding, gruppi: insiemi } = mostrata;
  const scelte = memoria.copie.value;
  const righe = useMemo(() => righeDi(insiemi), [insiemi]);
  const { virtuale, radice, margine } = useVirtuale({
    quante: righe.length,
    altezza: (i) => ALTEZZE[righe[i]?.tipo ?? "copia"],
    versione: righe,
  });
  const scegli = (insieme: Insieme, scelta: SceltaCopie) => {
    memoria.copie.value = new Map(memoria.copie.value).set(primaCopia(insieme.gruppo), scelta);
  };

  return (
    <section data-finding={finding.id} aria-label={finding.name}>
      <Riassunto finding={finding} insiemi={insiemi} scelte={scelte} filtro={filtro} />
      <div class="insiemi" ref={radice} style={{ height: `${virtuale.getTotalSize()}px` }}>
        {virtuale.getVirtualItems().map(({ index, start, size }) => {
          const riga = righe[index];
          if (!riga) return null;
          const posto = {
            height: `${size}px`,
            transform: `translateY(${start - margine}px)`,
          };
          const scelta = sceltaDi(riga.insieme.gruppo, scelte);
          const parte = riga.tipo === "copia" ? riga.percorso : riga.tipo;
          return (
            <div class="insieme-riga" style={posto} key={`${chiaveDi(riga)}//${parte}`}>
              {riga.tipo === "testa" && <Testa insieme={riga.insieme} scelta={scelta} />}
              {riga.tipo === "copia" && (
                <Copia riga={riga} scelta={scelta} scegli={(s) => scegli(riga.insieme, s)} />
              )}
              {riga.tipo === "piede" && <Piede insieme={riga.insieme} scelta={scelta} />}
            </div>
          );
        })}
      </div>
    </section>
  );
}

interface ProprietaRiassunto {
  finding: Finding;
  insiemi: readonly Insieme[];
  scelte: SceltePerGruppo;
  filtro: string;
}

function Riassunto({ finding, insiemi, scelte, filtro }: ProprietaRiassunto) {
  const copie = copieInPiu(insiemi);
  const tutti = finding.groups.length;
  const parte = filtro ? `${numero(insiemi.length)} di ` : "";
  const quantiGruppi = parte + quanti(tutti, "gruppo di copie", "gruppi di copie");

  async function pulisci() {
    const tenute = insiemi.map(({ gruppo }) => sceltaDi(gruppo, scelte).tenuta);
    const vanno = insiemi.flatMap(({ gruppo }, i) => gruppo.paths.filter((p) => p !== tenute[i]));
    const gruppi = quanti(insiemi.length, "gruppo", "gruppi");
    const testo = filtro ? `${gruppi} fra i ${numero(tutti)}, quelli del filtro` : gruppi;
    const si = await conferma({
      titolo: `Spostare ${quanti(copie, "copia", "copie")} nel Cestino?`,
      righe: [
        {
          testo: `${testo}: in ognuno resta la copia scelta`,
          misura: liberaAlmeno(liberaPulizia(insiemi, scelte)),
        },
      ],
      elenchi: [elencoDi(tenute, "Restano"), elencoDi(vanno, "Vanno nel Cestino")],
      nota: NOTA_CESTINO,
      conferma: "Sposta nel Cestino",
    });
    if (si) await spostaNelCestino([puliziaCompleta(insiemi, scelte)]);
  }

  return (
    <div class="scheda scheda-riassunto">
      <div class="scheda-titoli">
        <h2>{quantiGruppi}</h2>
        <p class="sotto">{mostrabile(finding.note)}</p>
      </div>
      <Pulsante disabled={alLavoro.value} onClick={() => void pulisci()}>
        Pulizia completa ({quanti(copie, "copia", "copie")})
      </Pulsante>
    </div>
  );
}

function Testa({ insieme, scelta }: { insieme: Insieme; scelta: SceltaCopie }) {
  const { gruppo } = insieme;
  return (
    <div class="insieme-testa">
      <bdi class="nome">{mostrabile(nomeDi(scelta.tenuta))}</bdi>
      <span class="sotto">
        {quanti(gruppo.paths.length, "copia", "copie")} da {dimensione(gruppo.size)}
      </span>
      <span class="misura misura-forte libera">libera {dimensione(gruppo.libera)}</span>
    </div>
  );
}

function Piede({ insieme, scelta }: { insieme: Insieme; scelta: SceltaCopie }) {
  const { gruppo } = insieme;
  const nome = mostrabile(nomeDi(scelta.tenuta));

  async function sposta(vie: string[], titolo: string, passo: () => Spostamento) {
    const si = await conferma({
      titolo,
      righe: [
        {
          testo: `Si spostano ${quanti(vie.length, "copia", "copie")}`,
          misura: liberaAlmeno(liberaCopie(gruppo, vie)),
        },
      ],
      elenchi: [elencoDi([scelta.tenuta], "Resta"), elencoDi(vie, "Vanno nel Cestino")],
      nota: NOTA_CESTINO,
      conferma: "Sposta nel Cestino",
    });
    if (si) await spostaNelCestino([passo()]);
  }

  const altre = gruppo.paths.filter((p) => p !== scelta.tenuta);
  const via = [...scelta.via];
  return (
    <div class="insieme-piede">
      <p class="sotto insieme-perche">{frase(percheResta(gruppo, scelta, casa.value))}</p>
      <Pulsante
        disabled={alLavoro.value || via.length === 0}
        onClick={() =>
          void sposta(via, `Scartare ${quanti(via.length, "copia", "copie")} di «${nome}»?`, () =>
            scarta(insieme, via),
          )
        }
      >
        Scarta queste copie
      </Pulsante>
      <Pulsante
        disabled={alLavoro.value}
        onClick={() =>
          void sposta(altre, `Tenere una sola copia di «${nome}»?`, () =>
            tieniSolo(insieme, scelta.tenuta),
          )
        }
      >
        Tieni solo questa
      </Pulsante>
    </div>
  );
}

interface ProprietaCopia {
  riga: Riga & { tipo: "copia" };
  scelta: SceltaCopie;
  scegli: (scelta: SceltaCopie) => void;
}

function Copia({ riga, scelta, scegli }: ProprietaCopia) {
  const { percorso, insieme } = riga;
  const testo = mostrabile(percorso);
  const tenuta = percorso === scelta.tenuta;
  return (
    <div class="copia">
      <label class="copia-tieni">
        <input
          type="radio"
          name={`tieni ${primaCopia(insieme.gruppo)}`}
          checked={tenuta}
          aria-label={`Conserva ${testo}`}
          onChange={() => scegli(conTenuta(scelta, percorso))}
        />
        <Percorso percorso={percorso} />
      </label>
      {tenuta ? (
        <span class="etichetta etichetta-tenuta">Si conserva</span>
      ) : (
        <label class="copia-scarta">
          <input
            type="checkbox"
            class="casella"
            checked={scelta.via.has(percorso)}
            aria-label={`Scarta ${testo}`}
            onChange={(evento) => scegli(conVia(scelta, percorso, evento.currentTarget.checked))}
          />
          Scarta
        </label>
      )}
      <PulsanteIcona
        Icona={FolderOpen}
        etichetta={`Mostra ${testo}`}
        onClick={() => void mostra(percorso)}
      />
    </div>
  );
}
