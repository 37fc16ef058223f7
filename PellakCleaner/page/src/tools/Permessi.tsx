import { Check, Lock, RefreshCw, ShieldCheck } from "lucide-preact";
import { useEffect } from "preact/hooks";
import { api, invia } from "../api";
import { chiedi } from "../cestino";
import { Percorso } from "../components/Percorso";
import { Pulsante } from "../components/Pulsante";
import { Vista } from "../components/Vista";
import { conferma } from "../dialogo";
import { caricaPermessi } from "../permessi";
import type { RispostaPermessi } from "../rotte";
import { permessi, suMac } from "../store";
import { mostrabile } from "../testo";
import type { Vista as DatiVista } from "../vista";

export const permessiVista: DatiVista = {
  id: "permessi",
  nome: "Permessi",
  gruppo: "programma",
  Icona: ShieldCheck,
  Contenuto: Permessi,
};

async function apriImpostazioniDiSistema(): Promise<void> {
  if (await chiedi(api("/api/perms/fda"), "Impostazioni di sistema")) invia("fdaPending");
}

async function riavvia(): Promise<void> {
  const si = await conferma({
    titolo: "Riavviare Pellak Cleaner?",
    righe: [{ testo: "Un permesso appena concesso vale dal prossimo avvio." }],
    conferma: "Riavvia ora",
  });
  if (si) invia("restart");
}

/** Which protected places can be read, and what to do about the others. */
function Permessi() {
  useEffect(() => void caricaPermessi(), []);
  const dati = permessi.value;
  return (
    <Vista
      titolo="Permessi"
      stato={dati && (dati.fda_denied ? "Alcune cartelle non sono leggibili." : "Tutto leggibile.")}
      azioni={
        <Pulsante Icona={RefreshCw} onClick={() => void caricaPermessi()}>
          Ricontrolla
        </Pulsante>
      }
    >
      <p class="descrizione">
        Pellak Cleaner legge solo ciò che il sistema gli permette. Quello che non è leggibile manca
        dai risultati e viene contato, sezione per sezione.
      </p>
      {dati && <Luoghi dati={dati} />}
      {dati?.fda_denied && <Rimedio />}
    </Vista>
  );
}

function Luoghi({ dati }: { dati: RispostaPermessi }) {
  return (
    <ul class="scheda righe">
      {dati.luoghi.map((luogo) => (
        <li key={luogo.percorso} class="riga-permesso">
          <div class="cella-nome">
            <span class="nome">{mostrabile(luogo.nome)}</span>
            <Percorso percorso={luogo.percorso} classe="sotto" />
          </div>
          {luogo.leggibile ? (
            <span class="esito esito-si">
              <Check size={15} aria-hidden="true" /> leggibile
            </span>
          ) : (
            <span class="esito esito-no">
              <Lock size={14} aria-hidden="true" />{" "}
              {luogo.fda_denied ? "accesso negato" : "non leggibile"}
            </span>
          )}
        </li>
      ))}
    </ul>
  );
}

function Rimedio() {
  if (!suMac.value) {
    return (
      <section class="scheda testo">
        <h2>Che cosa fare</h2>
        <p>
          I luoghi con accesso negato appartengono al sistema o a un altro utente. La pulizia della
          tua cartella funziona anche senza; per leggerli avvia il programma da un utente che ne ha
          il diritto.
        </p>
      </section>
    );
  }
  return (
    <section class="scheda testo">
      <h2>Come concedere l'accesso</h2>
      <ol>
        <li>Apri l'elenco Accesso completo al disco nelle impostazioni di sistema.</li>
        <li>Attiva Pellak Cleaner.</li>
        <li>Riavvia Pellak Cleaner.</li>
      </ol>
      <div class="scheda-azioni">
        <Pulsante tipo="primario" onClick={() => void apriImpostazioniDiSistema()}>
          Apri l'elenco
        </Pulsante>
        <Pulsante onClick={() => void riavvia()}>Riavvia</Pulsante>
      </div>
    </section>
  );
}
