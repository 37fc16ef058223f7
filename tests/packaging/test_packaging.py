"""An installation and the Debian package: complete, valid, and the program starts from there."""

import json
import os
import struct
import subprocess
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
        """Checks an installation below `radice`."""
        programma = str(radice / "bin/pellak-cleaner")
        stato = json.loads(self.comando(programma, "scan", "sviluppo", "--json", env=self.ambiente))
        self.assertEqual(stato["sections"][0]["status"], "Niente da segnalare.")
        righe = self.comando(
            "xvfb-run", "-a", programma,
            env={**self.ambiente, "PELLAK_TEST_REOPEN": "1", "NO_AT_BRIDGE": "1"}).splitlines()
        self.assertEqual(righe, ["REOPEN: sopravvissuto"])

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
        self.assertTrue((dati / "icons/hicolor/scalable/apps/pellak-cleaner.svg").exists())
        self.comando("desktop-file-validate",
                     str(dati / "applications/com.pellaklab.cleaner.desktop"))
        self.comando("appstreamcli", "validate", "--no-net",
                     str(dati / "metainfo/com.pellaklab.cleaner.metainfo.xml"))
        self.avviato_da(radice)

    def test_the_package_starts_where_it_is_unpacked(self):
        radice = self.casa / "pacchetto"
        self.comando("cpack", "-G", "DEB", "-B", str(self.casa / "deb"), cwd=BUILD)
        pacchetto, = (self.casa / "deb").glob("pellak-cleaner_*.deb")
        self.comando("dpkg-deb", "-x", str(pacchetto), str(radice))
        dipendenze = self.comando("dpkg-deb", "-f", str(pacchetto), "Depends")
        for libreria in ("libwebkit2gtk-4.1-0", "libgtk-3-0", "libayatana-appindicator3-1"):
            self.assertIn(libreria, dipendenze)
        self.avviato_da(radice / "usr")


if __name__ == "__main__":
    unittest.main()
