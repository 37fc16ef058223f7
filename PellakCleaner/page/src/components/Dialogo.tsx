import { useLayoutEffect, useRef } from "preact/hooks";
import { type Domanda, type Elenco, domanda } from "../dialogo";
import { mostrabile } from "../testo";
import { Percorso } from "./Percorso";
import { Pulsante } from "./Pulsante";
import { conModali, rendiModale } from "./modale";
import "./Dialogo.css";

/** The open question. Esc and "Annulla" dismiss it. */
export function Dialogo() {
  const aperta = domanda.value;
  return aperta && <Aperto key={aperta.titolo} aperta={aperta} />;
}

function Aperto({ aperta }: { aperta: Domanda & { rispondi: (si: boolean) => void } }) {
  const finestra = useRef<HTMLDialogElement>(null);
  useLayoutEffect(() => {
    const prima = document.activeElement;
    let lascia: (() => void) | undefined;
    if (conModali) finestra.current?.showModal();
    else if (finestra.current) lascia = rendiModale(finestra.current, () => aperta.rispondi(false));
    return () => {
      lascia?.();
      if (prima instanceof HTMLElement) prima.focus();
    };
  }, []);
  return (
    <>
      {!conModali && <div class="dialogo-velo" />}
      <dialog
        ref={finestra}
        class={conModali ? "dialogo" : "dialogo dialogo-a-mano"}
        role={conModali ? undefined : "dialog"}
        aria-modal={conModali ? undefined : "true"}
        open={!conModali}
        aria-labelledby="dialogo-titolo"
        onCancel={(evento) => {
          evento.preventDefault();
          aperta.rispondi(false);
        }}
      >
        <h2 id="dialogo-titolo">{aperta.titolo}</h2>
        {aperta.righe.map((riga, i) => (
          <p class="dialogo-riga" key={i}>
            <bdi>{mostrabile(riga.testo)}</bdi>
            {riga.misura && <span class="misura">{riga.misura}</span>}
          </p>
        ))}
        {aperta.elenchi?.map((elenco, i) => (
          <ElencoPercorsi key={i} {...elenco} />
        ))}
        {aperta.nota && <p class="dialogo-nota">{aperta.nota}</p>}
        <div class="dialogo-azioni">
          <Pulsante onClick={() => aperta.rispondi(false)}>Annulla</Pulsante>
          <Pulsante tipo="primario" autofocus onClick={() => aperta.rispondi(true)}>
            {aperta.conferma}
          </Pulsante>
        </div>
      </dialog>
    </>
  );
}

function ElencoPercorsi({ titolo, righe, altri }: Elenco) {
  return (
    <div class="dialogo-nomi">
      {titolo && <h3>{titolo}</h3>}
      <ul aria-label={titolo}>
        {righe.map(({ percorso, misura }) => (
          <li class="riga-percorso" key={percorso}>
            <Percorso percorso={percorso} />
            {misura && <span class="misura">{misura}</span>}
          </li>
        ))}
        {altri && <li>{altri}</li>}
      </ul>
    </div>
  );
}
