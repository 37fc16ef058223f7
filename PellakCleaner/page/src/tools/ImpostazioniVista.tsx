import { FolderPlus, RotateCcw, Settings, X } from "lucide-preact";
import { useEffect, useId } from "preact/hooks";
import { invia } from "../api";
import { Attesa } from "../components/Attesa";
import { CampoNumero } from "../components/CampoNumero";
import { Interruttore } from "../components/Interruttore";
import { Percorso } from "../components/Percorso";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Vista } from "../components/Vista";
import { conferma } from "../dialogo";
import { azzera, cambia, caricaImpostazioni, togliEsclusa } from "../impostazioni";
import type { Impostazioni } from "../rotte";
import { impostazioni, limiti } from "../store";
import { mostrabile } from "../testo";
import type { Vista as DatiVista } from "../vista";
import { type ChiaveInteri, type ChiaveSiNo, schede } from "./voci";
import "./Impostazioni.css";

export const impostazioniVista: DatiVista = {
  id: "impostazioni",
  nome: "Impostazioni",
  gruppo: "programma",
  Icona: Settings,
  Contenuto: ImpostazioniVista,
};

async function ripristina(): Promise<void> {
  const si = await conferma({
    titolo: "Ripristinare le impostazioni iniziali?",
    righe: [
      {
        testo:
          "Tutti i valori tornano quelli iniziali, l'elenco delle cartelle escluse si svuota e " +
          "l'avvio automatico si spegne.",
      },
    ],
    conferma: "Ripristina",
  });
  if (si) await azzera();
}

/** Every setting with its range; each change is saved at once. */
function ImpostazioniVista() {
  useEffect(() => void caricaImpostazioni(true), []);
  const valori = impostazioni.value;
  return (
    <Vista
      titolo="Impostazioni"
      stato="Ogni modifica si salva subito."
      azioni={
        <Pulsante Icona={RotateCcw} disabled={!valori} onClick={() => void ripristina()}>
          Valori iniziali
        </Pulsante>
      }
    >
      {!valori && <Attesa />}
      {valori &&
        schede.map(({ titolo, interi, siNo, escluse }) => (
          <section class="scheda righe" key={titolo} aria-label={titolo}>
            <h2 class="righe-titolo">{titolo}</h2>
            {interi.map(({ chiave, nome, unita, nota }) => (
              <RigaIntero key={chiave} {...{ chiave, nome, unita, nota, valori }} />
            ))}
            {siNo.map(({ chiave, nome, nota }) => (
              <RigaSiNo key={chiave} {...{ chiave, nome, nota, valori }} />
            ))}
            {escluse && <Escluse percorsi={valori.dup_exclude} />}
          </section>
        ))}
    </Vista>
  );
}

interface ProprietaRiga<C> {
  chiave: C;
  nome: string;
  nota?: string | undefined;
  valori: Impostazioni;
}

function RigaIntero(props: ProprietaRiga<ChiaveInteri> & { unita: string }) {
  const { chiave, nome, unita, nota, valori } = props;
  const [minimo, massimo] = limiti.value[chiave] ?? [0, Number.MAX_SAFE_INTEGER];
  const id = useId();
  return (
    <div class="riga-impostazione">
      <label class="cella-nome" for={id}>
        <span class="nome">{nome}</span>
        {nota && <span class="sotto">{nota}</span>}
      </label>
      <CampoNumero
        id={id}
        valore={valori[chiave]}
        minimo={minimo}
        massimo={massimo}
        unita={unita}
        salva={(valore) => cambia({ [chiave]: valore })}
      />
    </div>
  );
}

function RigaSiNo({ chiave, nome, nota, valori }: ProprietaRiga<ChiaveSiNo>) {
  return (
    <div class="riga-impostazione">
      <div class="cella-nome">
        <span class="nome">{nome}</span>
        {nota && <span class="sotto">{nota}</span>}
      </div>
      <Interruttore
        etichetta={nome}
        acceso={valori[chiave]}
        cambia={(acceso) => void cambia({ [chiave]: acceso })}
      />
    </div>
  );
}

function Escluse({ percorsi }: { percorsi: string[] }) {
  return (
    <div class="escluse">
      <div class="riga-impostazione">
        <div class="cella-nome">
          <span class="nome">Cartelle escluse</span>
          <span class="sotto">La ricerca dei duplicati non vi entra.</span>
        </div>
        <Pulsante Icona={FolderPlus} onClick={() => invia("pickFolder")}>
          Aggiungi…
        </Pulsante>
      </div>
      {percorsi.length > 0 && (
        <ul>
          {percorsi.map((percorso) => (
            <li key={percorso} class="riga-percorso">
              <Percorso percorso={percorso} />
              <PulsanteIcona
                Icona={X}
                etichetta={`Togli ${mostrabile(percorso)}`}
                onClick={() => void togliEsclusa(percorso)}
              />
            </li>
          ))}
        </ul>
      )}
    </div>
  );
}
