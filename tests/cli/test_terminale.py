"""Subcommands as a person at a terminal meets them."""

import json
import os
import signal
import subprocess
import time
import unittest

from programma import NOBODY, PROGRAMMA, ConCasa, su_terminale


class Scansione(ConCasa):
    def test_scan_prints_a_table_and_show_lists_the_saved_results(self):
        self.file(".npm/_cacache/content/a", 100_000)
        self.file("Downloads/vecchio.deb", 50_000)
        os.utime(self.casa / "Downloads/vecchio.deb", (1_600_000_000, 1_600_000_000))
        # These two sections look at nothing outside the home folder.
        uscita, errori = self.esegui("scan", "sviluppo", "pulizia")
        righe = uscita.splitlines()
        self.assertEqual(errori, "")
        self.assertEqual(len(righe), 5, uscita)
        self.assertRegex(righe[0], r"^Sezione +Stato +Voci +Libera$")
        self.assertRegex(righe[1], r"^Sviluppo +Libera almeno .*KiB\..* 1 +\d+\.\d KiB$")
        self.assertRegex(righe[3], r"^Totale +2 +\d+\.\d KiB$")
        self.assertEqual(righe[4], "Lo spazio torna quando svuoti il Cestino.")
        self.assertNotIn("\033", uscita)

        elenco, _ = self.esegui("show")
        self.assertIn("npm-cache", elenco)
        dettagli, _ = self.esegui("show", "old-installers")
        self.assertIn("2020-09-13 12:26  ~/Downloads/vecchio.deb", dettagli)
        oggetto = json.loads(self.esegui("show", "npm-cache", "--json")[0])
        self.assertEqual(oggetto["items"][0]["path"], str(self.casa / ".npm/_cacache/content"))
        self.esegui("show", "non-esiste", stato=2)

    def test_a_clean_scan_is_no_missing_one(self):
        self.assertIn("Nessun risultato salvato", self.esegui("show")[0])
        uscita, _ = self.esegui("scan", "sviluppo", "privacy")
        self.assertRegex(uscita, r"Sviluppo +Ricerca non completa")
        self.assertRegex(uscita, r"Privacy +Non ancora disponibile")
        self.assertIn("non ha trovato niente", self.esegui("show")[0])

    def test_places_that_the_environment_moves(self):
        self.ambiente["XDG_CACHE_HOME"] = str(self.casa / "altrove")
        self.file("altrove/pip/a", 9_000)
        self.esegui("scan", "sviluppo")
        self.assertIn("~/altrove/pip/a", self.esegui("show", "pip-cache")[0])

    def test_a_home_behind_links_is_scanned_and_trashed(self):
        vera = self.casa / "disco/anna"
        (vera / "fuori").mkdir(parents=True)
        (self.casa / "anna").symlink_to("disco/anna")
        (vera / ".npm").symlink_to("fuori")
        (vera / "Downloads").symlink_to(self.casa / "scaricati")
        self.file("disco/anna/fuori/_cacache/a", 9_000)
        self.file("scaricati/vecchio.deb", 9_000)
        os.utime(self.casa / "scaricati/vecchio.deb", (1_600_000_000, 1_600_000_000))
        self.ambiente["HOME"] = str(self.casa / "anna")
        self.esegui("scan", "sviluppo", "pulizia")
        self.assertIn("  ~/fuori/_cacache/a\n", self.esegui("show", "npm-cache")[0])
        mappa = json.loads(self.esegui("map", str(self.casa / "anna/.npm"), "--json")[0])
        self.assertEqual(mappa["path"], str(vera / "fuori"))
        self.assertEqual(self.api("/api/perms")["casa"], str(vera))
        for finding in ("npm-cache", "old-installers"):
            self.esegui("trash", finding, "--yes")
        self.assertFalse((self.casa / "scaricati/vecchio.deb").exists())
        self.assertFalse((vera / "fuori/_cacache/a").exists())

    def test_user_folders_and_folders_of_the_command_line(self):
        (self.casa / ".config").mkdir()
        (self.casa / ".config/user-dirs.dirs").write_text('XDG_DOCUMENTS_DIR="$HOME/Carte"\n')
        for posto in ("Carte/a", "in più/b", "Documents/c"):
            self.file(posto, 6 << 20)
        self.esegui("scan", "duplicati")
        self.assertIn("\n0 voci", self.esegui("show", "duplicates")[0], "only one folder is named")
        self.esegui("scan", "duplicati", "grandi", "./in più", cwd=self.casa)
        uscita, _ = self.esegui("show", "duplicates")
        self.assertIn("~/Carte/a", uscita)
        self.assertIn("~/in più/b", uscita)
        for argomenti, perche in ((["~/manca"], "cartella inesistente"),
                                  (["Grandi"], "sezione inesistente"),
                                  (["sviluppo", "~"], "solo per duplicati e grandi")):
            self.assertIn(perche, self.esegui("scan", *argomenti, stato=2)[1])

    def test_what_was_not_looked_at_is_not_clean(self):
        self.regole([])
        self.assertIn("Nessuna cartella da esaminare.", self.esegui("scan", "duplicati")[0])
        chiusa = self.casa / "chiusa"
        chiusa.mkdir(mode=0)
        utente = {}
        if os.geteuid() == 0:
            subprocess.run(["chown", "-R", f"{NOBODY}:{NOBODY}", self.casa], check=True)
            utente = {"user": NOBODY, "group": NOBODY}
        for sezione in ("duplicati", "grandi"):
            self.assertRegex(self.esegui("scan", sezione, str(chiusa), **utente)[0],
                             r"ATTENZIONE: 1 percorsi non leggibili\. Probabile mancanza")
        regole = self.casa / "regole.json"
        for rompi in (lambda: regole.write_text("{"), regole.unlink, regole.mkdir):
            rompi()
            for sezione in ("duplicati", "grandi", "sviluppo"):
                uscita, errori = self.esegui("scan", sezione)
                self.assertIn("Errore: file delle regole illeggibile", uscita)
                self.assertIn("file delle regole illeggibile", errori)

    def test_order_and_limit(self):
        self.regola()
        for nome, byte in (("Beta", 9_000), ("alfa", 90_000), ("gamma", 50_000)):
            self.file("cose/" + nome, byte)
        self.esegui("scan", "sviluppo")

        def nomi(*opzioni):
            trovato = json.loads(self.esegui("show", "x", "--json", *opzioni)[0])
            return [os.path.basename(voce["path"]) for voce in trovato["items"]]

        self.assertEqual(nomi(), ["alfa", "gamma", "Beta"])
        self.assertEqual(nomi("--order", "nome"), ["alfa", "Beta", "gamma"])
        ridotto = json.loads(self.esegui("show", "x", "--json", "--limit", "1")[0])
        self.assertEqual((ridotto["count"], len(ridotto["items"])), (3, 1))
        testo, _ = self.esegui("show", "x", "--limit", "1")
        self.assertIn("e altre 2 voci", testo)
        self.esegui("show", "x", "--order", "peso", stato=2)
        self.esegui("show", "x", "--limit", "-1", stato=2)

    def test_progress_on_a_terminal_and_a_clean_interrupt(self):
        self.file("cose/a")
        self.regole([{"id": f"c{i}", "name": f"Categoria {i}", "section": "sviluppo",
                      "children_of": "~/cose"} for i in range(60_000)])
        stato, uscita = su_terminale(["scan", "sviluppo"], self.ambiente, invia=b"\x03",
                                     dopo=b"[1/1] Sviluppo: Scansione: Categoria")
        self.assertEqual(stato, 130, uscita[-500:])
        self.assertIn("Scansione interrotta.", uscita)
        self.assertNotIn("Sezione", uscita, "no table after an interrupt")

    def test_sigterm_during_an_api_scan_stops_it(self):
        self.file("cose/a")
        self.regole([{"id": f"c{i}", "name": "C", "section": "sviluppo",
                      "children_of": "~/cose"} for i in range(60_000)])
        processo = self.avvia("api", "/api/scan", '{"section":"sviluppo"}')
        self.assertEqual(processo.stdout.readline(), b'{"ok":true}\n')
        time.sleep(0.1)
        processo.send_signal(signal.SIGTERM)
        _, errori = processo.communicate(timeout=30)
        self.assertEqual((processo.returncode, errori), (130, b"Scansione interrotta.\n"))


class RigaDiComando(ConCasa):
    def test_help_version_and_mistakes(self):
        self.assertRegex(self.esegui("--version")[0], r"^Pellak Cleaner \d+\.\d+\.\d+\n$")
        aiuto, _ = self.esegui("--help")
        for comando in ("scan", "show", "api", "bridge"):
            self.assertIn(comando, aiuto)
        for argomenti in (["boh"], ["scan", "--boh"], ["api"], ["show", "a", "b"]):
            uscita, errori = self.esegui(*argomenti, stato=2)
            self.assertEqual(uscita, "")
            self.assertIn("pellak-cleaner --help", errori)

    def test_without_a_display_it_names_the_terminal_commands(self):
        uscita, errori = self.esegui(stato=1)
        self.assertEqual(uscita, "")
        self.assertEqual(errori.count("\n"), 1)
        self.assertIn("pellak-cleaner scan", errori)

    def test_environment_that_cannot_work_is_said(self):
        self.ambiente["PELLAK_TOOLS"] = "amiga"
        self.assertIn("PELLAK_TOOLS", self.esegui("scan", stato=1)[1])
        del self.ambiente["PELLAK_TOOLS"]
        self.ambiente["HOME"] = "relativa"
        self.assertIn("HOME", self.esegui("scan", stato=1)[1])

    def test_results_that_cannot_be_written_out_are_an_error(self):
        with open("/dev/full", "wb") as pieno:
            esito = subprocess.run([PROGRAMMA, "scan", "privacy"], env=self.ambiente,
                                   stdout=pieno, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(esito.returncode, 1)
        self.assertIn("impossibile scrivere".encode(), esito.stderr)


if __name__ == "__main__":
    unittest.main()
