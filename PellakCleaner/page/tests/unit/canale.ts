import type { Percorso } from "../../src/rotte";

/** The native side of a test: answers by route, in the order of the requests. */
export class Canale {
  readonly richieste: { id: number; path: string; body: Record<string, unknown> }[] = [];
  readonly risposte = new Map<string, object[]>();

  constructor() {
    window.webkit = {
      messageHandlers: {
        api: {
          postMessage: (messaggio) => {
            this.richieste.push(messaggio as (typeof this.richieste)[number]);
            const pronta = this.risposte.get(messaggio.path)?.shift();
            if (pronta) queueMicrotask(() => this.rispondi(messaggio.id, pronta));
          },
        },
      },
    };
  }

  /** The next answer to this route; without one the request stays open. */
  poi(rotta: Percorso, risposta: object): this {
    this.risposte.set(rotta, [...(this.risposte.get(rotta) ?? []), risposta]);
    return this;
  }

  rispondi(id: number, risposta: object | string): void {
    const testo = typeof risposta === "string" ? risposta : JSON.stringify(risposta);
    window.__apiDone?.(id, 200, testo);
  }

  rotte(): string[] {
    return this.richieste.map((r) => r.path);
  }
}

/** Lets everything that is ready happen. */
export const respiro = () => new Promise((fatto) => setTimeout(fatto, 0));
