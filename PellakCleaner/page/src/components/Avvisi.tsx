import { CircleAlert, CircleCheck, Square, Trash2, Undo2, X } from "lucide-preact";
import { useEffect, useRef } from "preact/hooks";
import { type Avviso, avviso, chiudiAvviso, passeggero } from "../avvisi";
import { alLavoro, apriCestino, fermaLavoro, lavoro, ripristina } from "../cestino";
import { casa } from "../store";
import { conTilde, frase, mostrabile, numero, quanti } from "../testo";
import { Anello } from "./Anello";
import { Avanzamento } from "./Avanzamento";
import { Pulsante, PulsanteIcona } from "./Pulsante";
import "./PiedeAzioni.css";
import "./Avvisi.css";

const MAX_FALLITI = 50;

/** What runs, in any view; else what the last action of this view led to, with the way back. */
export function Avvisi() {
  const attuale = avviso.value;
  return (
    <div class="avvisi" role={attuale?.tono === "errore" ? "alert" : "status"}>
      {lavoro.value && <InCorso />}
      {!lavoro.value && attuale && <UnAvviso avviso={attuale} />}
    </div>
  );
}

function InCorso() {
  const attuale = lavoro.value;
  if (!attuale) return null;
  const { nome, fatti, totale, intero, fermato } = attuale;
  const quante = intero ? numero(totale) : `${numero(fatti)} di ${numero(totale)}`;
  return (
    <div class="piede avviso avviso-attesa">
      <Anello etichetta="attesa" />
      <p class="avviso-testo">
        {nome}
        {totale > 1 && <span class="misura"> {quante}</span>}
      </p>
      {totale > 1 && <Avanzamento etichetta={nome} quota={intero ? null : fatti / totale} />}
      {!intero && (
        <Pulsante Icona={Square} disabled={fermato} onClick={fermaLavoro}>
          {fermato ? "Mi fermo…" : "Interrompi"}
        </Pulsante>
      )}
    </div>
  );
}

/** How long a notice stays from which nothing can be done. */
const PERMANENZA = 8000;

/** Takes the notice away after a while, later while the pointer or the focus is on it. */
function useCongedo(mostrato: Avviso, striscia: { current: HTMLElement | null }): void {
  useEffect(() => {
    if (!passeggero(mostrato)) return;
    const orologio = window.setInterval(() => {
      if (!striscia.current?.matches(":hover, :focus-within")) chiudiAvviso(mostrato);
    }, PERMANENZA);
    return () => window.clearInterval(orologio);
  }, [mostrato]);
}

function UnAvviso({ avviso: attuale }: { avviso: Avviso }) {
  const striscia = useRef<HTMLDivElement>(null);
  useCongedo(attuale, striscia);
  // The button that led here is often gone: who goes by the keyboard goes on from the notice.
  useEffect(() => {
    const conTasti = "tasti" in document.documentElement.dataset;
    if (conTasti && document.activeElement === document.body) striscia.current?.focus();
  }, [attuale]);
  return (
    <div class={`piede avviso avviso-${attuale.tono}`} ref={striscia} tabIndex={-1}>
      {attuale.tono === "errore" ? (
        <CircleAlert size={17} aria-hidden="true" />
      ) : (
        <CircleCheck size={17} aria-hidden="true" />
      )}
      <div class="avviso-testo">
        <p>{mostrabile(attuale.testo)}</p>
        {attuale.nelCestino && <p class="sotto">Lo spazio torna quando svuoti il Cestino.</p>}
        {attuale.falliti.length > 0 && <Falliti falliti={attuale.falliti} />}
      </div>
      <div class="avviso-azioni">
        {attuale.nelCestino && (
          <Pulsante Icona={Trash2} onClick={() => void apriCestino()}>
            Apri il Cestino
          </Pulsante>
        )}
        {attuale.operazioni.length > 0 && (
          <Pulsante
            Icona={Undo2}
            disabled={alLavoro.value}
            onClick={() => void ripristina(attuale.operazioni)}
          >
            Rimetti a posto
          </Pulsante>
        )}
        <PulsanteIcona Icona={X} etichetta="Chiudi avviso" onClick={() => chiudiAvviso(attuale)} />
      </div>
    </div>
  );
}

function Falliti({ falliti }: { falliti: { cosa: string; perche: string }[] }) {
  const mostrati = falliti.slice(0, MAX_FALLITI);
  return (
    <ul class="avviso-falliti">
      {mostrati.map(({ cosa, perche }, i) => (
        <li key={i}>
          {cosa && <bdi class="avviso-cosa">{mostrabile(conTilde(cosa, casa.value))}</bdi>}
          <span>{mostrabile(cosa ? perche : frase(perche))}</span>
        </li>
      ))}
      {falliti.length > MAX_FALLITI && (
        <li>{quanti(falliti.length - MAX_FALLITI, "altro caso", "altri casi")}</li>
      )}
    </ul>
  );
}
