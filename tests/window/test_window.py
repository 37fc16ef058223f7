"""The real window: the program on a hidden screen, with a message bus of its own."""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import time
import unittest

from programma import PROGRAMMA, ConCasa
from schermo import PAZIENZA, ConSchermo, riga_di

NOTIFICHE = os.environ["PELLAK_NOTIFICHE"]


class Finestra(ConSchermo):
    def test_opens_its_own_page_and_survives_the_window(self):
        inizio = str(time.monotonic_ns())
        riga, = self.righe(PELLAK_TIME_START=inizio)
        self.assertRegex(riga, r"^STARTUP: pagina pronta in \d+ ms$")
        righe = self.righe(PELLAK_SMOKE="1", PELLAK_TEST_REOPEN="1")
        self.assertEqual(righe[-1], "REOPEN: sopravvissuto")
        self.assertGreater(len(righe), 3)
        self.assertEqual([r for r in righe[:-1] if not r.startswith("SMOKE: ")], [])

    def test_a_second_start_shows_the_first_window(self):
        primo = self.apri(PELLAK_JS="""
          let vista = 'mai'; const prima = window.__pellakVisible;
          window.__pellakVisible = (v) => { vista = v; prima(v); };
          await api('/api/settings', { dup_min_mb: 6 });
          for (let i = 0; i < 200 && vista !== true; i++) {
            await new Promise((f) => setTimeout(f, 50)); }
          return vista;""")
        self.attendi((self.supporto / "impostazioni.json").exists)  # the page is listening
        secondo = self.apri()
        secondo.communicate(timeout=PAZIENZA)
        self.assertEqual(secondo.returncode, 0)
        self.assertEqual(riga_di(primo.stdout), "true")
        self.assertIsNone(primo.poll())

    def test_a_dead_page_is_loaded_again(self):
        processo = self.apri(PELLAK_JS="return document.title + ' ' + typeof api")
        self.attendi(lambda: self._pagine(processo.pid))
        time.sleep(1)
        for pagina in self._pagine(processo.pid):
            os.kill(pagina, signal.SIGKILL)
        self.assertEqual(riga_di(processo.stdout), "Pellak Cleaner function")
        self.assertIsNone(processo.poll())

    @staticmethod
    def _pagine(pid):
        """The processes that show the page of the program."""
        trovate = []
        for cartella in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                nome = (cartella / "comm").read_text()
                genitore = (cartella / "stat").read_text().rpartition(")")[2].split()[1]
            except OSError:
                continue
            if nome.startswith("WebKitWebProces") and genitore == str(pid):
                trovate.append(int(cartella.name))
        return trovate

    def test_floods_and_enormous_replies(self):
        """A page that floods the channel gets every answer; a reply of over 50 MB arrives."""
        voce = {"path": "/h/" + "n" * 180, "size": 1, "mtime": 1}
        self.supporto.mkdir(parents=True)
        finding = {"id": "large", "name": "x", "mode": "report", "items": [voce] * 200_000}
        (self.supporto / "risultati.json").write_text(
            json.dumps({"grandi": {"ts": 1, "findings": [finding]}}))
        prima = self.api("/api/state")
        byte = len(json.dumps(prima))
        esito = self.pagina("""
          for (let i = 0; i < 20000; i++) {
            webkit.messageHandlers.pellak.postMessage('x' + i);
            webkit.messageHandlers.api.postMessage([i]);
          }
          const tutte = await Promise.all(
            Array.from({length: 2000}, (_, i) => api('/api/voci', {id: 'large', da: i, quante: 1})));
          const stato = await api('/api/state', {});
          return [tutte.every((t, i) => t.da === i), JSON.stringify(stato).length];""")
        ordine, lunghezza = json.loads(esito)
        self.assertTrue(ordine)
        self.assertGreater(byte, 50_000_000)
        self.assertGreater(lunghezza, 50_000_000)

    def test_the_periodic_check_tells_its_result(self):
        self.file(".cache/thumbnails/large/a.png", 300_000)
        self.api("/api/settings", {"auto_days": 1})
        servizio = subprocess.Popen([NOTIFICHE], env=self.ambiente, stdin=subprocess.PIPE,
                                    stdout=subprocess.PIPE)
        self.addCleanup(self._ferma, servizio)
        self.assertEqual(riga_di(servizio.stdout), "ready")
        self.apri(PELLAK_CHECK_SECONDS="0.5")
        self.assertRegex(
            riga_di(servizio.stdout) or "",
            r"^Pellak Cleaner: Controllo periodico completato: puoi liberare .+\. "
            r"Apri Pellak Cleaner per decidere\.$")
        self.assertTrue((self.supporto / "ultima-scansione-auto.txt").exists())

    def test_without_a_bus_or_a_screen(self):
        self.ambiente.pop("DBUS_SESSION_BUS_ADDRESS")
        self.assertEqual(self.righe(PELLAK_TEST_REOPEN="1"), ["REOPEN: sopravvissuto"])
        self.ambiente["DISPLAY"] = ":9"
        _, errori = self.esegui(stato=1)
        self.assertIn("nessuno schermo disponibile", errori)
        self.ambiente.pop("DISPLAY")
        self.ambiente["PELLAK_BENCH"] = "1"
        uscita, _ = self.esegui()
        self.assertTrue(uscita.startswith("BENCH: sezione                tempo      esito\n"))
        self.assertEqual(uscita.count("\n"), 1 + 8 + 5)


class Accesso(ConCasa):
    def test_the_login_entry_starts_this_very_program(self):
        """Whatever its folder is called: a launcher of the desktop starts it."""
        segno = self.casa / "avviato"
        programma = self.casa / "un \"nome\" di $HOME \\ `a`"
        shutil.copy(PROGRAMMA, programma)
        voce = self.casa / ".config/autostart/com.pellaklab.cleaner.desktop"
        for valore in (False, True):
            subprocess.run([programma, "api", "/api/settings", json.dumps({"login_item": valore})],
                           env=self.ambiente, check=True, capture_output=True, timeout=60)
            self.assertEqual(voce.exists(), valore)
        programma.write_text(f"#!/bin/sh\n: >'{segno}'\n")
        subprocess.run(["gio", "launch", voce], env=self.ambiente, check=True, timeout=60)
        limite = time.monotonic() + 60
        while not segno.exists() and time.monotonic() < limite:
            time.sleep(0.02)
        self.assertTrue(segno.exists(), voce.read_text())
        self.api("/api/settings", {"login_item": False})
        self.assertFalse(voce.exists())


if __name__ == "__main__":
    unittest.main()
