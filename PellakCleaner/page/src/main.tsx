import { effect } from "@preact/signals";
import { render } from "preact";
import "./styles/tokens.css";
import "./styles/base.css";
import "./styles/comuni.css";
import { api, invia } from "./api";
import { Cornice } from "./components/Cornice";
import { aggiungiEsclusa } from "./impostazioni";
import { V, poll, seguiVisibilita } from "./polling";
import { suMac } from "./store";
import { dalMenu } from "./tasti";

/** What the native side calls by name. */
Object.assign(window, { V, api, poll, addExcludedFolder: aggiungiEsclusa, __pellakMenu: dalMenu });

effect(() => {
  document.documentElement.dataset.sistema = suMac.value ? "macos" : "linux";
});

seguiVisibilita();
const pagina = document.getElementById("pagina");
if (pagina) render(<Cornice />, pagina);
invia("ready");
