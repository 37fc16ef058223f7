import {
  CircleSlash,
  FolderPlus,
  Play,
  ScanSearch,
  SearchX,
  Sparkles,
  Square,
} from "lucide-preact";
import { useEffect } from "preact/hooks";
import { api, invia } from "../api";
import { chiedi, scansioneBloccata } from "../cestino";
import { BarraSelezione } from "../components/BarraSelezione";
import { Anello } from "../components/Anello";
import { Attesa } from "../components/Attesa";
import { Pulsante } from "../components/Pulsante";
import { Ricerca } from "../components/Ricerca";
import { Scelta } from "../components/Scelta";
import { Vista } from "../components/Vista";
import { Vuoto } from "../components/Vuoto";
import { caricaImpostazioni } from "../impostazioni";
import { poll } from "../polling";
import type { Finding, Sezione as DatiSezione } from "../rotte";
import { preclusa, statoMostrato } from "../libera";
import { casa, cercaSezione, pronto, radici } from "../store";
import { conTilde, dimensione, mostrabile, numero, quando, quanti, senzaContenute } from "../testo";
import { LasciatiFuori } from "./LasciatiFuori";
import { Negati } from "./Negati";
import { descrizione } from "./descrizioni";
import { SchedaAvvio } from "./SchedaAvvio";
import { SchedaDuplicati } from "./SchedaDuplicati";
import { SchedaGruppi } from "./SchedaGruppi";
import { SchedaVoci } from "./SchedaVoci";
import { type Memoria, memoria } from "./memoria";
import { type Mostrata, byteMostrati, intera, quante, useMostrate } from "./mostrate";
import type { Vaglio } from "./ordine";
import {
  type Scelte,
  cestinaScelti,
  chiavi,
  conScelte,
  quantiScelti,
  riepilogo,
  sceglibile,
  senzaScelti,
  testoSeleziona,
} from "./selezione";

export async function scansiona(section: string): Promise<void> {
  if (scansioneBloccata.value) return;
  await chiedi(api("/api/scan", { section }), "Scansione");
  await poll();
}

export async function interrompi(): Promise<void> {
  await chiedi(api("/api/stop"), "Interrompi");
  await poll();
}

const ORDINI = [
  ["spazio", "Spazio"],
  ["nome", "Nome"],
] as const;

/** One section: its findings as cards, one search and one choice for all of them. */
export function Sezione({ id }: { id: string }) {
  const sezione = cercaSezione(id);
  const sua = memoria(id);
  const vaglio = { filtro: sua.filtro.value, ordine: sua.ordine.value };
  const findings = (sezione?.findings ?? []).filter((f) => f.count > 0);
  const mostrate = useMostrate(findings, vaglio);
  if (!sezione) return <Vista titolo="">{pronto.value ? null : <Attesa />}</Vista>;

  return (
    <Vista
      titolo={sezione.name}
      stato={statoConData(sezione)}
      azioni={<Azioni sezione={sezione} />}
      strumenti={
        findings.length > 0 && (
          <>
            <Ricerca
              valore={vaglio.filtro}
              cambia={(filtro) => (sua.filtro.value = filtro)}
              etichetta="Filtra schede, file, cartelle"
            />
            <Scelta
              etichetta="Ordina per"
              opzioni={ORDINI}
              valore={vaglio.ordine}
              cambia={(ordine) => (sua.ordine.value = ordine)}
            />
          </>
        )
      }
      sotto={filtrato(vaglio) && <Trovate {...{ sua, findings, mostrate }} />}
      piede={<Selezione {...{ sua, findings, mostrate }} />}
    >
      <p class="descrizione">
        {descrizione(sezione)}
        <CercaIn sezione={id} />
      </p>
      {sezione.denied > 0 && <Negati sezione={sezione} />}
      <LasciatiFuori findings={sezione.findings} />
      {mostrate.map((mostrata) => (
        <Scheda
          key={mostrata.finding.id}
          mostrata={mostrata}
          sola={findings.length === 1}
          filtro={vaglio.filtro.trim()}
          memoria={sua}
        />
      ))}
      {findings.length === 0 && <Niente sezione={sezione} />}
      {findings.length > 0 && mostrate.length === 0 && (
        <Vuoto Icona={SearchX}>
          <span>Niente corrisponde a «{mostrabile(vaglio.filtro.trim())}».</span>
          <Pulsante onClick={() => (sua.filtro.value = "")}>Cancella filtro</Pulsante>
        </Vuoto>
      )}
    </Vista>
  );
}

/** What the last scan came to, and when it was; where there is none to make, the view says so. */
function statoConData(sezione: DatiSezione): string {
  if (preclusa(sezione)) return "";
  const stato = statoMostrato(sezione) || (sezione.queued ? "In coda" : "");
  if (sezione.scanning || sezione.queued || sezione.last_scan <= 0) return stato;
  return [stato.replace(/\.$/, ""), quando(sezione.last_scan)].filter(Boolean).join(" · ");
}

const filtrato = ({ filtro }: Vaglio) => filtro.trim() !== "";

interface ProprietaScelta {
  sua: Memoria;
  findings: readonly Finding[];
  mostrate: readonly Mostrata[];
}

const somma = (valori: number[]) => valori.reduce((totale, valore) => totale + valore, 0);

/** How much the filter lets through, and the choice of all that of it. */
function Trovate({ sua, findings, mostrate }: ProprietaScelta) {
  const trovate = somma(mostrate.map(quante));
  const tutte = somma(findings.map((f) => f.items.length + f.groups.length));
  const byte = somma(mostrate.filter((m) => !m.finding.unmeasured).map(byteMostrati));
  const scelte = mostrate.filter(({ finding }) => sceglibile(finding) && finding.id !== "apps");
  const quanteScelte = somma(scelte.map(quante));
  const scegli = () => {
    sua.scelte.value = scelte.reduce<Scelte>(
      (prima, m) => conScelte(prima, m.finding.id, chiavi(m), true),
      sua.scelte.value,
    );
  };
  return (
    <div class="trovate">
      <span role="status">
        {numero(trovate)} di {quanti(tutte, "voce", "voci")}
        {byte > 0 && `, ${dimensione(byte)}`}
      </span>
      {quanteScelte > 0 && (
        <Pulsante tipo="testo" onClick={scegli}>
          {testoSeleziona(quanteScelte)}
        </Pulsante>
      )}
    </div>
  );
}

function Selezione({ sua, findings, mostrate }: ProprietaScelta) {
  const scelte = sua.scelte.value;
  if (scelte.size === 0) return null;
  const scelti = riepilogo(mostrate, scelte);
  const nascosti = quantiScelti(riepilogo(findings.map(intera), scelte)) - quantiScelti(scelti);
  const svuota = () => (sua.scelte.value = senzaScelti(sua.scelte.value, scelti));
  return (
    <BarraSelezione
      scelti={scelti}
      nascosti={nascosti}
      svuota={svuota}
      cestina={async () => {
        if (await cestinaScelti(scelti, nascosti)) svuota();
      }}
    />
  );
}

/** The folders that the search of this section enters. */
function CercaIn({ sezione }: { sezione: string }) {
  useEffect(() => {
    if (sezione in SEZIONI_CON_RADICI) void caricaImpostazioni();
  }, [sezione]);
  const luoghi = senzaContenute(radici.value[sezione] ?? []);
  if (luoghi.length === 0) return null;
  const testo = luoghi.map((luogo) => mostrabile(conTilde(luogo, casa.value))).join(", ");
  return <span class="descrizione-luoghi">Cerca in: {testo}.</span>;
}

const SEZIONI_CON_RADICI = { duplicati: true, grandi: true };

export interface ProprietaScheda {
  mostrata: Mostrata;
  /** The only finding of its section: shown open. */
  sola: boolean;
  /** Empty when nothing is filtered. */
  filtro: string;
  memoria: Memoria;
}

function Scheda(props: ProprietaScheda) {
  const { finding } = props.mostrata;
  if (finding.id === "duplicates") return <SchedaDuplicati {...props} />;
  if (finding.kind.startsWith("avvio")) return <SchedaAvvio {...props} />;
  return finding.groups.length > 0 ? <SchedaGruppi {...props} /> : <SchedaVoci {...props} />;
}

function Azioni({ sezione }: { sezione: DatiSezione }) {
  if (preclusa(sezione)) return null;
  if (sezione.scanning || sezione.queued) {
    return (
      <>
        {sezione.scanning && <Anello etichetta="scansione in corso" />}
        <Pulsante Icona={Square} onClick={() => void interrompi()}>
          Interrompi
        </Pulsante>
      </>
    );
  }
  return (
    <>
      {sezione.id === "duplicati" && (
        <Pulsante Icona={FolderPlus} onClick={() => invia("pickFolder")}>
          Escludi cartelle…
        </Pulsante>
      )}
      <Pulsante
        tipo={sezione.scanned ? "normale" : "primario"}
        Icona={Play}
        disabled={scansioneBloccata.value}
        onClick={() => void scansiona(sezione.id)}
      >
        Scansiona
      </Pulsante>
    </>
  );
}

function Niente({ sezione }: { sezione: DatiSezione }) {
  if (preclusa(sezione)) return <Vuoto Icona={CircleSlash}>{statoMostrato(sezione)}</Vuoto>;
  if (sezione.scanning || sezione.queued) return <Attesa />;
  if (!sezione.scanned)
    return <Vuoto Icona={ScanSearch}>Questa sezione non è ancora stata scansionata.</Vuoto>;
  if (sezione.denied > 0) return null;
  if (!sezione.disponibile) return <Vuoto Icona={ScanSearch}>{statoMostrato(sezione)}</Vuoto>;
  // A scan that failed, or had nothing to look at, says so itself.
  const pulita = sezione.status.startsWith("Recuperabili") || sezione.status === "";
  return <Vuoto Icona={Sparkles}>{pulita ? "Niente da segnalare." : sezione.status}</Vuoto>;
}
