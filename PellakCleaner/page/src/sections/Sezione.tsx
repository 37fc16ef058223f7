import { FolderPlus, Play, ScanSearch, Sparkles, Square } from "lucide-preact";
import { useState } from "preact/hooks";
import { api, invia } from "../api";
import { alLavoro, chiedi } from "../cestino";
import { BarraSelezione } from "../components/BarraSelezione";
import { Anello } from "../components/Anello";
import { Pulsante } from "../components/Pulsante";
import { Ricerca } from "../components/Ricerca";
import { Scelta } from "../components/Scelta";
import { Vista } from "../components/Vista";
import { Vuoto } from "../components/Vuoto";
import { poll } from "../polling";
import type { Finding, Sezione as DatiSezione } from "../rotte";
import { statoMostrato } from "../libera";
import { cercaSezione, occupato, pronto } from "../store";
import { quando } from "../testo";
import { LasciatiFuori } from "./LasciatiFuori";
import { Negati } from "./Negati";
import { descrizione } from "./descrizioni";
import { SchedaAvvio } from "./SchedaAvvio";
import { SchedaDuplicati } from "./SchedaDuplicati";
import { SchedaGruppi } from "./SchedaGruppi";
import { SchedaVoci } from "./SchedaVoci";
import type { Ordine, Vaglio } from "./ordine";
import { type Scelte, cestinaScelti, conScelte, riepilogo } from "./selezione";

export async function scansiona(section: string): Promise<void> {
  if (occupato.value || alLavoro.value) return;
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
  const [filtro, setFiltro] = useState("");
  const [ordine, setOrdine] = useState<Ordine>("spazio");
  const [scelte, setScelte] = useState<Scelte>(new Map());
  if (!sezione) return <Vista titolo="">{pronto.value ? null : <Attesa />}</Vista>;

  const findings = sezione.findings.filter((f) => f.count > 0);
  const scelti = riepilogo(findings, scelte);
  return (
    <Vista
      titolo={sezione.name}
      stato={statoConData(sezione)}
      azioni={<Azioni sezione={sezione} />}
      strumenti={
        findings.length > 0 && (
          <>
            <Ricerca valore={filtro} cambia={setFiltro} etichetta="Filtra per nome" />
            <Scelta etichetta="Ordina per" opzioni={ORDINI} valore={ordine} cambia={setOrdine} />
          </>
        )
      }
      piede={
        <BarraSelezione
          scelti={scelti}
          svuota={() => setScelte(new Map())}
          cestina={async () => {
            if (await cestinaScelti(scelti)) setScelte(new Map());
          }}
        />
      }
    >
      <p class="descrizione">{descrizione(sezione)}</p>
      {sezione.denied > 0 && <Negati sezione={sezione} />}
      <LasciatiFuori findings={sezione.findings} />
      {findings.map((finding) => (
        <Scheda
          key={finding.id}
          finding={finding}
          sola={findings.length === 1}
          vaglio={{ filtro, ordine }}
          scelte={scelte.get(finding.id)}
          scegli={(quali, si) => setScelte((prima) => conScelte(prima, finding.id, quali, si))}
        />
      ))}
      {findings.length === 0 && <Niente sezione={sezione} />}
    </Vista>
  );
}

/** What the last scan came to, and when it was. */
function statoConData(sezione: DatiSezione): string {
  const stato = statoMostrato(sezione) || (sezione.queued ? "In coda" : "");
  if (sezione.scanning || sezione.queued || sezione.last_scan <= 0) return stato;
  return [stato.replace(/\.$/, ""), quando(sezione.last_scan)].filter(Boolean).join(" · ");
}

export interface ProprietaScheda {
  finding: Finding;
  /** The only finding of its section: shown open. */
  sola: boolean;
  vaglio: Vaglio;
  scelte: ReadonlySet<string> | undefined;
  scegli: (chiavi: string[], si: boolean) => void;
}

function Scheda(props: ProprietaScheda) {
  const { finding } = props;
  if (finding.id === "duplicates") return <SchedaDuplicati {...props} />;
  if (finding.kind.startsWith("avvio")) return <SchedaAvvio {...props} />;
  return finding.groups.length > 0 ? <SchedaGruppi {...props} /> : <SchedaVoci {...props} />;
}

function Azioni({ sezione }: { sezione: DatiSezione }) {
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
        disabled={occupato.value || alLavoro.value}
        onClick={() => void scansiona(sezione.id)}
      >
        Scansiona
      </Pulsante>
    </>
  );
}

function Niente({ sezione }: { sezione: DatiSezione }) {
  if (sezione.scanning || sezione.queued) return <Attesa />;
  if (!sezione.scanned)
    return <Vuoto Icona={ScanSearch}>Questa sezione non è ancora stata scansionata.</Vuoto>;
  if (sezione.denied > 0) return null;
  if (!sezione.disponibile) return <Vuoto Icona={ScanSearch}>{statoMostrato(sezione)}</Vuoto>;
  // A scan that failed, or had nothing to look at, says so itself.
  const pulita = sezione.status.startsWith("Recuperabili") || sezione.status === "";
  return <Vuoto Icona={Sparkles}>{pulita ? "Niente da segnalare." : sezione.status}</Vuoto>;
}

function Attesa() {
  return (
    <div class="vuoto">
      <Anello etichetta="attesa" grande />
    </div>
  );
}
