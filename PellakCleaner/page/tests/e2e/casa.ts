import { execFileSync } from "node:child_process";
import { randomFillSync } from "node:crypto";
import * as fs from "node:fs";
import * as os from "node:os";
import * as path from "node:path";

/** A made-up home folder. Its own name and many below it try to be markup. */

export const OSTILE = '<img src=x onerror="window.violato=1">';
export const OSTILE_SCRIPT = "<script>window.violato=1<\\script>";
/** A line break and a turn of the reading direction, and how the page shows them. */
export const STRANO = "riga\nnuova\u202ecod";
export const STRANO_MOSTRATO = "riga\u240anuova\ufffdcod";
/** Bytes that are no text. */
const ROTTO = Buffer.from([0x72, 0x6f, 0xff, 0x74, 0xc3]);
export const ROTTO_MOSTRATO = "ro\ufffdt\ufffd";

const KIB = 1024;
const MIB = 1024 * KIB;

export class Casa {
  readonly radice = fs.mkdtempSync(path.join(os.tmpdir(), "pellak-pagina-"));
  readonly home = path.join(this.radice, `casa ${OSTILE}`);

  constructor() {
    fs.mkdirSync(this.home);
  }

  file(nome: string, byte: number, contenuto?: Buffer): string {
    const intero = path.join(this.home, nome);
    fs.mkdirSync(path.dirname(intero), { recursive: true });
    fs.writeFileSync(intero, contenuto ?? Buffer.alloc(byte, 120));
    return intero;
  }

  /** A file that takes its room on the disk without being written. */
  grande(nome: string, mib: number): string {
    const intero = this.file(nome, 1);
    execFileSync("fallocate", ["-l", `${mib}MiB`, intero]);
    return intero;
  }

  /** A file whose name is no text. */
  rotto(cartella: string, byte: number): void {
    const nome = Buffer.concat([Buffer.from(`${path.join(this.home, cartella)}/`), ROTTO]);
    fs.writeFileSync(nome, Buffer.alloc(byte, 120));
  }

  vecchio(percorso: string, giorni: number): void {
    const quando = Date.now() / 1000 - giorni * 86_400;
    fs.utimesSync(percorso, quando, quando);
  }

  esiste(nome: string): boolean {
    return fs.existsSync(path.join(this.home, nome));
  }

  togli(): void {
    fs.rmSync(this.radice, { recursive: true, force: true });
  }
}

/** Something for every view that the program fills from the disk. */
export function casaPiena(): Casa {
  const casa = new Casa();
  casa.file(".npm/_cacache/content-v2/dati", 3 * MIB);
  casa.file(".npm/_cacache/index-v5/dati", 400 * KIB);
  casa.file(`.npm/_cacache/${OSTILE}/dati`, 900 * KIB);
  casa.file(`.npm/_cacache/${OSTILE_SCRIPT}`, 16 * KIB);
  casa.file(`.npm/_cacache/${STRANO}`, 12 * KIB);
  casa.rotto(".npm/_cacache", 8 * KIB);
  casa.file(".npm/_npx/strumento", 220 * KIB);
  const condiviso = casa.file(".cache/yarn/v6/pacchetti", 1500 * KIB);
  fs.linkSync(condiviso, path.join(casa.home, "condiviso")); // so its room does not come free
  casa.file(".cache/pip/wheels", 700 * KIB);
  casa.file("go/pkg/mod/cache/download", 2 * MIB);

  const foto = randomFillSync(Buffer.alloc(6 * MIB));
  casa.file("Immagini/estate/mare.jpg", 0, foto);
  casa.file("Immagini/copie/mare (1).jpg", 0, foto);
  casa.file(`Documenti/${OSTILE}.jpg`, 0, foto);
  const relazione = randomFillSync(Buffer.alloc(5 * MIB + 1));
  casa.file("Documenti/relazione.pdf", 0, relazione);
  casa.file(`Documenti/${STRANO}.pdf`, 0, relazione);
  casa.rotto("Documenti", 64 * KIB);

  casa.grande("Filmati/viaggio.mkv", 320);
  casa.grande("Filmati/compleanno.mp4", 210);
  casa.vecchio(casa.grande(`Archivio/${OSTILE}${STRANO}.iso`, 260), 400);
  casa.vecchio(casa.file("Downloads/installatore.iso", 3 * MIB), 200);
  return casa;
}
