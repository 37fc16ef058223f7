import {
  ChevronRight,
  LayoutDashboard,
  ListChecks,
  type LucideIcon,
  Play,
  ScanSearch,
  Square,
  Trash2,
  TriangleAlert,
  Undo2,
} from "lucide-preact";
import { useEffect } from "preact/hooks";
import { alLavoro } from "../cestino";
import { Anello } from "../components/Anello";
import { Attesa } from "../components/Attesa";
import { Pulsante } from "../components/Pulsante";
import { Vista } from "../components/Vista";
import { frecce } from "../components/frecce";
import { byteSegnalati, fase, misuraDi, preclusa, statoMostrato } from "../libera";
import { caricaPermessi } from "../permessi";
import type { Sezione } from "../rotte";
import {
  disco,
  inScansione,
  libera,
  maiScansionato,
  mancanti,
  occupato,
  permessi,
  pronto,
  sezioni,
  ultimaScansione,
  vista,
} from "../store";
import { conDimensioni, dimensione, numero, quando, quanti } from "../testo";
import type { Vista as DatiVista } from "../vista";
import logo from "../../../resources/icons/pellak-cleaner.svg";
import { interrompi, scansiona } from "./Sezione";
import "./Panoramica.css";

export const panoramica: DatiVista = {
  id: "panoramica",
  nome: "Panoramica",
  gruppo: "inizio",
  Icona: LayoutDashboard,
  Contenuto: Panoramica,
  scansiona: () => void scansiona("all"),
};

function Panoramica() {
  useEffect(() => void caricaPermessi(), [occupato.value]);
  if (!pronto.value)
    return (
      <Vista titolo="Panoramica">
        <Attesa />
      </Vista>
    );
  return (
    <Vista titolo="Panoramica" azioni={<Azioni />}>
      {permessi.value?.fda_denied && <StrisciaPermessi />}
      {primaScansione() ? <PrimaScansione /> : maiScansionato.value ? <Benvenuto /> : <Cifra />}
      {disco.value && <SpazioDisco />}
      {(!maiScansionato.value || occupato.value) && <Sezioni />}
    </Vista>
  );
}

/** Where the most can be freed: the next step after a scan. */
function Rivedi() {
  const prima = sezioni.value.reduce<Sezione | null>(
    (meglio, s) => (s.libera > (meglio?.libera ?? 0) ? s : meglio),
    null,
  );
  if (!prima) return null;
  return (
    <Pulsante
      tipo="primario"
      Icona={ListChecks}
      onClick={() => {
        vista.value = prima.id;
      }}
    >
      Rivedi {dimensione(libera.value)}
    </Pulsante>
  );
}

function Azioni() {
  if (occupato.value) {
    return (
      <Pulsante Icona={Square} onClick={() => void interrompi()}>
        Interrompi
      </Pulsante>
    );
  }
  return (
    <>
      <Pulsante
        tipo={libera.value > 0 ? "normale" : "primario"}
        Icona={Play}
        disabled={alLavoro.value}
        onClick={() => void scansiona("all")}
      >
        Scansiona tutto
      </Pulsante>
      <Rivedi />
    </>
  );
}

function StrisciaPermessi() {
  return (
    <section class="striscia striscia-attenzione" aria-label="Permessi mancanti">
      <TriangleAlert size={17} aria-hidden="true" />
      <p class="striscia-testo">
        Alcune cartelle non sono leggibili: i risultati possono essere incompleti.
      </p>
      <Pulsante
        onClick={() => {
          vista.value = "permessi";
        }}
      >
        Vedi i permessi
      </Pulsante>
    </section>
  );
}

const PASSI: readonly (readonly [LucideIcon, string, string])[] = [
  [
    ScanSearch,
    "La scansione legge soltanto",
    "Cerca lo spazio che si può liberare e non sposta niente.",
  ],
  [Trash2, "Scegli tu che cosa togliere", "Va nel Cestino, non viene mai eliminato."],
  [
    Undo2,
    "Si torna sempre indietro",
    "Ogni spostamento è nel Registro: da lì si rimette tutto al suo posto.",
  ],
];

function Benvenuto() {
  return (
    <section class="scheda benvenuto" aria-label="Come funziona">
      <div class="benvenuto-testa">
        <img class="icona-app" src={logo} width={64} height={64} alt="" />
        <p>
          <strong>Pellak Cleaner</strong>
          <span>Trova lo spazio che si può liberare e ti lascia scegliere.</span>
        </p>
      </div>
      <ol>
        {PASSI.map(([Icona, titolo, testo]) => (
          <li key={titolo}>
            <span class="benvenuto-icona">
              <Icona size={20} aria-hidden="true" />
            </span>
            <p>
              <strong>{titolo}.</strong> {testo}
            </p>
          </li>
        ))}
      </ol>
    </section>
  );
}

/** Until the first scan of all has ended there is no sum to show: some sections have none yet. */
function primaScansione(): boolean {
  const nuove = sezioni.value.filter((s) => !s.scanned && !preclusa(s));
  return occupato.value && nuove.length > 0 && nuove.every((s) => s.scanning || s.queued);
}

/** One step for each section, filled as it is done. */
function PrimaScansione() {
  const fatte = sezioni.value.length - mancanti.value;
  const testo = `${numero(fatte)} di ${quanti(sezioni.value.length, "sezione", "sezioni")}`;
  return (
    <section class="cifra" aria-label="Prima scansione">
      <p class="cifra-parola">Prima scansione</p>
      <p class="cifra-numero">{testo}</p>
      <p class="cifra-testo">Legge soltanto, non sposta niente.</p>
      <div class="barra passi" role="img" aria-label={testo}>
        {sezioni.value.map((s) => (
          <span
            key={s.id}
            class={s.scanning ? "passo passo-attuale" : "passo"}
            {...(s.scanning || s.queued ? {} : { style: { background: `var(--sezione-${s.id})` } })}
          />
        ))}
      </div>
      <p class="cifra-stato" role="status">
        <InCorso />
      </p>
    </section>
  );
}

/** The one big figure with the bar it is made of; while a scan runs, what it is at. */
function Cifra() {
  const byte = libera.value;
  const segnalati = sezioni.value.reduce((somma, s) => somma + byteSegnalati(s.findings), 0);
  return (
    <section class="cifra" aria-label="Spazio che si libera">
      <p class="cifra-parola libera">Libera{byte > 0 && " almeno"}</p>
      <p class="cifra-numero">{dimensione(byte)}</p>
      <p class="cifra-testo">
        Lo spazio torna quando svuoti il Cestino.
        {segnalati > 0 && (
          <span class="segnalati"> Altri {dimensione(segnalati)} sono solo segnalati.</span>
        )}
      </p>
      <BarraSezioni />
      <p class="cifra-stato" role="status">
        {occupato.value ? <InCorso /> : <Ultima />}
      </p>
    </section>
  );
}

function InCorso() {
  const attuale = inScansione.value;
  return (
    <>
      <Anello etichetta="scansione in corso" />
      <span>{attuale ? nomeEFase(attuale) : "La scansione sta per cominciare"}</span>
      <span class="tenue">{quanti(mancanti.value, "sezione rimasta", "sezioni rimaste")}</span>
    </>
  );
}

function nomeEFase(sezione: Sezione): string {
  const testo = fase(sezione);
  return testo.startsWith(sezione.name) ? testo : `${sezione.name} · ${testo}`;
}

function Ultima() {
  const ultima = ultimaScansione.value;
  return ultima > 0 ? <span class="tenue">Ultima scansione: {quando(ultima)}</span> : null;
}

/** What lies in two sections is in the part of both, so the parts are shares of their own sum. */
function BarraSezioni() {
  const parti = sezioni.value.map((s) => ({ s, byte: s.libera })).filter(({ byte }) => byte > 0);
  const totale = parti.reduce((somma, { byte }) => somma + byte, 0);
  const testo = parti.map(({ s, byte }) => `${s.name} ${dimensione(byte)}`).join(", ");
  return (
    <div class="barra" role="img" aria-label={testo || "Niente da liberare"}>
      {parti.map(({ s, byte }) => (
        <span
          key={s.id}
          class="barra-parte"
          style={{ width: `${(byte / totale) * 100}%`, background: `var(--sezione-${s.id})` }}
        />
      ))}
    </div>
  );
}

function SpazioDisco() {
  const valori = disco.value;
  if (!valori || valori.totale <= 0) return null;
  const usato = valori.usato;
  const percento = Math.round((usato / valori.totale) * 100);
  const testo = `${dimensione(valori.libero)} liberi, ${dimensione(usato)} usati su ${dimensione(valori.totale)}`;
  return (
    <section class="disco" aria-label="Spazio sul disco">
      <p>
        <span>Disco</span>
        <span class="tenue">{testo}</span>
      </p>
      <div class="barra barra-bassa" role="img" aria-label={`${numero(percento)} % usato`}>
        <span class="barra-parte barra-usato" style={{ width: `${percento}%` }} />
      </div>
    </section>
  );
}

function Sezioni() {
  return (
    <ul class="sezioni" onKeyDown={frecce}>
      {sezioni.value.map((s) => (
        <li key={s.id}>
          <RigaSezione sezione={s} />
        </li>
      ))}
    </ul>
  );
}

function RigaSezione({ sezione }: { sezione: Sezione }) {
  const { testo, classe } = misuraDi(sezione);
  const attiva = !preclusa(sezione);
  return (
    <button
      type="button"
      class={attiva ? "sezioni-riga" : "sezioni-riga sezioni-spenta"}
      onClick={() => {
        vista.value = sezione.id;
      }}
    >
      <span class="pallino" style={{ background: `var(--sezione-${sezione.id})` }} />
      <span class="sezioni-nome">{sezione.name}</span>
      <span class="sezioni-stato">{statoDi(sezione)}</span>
      {attiva && sezione.scanning && <Anello etichetta="scansione in corso" />}
      {attiva && !sezione.scanning && (
        <span class={`misura ${testo ? classe : "tenue"}`}>{testo || "–"}</span>
      )}
      <ChevronRight size={15} aria-hidden="true" class="sezioni-freccia" />
    </button>
  );
}

function statoDi(sezione: Sezione): string {
  if (preclusa(sezione)) return statoMostrato(sezione);
  if (sezione.scanning) return fase(sezione);
  if (sezione.queued) return "In coda";
  if (!sezione.scanned) return sezione.status || "Mai scansionata";
  const voci = sezione.findings.reduce((somma, f) => somma + f.count, 0);
  if (voci === 0 && !sezione.disponibile) return statoMostrato(sezione);
  if (sezione.avvio_n) return quanti(sezione.avvio_n, "elemento", "elementi");
  if (sezione.apps_n)
    return `${quanti(sezione.apps_n, "app", "app")}, ${conDimensioni(sezione.apps_h ?? "")}`;
  if (sezione.denied > 0)
    return quanti(sezione.denied, "percorso non leggibile", "percorsi non leggibili");
  const segnalati = byteSegnalati(sezione.findings);
  if (segnalati > 0) return `${dimensione(segnalati)} segnalati`;
  return voci > 0 ? quanti(voci, "voce", "voci") : statoMostrato(sezione);
}
