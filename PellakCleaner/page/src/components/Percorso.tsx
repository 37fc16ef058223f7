import { casa } from "../store";
import { conTilde, mostrabile } from "../testo";
import "./Percorso.css";

/** A path or name: always text, never able to change what stands around it. */
export function Percorso({ percorso, classe }: { percorso: string; classe?: string }) {
  const testo = mostrabile(conTilde(percorso, casa.value));
  // Where there is no room the beginning goes: the end tells one place from another.
  const taglio = testo.lastIndexOf("/", testo.lastIndexOf("/") - 1);
  const inizio = taglio > 0 ? testo.slice(0, taglio) : "";
  return (
    <bdi class={classe ? `percorso ${classe}` : "percorso"} title={testo}>
      {inizio && <span class={inizio === "~" ? "percorso-casa" : "percorso-inizio"}>{inizio}</span>}
      <span class="percorso-fine">{testo.slice(inizio.length)}</span>
    </bdi>
  );
}
