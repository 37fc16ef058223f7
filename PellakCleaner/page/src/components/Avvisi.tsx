import { CircleAlert, CircleCheck, Undo2, X } from "lucide-preact";
import { useEffect, useRef } from "preact/hooks";
import { avviso, chiudiAvviso } from "../avvisi";
import { alLavoro, ripristina } from "../cestino";
import { casa } from "../store";
import { conTilde, frase, mostrabile, quanti } from "../testo";
import { Anello } from "./Anello";
import { Pulsante, PulsanteIcona } from "./Pulsante";
import "./Avvisi.css";

const MAX_FALLITI = 50;

/** What the last action led to, with the way back. */
export function Avvisi() {
  const attuale = avviso.value;
  const striscia = useRef<HTMLDivElement>(null);
  // The button that led here is often gone: the keyboard goes on from the notice then.
  useEffect(() => {
    if (document.activeElement === document.body) striscia.current?.focus();
  }, [attuale]);
  return (
    <div class="avvisi" role={attuale?.tono === "errore" ? "alert" : "status"}>
      {!attuale && alLavoro.value && (
        <div class="avviso avviso-attesa">
          <Anello etichetta="attesa" />
          <p class="avviso-testo">Operazione in corso</p>
        </div>
      )}
      {attuale && (
        <div class={`avviso avviso-${attuale.tono}`} ref={striscia} tabIndex={-1}>
          {attuale.tono === "errore" ? (
            <CircleAlert size={17} aria-hidden="true" />
          ) : (
            <CircleCheck size={17} aria-hidden="true" />
          )}
          <div class="avviso-testo">
            <p>{mostrabile(attuale.testo)}</p>
            {attuale.falliti.length > 0 && <Falliti falliti={attuale.falliti} />}
          </div>
          {attuale.operazioni.length > 0 && (
            <Pulsante
              Icona={Undo2}
              disabled={alLavoro.value}
              onClick={() => void ripristina(attuale.operazioni)}
            >
              Annulla
            </Pulsante>
          )}
          <PulsanteIcona Icona={X} etichetta="Chiudi avviso" onClick={chiudiAvviso} />
        </div>
      )}
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
