import "./Interruttore.css";

interface Proprieta {
  acceso: boolean;
  cambia: (acceso: boolean) => void;
  etichetta?: string;
  descrittoDa?: string;
  id?: string;
  disabled?: boolean;
}

/** An on/off switch; its state is what the native side says, not what was clicked. */
export function Interruttore({ acceso, cambia, etichetta, descrittoDa, id, disabled }: Proprieta) {
  return (
    <button
      type="button"
      role="switch"
      class="interruttore"
      aria-checked={acceso}
      onClick={() => cambia(!acceso)}
      {...(etichetta ? { "aria-label": etichetta } : {})}
      {...(descrittoDa ? { "aria-describedby": descrittoDa } : {})}
      {...(id ? { id } : {})}
      {...(disabled ? { disabled } : {})}
    />
  );
}
