import type { Punto } from "../../src/components/serie";

export interface Processo {
  pid: number;
  avvio: number;
  nome: string;
  cpu: number;
  memoria: number;
}

const NOMI = ["navigatore", "indice", "posta", "musica", "terminale", "sincronia", "aiutante"];

/** 120 processes whose load moves with every round; after some rounds one goes and one comes. */
export function processi(giro: number): Processo[] {
  return Array.from({ length: 120 }, (_, i) => {
    const nuovo = giro >= 3 && i === 5;
    return {
      pid: 100 + i * 7 + (nuovo ? 1 : 0),
      avvio: 1000 + i + (nuovo ? 5000 : 0),
      nome: `${NOMI[i % NOMI.length] ?? ""}${i < NOMI.length ? "" : `-${i}`}`,
      cpu: ((i * 37 + giro * 53) % 1000) / 10,
      memoria: 20 + ((i * 131) % 900),
    };
  });
}

/** Two minutes with a pause in them. */
export const serie: Punto[] = Array.from({ length: 60 }, (_, i) => ({
  quando: 1_700_000_000_000 + i * 2000,
  valore: 40 + 35 * Math.sin(i / 5) + 12 * Math.cos(i / 1.7),
})).filter((_, i) => i < 22 || i > 30);
