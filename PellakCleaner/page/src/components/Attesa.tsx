import { Anello } from "./Anello";

/** What stands in a view until there is something to show. */
export function Attesa() {
  return (
    <div class="vuoto attesa">
      <Anello etichetta="attesa" grande />
    </div>
  );
}
