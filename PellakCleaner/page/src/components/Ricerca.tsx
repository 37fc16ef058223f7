import { Search } from "lucide-preact";
import "./Ricerca.css";

interface Proprieta {
  valore: string;
  cambia: (valore: string) => void;
  etichetta: string;
}

/** The view's search: Cmd/Ctrl-F leads here, Esc empties it. */
export function Ricerca({ valore, cambia, etichetta }: Proprieta) {
  return (
    <div class="ricerca">
      <Search size={14} aria-hidden="true" />
      <input
        type="search"
        data-ricerca
        aria-label={etichetta}
        placeholder={etichetta}
        value={valore}
        spellcheck={false}
        autocomplete="off"
        onInput={(evento) => cambia(evento.currentTarget.value)}
        onKeyDown={(evento) => {
          if (evento.key !== "Escape") return;
          evento.preventDefault();
          if (valore) cambia("");
          else evento.currentTarget.blur();
        }}
      />
    </div>
  );
}
