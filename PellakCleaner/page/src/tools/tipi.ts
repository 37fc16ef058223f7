/** What a file is, by the ending of its name: decides its colour on the map. */

export type Tipo =
  "cartella" | "immagini" | "filmati" | "audio" | "documenti" | "archivi" | "codice" | "altro";

export const nomiTipi: Record<Tipo, string> = {
  cartella: "Cartelle",
  immagini: "Immagini",
  filmati: "Filmati",
  audio: "Audio",
  documenti: "Documenti",
  archivi: "Archivi e dischi",
  codice: "Programmi e codice",
  altro: "Altro",
};

const finali: Record<Exclude<Tipo, "cartella" | "altro">, string> = {
  immagini: "jpg jpeg png gif webp heic heif tif tiff bmp svg raw cr2 cr3 nef arw dng psd ico avif",
  filmati: "mp4 mov mkv avi webm m4v mpg mpeg wmv flv ts 3gp",
  audio: "mp3 wav flac aac m4a ogg opus aif aiff wma mid",
  documenti:
    "pdf doc docx odt rtf txt md pages xls xlsx ods numbers ppt pptx odp key csv epub mobi tex",
  archivi: "zip tar gz tgz bz2 xz zst 7z rar dmg iso img pkg deb rpm vmdk qcow2 vdi sparsebundle",
  codice: "app exe so dylib a o jar js mjs css html c h cc cpp hpp py rb rs go java swift sh json",
};

const tipi = new Map<string, Tipo>(
  Object.entries(finali).flatMap(([tipo, nomi]) =>
    nomi.split(" ").map((nome) => [nome, tipo as Tipo] as const),
  ),
);

/** The colour of a kind, as a style for what has the class "sfondo-tipo". */
export function coloreDi(tipo: Tipo): Record<string, string> {
  return { "--tipo": `var(--tipo-${tipo})` };
}

export function tipoDi(nome: string, cartella: boolean): Tipo {
  if (cartella) return "cartella";
  const punto = nome.lastIndexOf(".");
  return tipi.get(nome.slice(punto + 1).toLowerCase()) ?? "altro";
}
