import { CircleAlert, CircleCheck, Lock } from "lucide-preact";
import { useId } from "preact/hooks";
import { frase, mostrabile } from "../testo";
import { Avanzamento } from "./Avanzamento";
import { Pulsante } from "./Pulsante";
import "./SchedaAttivita.css";

/** How far something that runs in stages has come. */
export type Andamento =
  | { stato: "ferma" }
  | { stato: "corre"; fase: string; /** Absent while it can't be told. */ percento?: number }
  | { stato: "riuscita"; testo: string }
  | { stato: "fallita"; err: string };

interface Proprieta {
  titolo: string;
  /** What it does, in a sentence. */
  testo: string;
  /** The system asks for the administrator's password. */
  password?: boolean;
  /** All stages in their order, where there are several. */
  fasi?: readonly string[];
  andamento: Andamento;
  azione: string;
  esegui: () => void;
  interrompi?: () => void;
  disabled?: boolean;
}

/** Something that runs when asked: what it does, how far it is, what came of it. */
export function SchedaAttivita(props: Proprieta) {
  const { titolo, testo, password, andamento, azione, esegui, interrompi, disabled } = props;
  const id = useId();
  const corre = andamento.stato === "corre";
  return (
    <section class="scheda attivita" aria-labelledby={id}>
      <div class="attivita-testa">
        <div class="attivita-titoli">
          <h2 id={id}>{titolo}</h2>
          {password && (
            <span class="etichetta">
              <Lock size={11} aria-hidden="true" /> chiede la password
            </span>
          )}
        </div>
        {corre && interrompi ? (
          <Pulsante onClick={interrompi}>Interrompi</Pulsante>
        ) : (
          <Pulsante disabled={corre || (disabled ?? false)} onClick={esegui}>
            {azione}
          </Pulsante>
        )}
      </div>
      <p class="attivita-testo">{testo}</p>
      {corre && <Corsa {...andamento} fasi={props.fasi ?? []} />}
      <div role="status">
        {andamento.stato === "riuscita" && (
          <p class="attivita-esito attivita-riuscita">
            <CircleCheck size={15} aria-hidden="true" />
            {mostrabile(andamento.testo)}
          </p>
        )}
        {andamento.stato === "fallita" && (
          <p class="attivita-esito attivita-fallita">
            <CircleAlert size={15} aria-hidden="true" />
            {mostrabile(frase(andamento.err))}.
          </p>
        )}
      </div>
    </section>
  );
}

interface ProprietaCorsa {
  fase: string;
  percento?: number;
  fasi: readonly string[];
}

function Corsa({ fase, percento, fasi }: ProprietaCorsa) {
  const qui = fasi.indexOf(fase);
  return (
    <div class="attivita-corsa">
      {fasi.length > 1 && (
        <ol class="attivita-fasi">
          {fasi.map((nome, i) => (
            <li key={nome} aria-current={i === qui ? "step" : undefined} data-fatta={i < qui}>
              {nome}
            </li>
          ))}
        </ol>
      )}
      <Avanzamento etichetta={fase} quota={percento === undefined ? null : percento / 100} />
      <p class="attivita-quanto">
        <span>{fase}</span>
        {percento !== undefined && <span class="misura">{Math.round(percento)} %</span>}
      </p>
    </div>
  );
}
