"""Every view in the real window: nothing sticks out, and pictures of it for who wants to look.

PELLAK_IMMAGINI names the folder they go to; scripts/immagini.sh takes the README's from there."""

import json
import os
import pathlib
import random
import subprocess
import time
import unittest

from schermo import ConSchermo, riga_di, scrivi_png

CARTELLA = os.environ.get("PELLAK_IMMAGINI")
GRANDE, PICCOLA = (1100, 740), (780, 520)
MIB = 1 << 20

SCENE = """
const attesa = (ms) => new Promise((f) => setTimeout(f, ms));
const finche = async (vero, che) => {
  for (let i = 0; i < 1500; i++) { const esito = vero(); if (esito) return esito; await attesa(20); }
  throw new Error('never: ' + che);
};
const uno = (css) => finche(() => document.querySelector(css), css);
const pulsante = (testo) => finche(() => [...document.querySelectorAll('button:not(:disabled)')]
  .findLast((b) => b.textContent.trim().startsWith(testo)), testo);
const premi = async (testo) => (await pulsante(testo)).click();
const vai = async (vista) => (await uno(`[data-vista=${vista}]`)).click();
const scrivi = async (testo) => {
  const campo = await uno('[data-ricerca]');
  campo.value = testo;
  campo.dispatchEvent(new Event('input', { bubbles: true }));
};
const scegli = async (scheda) => (await uno(`[data-finding=${scheda}] .casella`)).click();
const scene = {
  benvenuto: async () => { await uno('.benvenuto'); },
  panoramica: async () => { await premi('Scansiona tutto'); await pulsante('Rivedi'); },
  sviluppo: async () => { await vai('sviluppo'); (await uno('.scheda-apri')).click(); },
  scelta: async () => { await scegli('npm-cache'); await scegli('pip-cache'); },
  filtro: async () => { await scrivi('index'); },
  vuoto: async () => { await scrivi('mai vista'); },
  conferma: async () => { await premi('Cancella filtro'); await premi('Sposta nel Cestino'); },
  avviso: async () => { await premi('Sposta nel Cestino'); await pulsante('Rimetti a posto'); },
  registro: async () => { await vai('registro'); (await uno('.scheda-apri')).click(); },
  duplicati: async () => { await vai('duplicati'); await uno('.copia'); },
  pulizia: async () => { await premi('Pulizia completa'); await uno('dialog'); },
  grandi: async () => { await premi('Annulla'); await vai('grandi'); },
  privacy: async () => { await vai('privacy'); },
  mappa: async () => { await vai('mappa'); await uno('.tessera-interna'); },
  permessi: async () => { await vai('permessi'); },
  impostazioni: async () => { await vai('impostazioni'); await uno('[type=number]'); },
};
const fuori = (scena) => {
  const lista = [...document.querySelectorAll('main button, main input, nav button, h1')]
    .filter((el) => { const r = el.getBoundingClientRect();
      return r.width > 0 && (r.left < 0 || r.right > innerWidth + 0.5); });
  const tagliati = [...document.querySelectorAll('.laterale-nome, .pulsante, .scelta span')]
    .filter((el) => el.scrollWidth > el.clientWidth + 1);
  const pagina = document.documentElement;
  if (pagina.scrollWidth > innerWidth) lista.push(pagina);
  return [...lista, ...tagliati].map((el) => [scena, innerWidth, el.outerHTML.slice(0, 200)]);
};
const trovati = [];
let comandi = [];
let passo = 0;
for (const [nome, prepara] of Object.entries(scene)) {
  if (!QUALI.includes(nome)) continue;
  await prepara();
  await attesa(400);
  trovati.push(...fuori(nome));
  if (nome === 'duplicati') {
    comandi = ['.copia [type=radio]:not(:checked)', '.copia .casella'].map((css) => {
      const { x, y, width, height } = document.querySelector(css).getBoundingClientRect();
      return [x, y, width, height].map(Math.round); });
  }
  await api('/api/settings', { auto_days: ++passo });
  await finche(() => innerWidth < 900, 'small');
  await attesa(100);
  trovati.push(...fuori(nome));
  await finche(() => innerWidth > 900, 'large');
}
return [trovati, matchMedia('(prefers-reduced-motion: reduce)').matches,
  matchMedia('(prefers-color-scheme: dark)').matches, devicePixelRatio, comandi];
"""
TUTTE = ["benvenuto", "panoramica", "sviluppo", "scelta", "filtro", "vuoto", "conferma", "avviso",
         "registro", "duplicati", "pulizia", "grandi", "privacy", "mappa", "permessi",
         "impostazioni"]


def luce(colore):
    """Relative luminance, as the guidelines for contrast define it."""
    parti = [v / 12.92 if v <= 0.03928 else ((v + 0.055) / 1.055) ** 2.4
             for v in (byte / 255 for byte in colore)]
    return 0.2126 * parti[0] + 0.7152 * parti[1] + 0.0722 * parti[2]


def contrasto(uno, altro):
    chiaro, scuro = sorted((luce(uno), luce(altro)), reverse=True)
    return (chiaro + 0.05) / (scuro + 0.05)


class Immagini(ConSchermo):
    LARGO, ALTO = 2 * (GRANDE[0] + 10), 2 * (GRANDE[1] + 56)

    def grande(self, percorso, mib):
        intero = self.file(percorso, 1)
        os.posix_fallocate(os.open(intero, os.O_RDWR), 0, mib * MIB)
        return intero

    def arreda(self):
        """Something for every view to show."""
        for percorso, kib in {
                ".npm/_cacache/content-v2/dati": 61_000, ".npm/_cacache/index-v5/dati": 4_200,
                ".npm/_npx/strumento": 9_300, ".cache/pip/wheels/ruote": 37_000,
                ".cache/yarn/v6/pacchetti": 28_000, "go/pkg/mod/cache/download/moduli": 52_000,
                ".cache/thumbnails/large/mare.png": 3_100, "Scrivania/appunti.txt": 12,
                "Musica/concerto.flac": 31_000, "Documenti/contratti/casa.pdf": 2_400}.items():
            self.file(percorso, kib * 1024)
        caso = random.Random(1)
        for mib, nomi in ((9, ["Immagini/2019/mare.jpg", "Immagini/copie/mare (1).jpg",
                               "Scaricati/mare.jpg"]),
                          (6, ["Documenti/relazione.pdf", "Documenti/vecchi/relazione copia.pdf"]),
                          (5, ["Immagini/2021/neve.jpg", "Scrivania/neve.jpg"])):
            dati = caso.randbytes(mib * MIB + 1)
            for nome in nomi:
                pathlib.Path(os.fsdecode(self.file(nome, 1))).write_bytes(dati)
        for i in range(60):
            self.file(f"Immagini/2021/foto-{i:03}.jpg", (900 + 37 * i) * 1024)
        self.grande("Filmati/viaggio.mkv", 820)
        self.grande("Filmati/compleanno.mp4", 460)
        self.grande("Macchine/prova.qcow2", 640)
        vecchio = time.time() - 500 * 86_400
        os.utime(self.grande("Archivio/sistema.iso", 710), (vecchio, vecchio))

    def ritrai(self, nome, misura, scala):
        largo, alto = misura[0] + 10, misura[1] + 56  # the window's frame is around the page
        self.ridimensiona(largo * scala, alto * scala)
        time.sleep(0.3)
        righe = self.fotografa(largo * scala, alto * scala)
        orlo = 4 * scala  # where the frame's shadow would be
        righe = [riga[3 * orlo:-3 * orlo] for riga in righe[orlo:-orlo]]
        self.assertGreater(len({riga[:3 * misura[0]] for riga in righe}), 40, "something is drawn")
        if CARTELLA:
            pathlib.Path(CARTELLA).mkdir(parents=True, exist_ok=True)
            scrivi_png(pathlib.Path(CARTELLA) / f"{nome}-{misura[0]}.png", righe)
        return righe

    def si_distingue(self, righe, x, y, largo, alto):
        """The left edge of a control that is not chosen holds 3 : 1, apart from round corners."""
        x, y = x + 1, y + 47  # where the page begins
        fondo = righe[y + alto // 2][3 * (x - 4):3 * (x - 3)]
        for riga in righe[y + alto // 4:y + 3 * alto // 4]:
            bordo = [riga[3 * i:3 * i + 3] for i in range(x - 1, x + largo // 2)]
            self.assertGreaterEqual(max(contrasto(fondo, pixel) for pixel in bordo), 3)

    def percorri(self, seguito, scene=TUTTE, scuro=False, scala=1, ferma=False):
        """Shows the scenes one after the other, each at both sizes. The page says through a setting
        that one stands, and takes the window's growing for the word to go on."""
        self.arreda()
        gtk = self.casa / ".config/gtk-3.0/settings.ini"
        gtk.parent.mkdir(parents=True)
        gtk.write_text(f"[Settings]\ngtk-enable-animations={int(not ferma)}\n")
        processo = self.apri(PELLAK_JS=f"const QUALI = {json.dumps(scene)};" + SCENE,
                             GTK_THEME="Adwaita:dark" if scuro else "Adwaita",
                             GDK_SCALE=str(scala))
        foto = {}
        detto = self.supporto / "impostazioni.json"
        for passo, scena in enumerate(scene, 1):
            self.attendi(lambda: detto.exists()
                         and json.loads(detto.read_text()).get("auto_days") == passo)
            foto[scena] = self.ritrai(scena + seguito, GRANDE, scala)
            self.ritrai(scena + seguito, PICCOLA, scala)
            self.ridimensiona((GRANDE[0] + 10) * scala, (GRANDE[1] + 56) * scala)
        *esito, comandi = json.loads(riga_di(processo.stdout))
        self.assertEqual(esito, [[], ferma, scuro, scala])
        for posto in comandi:
            self.si_distingue(foto["duplicati"], *posto)

    def test_light(self):
        self.percorri("-chiaro")

    def test_dark(self):
        self.percorri("-scuro", scuro=True)

    def test_large_and_without_motion(self):
        self.percorri("-doppio", ["benvenuto", "panoramica", "sviluppo", "mappa"], scala=2,
                      ferma=True)


if __name__ == "__main__":
    unittest.main()
