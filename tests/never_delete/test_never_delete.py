"""Nothing of the user's is ever deleted, emptied or overwritten: seen from the system calls.

The checker's own proof, then a long session under a tracer.
"""

import json
import os
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "cli"))

from tracciato import Proprio, Tracciato  # noqa: E402
from tracciatore import Tracciatore, possibile  # noqa: E402

VERO = os.environ["PELLAK_PROGRAMMA"]
SENZA_TRACCE = 77
if not possibile():
    print("no process may be traced here")
    sys.exit(SENZA_TRACCE)
TRACCIATORE = Tracciatore(VERO)
os.environ["PELLAK_PROGRAMMA"] = TRACCIATORE.programma

from cestino import ConCestino  # noqa: E402


def tearDownModule():
    TRACCIATORE.togli()


class Controllo(unittest.TestCase):
    """The checker sees what it is there for."""

    SUO = b"/h/Library/Application Support/PellakCleaner"
    FINE = b"1 +++ exited with 0 +++\n"

    def lamentele(self, riga):
        tracciato = Tracciato(b"1 " + riga + b"\n" + self.FINE, Proprio(b"/h"))
        self.assertTrue(tracciato.finito)
        return tracciato.lamentele

    def test_what_could_destroy_is_complained_about(self):
        for riga in (
                b'unlink("/h/Documenti/a") = 0',
                b'unlink("/h/Documenti/a") = -1 EACCES (Permission denied)',
                b'unlinkat(AT_FDCWD</h>, "a", 0) = 0',
                b'unlinkat(7</h/.local/share/Trash/files>, "a", 0) = 0',
                b'unlinkat(7</h/.local/share/Trash/info>, "../files/a.trashinfo", 0) = 0',
                b'unlinkat(7</h/altro/info>, "a.trashinfo", 0 <unfinished ...>',
                b'unlinkat(7, "a.trashinfo", 0) = 0',
                b'unlinkat(7</h/.local/share/Trash/info>, "a.trashinfo", AT_REMOVEDIR) = 0',
                b'rmdir("/h/.local/share/Trash/files/a") = 0',
                b'truncate("/h/a", 0) = 0',
                b'ftruncate(5</h/a>, 0) = 0',
                b'fallocate(5</h/a>, FALLOC_FL_PUNCH_HOLE, 0, 4096) = 0',
                b'creat("/h/a", 0600) = 5',
                b'openat(AT_FDCWD</h>, "/h/a", O_RDONLY|O_TRUNC) = 5</h/a>',
                b'openat(AT_FDCWD</h>, "/h/a", O_WRONLY|O_CREAT, 0600) = 5</h/a>',
                b'openat(4</h/b>, "\\141\\"\\n", O_RDWR|O_CLOEXEC) = 5</h/b/a>',
                b'openat2(AT_FDCWD</h>, "/h/a", {flags=O_RDWR|O_CLOEXEC, resolve=0}, 24) = 5</h/a>',
                b'open("%b/../a", O_WRONLY) = 5' % self.SUO,
                b'rename("/h/a", "/h/.local/share/Trash/files/a") = 0',
                b'rename("%b/x.nuovo", "%b/x") = 0' % (self.SUO, self.SUO),
                b'fsync(5<%b/x.nuovo>) = 0\n1 openat(4</h>, "%b/x.nuovo", O_RDWR|O_CREAT) = 5\n'
                b'1 rename("%b/x.nuovo", "%b/x") = 0' % ((self.SUO,) * 4),
                b'fsync(5<%b/x.nuovo>) = 0\n1 rename("%b/x.nuovo", "%b/x") = 0\n1 renameat2('
                b'4</h>, "a", 5</h/.local/share/Trash/files>, "a", RENAME_NOREPLACE) = 0' % (
                    (self.SUO,) * 3),
                b'rename("%b/x.nuovo", "/h/a") = 0' % self.SUO,
                b'renameat(4</h>, "a", 5</h/.local/share/Trash/files>, "a") = 0',
                b'renameat2(4</h>, "a", 5</h/.local/share/Trash/files>, "a", 0) = 0',
                b'renameat2(4</h>, "a", 5</h/.local/share/Trash/files>, "a", RENAME_EXCHANGE) = 0',
                b'renameat2(4</h>, "a", 5</h>, "b", RENAME_NOREPLACE) = 0',
                b'open_by_handle_at(3</h>, {handle_bytes=8}, O_RDWR) = 5</h/a>',
                b'unlinkat(AT_FDCWD</h>, "a"...',
                b'unlink(0x7ffe) = -1 EFAULT (Bad address)'):
            self.assertEqual(len(self.lamentele(riga)), 1, riga)

    def test_a_call_that_a_kill_came_before_can_t_be_read(self):
        uccisa = b"2 +++ killed by SIGKILL +++\n"
        for righe, lamentele in (
                (b"2 ???()                = ?\n" + uccisa, 0),
                (b"2 ???( <unfinished ...>\n2 <... ??? resumed>) = ?\n" + uccisa, 0),
                (b"2 unlinkat(7, 0x7ffe, 0) = ? <unavailable>\n" + uccisa, 0),
                (b'2 unlink("/h/a") = ?\n' + uccisa, 1),
                (b"2 ???() = ?\n3 +++ killed by SIGKILL +++\n2 +++ exited with 0 +++\n", 1),
                (b"2 ???() = ?\n2 openat(AT_FDCWD</h>, \"a\", O_RDONLY) = ?\n" + uccisa, 1),
                (b"2 unlinkat(7, 0x7ffe, 0 <unfinished ...>\n2 <... unlinkat resumed>) = 0\n" +
                 uccisa, 1)):
            tracciato = Tracciato(righe + self.FINE, Proprio(b"/h"))
            self.assertEqual(len(tracciato.lamentele), lamentele, righe)

    def test_what_is_the_program_s_own_is_not(self):
        for riga in (
                b'openat(AT_FDCWD</h>, "/h/a", O_RDONLY|O_CLOEXEC) = 5</h/a>',
                b'openat(AT_FDCWD</h>, "/dev/null", O_RDWR) = 5</dev/null>',
                b'openat(AT_FDCWD</h>, "%b/x", O_RDWR|O_CREAT, 0600 <unfinished ...>' % self.SUO,
                b'ftruncate(5<%b/x.nuovo>, 0) = 0' % self.SUO,
                b'fsync(5<%b/x.nuovo>) = 0\n1 rename("%b/x.nuovo", "%b/x") = 0' % (
                    self.SUO, self.SUO, self.SUO),
                b'unlink("%b/x") = 0' % self.SUO,
                b'openat(8</h/.local/share/Trash/info>, "a\\n\\377.trashinfo", '
                b'O_WRONLY|O_CREAT|O_EXCL, 0600) = 9</h/.local/share/Trash/info/a\\n\\377.trashinfo>',
                b'unlinkat(8</v/.Trash-1000/info>, "a.trashinfo", 0) = 0',
                b'renameat(8</v/.Trash/1000>, "directorysizes.7", 8</v/.Trash/1000>, '
                b'"directorysizes") = 0',
                b'renameat2(4</h>, "a", 5</v/.Trash-1000/files>, "a", RENAME_NOREPLACE) = 0',
                b'renameat2(5</v/.Trash-1000/files>, "a", 4</h>, "a", RENAME_NOREPLACE) = 0',
                b'<... openat resumed>) = 5</h/a>',
                b'--- SIGTERM {si_signo=SIGTERM} ---'):
            self.assertEqual(self.lamentele(riga), [], riga)

    def test_the_tracer_shows_what_other_programs_do(self):
        """Real destruction, through the tracer that watches ours."""
        prova = Tracciatore("/bin/bash")
        self.addCleanup(prova.togli)
        comandi = ("echo >a", "echo >>a", ": >a; rm a", ": >a; mv -f a b", "mkdir d; rmdir d",
                   "truncate -s 0 a", "(: >a; rm a) & wait")
        for comando in comandi:
            subprocess.run([prova.programma, "-c", comando], cwd=prova.cartella, check=True,
                           env={"HOME": "/h", "PATH": os.environ["PATH"]})
        tracce = prova.leggi()
        self.assertEqual([bool(t.finito and t.lamentele) for t in tracce], [True] * len(comandi))


class Sessione(ConCestino):
    """Everything a user may do with the Trash, and what may go wrong."""

    def setUp(self):
        super().setUp()
        regole = json.loads((self.casa / "regole.json").read_text())
        regole["duplicates"] = {"min_size_mb": 1, "roots": ["~/Documenti"]}
        (self.casa / "regole.json").write_text(json.dumps(regole))
        for i in range(6):
            self.cosa(f"n{i}", f"n{i}")
        self.cosa(b"a\n\xff) = 0", "strano")
        self.cosa("d/e/f", "dentro")
        self.cosa("link", "")
        self.scandisci()
        os.unlink(self.casa / "cose/link")
        os.symlink("/etc/passwd", self.casa / "cose/link")
        for gruppo in range(3):
            for copia in range(3):
                percorso = self.file(f"Documenti/{gruppo}/{copia}.bin", 0)
                with open(percorso, "wb") as uscita:
                    uscita.write(b"%d" % gruppo + bytes(1_200_000))

    def utente(self):
        """How often every content is on the disk, wherever it lies."""
        quanti = {}
        for radice in ("cose", "Documenti", ".local/share/Trash/files", "volume"):
            for cartella, cartelle, file in os.walk(os.fsencode(self.casa / radice)):
                for nome in file + cartelle:
                    percorso = os.path.join(cartella, nome)
                    if os.path.islink(percorso):
                        chiave = os.readlink(percorso)
                    elif os.path.isfile(percorso) and b"/info/" not in percorso:
                        chiave = pathlib.Path(os.fsdecode(percorso)).read_bytes()[:16]
                    else:
                        continue
                    quanti[chiave] = quanti.get(chiave, 0) + 1
        return quanti

    def uccisa(self, rotta, corpo, guasto):
        """Runs the route and has the process killed at one system call."""
        self.ambiente["PELLAK_GUASTO"] = guasto.replace(":", ":signal=KILL:")
        processo = self.avvia("api", rotta, json.dumps(corpo))
        processo.communicate(timeout=60)
        del self.ambiente["PELLAK_GUASTO"]
        self.assertEqual(processo.returncode, -9, guasto)

    def categoria(self):
        self.cestina(items=[str(self.casa / "cose/n0"), str(self.casa / "cose/d")])
        self.assertEqual(self.cestina()["ok"], 6)  # what is a link now stays
        self.ripristina(0)
        self.ripristina(1)

    def duplicati(self):
        self.api("/api/settings", {"dup_min_mb": 1, "login_item": True})
        self.esegui("scan", "duplicati")
        self.assertEqual(self.api("/api/keep", {"group": 0})["ok"], 2)
        gruppo = json.loads(self.esegui("show", "duplicates", "--json")[0])["groups"][0]
        scarto = {"id": "duplicates", "group": 0, "paths": gruppo["paths"][1:2]}
        self.assertEqual(self.api("/api/dup_scarta", scarto)["ok"], 1)
        self.assertEqual(self.api("/api/keep_all")["ok"], 3)
        for posto in range(3):
            self.ripristina(posto)
        self.api("/api/settings", {"reset": True})

    def interruzioni(self):
        for via, ritorno in (("renameat2:when=1", None), ("renameat2:when=4", "renameat2:when=2"),
                             ("syncfs:when=1", "syncfs:when=1"), ("unlink:when=1", "unlink:when=1"),
                             ("unlink:when=1", "unlinkat:when=1")):
            self.scandisci()
            self.uccisa("/api/trash", {"id": "x"}, via)
            if ritorno:
                self.uccisa("/api/restore", {"op": self.operazioni()[0]["id"]}, ritorno)
                self.ripristina()

    def test_what_an_interruption_left_is_told_by_whom_it_moved_and_once(self):
        """Another home with the same Trash moves the rest before the books are finished."""
        pesi = {v["path"]: v["size"] for v in self.api("/api/voci", {"id": "x"})["items"]}
        self.uccisa("/api/trash", {"id": "x"}, "renameat2:when=4")
        casa = self.ambiente["HOME"]
        regole = json.loads((self.casa / "regole.json").read_text())
        regole["categories"][0]["children_of"] = str(self.casa / "cose")
        (self.casa / "regole.json").write_text(json.dumps(regole))
        self.ambiente["XDG_DATA_HOME"] = str(self.casa / ".local/share")
        self.ambiente["HOME"] = str(self.casa / "altra")
        os.mkdir(self.ambiente["HOME"])
        self.scandisci()
        self.assertEqual(self.cestina()["ok"], 5, "all but the link, which takes no room")
        self.assertEqual(len(self.operazioni()), 1)
        self.ambiente["HOME"] = casa
        ripresa, = self.operazioni()
        self.assertEqual(len(ripresa["items"]), 3)
        self.assertEqual(ripresa["tot"], sum(pesi[v["orig"]] for v in ripresa["items"]))
        self.assertEqual(self.ripristina()["items"], 3)

    def test_a_quota_reached_is_a_full_disk(self):
        for guasto in ("fsync:error=EDQUOT:when=1", "fsync:error=ENOSPC:when=1"):
            spazio = self.supporto / "riserva/spazio"
            self.assertTrue(spazio.exists())
            prima = spazio.read_bytes()
            self.ambiente["PELLAK_GUASTO"] = guasto
            self.assertEqual(self.cestina(items=[str(self.casa / "cose/n0")])["ok"], 1)
            del self.ambiente["PELLAK_GUASTO"]
            self.assertNotEqual(spazio.read_bytes(), prima, "given up, and made again with room")
            self.ripristina()
            self.scandisci()

    def altro_volume(self):
        volume = self.casa / "volume"
        volume.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", volume], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", volume], check=True)
        self.file("volume/uno", 5_000)
        self.regola(paths=["~/volume/uno"])
        self.scandisci()
        self.assertEqual(self.cestina()["ok"], 1)
        self.assertEqual(self.ripristina()["items"], 1)

    def test_a_session_destroys_nothing(self):
        prima = self.utente()
        self.assertEqual(len(prima), 12)
        self.categoria()
        self.duplicati()
        self.interruzioni()
        self.esegui("map", str(self.casa), "--json")
        self.ponte([{"channel": "api", "id": 1, "path": "/api/log", "body": {}}, b"{"])
        self.assertEqual(self.utente(), prima)
        self.assertCestinoCoerente()
        if os.geteuid() == 0:
            self.altro_volume()
        tracce = TRACCIATORE.leggi()
        self.assertEqual([riga for t in tracce for riga in t.lamentele], [])
        self.assertEqual([t.finito for t in tracce], [True] * len(tracce))
        # The traces show that there was something to see.
        self.assertGreaterEqual(sum(t.mosse for t in tracce), 40)
        self.assertGreaterEqual(sum(t.ritorni for t in tracce), 30)
        self.assertGreaterEqual(sum(t.tolti for t in tracce), 40)
        self.assertGreaterEqual(sum(t.ucciso for t in tracce), 6)


if __name__ == "__main__":
    unittest.main()
