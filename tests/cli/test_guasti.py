"""Broken files, missing rights, full and read-only disks."""

import json
import os
import socket
import stat
import subprocess
import unittest

from programma import NOBODY, PROGRAMMA, ConCasa


class FileRotti(ConCasa):
    def test_without_a_resource_folder_the_rules_inside_the_program_serve(self):
        self.file(".npm/_cacache/a", 30_000)
        self.ambiente["PELLAK_RESOURCES"] = str(self.casa / "manca")
        self.assertRegex(self.esegui("scan", "sviluppo")[0], r"Libera almeno \d")
        self.ambiente["PELLAK_TOOLS"] = "macos"
        self.file("Library/Caches/Homebrew/a.tar.gz", 30_000)
        self.esegui("scan", "sviluppo")
        self.assertIn("brew-cache", self.esegui("show")[0])

    def test_results_that_cannot_be_read_as_such_are_kept_aside(self):
        self.supporto.mkdir(parents=True)
        for testo, nome in (("{", "risultati.json.guasto"), ("[", "risultati.json.2.guasto")):
            (self.supporto / "risultati.json").write_text(testo)
            _, errori = self.esegui("scan", "sviluppo")
            self.assertIn("risultati salvati illeggibili", errori)
            self.assertEqual((self.supporto / nome).read_text(), testo)
        self.assertEqual((self.supporto / "risultati.json.guasto").read_text(), "{")

    def test_closed_standard_streams_write_into_no_file_of_ours(self):
        chiuso = f"exec '{PROGRAMMA}' scan sviluppo <&- >&- 2>&-"
        esito = subprocess.run(["/bin/sh", "-c", chiuso], env=self.ambiente, timeout=60)
        self.assertEqual(esito.returncode, 0)
        self.assertEqual((self.supporto / ".blocco").read_bytes(), b"")
        json.loads((self.supporto / "risultati.json").read_text())

    def strani(self, percorso):
        """Stands things that are no files at the path, one after the other."""
        def presa():
            with socket.socket(socket.AF_UNIX) as aperta:
                aperta.bind(os.path.relpath(percorso))
        modi = [lambda: os.mkfifo(percorso), presa, percorso.mkdir,
                lambda: (percorso.touch(), os.truncate(percorso, 1 << 40))]
        if os.geteuid() == 0:
            modi.append(lambda: os.mknod(percorso, stat.S_IFCHR | 0o600, os.makedev(1, 5)))
        for modo in modi:
            percorso.parent.mkdir(parents=True, exist_ok=True)
            percorso.unlink(missing_ok=True)
            modo()
            tipo = stat.S_IFMT(os.lstat(percorso).st_mode)
            with self.subTest(nome=percorso.name, tipo=oct(tipo)):
                yield
                if percorso.exists():
                    self.assertEqual(stat.S_IFMT(os.lstat(percorso).st_mode), tipo)
                    percorso.rmdir() if percorso.is_dir() else percorso.unlink()

    def test_what_is_no_file_in_place_of_one_hangs_nothing_and_is_kept(self):
        os.chdir(self.casa)
        self.addCleanup(os.chdir, "/")
        self.regola()
        self.file("cose/d/a")
        self.esegui("scan", "sviluppo")
        for numero, _ in enumerate(self.strani(self.supporto / "risultati.json")):
            self.assertIn("risultati salvati illeggibili", self.esegui("scan", "sviluppo")[1])
            self.assertTrue(self.api("/api/state")["sections"][0]["scanned"])
            (self.supporto / "risultati.json").unlink()
        self.assertEqual(len(list(self.supporto.glob("risultati.json*.guasto"))), numero + 1)
        for _ in self.strani(self.supporto / "impostazioni.json"):
            self.assertEqual(self.api("/api/settings")["valori"]["dup_min_mb"], 5)
            self.assertEqual(self.api("/api/settings", {"dup_min_mb": 9})["valori"]["dup_min_mb"], 9)
            (self.supporto / "impostazioni.json").unlink()
        for nome in (".blocco", "impostazioni.json.nuovo", "icone.json"):
            for _ in self.strani(self.supporto / nome):
                risposta = self.api("/api/settings", {"dup_min_mb": 9}, stato=None)
                self.assertTrue("valori" in risposta or nome in risposta["causa"], risposta)
        self.esegui("scan", "sviluppo")
        for _ in self.strani(self.supporto / "registro.jsonl"):
            err = self.api("/api/trash", {"id": "x"}, stato=1)["err"]
            self.assertRegex(err, r"^registro non scrivibile: non sposto nulla \(.*registro\.jsonl: ")
            err = self.api("/api/log", stato=1)["err"]
            self.assertRegex(err, r"^registro non leggibile: .*registro\.jsonl: .")
            self.assertEqual(self.api("/api/restore", {"op": "A"}, stato=1)["err"], err)
            for opzioni in ([], ["A"], ["--json"]):
                self.assertEqual(self.esegui("log", *opzioni, stato=1)[1], err + "\n")
            self.assertTrue((self.casa / "cose/d/a").exists())
            self.assertFalse((self.supporto / "cestino-intento.json").exists())
        cestino = self.casa / ".local/share/Trash"
        for nome in (cestino / "directorysizes", self.supporto / "cestino-intento.json"):
            for _ in self.strani(nome):
                op = self.api("/api/trash", {"id": "x"})["op"]
                self.assertEqual(self.api("/api/restore", {"op": op})["items"], 1)
                self.esegui("scan", "sviluppo")


@unittest.skipUnless(os.geteuid() == 0, "gives its home to another user, so it needs root")
class SenzaDiritti(ConCasa):
    """The program runs as a user who owns the home but not everything in it."""

    def da_nessuno(self, *argomenti):
        self.per_altri()
        for radice, cartelle, file in os.walk(self.casa):
            for nome in [radice] + [os.path.join(radice, f) for f in cartelle + file]:
                if "privata" not in nome:
                    os.chown(nome, NOBODY, NOBODY, follow_symlinks=False)
        return super().da_nessuno(*argomenti)

    def test_a_read_only_support_folder_loses_no_scan_and_no_settings(self):
        self.file(".npm/_cacache/a", 30_000)
        self.supporto.mkdir(parents=True)
        (self.supporto / "impostazioni.json").write_text('{"dup_min_mb":8}')
        self.da_nessuno("--version")
        os.chmod(self.supporto, 0o500)
        esito = self.da_nessuno("scan", "sviluppo")
        self.assertEqual(esito.returncode, 0)
        self.assertRegex(esito.stdout, r"Sviluppo +Libera")
        self.assertIn("risultati non salvati", esito.stderr)
        esito = self.da_nessuno("api", "/api/settings", '{"dup_min_mb":9}')
        risposta = json.loads(esito.stdout)
        self.assertEqual((esito.returncode, risposta["err"]), (1, "scrittura non riuscita"))
        self.assertRegex(risposta["causa"], r"PellakCleaner/\.blocco: permesso negato$")
        esito = self.da_nessuno("api", "/api/settings")
        self.assertEqual(json.loads(esito.stdout)["valori"]["dup_min_mb"], 8)

    def test_closed_books_are_not_empty_ones(self):
        self.esegui("scan", "sviluppo")
        os.chmod(self.supporto, 0)
        for comando, file in (("show", "risultati.json"), ("log", "registro.jsonl")):
            esito = self.da_nessuno(comando)
            self.assertEqual((esito.returncode, esito.stdout), (1, ""))
            self.assertIn(f"{self.supporto}/{file}: permesso negato\n", esito.stderr)


@unittest.skipUnless(os.geteuid() == 0, "mounts a small volume, so it needs root")
class DiscoPieno(ConCasa):
    def test_a_full_disk_keeps_the_old_files(self):
        volume = self.casa / "Library"
        volume.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k", "tmpfs", volume], check=True)
        self.addCleanup(subprocess.run, ["umount", volume], check=True)
        self.file(".npm/_cacache/a", 30_000)
        self.api("/api/settings", {"dup_min_mb": 7})
        self.esegui("scan", "sviluppo")
        self.riempi(volume)
        prima = (self.supporto / "risultati.json").read_bytes()
        uscita, errori = self.esegui("scan", "sviluppo")
        self.assertIn("Libera almeno", uscita)
        self.assertIn("Risultati non salvati: spazio esaurito.", uscita)
        self.assertRegex(errori, r"risultati non salvati: .*risultati\.json: spazio esaurito; libera")
        self.assertEqual((self.supporto / "risultati.json").read_bytes(), prima)
        risposta = self.api("/api/settings", {"dup_min_mb": 9}, stato=1)
        self.assertEqual(risposta["err"], "scrittura non riuscita")
        self.assertRegex(risposta["causa"], r"impostazioni\.json.*: spazio esaurito; libera a mano")
        self.assertEqual(self.api("/api/settings")["valori"]["dup_min_mb"], 7)


if __name__ == "__main__":
    unittest.main()
