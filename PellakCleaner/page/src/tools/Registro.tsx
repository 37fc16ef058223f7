import { signal } from "@preact/signals";
import { ChevronRight, FolderOpen, ScrollText, SearchX, Undo2 } from "lucide-preact";
import { useEffect } from "preact/hooks";
import { api } from "../api";
import { mostraErrore } from "../avvisi";
import { alLavoro, mostra, ripristina } from "../cestino";
import { frecce } from "../components/frecce";
import { Attesa } from "../components/Attesa";
import { Percorso } from "../components/Percorso";
import { Pulsante, PulsanteIcona } from "../components/Pulsante";
import { Ricerca } from "../components/Ricerca";
import { Vista } from "../components/Vista";
import { Vuoto } from "../components/Vuoto";
import { type Operazione, fallita } from "../rotte";
import { usePorzione } from "../sections/usePorzione";
import {
  cartellaDi,
  dimensione,
  mostrabile,
  nomeDi,
  quando,
  quanti,
  unSoloDuePunti,
} from "../testo";
import type { Vista as DatiVista } from "../vista";

export const registro: DatiVista = {
  id: "registro",
  nome: "Registro",
  gruppo: "programma",
  Icona: ScrollText,
  Contenuto: Registro,
};

const operazioni = signal<Operazione[] | null>(null);
/** Why there are none to show yet. */
const guasto = signal("");
/** Kept while another view is on screen, like what is open. */
const filtro = signal("");
const aperte = signal<ReadonlySet<string>>(new Set());

function apri(id: string, si: boolean): void {
  const nuove = new Set(aperte.value);
  if (si) nuove.add(id);
  else nuove.delete(id);
  aperte.value = nuove;
}

async function carica(): Promise<void> {
  const risposta = await api("/api/log");
  guasto.value = fallita(risposta) ? risposta.err : "";
  if (fallita(risposta)) mostraErrore(risposta, "Registro");
  else operazioni.value = risposta.ops;
}

async function rimetti(op: string, index?: number): Promise<void> {
  const items = operazioni.value?.find((o) => o.id === op)?.items ?? [];
  const tornati = new Set(items.filter((item) => item.rip).map((item) => item.orig));
  await ripristina([{ id: op, quanti: items.length - tornati.size, tornati }], index);
  await carica();
}

function corrisponde(op: Operazione, cercato: string): boolean {
  return (
    unSoloDuePunti(op.azione).toLowerCase().includes(cercato) ||
    op.items.some((item) => item.orig.toLowerCase().includes(cercato))
  );
}

/** What was moved to the Trash, newest first, and the way back for each of it. */
function Registro() {
  useEffect(() => void carica(), [alLavoro.value]);
  const tutte = operazioni.value;
  const cercato = filtro.value.trim().toLowerCase();
  const lista = (tutte ?? []).filter((op) => !cercato || corrisponde(op, cercato));
  const { porzione, altre, mostraAltre } = usePorzione(lista);
  return (
    <Vista
      titolo="Registro"
      strumenti={
        tutte &&
        tutte.length > 0 && (
          <Ricerca
            valore={filtro.value}
            cambia={(testo) => (filtro.value = testo)}
            etichetta="Cerca nel registro"
          />
        )
      }
    >
      {tutte?.length === 0 && (
        <Vuoto Icona={ScrollText}>
          Niente è stato spostato nel Cestino. Quando succede, da qui si rimette al suo posto.
        </Vuoto>
      )}
      {!tutte && (guasto.value ? <Vuoto Icona={ScrollText}>{guasto.value}</Vuoto> : <Attesa />)}
      {tutte && tutte.length > 0 && lista.length === 0 && (
        <Vuoto Icona={SearchX}>
          <span>Nessuna operazione con questo nome.</span>
          <Pulsante onClick={() => (filtro.value = "")}>Cancella filtro</Pulsante>
        </Vuoto>
      )}
      {porzione.map((op) => (
        <UnaOperazione key={op.id} op={op} />
      ))}
      {altre > 0 && (
        <Pulsante tipo="testo" onClick={mostraAltre}>
          Mostra {quanti(altre, "altra operazione", "altre operazioni")}
        </Pulsante>
      )}
    </Vista>
  );
}

function UnaOperazione({ op }: { op: Operazione }) {
  const aperta = aperte.value.has(op.id);
  const tornati = op.items.filter((item) => item.rip).length;
  const tutti = tornati === op.items.length;
  const azione = mostrabile(unSoloDuePunti(op.azione));
  return (
    <section class="scheda" data-operazione={op.id} aria-label={azione}>
      <div class="scheda-testa">
        <div class="scheda-titoli">
          <h2>
            <button
              type="button"
              class="scheda-apri"
              aria-expanded={aperta}
              onClick={() => apri(op.id, !aperta)}
            >
              <ChevronRight size={15} aria-hidden="true" class="scheda-freccia" />
              <bdi>{azione}</bdi>
            </button>
          </h2>
          <p class="sotto sotto-rientrato">
            {quando(op.ts)}, {quanti(op.items.length, "elemento", "elementi")}, {dimensione(op.tot)}
          </p>
          {op.nota && <p class="sotto sotto-rientrato">{mostrabile(op.nota)}</p>}
        </div>
        {tutti ? (
          <span class="etichetta">Rimesso al suo posto</span>
        ) : (
          <Pulsante Icona={Undo2} disabled={alLavoro.value} onClick={() => void rimetti(op.id)}>
            {tornati > 0 ? "Ripristina il resto" : "Ripristina"}
          </Pulsante>
        )}
      </div>
      {aperta && <Elementi op={op} />}
    </section>
  );
}

function Elementi({ op }: { op: Operazione }) {
  const { porzione, altre, mostraAltre } = usePorzione(op.items);
  return (
    <>
      <ul class="gruppi" onKeyDown={frecce}>
        {porzione.map((item, i) => (
          <UnElemento key={item.orig} op={op} indice={i} />
        ))}
      </ul>
      {altre > 0 && (
        <Pulsante tipo="testo" onClick={mostraAltre}>
          Mostra {quanti(altre, "altro elemento", "altri elementi")}
        </Pulsante>
      )}
    </>
  );
}

function UnElemento({ op, indice }: { op: Operazione; indice: number }) {
  const item = op.items[indice];
  if (!item) return null;
  const nome = mostrabile(nomeDi(item.orig));
  const dove = item.trash;
  return (
    <li class="gruppo">
      <div class="gruppo-testa">
        <div class="cella-nome">
          <bdi class="nome">{nome}</bdi>
          <Percorso percorso={cartellaDi(item.orig)} classe="sotto" />
        </div>
        {item.rip && <span class="etichetta">Al suo posto</span>}
        {!item.rip && dove === undefined && <span class="etichetta">Posizione non nota</span>}
        {!item.rip && dove !== undefined && (
          <>
            <PulsanteIcona
              Icona={FolderOpen}
              etichetta={`Mostra ${nome} nel Cestino`}
              onClick={() => void mostra(dove)}
            />
            <Pulsante disabled={alLavoro.value} onClick={() => void rimetti(op.id, indice)}>
              Ripristina
            </Pulsante>
          </>
        )}
      </div>
    </li>
  );
}
