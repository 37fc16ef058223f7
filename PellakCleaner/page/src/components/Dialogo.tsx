import { useLayoutEffect, useRef } from "preact/hooks";
import { type Domanda, domanda } from "../dialogo";
import { mostrabile, quanti } from "../testo";
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
        {aperta.nomi && aperta.nomi.length > 0 && (
          <ul class="dialogo-nomi">
            {aperta.nomi.map((nome, i) => (
              <li key={i}>
                <bdi>{mostrabile(nome)}</bdi>
              </li>
            ))}
            {(aperta.altri ?? 0) > 0 && <li>{quanti(aperta.altri ?? 0, "altro", "altri")}</li>}
          </ul>
        )}
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
