"""An installation and the Debian package: complete, valid, and the program starts from there."""

import json
import os
import struct
import subprocess
import time
import unittest

from programma import ConCasa

BUILD = os.environ["PELLAK_BUILD"]
CMAKE = os.environ["PELLAK_CMAKE"]


class Pacchetto(ConCasa):
    def comando(self, *parole, **opzioni):
        fatto = subprocess.run(parole, capture_output=True, text=True, timeout=100, **opzioni)
        self.assertEqual(fatto.returncode, 0, fatto.stdout + fatto.stderr)
        return fatto.stdout

    def avviato_da(self, radice):
        """Checks that what lies below `radice` works from there."""
        programma = str(radice / "bin/pellak-cleaner")
        stato = json.loads(self.comando(programma, "scan", "sviluppo", "--json", env=self.ambiente))
        self.assertEqual(stato["sections"][0]["status"], "Niente da segnalare.")
        riga = self.comando(
            "xvfb-run", "-a", programma,
            env={**self.ambiente, "PELLAK_TIME_START": str(time.monotonic_ns()),
                 "DBUS_SESSION_BUS_ADDRESS": "disabled:", "NO_AT_BRIDGE": "1"})
        self.assertRegex(riga, r"^STARTUP: pagina pronta in \d+ ms\n$")

    def usa_le_regole_di(self, radice):
        """The program has rules of its own as well: these tell whether the installed ones count."""
        self.file("prova/a", 300_000)
        categorie = [{"id": "npm-cache", "name": "Prova", "children_of": "~/prova"}]
        (radice / "share/pellak-cleaner/engine/rules.linux.json").write_text(
            json.dumps({"categories": categorie}))
        stato = json.loads(self.comando(str(radice / "bin/pellak-cleaner"), "scan", "sviluppo",
                                        "--json", env=self.ambiente))
        trovati = {f["id"]: f["total"] for f in stato["sections"][0]["findings"] if f["total"] > 0}
        self.assertEqual(list(trovati), ["npm-cache"])
        self.assertGreaterEqual(trovati["npm-cache"], 300_000)

    def test_an_installation_is_complete(self):
        radice = self.casa / "qui"
        self.comando(CMAKE, "--install", BUILD, "--prefix", str(radice))
        dati = radice / "share"
        for file in ("engine/rules.json", "engine/rules.linux.json", "engine/menubar.png",
                     "engine/logo-dog-trasparente.png"):
            self.assertGreater((dati / "pellak-cleaner" / file).stat().st_size, 100, file)
        icone = list((dati / "icons/hicolor").glob("*x*/apps/pellak-cleaner.png"))
        self.assertEqual(len(icone), 8)
        for icona in icone:
            lato = int(icona.parent.parent.name.partition("x")[0])
            misure = struct.unpack(">II", icona.read_bytes()[16:24])
            self.assertEqual(misure, (lato, lato), icona)
        for disegno in ("scalable/apps/pellak-cleaner.svg",
                        "symbolic/apps/pellak-cleaner-symbolic.svg"):
            self.assertTrue((dati / "icons/hicolor" / disegno).exists(), disegno)
        self.comando("desktop-file-validate",
                     str(dati / "applications/com.pellaklab.cleaner.desktop"))
        self.comando("appstreamcli", "validate", "--no-net",
                     str(dati / "metainfo/com.pellaklab.cleaner.metainfo.xml"))
        self.avviato_da(radice)
        self.usa_le_regole_di(radice)

    def test_the_package_starts_where_it_is_unpacked(self):
        radice = self.casa / "pacchetto"
        self.comando("cpack", "-G", "DEB", "-B", str(self.casa / "deb"), cwd=BUILD, umask=0o077)
        pacchetto, = (self.casa / "deb").glob("pellak-cleaner_*.deb")
        self.comando("dpkg-deb", "-x", str(pacchetto), str(radice))
        chiuse = [p for p in (radice / "usr").rglob("*") if p.stat().st_mode & 0o044 != 0o044]
        self.assertEqual(chiuse, [], "for their owner only")
        dipendenze = self.comando("dpkg-deb", "-f", str(pacchetto), "Depends")
        for libreria in ("libwebkit2gtk-4.1-0", "libgtk-3-0", "libayatana-appindicator3-1"):
            self.assertIn(libreria, dipendenze)
        self.avviato_da(radice / "usr")


if __name__ == "__main__":
    unittest.main()
