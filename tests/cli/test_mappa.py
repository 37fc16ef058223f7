"""`map`: the disk map as a person at a terminal meets it, on real trees."""

import json
import os
import pathlib
import subprocess
import unittest

from programma import NOBODY, PROGRAMMA, ConCasa, su_terminale


def sul_disco(percorso):
    """Bytes on disk below a path as the map counts them: no folders, no links inside."""
    if not os.path.isdir(percorso) or os.path.islink(percorso):
        return os.lstat(percorso).st_blocks * 512
    return sum(sul_disco(voce.path) for voce in os.scandir(percorso)
               if voce.is_dir(follow_symlinks=False) or not voce.is_symlink())


class Mappa(ConCasa):
    def mappa(self, *argomenti, **opzioni):
        return json.loads(self.esegui("map", *argomenti, "--json", **opzioni)[0])

    def test_sizes_are_those_on_the_disk_largest_first(self):
        self.file("grande/a/b/c", 900_000)
        self.file("grande/d", 100)
        self.file("media", 300_000)
        self.file("piccola/x", 5_000)
        os.symlink("/usr", self.casa / "piccola/usr")
        os.symlink("grande", self.casa / "scorciatoia")
        trovata = self.mappa()
        self.assertEqual(trovata["path"], str(self.casa))
        self.assertFalse(trovata["misurando"])
        self.assertEqual([voce["nome"] for voce in trovata["items"]],
                         ["grande", "media", "piccola", "scorciatoia"])
        for voce in trovata["items"]:
            self.assertEqual(voce["size"], sul_disco(self.casa / voce["nome"]), voce)
        self.assertEqual(trovata["tot"], sum(voce["size"] for voce in trovata["items"]))
        self.assertNotIn("non_leggibili", trovata)

        self.assertEqual(self.mappa("grande", cwd=self.casa),
                         self.mappa(str(self.casa) + "//piccola/../grande/"))
        tabella, errori = self.esegui("map")
        self.assertEqual(errori, "")
        self.assertNotIn("\033", tabella)
        righe = tabella.splitlines()
        self.assertEqual(righe[0], "~")
        self.assertRegex(righe[4], r"^ *\d+\.\d KiB  █{20}  grande/$")
        self.assertRegex(righe[5], r"^ *\d+\.\d KiB  █{6,7}░+  media$")

    def test_hostile_names_are_shown_safely_and_can_be_followed(self):
        nome = b"rosso\033[31m\nriga\xff"
        self.file(b"cose/" + nome + b"/dentro", 9_000)
        testo, _ = self.esegui("map", "~/cose")
        self.assertIn(r"rosso\x1b[31m\nriga\xff/", testo)
        self.assertNotIn("\033", testo)
        self.assertEqual(self.mappa("~/cose")["items"][0]["nome"], "rosso\033[31m\nriga\uefff")
        sotto = subprocess.run([PROGRAMMA, "map", os.fsencode(self.casa) + b"/cose/" + nome],
                               env=self.ambiente, capture_output=True, timeout=60)
        self.assertEqual((sotto.returncode, sotto.stderr), (0, b""))
        self.assertIn(b"dentro", sotto.stdout)

    def test_what_cannot_be_listed_is_said(self):
        self.file("file")
        _, errori = self.esegui("map", "manca", cwd=self.casa, stato=1)
        self.assertEqual(errori, f"cartella inesistente: {self.casa}/manca\n")
        self.assertEqual(self.esegui("map", "~/file", stato=1)[0], "")
        self.esegui("map", "a", "b", stato=2)

    @unittest.skipUnless(os.geteuid() == 0, "an unprivileged user has to be chosen")
    def test_unreadable_folders_as_an_ordinary_user(self):
        self.file("cose/a", 9_000)
        self.file("cose/chiusa/b", 9_000)
        os.chmod(self.casa, 0o755)
        os.chmod(self.casa / "cose/chiusa", 0)
        trovata = self.mappa("~/cose", user=NOBODY)
        self.assertEqual(trovata["non_leggibili"], 1)
        self.assertEqual(trovata["tot"], sul_disco(self.casa / "cose/a"))
        _, errori = self.esegui("map", "~/cose", user=NOBODY)
        self.assertEqual(errori, "1 elemento non leggibile: il totale è parziale.\n")
        _, errori = self.esegui("map", "~/cose/chiusa", user=NOBODY, stato=1)
        self.assertIn("cartella non leggibile (permessi)", errori)


class MappaGrande(ConCasa):
    """Trees that take a while."""

    def setUp(self):
        super().setUp()
        for i in range(40):
            os.makedirs(f"{self.casa}/cose/{i}")
        for i in range(20_000):
            os.mkdir(f"{self.casa}/cose/{i % 40}/{i}")

    def test_progress(self):
        stato, uscita = su_terminale(["map", "~/cose"], self.ambiente)
        self.assertEqual(stato, 0, uscita[-500:])
        self.assertIn("cartelle su 40", uscita)

    @unittest.skipUnless(pathlib.Path("/proc/self/syscall").exists(), "nothing tells what waits")
    def test_a_clean_interrupt(self):
        stato, uscita = su_terminale(["map", "~/cose"], self.ambiente, interrotto=True)
        self.assertEqual(stato, 130, uscita[-500:])
        self.assertIn("Misura interrotta.", uscita)
        self.assertNotIn("Dimensione", uscita, "no table after an interrupt")

    def test_the_first_answer_does_not_wait_nor_does_the_end(self):
        risposta, = self.ponte([{"channel": "api", "id": 1, "path": "/api/mappa",
                                 "body": {"path": "~/cose"}}])
        self.assertTrue(risposta["reply"]["misurando"])


if __name__ == "__main__":
    unittest.main()
