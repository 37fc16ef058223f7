import { mappa } from "./tools/Mappa";
import { impostazioniVista } from "./tools/ImpostazioniVista";
import { permessiVista } from "./tools/Permessi";
import { registro } from "./tools/Registro";
import { panoramica } from "./sections/Panoramica";
import { sezioniViste } from "./sections/catalogo";
import type { Vista } from "./vista";

/** Every view, in the order of the sidebar. A new one is a file of its own and a line here. */
export const viste: Vista[] = [
  panoramica,
  ...sezioniViste,
  mappa,
  registro,
  permessiVista,
  impostazioniVista,
];

export function cercaVista(id: string): Vista {
  return viste.find((v) => v.id === id) ?? panoramica;
}
