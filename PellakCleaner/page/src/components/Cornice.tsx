import { useEffect } from "preact/hooks";
import { vista } from "../store";
import { seguiTasti } from "../tasti";
import { cercaVista } from "../viste";
import { BarraLaterale } from "./BarraLaterale";
import { Dialogo } from "./Dialogo";
import "./Cornice.css";

/** The whole window: sidebar, the chosen view, and the question that lies over both. */
export function Cornice() {
  useEffect(seguiTasti, []);
  const scelta = cercaVista(vista.value);
  return (
    <div class="cornice">
      <BarraLaterale />
      <scelta.Contenuto key={scelta.id} />
      <Dialogo />
    </div>
  );
}
