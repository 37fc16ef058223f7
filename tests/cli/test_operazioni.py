"""`trash`, `log` and `restore` as a person at a terminal uses them."""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time
import unittest

from cestino import FINDING, LENTO, ConCestino
from programma import PROGRAMMA, su_terminale

OSTILE = b"rosso\033[31m\nriga\xff"
OSTILE_MOSTRATO = r"rosso\x1b[31m\nriga\xff"


class ConOperazioni(ConCestino):
    def annulla(self, uscita):
        """The ids of the operations that a `trash` says how to undo."""
        return re.findall(r"^Per annullare: pellak-cleaner restore (\S+)\r?$", uscita, re.M)

    def al_terminale(self, risposta, *argomenti, guarda=None):
        stato, uscita = su_terminale(argomenti, dict(self.ambiente, NO_COLOR="1"),
                                     invia=risposta, dopo=b"[s/N]", guarda=guarda)
        return stato, uscita.replace("\r\n", "\n")

    def titoli(self):
        return [operazione["azione"] for operazione in self.operazioni()]


class Categoria(ConOperazioni):
    def setUp(self):
        super().setUp()
        self.cosa(OSTILE, "ostile")
        for i in range(11):
            self.cosa(f"cosa{i:02}", f"contenuto {i}")
        self.scandisci()
        self.prima = self.contenuti()

    @unittest.skipUnless(os.path.isdir("/proc/self/task"), "threads can't be looked at")
    def test_one_thread_alone_gets_the_signals(self):
        aperti = []

        def ricevono(processo):
            limite = time.monotonic() + 20  # until the thread that waits for them does
            while not aperti and time.monotonic() < limite:
                for compito in pathlib.Path(f"/proc/{processo}/task").iterdir():
                    stato = re.search(r"^SigBlk:\s+(\w+)$", (compito / "status").read_text(), re.M)
                    aperti.extend((compito.name, segnale)
                                  for segnale in (signal.SIGINT, signal.SIGTERM)
                                  if not int(stato[1], 16) >> (segnale - 1) & 1)

        stato, _ = self.al_terminale(b"n\n", "trash", FINDING, guarda=ricevono)
        self.assertEqual(stato, 1)
        self.assertEqual([segnale for _, segnale in aperti], [signal.SIGINT, signal.SIGTERM])
        self.assertEqual(aperti[0][0], aperti[1][0])

    def test_the_question_shows_what_goes_and_only_a_yes_moves_it(self):
        for risposta, stato_atteso in ((b"n\n", 1), (b"\n", 1), (b"\x04", 1), (b"\x03", 130),
                                       (b"sicuro?\n", 1)):
            stato, uscita = self.al_terminale(risposta, "trash", FINDING)
            self.assertEqual(stato, stato_atteso, (risposta, uscita))
            self.assertIn("on ho spostato niente.", uscita)
            self.assertEqual(self.contenuti(), self.prima)
        self.assertIn("Sposto nel Cestino 12 elementi (48.0 KiB)? [s/N]", uscita)
        self.assertIn("  4.0 KiB  ~/cose/", uscita)
        self.assertIn("… e altri 2\n", uscita)
        self.assertNotIn("\033[31m", uscita)
        self.assertFalse(self.registro.exists())

        stato, uscita = self.al_terminale(b"s\n", "trash", FINDING)
        self.assertEqual(stato, 0, uscita)
        self.assertIn("\nSpostati nel Cestino 12 elementi, 48.0 KiB\n", uscita)
        self.assertEqual(os.listdir(self.casa / "cose"), [])
        # The entries have left the saved results too.
        self.assertEqual(self.api("/api/voci", {"id": FINDING})["count"], 0)
        self.assertEqual(self.esegui("trash", FINDING, "--yes", stato=1),
                         ("", "nessun elemento trattabile\n"))
        uscita, errori = self.esegui("restore", *self.annulla(uscita))
        self.assertEqual((uscita.splitlines()[0], errori), ("Ripristinati 12 elementi", ""))
        self.assertIn("  … e altri 2\n", uscita)
        self.assertEqual(self.contenuti(), self.prima)

    def test_without_a_terminal_only_yes_moves_and_names_stay_harmless(self):
        elenco, _ = self.esegui("show", FINDING)
        self.assertIn(f"~/cose/{OSTILE_MOSTRATO}\n", elenco)
        self.assertNotIn("\033", elenco)
        uscita, errori = self.esegui("trash", FINDING, stato=1, entrata=b"s\n")
        self.assertEqual((uscita, errori.count("\n")), ("", 1))
        self.assertIn("--yes", errori)
        self.assertEqual(self.contenuti(), self.prima)
        os.unlink(os.fsencode(self.casa / "cose") + b"/" + OSTILE)
        uscita, errori = self.esegui("trash", FINDING, "--yes", stato=1)
        self.assertEqual(
            errori, f"~/cose/{OSTILE_MOSTRATO}: non esiste piu': era gia' stato rimosso\n")
        self.assertIn("Spostati nel Cestino 11 elementi, 44.0 KiB\n", uscita)
        self.assertEqual(len(self.annulla(uscita)), 1)

    def test_one_item_of_an_operation_comes_back_under_a_free_name(self):
        uscita, _ = self.esegui("trash", FINDING, "--yes")
        operazione, = self.annulla(uscita)
        elenco, _ = self.esegui("log", operazione)
        self.assertNotIn("\033", elenco)
        indice, = re.findall(r"^ *(\d+) +~/cose/rosso", elenco, re.M)
        self.assertEqual(self.esegui("restore", operazione, "--index", indice),
                         (f"Ripristinato 1 elemento\n  ~/cose/{OSTILE_MOSTRATO}\n", ""))
        self.assertEqual(os.listdir(os.fsencode(self.casa / "cose")), [OSTILE])
        self.assertIn("  sì", self.esegui("log", operazione)[0])
        righe = self.esegui("log")[0].splitlines()
        self.assertRegex(
            righe[1], rf"^{operazione}  \d{{4}}-\d\d-\d\d \d\d:\d\d +12 +48\.0 KiB +1  Categoria: X$")

        (self.casa / "cose/cosa03").write_text("di un altro")
        uscita, errori = self.esegui("restore", operazione, stato=1)
        self.assertTrue(uscita.startswith("Ripristinati 11 elementi\n"), uscita)
        self.assertEqual(errori, f"~/cose/{OSTILE_MOSTRATO}: non è più nel Cestino\n")
        self.assertEqual(uscita.count("il posto era occupato"), 1)
        self.assertTrue((self.casa / "cose/cosa03 (ripristinato 1)").exists())
        for argomenti, testo in ((("restore", "boh"), "operazione non trovata\n"),
                                 (("restore", operazione, "--index", "12"), "indice non valido\n"),
                                 (("log", "boh"), "operazione non trovata: boh\n")):
            self.assertEqual(self.esegui(*argomenti, stato=1), ("", testo))

    def test_what_cannot_be_meant(self):
        self.assertEqual(self.esegui("trash", "boh", stato=2),
                         ("", "categoria inesistente: boh\n"))
        for mai_cercata in ("npm-cache", "docker-disk", "altra"):
            self.regole([{"id": "altra", "name": "A", "section": "avvio", "mode": "delete"}])
            if mai_cercata != "altra":
                (self.supporto / "risultati.json").unlink(missing_ok=True)
            self.assertEqual(self.esegui("trash", mai_cercata, "--yes", stato=1),
                             ("", "nessun risultato salvato: rifai la scansione\n"))
            self.assertEqual(self.api("/api/trash", {"id": mai_cercata}, stato=1),
                             {"err": "categoria inesistente"})
        self.regola()
        self.scandisci()
        self.assertEqual(self.esegui("trash", FINDING, "--group", "0", "--yes", stato=1),
                         ("", "gruppo inesistente\n"))
        for argomenti in (["trash"], ["trash", FINDING, "--group", "-1"], ["restore"],
                          ["trash", FINDING, "--group"], ["restore", "a", "--index", "x"]):
            self.esegui(*argomenti, stato=2)
        self.regole([{"id": "r", "name": "R", "section": "sviluppo", "mode": "report",
                      "children_of": "~/cose"}])
        self.scandisci()
        # Refused without a question, with a terminal or without.
        for argomenti in ((), ("--group", "0"), ("--group", "0", "1", "--yes")):
            self.assertEqual(self.esegui("trash", "r", *argomenti, stato=1),
                             ("", "categoria non cestinabile\n"))
        self.assertEqual(self.contenuti(), self.prima)


class Duplicati(ConOperazioni):
    GRANDE = 6 << 20

    def setUp(self):
        super().setUp()
        for nome, copie in (("a", 2), ("b", 3), ("c", 2)):
            for i in range(copie):
                with open(self.file(f"Documents/{nome}{i}"), "wb") as uscita:
                    uscita.write(nome.encode() * self.GRANDE)
        (self.casa / "regole.json").write_text(json.dumps(
            {"duplicates": {"min_size_mb": 1, "roots": ["~/Documents"]}}))
        self.esegui("scan", "duplicati")

    def restano(self):
        return sorted(os.listdir(self.casa / "Documents"))

    def gruppi(self):
        """Name of a set to its number, as `show` tells them."""
        elenco, _ = self.esegui("show", "duplicates")
        return dict((nome, numero) for numero, nome in
                    re.findall(r"gruppo (\d+)\n +~/Documents/(\w)0", elenco))

    def test_every_group_keeps_a_copy_and_all_come_back(self):
        stato, uscita = self.al_terminale(b"n\n", "trash", "duplicates")
        self.assertEqual(stato, 1)
        self.assertIn("Sposto nel Cestino 4 elementi (24.0 MiB)?", uscita)
        mostrati = re.findall(r"~/Documents/(\w\d)\n", uscita)
        uscita, errori = self.esegui("trash", "duplicates", "--yes")
        self.assertEqual(errori, "")
        self.assertEqual(self.restano(), ["a0", "b0", "c0"])
        self.assertEqual(sorted(mostrati), ["a1", "b1", "b2", "c1"], "what was shown is what went")
        self.assertEqual(self.titoli(), ["Duplicati: pulizia completa (4 copie)"])
        self.esegui("restore", *self.annulla(uscita))
        self.assertEqual(self.restano(), ["a0", "a1", "b0", "b1", "b2", "c0", "c1"])

    def test_named_groups_one_operation_each_and_a_changed_one_is_refused(self):
        numeri = self.gruppi()
        os.unlink(self.casa / "Documents/b0")
        documenti = self.casa / "Documents"
        # Another file with the same content and time, and one whose time was set back.
        shutil.copy2(documenti / "a0", documenti / "nuovo")
        os.replace(documenti / "nuovo", documenti / "a0")
        prima = (documenti / "c0").stat()
        (documenti / "c0").write_bytes(b"C" * self.GRANDE)
        os.utime(documenti / "c0", ns=(prima.st_atime_ns, prima.st_mtime_ns))
        uscita, errori = self.esegui("trash", "duplicates", "--yes", "--group", numeri["b"],
                                     numeri["a"], "--group", numeri["c"], stato=1)
        self.assertEqual(errori.splitlines(),
                         ["~/Documents/c0: lo stato è cambiato: ricarica e riprova",
                          "~/Documents/b0: non esiste piu': era gia' stato rimosso",
                          "Per aggiornare i risultati: pellak-cleaner scan"])
        self.assertIn("Spostati nel Cestino 2 elementi, 12.0 MiB\n", uscita)
        self.assertEqual(self.restano(), ["a0", "b1", "c0", "c1"])
        self.assertEqual(sorted(self.titoli()), ["Duplicati: a0", "Duplicati: b1"])
        self.assertNotIn("a", self.gruppi())
        for operazione in self.annulla(uscita):
            self.esegui("restore", operazione)
        self.assertEqual(self.restano(), ["a0", "a1", "b1", "b2", "c0", "c1"])


class Gruppi(ConOperazioni):
    """Groups that are no duplicates, as a saved scan of applications leaves them."""

    def test_one_group_or_several(self):
        gruppi = [{"name": nome, "size": 4096,
                   "paths": [os.fsdecode(self.cosa(nome + fine, nome + fine))
                             for fine in ("", "-cache")], "pesi": [3000, 1096]}
                  for nome in ("uno", "due", "tre")]
        self.supporto.mkdir(parents=True)
        (self.supporto / "risultati.json").write_text(json.dumps({"applicazioni": {
            "ts": time.time(), "status": "", "denied": 0, "findings": [
                {"id": "app-leftovers", "categoria": "app-leftovers", "name": "Residui",
                 "mode": "delete", "items": [], "groups": gruppi}]}}))
        self.assertEqual(self.esegui("trash", "app-leftovers", "--yes", stato=1)[1],
                         "nessun elemento trattabile\n")
        uscita, _ = self.esegui("trash", "app-leftovers", "--yes", "--group", "1")
        self.assertIn("Spostati nel Cestino 2 elementi, 4.0 KiB\n", uscita)
        self.assertEqual(sorted(os.listdir(self.casa / "cose")),
                         ["tre", "tre-cache", "uno", "uno-cache"])
        self.esegui("trash", "app-leftovers", "--group", "1", "0", "--yes")
        self.assertEqual(os.listdir(self.casa / "cose"), [])
        self.assertEqual(self.titoli(), ["Selezione multipla (2 voci)", "Residui: due"])


class RegistroLungo(ConOperazioni):
    QUANTE = 20_000 if LENTO else 100_000

    def test_a_long_log_starts_with_the_newest_and_ends_with_its_reader(self):
        self.assertEqual(self.esegui("log"), ("Nessuna operazione nel registro.\n", ""))
        self.supporto.mkdir(parents=True)
        inizio = 1_700_000_000 - self.QUANTE
        with open(self.registro, "w", encoding="utf-8") as registro:
            for i in range(self.QUANTE):
                registro.write(json.dumps(
                    {"id": f"{i:012}", "ts": inizio + i + .5, "azione": "Categoria: \033[2J",
                     "tot": 1024, "nota": "prova", "items": [
                         {"orig": f"/x/{i}", "trash": f"/t/{i}", "rip": False}]}) + "\n")
            for i in (7, self.QUANTE - 1):
                registro.write(f'{{"ripristino":"{i:012}","ts":1.7e9,"indici":[0]}}\n')
            registro.write('{"id":"a meta')
        with subprocess.Popen([PROGRAMMA, "log"], env=self.ambiente, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as processo:
            testata, prima = processo.stdout.readline(), processo.stdout.readline()
            processo.stdout.close()
            self.assertEqual((processo.wait(60), processo.stderr.read()), (0, b""))
        self.assertRegex(testata.decode(), r"^Id +Data +Elementi +Dimensione +Ripristinati +Operaz")
        self.assertEqual(
            prima.decode(),
            f"{self.QUANTE - 1:012}  2023-11-14 22:13         1     1.0 KiB             1  "
            "Categoria: \\x1b[2J (prova)\n")
        ops = json.loads(self.esegui("log", "--json")[0])["ops"]
        self.assertEqual([op["ts"] for op in ops],
                         [inizio + i + .5 for i in reversed(range(self.QUANTE))])
        self.assertEqual([op["id"] for op in ops if op["items"][0]["rip"]],
                         [f"{self.QUANTE - 1:012}", "000000000007"])
        self.cosa("a", "a")
        self.scandisci()
        self.cestina()
        self.assertEqual(self.operazioni()[0]["items"][0]["orig"], str(self.casa / "cose/a"))
        self.assertEqual(self.ripristina()["items"], 1)


if __name__ == "__main__":
    unittest.main()
