import { signal } from "@preact/signals";
import { ShieldOff } from "lucide-preact";
import { render } from "preact";
import { useEffect } from "preact/hooks";
import "../../src/styles/tokens.css";
import "../../src/styles/base.css";
import "../../src/styles/comuni.css";
import { Casella } from "../../src/components/Casella";
import { CifreVive } from "../../src/components/CifreVive";
import { Grafico } from "../../src/components/Grafico";
import { Interruttore } from "../../src/components/Interruttore";
import { NonDisponibile } from "../../src/components/NonDisponibile";
import { PiedeAzioni } from "../../src/components/PiedeAzioni";
import { Quadrante } from "../../src/components/Quadrante";
import { SchedaAttivita } from "../../src/components/SchedaAttivita";
import { Scelta } from "../../src/components/Scelta";
import { CellaConBarra, type Colonna, Tabella, statoTabella } from "../../src/components/Tabella";
import { Vista } from "../../src/components/Vista";
import { seguiTasti } from "../../src/tasti";
import { type Processo, processi, serie } from "./dati";

/** The parts that stand for themselves, each in its states; made-up values, no program behind. */

const pannello = signal("tabella");
const giro = signal(0);
Object.assign(window, {
  mostraPannello: (nome: string) => (pannello.value = nome),
  aggiorna: () => (giro.value += 1),
});

const percento = (valore: number) => `${valore.toFixed(1).replace(".", ",")} %`;
const colonna = (
  chiave: keyof Processo,
  titolo: string,
  larghezza: string,
  altro: Partial<Colonna<Processo>> = {},
): Colonna<Processo> => ({
  chiave,
  titolo,
  larghezza,
  numerica: true,
  valore: (p) => p[chiave],
  cella: (p) => p[chiave],
  ...altro,
});
const colonne = [
  colonna("nome", "Processo", "minmax(120px, 1fr)", { numerica: false }),
  colonna("pid", "PID", "64px", { cedevole: true }),
  colonna("cpu", "Processore", "96px", {
    cella: (p) => <CellaConBarra quota={p.cpu / 100}>{percento(p.cpu)}</CellaConBarra>,
  }),
  colonna("memoria", "Memoria", "96px", { cella: (p) => `${p.memoria} MiB` }),
];
const stato = statoTabella("cpu", true);

function PannelloTabella() {
  const grafico = (
    <Grafico nome="Processore" serie={serie} massimo={100} formato={(v) => percento(v)} />
  );
  return (
    <Vista
      titolo="Processi"
      piena
      sotto={
        <CifreVive
          lette={Date.now()}
          cifre={[
            { nome: "Processore", valore: "38,5 %", grafico },
            { nome: "Carico", valore: "1,42 · 0,98 · 0,77" },
            { nome: "Memoria", valore: "5,1 di 7,6 GiB" },
          ]}
        />
      }
      piede={
        <PiedeAzioni
          etichetta="Modifiche"
          testo="3 modifiche in sospeso"
          azioni={[
            { testo: "Annulla modifiche", tipo: "testo", esegui: () => undefined },
            {
              testo: "Applica (chiede la password)",
              tipo: "primario",
              esegui: () => undefined,
            },
          ]}
        />
      }
    >
      <Tabella
        etichetta="Processi"
        colonne={colonne}
        voci={processi(giro.value)}
        chiave={(p) => `${p.pid}/${p.avvio}`}
        stato={stato}
      />
    </Vista>
  );
}

const FASI = ["Scarico", "Verifica", "Installazione"];
const niente = () => undefined;

function PannelloSchede() {
  return (
    <Vista titolo="Manutenzione">
      <SchedaAttivita
        titolo="Svuota la cache dei nomi"
        testo="Il sistema chiede di nuovo gli indirizzi dei siti. Non tocca nessun file."
        andamento={{ stato: "ferma" }}
        azione="Esegui"
        esegui={niente}
      />
      <SchedaAttivita
        titolo="Taccuino 2.1 → 2.4"
        testo="Scarica la versione nuova e sostituisce quella installata."
        password
        fasi={FASI}
        andamento={{ stato: "corre", fase: "Verifica", percento: 64 }}
        azione="Aggiorna"
        esegui={niente}
        interrompi={niente}
      />
      <SchedaAttivita
        titolo="Ricostruisci l'elenco dei caratteri"
        testo="Utile quando un carattere non si vede."
        andamento={{ stato: "corre", fase: "Ricostruzione in corso" }}
        azione="Esegui"
        esegui={niente}
      />
      <SchedaAttivita
        titolo="Controlla il disco"
        testo="Legge lo stato che il disco dice di sé."
        password
        andamento={{ stato: "riuscita", testo: "Stato del disco: buono." }}
        azione="Esegui"
        esegui={niente}
      />
      <SchedaAttivita
        titolo="Ricostruisci l'elenco delle app"
        testo="Aggiorna le associazioni tra file e app."
        andamento={{ stato: "fallita", err: "autorizzazione negata" }}
        azione="Riprova"
        esegui={niente}
      />
    </Vista>
  );
}

function PannelloQuadranti() {
  return (
    <Vista titolo="Batteria">
      <div style={{ display: "flex", flexWrap: "wrap", gap: "24px", marginBottom: "24px" }}>
        <Quadrante nome="Carica" percento={82} nota="in carica" tono="buono" />
        <Quadrante nome="Salute" percento={91} />
        <Quadrante nome="Carica" percento={7} nota="da caricare" tono="attenzione" />
        <Quadrante nome="Carica" percento={0} />
        <Quadrante nome="Carica" percento={100} nota="carica" tono="buono" />
      </div>
      <Grafico
        nome="Potenza"
        serie={serie}
        formato={(v) => `${v.toFixed(0)} W`}
        largo={420}
        alto={72}
      />
      <p class="righe-titolo">
        <Grafico nome="Rete" serie={[]} formato={String} />
      </p>
    </Vista>
  );
}

const ordine = signal<"spazio" | "nome">("spazio");
const spunta = signal<boolean | "parte">(true);

function PannelloComandi() {
  return (
    <Vista titolo="Comandi">
      <section class="scheda testo" aria-label="Comandi">
        <p style={{ display: "flex", alignItems: "center", gap: "16px", flexWrap: "wrap" }}>
          <Casella stato={spunta.value} cambia={(si) => (spunta.value = si)} etichetta="scelta" />
          <Casella stato="parte" cambia={niente} etichetta="in parte" />
          <Casella stato={false} cambia={niente} etichetta="vuota" />
          <Casella stato={true} cambia={niente} etichetta="spenta e scelta" disabled />
          <Casella stato={false} cambia={niente} etichetta="spenta" disabled />
          <input type="radio" name="r" aria-label="radio scelta" checked />
          <input type="radio" name="r" aria-label="radio vuota" />
          <Interruttore acceso etichetta="acceso" cambia={niente} />
          <Interruttore acceso={false} etichetta="spento" cambia={niente} />
          <Scelta
            etichetta="Ordina per"
            opzioni={[
              ["spazio", "Spazio"],
              ["nome", "Nome"],
            ]}
            valore={ordine.value}
            cambia={(v) => (ordine.value = v)}
          />
        </p>
      </section>
      <NonDisponibile
        Icona={ShieldOff}
        nome="Firewall"
        motivo="questo sistema non ha un firewall per programma; ne regola uno ufw."
      />
    </Vista>
  );
}

const pannelli: Record<string, () => preact.JSX.Element> = {
  tabella: PannelloTabella,
  schede: PannelloSchede,
  quadranti: PannelloQuadranti,
  comandi: PannelloComandi,
};

function Galleria() {
  useEffect(seguiTasti, []);
  const Pannello = pannelli[pannello.value] ?? PannelloTabella;
  return (
    <div style={{ display: "grid", height: "100%" }}>
      <Pannello />
    </div>
  );
}

const pagina = document.getElementById("pagina");
if (pagina) render(<Galleria />, pagina);
