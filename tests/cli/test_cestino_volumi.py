"""The Trash on other volumes, on full and read-only ones, and where rights are missing."""

import json
import os
import shutil
import subprocess
import unittest

from cestino import ConCestino
from programma import NOBODY, PROGRAMMA

UTENTE = os.geteuid()
PERMESSO = ("permesso negato da macOS: concedi l'Accesso completo al disco (pannello Permessi) "
            "oppure rimuovilo dal Finder")


class ConVolumi(ConCestino):
    def monta(self, percorso, *argomenti):
        percorso.mkdir(exist_ok=True)
        subprocess.run(["mount", *argomenti, percorso], check=True)
        self.addCleanup(subprocess.run, ["umount", "--lazy", percorso], capture_output=True)

    def tmpfs(self, percorso, size="16m"):
        self.monta(percorso, "-t", "tmpfs", "-o", f"size={size}", "tmpfs")

    def trasloca(self, casa):
        self.casa = casa
        self.ambiente["HOME"] = str(casa)
        self.cestino = casa / ".local/share/Trash"
        self.regola()

    def via_e_ritorno(self, cestino):
        """All of `cose` goes to that Trash and comes back."""
        self.cosa("uno è", "uno")
        self.cosa("d/due", "due")
        prima = self.contenuti("cose")
        self.scandisci()
        self.assertEqual(self.cestina(), {"ok": 2, "failed": []})
        self.assertEqual({voce["trash"] for voce in self.operazioni()[0]["items"]},
                         {f"{cestino}/files/uno è", f"{cestino}/files/d"})
        self.assertFalse((self.cestino / "files").exists(), "not the home Trash")
        self.assertEqual(self.scheda("uno è", cestino), "uno è".encode())
        self.assertCestinoCoerente(cestino)
        self.assertRegex((cestino / "directorysizes").read_text(), r"^\d+ \d{13} d\n$")
        self.assertEqual(self.ripristina(), {"ok": True, "items": 2, "errors": []})
        self.assertCestinoCoerente(cestino)
        self.assertEqual((cestino / "directorysizes").read_text(), "")
        self.assertEqual(self.contenuti("cose"), prima)


@unittest.skipUnless(UTENTE == 0, "mounts volumes, so it needs root")
class AltroVolume(ConVolumi):
    def setUp(self):
        super().setUp()
        self.cose = self.casa / "cose"

    def test_a_volume_without_a_trash_gets_one(self):
        self.tmpfs(self.cose)
        self.via_e_ritorno(self.cose / f".Trash-{UTENTE}")
        self.assertEqual((self.cose / f".Trash-{UTENTE}").stat().st_mode & 0o7777, 0o700)

    def test_another_mount_of_the_same_volume(self):
        vera = self.casa / "vera"
        vera.mkdir()
        self.monta(self.cose, "--bind", str(vera))
        self.via_e_ritorno(self.cose / f".Trash-{UTENTE}")

    def test_a_shared_trash_with_its_sticky_bit(self):
        self.tmpfs(self.cose)
        (self.cose / ".Trash").mkdir()
        os.chmod(self.cose / ".Trash", 0o1777)
        self.via_e_ritorno(self.cose / f".Trash/{UTENTE}")

    def test_a_shared_trash_that_cannot_be_trusted(self):
        for caso in ("no sticky bit", "link"):
            with self.subTest(caso):
                self.tmpfs(self.cose)
                if caso == "link":
                    altrove = self.casa / "altrove"
                    altrove.mkdir(mode=0o1777)
                    os.chmod(altrove, 0o1777)
                    os.symlink(altrove, self.cose / ".Trash")
                else:
                    (self.cose / ".Trash").mkdir()
                    os.chmod(self.cose / ".Trash", 0o777)
                self.via_e_ritorno(self.cose / f".Trash-{UTENTE}")
                self.assertEqual(list((self.cose / ".Trash").iterdir()), [])

    def test_a_folder_that_holds_a_volume_stays(self):
        """Also where the home folder is named through a link, and names look alike."""
        collegata = self.casa / "collegata"
        collegata.symlink_to(self.casa)
        for casa in (self.casa, collegata):
            self.ambiente["HOME"] = str(casa)
            self.cosa("madre/figlia", "figlia")
            self.cosa("madre due/dato", "due")
            self.cosa("vicina", "vicina")
            self.scandisci()
            volume = self.cose / "madre/a b"
            self.tmpfs(volume)
            (volume / "dato").write_text("altrui")
            risposta = self.cestina()
            self.assertEqual((risposta["ok"], [v["err"] for v in risposta["failed"]]),
                             (2, ["contiene un altro disco: smontalo e riprova"]))
            self.assertEqual((volume / "dato").read_text(), "altrui")
            self.scandisci()
            stato = self.api("/api/state")["sections"][0]["findings"][0]
            self.assertEqual((stato["items"], [v["percorso"] for v in stato["perche_no"]]),
                             ([], [str(self.cose / "madre")]))
            subprocess.run(["umount", volume], check=True)
            self.scandisci()
            self.assertEqual(self.cestina()["ok"], 1)
            self.ripristina(0)
            self.ripristina(1)

    def test_a_read_only_volume(self):
        self.tmpfs(self.cose)
        for pronto in (False, True):
            with self.subTest(pronto=pronto):
                self.cosa("a", "a")
                self.cosa("b", "b")
                self.scandisci()
                if pronto:
                    self.cestina(items=[str(self.cose / "b")])
                prima = self.contenuti("cose")
                subprocess.run(["mount", "-o", "remount,ro", self.cose], check=True)
                risposta = self.cestina()
                self.assertEqual(risposta["ok"], 0)
                self.assertEqual({v["err"] for v in risposta["failed"]},
                                 {"il volume e' in sola lettura: elemento non spostato"})
                if pronto:
                    self.assertEqual(self.ripristina()["items"], 0)
                self.assertEqual(self.contenuti("cose"), prima)
                subprocess.run(["mount", "-o", "remount,rw", self.cose], check=True)
        self.assertEqual(self.ripristina()["items"], 1)

    def test_a_full_volume(self):
        self.tmpfs(self.cose, "256k")
        self.cosa("a", "a")
        self.scandisci()
        self.riempi(self.cose)
        prima = self.contenuti("cose")
        risposta = self.cestina()
        self.assertEqual((risposta["ok"], risposta["failed"][0]["err"]),
                         (0, "spazio esaurito sul volume: elemento non spostato"))
        self.assertEqual(self.contenuti("cose"), prima)
        self.assertCestinoCoerente(self.cose / f".Trash-{UTENTE}")
        self.assertTrue((self.supporto / "riserva/spazio").exists(), "no room for another volume")

    def test_a_volume_that_fills_up_in_the_middle_of_a_batch(self):
        quanti = 300
        self.monta(self.cose, "-t", "tmpfs", "-o", f"size=16m,nr_inodes={quanti + 155}", "tmpfs")
        for i in range(quanti):
            self.cosa(f"{i:03}", str(i))
        self.scandisci()
        prima = self.contenuti("cose")
        risposta = self.cestina()
        self.assertEqual({v["err"] for v in risposta["failed"]},
                         {"spazio esaurito sul volume: elemento non spostato"})
        self.assertEqual(risposta["ok"] + len(risposta["failed"]), quanti)
        self.assertTrue(100 < risposta["ok"] < 200, risposta["ok"])
        self.assertLessEqual(set(prima), set(self.contenuti("cose")))
        self.assertCestinoCoerente(self.cose / f".Trash-{UTENTE}")
        self.assertEqual(self.ripristina()["items"], risposta["ok"])
        self.assertEqual(self.contenuti("cose"), prima)

    def test_a_volume_that_is_away_and_comes_again(self):
        self.tmpfs(self.cose)
        self.cosa("a", "a")
        prima = self.contenuti("cose")
        self.scandisci()
        self.cestina()
        vuoto = self.casa / "vuoto"
        vuoto.mkdir()
        subprocess.run(["mount", "--bind", vuoto, self.cose], check=True)
        op = self.operazioni()[0]["id"]
        self.assertRegex(self.api("/api/restore", {"op": op})["failed"][0]["causa"],
                         "^il disco «.*/cose» non ha quel Cestino: è un altro disco")
        subprocess.run(["umount", self.cose], check=True)
        self.assertEqual(self.ripristina()["items"], 1)
        self.assertEqual(self.contenuti("cose"), prima)

    def test_the_home_folder_by_another_name(self):
        (self.casa / "collegata").symlink_to(self.casa)
        self.ambiente["HOME"] = str(self.casa / "collegata")
        self.cosa("a", "a")
        self.scandisci()
        self.assertEqual(self.cestina()["ok"], 1)
        self.ambiente["HOME"] = str(self.casa)
        self.assertEqual(self.ripristina()["items"], 1)

    def test_an_interrupted_operation_waits_for_its_volume(self):
        self.tmpfs(self.cose)
        self.cosa("a", "a")
        self.scandisci()
        self.assertEqual(self.cestina()["ok"], 1)
        self.interrotta()
        self.registro.unlink()
        self.monta(self.casa / "vuoto", "-t", "tmpfs", "tmpfs")
        for via, ritorno in (
                (["--move", self.cose, self.casa / "altrove"],
                 ["mount", "--move", self.casa / "altrove", self.cose]),
                (["--bind", self.casa / "vuoto", self.cose], ["umount", self.cose])):
            (self.casa / "altrove").mkdir(exist_ok=True)
            subprocess.run(["mount", *via], check=True)
            self.assertEqual(self.operazioni(), [])
            self.assertRegex(self.api("/api/restore", {"op": "x"}, stato=1)["err"],
                             r"^il Cestino non è leggibile: .* \(il disco «.*/cose» non ")
            subprocess.run(ritorno, check=True)
        self.assertEqual(self.ripristina()["items"], 1)
        self.assertCestinoCoerente(self.cose / f".Trash-{UTENTE}")


@unittest.skipUnless(UTENTE == 0, "mounts volumes, so it needs root")
class Sovrapposto(ConVolumi):
    """A home folder on an overlay, as live systems and containers have it."""

    def test_items_of_every_layer_move_or_say_why_not(self):
        strati = self.casa
        for nome in ("sotto", "sopra"):
            self.tmpfs(strati / nome)
        (strati / "sopra/su").mkdir()
        (strati / "sopra/lavoro").mkdir()
        self.casa = strati / "sotto"
        for nome in ("file", "scritto", "cartella/dato", "doppio"):
            self.cosa(nome, nome)
        os.link(self.casa / "cose/doppio", self.casa / "cose/altro nome")
        self.monta(strati / "casa", "-t", "overlay", "-o",
                   f"lowerdir={strati}/sotto,upperdir={strati}/sopra/su,"
                   f"workdir={strati}/sopra/lavoro", "overlay")
        self.trasloca(strati / "casa")
        self.cosa("nuovo", "nuovo")
        self.cosa("nuova/dato", "nuova")
        with open(self.casa / "cose/scritto", "ab") as scritto:
            scritto.write(b"ancora")
        self.scandisci()
        risposta = self.cestina()
        rimaste = {os.path.basename(v["percorso"]): v["err"] for v in risposta["failed"]}
        # Some kernels move folders of the layer below, most don't.
        sotto = "la cartella fa parte del sistema di base, che non si può modificare: " \
                "elemento non spostato"
        self.assertIn(rimaste, ({}, {"cartella": sotto}))
        self.assertEqual(risposta["ok"] + len(rimaste), 7)
        self.assertEqual(sorted(os.listdir(self.casa / "cose")), sorted(rimaste))
        self.assertCestinoCoerente()
        self.assertEqual(self.ripristina(), {"ok": True, "items": risposta["ok"], "errors": []})
        self.assertEqual(len(os.listdir(self.casa / "cose")), 7)


@unittest.skipUnless(UTENTE == 0, "mounts volumes, so it needs root")
class DiscoPieno(ConVolumi):
    def casa_su(self, quanti, **opzioni):
        """A home on a volume of its own, scanned, with so many things in it."""
        casa = self.casa / opzioni["size"]
        size = opzioni.pop("size")
        self.tmpfs(casa, ",".join([size] + [f"{n}={v}" for n, v in opzioni.items()]))
        self.trasloca(casa)
        for i in range(quanti):
            self.cosa(f"n{i}", f"n{i}")
        self.scandisci()

    def test_with_the_reserve_a_full_home_works_as_far_as_it_goes(self):
        riserva = "riserva/spazio"
        for quanti, opzioni in ((20, {"size": "40m"}), (1500, {"size": "48m"}),
                                (20, {"size": "64m", "nr_inodes": 700})):
            with self.subTest(**opzioni):
                self.casa_su(quanti, **opzioni)
                prima = self.contenuti()
                blocchi = (self.supporto / riserva).stat().st_blocks * 512
                self.assertTrue(1 << 20 <= blocchi <= 4 << 20, blocchi)
                self.assertEqual(len(os.listdir(self.supporto / "riserva/nodi")), 64)
                zavorre = self.casa / "zavorre"
                zavorre.mkdir()
                if "nr_inodes" in opzioni:
                    with self.assertRaises(OSError):
                        for i in range(1000):
                            (zavorre / str(i)).touch()
                else:
                    self.riempi(zavorre)
                risposta = self.cestina()
                self.assertFalse((self.supporto / riserva).exists())
                self.assertEqual(risposta["ok"] + len(risposta["failed"]), quanti)
                self.assertTrue(risposta["ok"] == quanti or 200 < risposta["ok"] < quanti == 1500)
                self.assertLessEqual({v["err"] for v in risposta["failed"]},
                                     {"spazio esaurito sul volume: elemento non spostato"})
                self.assertEqual(len(self.operazioni()[0]["items"]), risposta["ok"])
                self.assertCestinoCoerente()
                self.assertEqual(self.ripristina()["items"], risposta["ok"])
                self.assertEqual(self.contenuti(), prima)
                self.assertNotIn("non salvati", "".join(self.esegui("scan", "sviluppo")))
                self.api("/api/settings", {"dup_min_mb": 9})
                shutil.rmtree(zavorre)
                self.api("/api/settings", {"dup_min_mb": 8})
                self.assertTrue((self.supporto / riserva).exists())
                self.casa = self.casa.parent

    def test_a_home_with_little_room_loses_nothing(self):
        """From no room at all to enough, one page at a time."""
        self.casa_su(6, size="1m")
        risultati = (self.supporto / "risultati.json").read_bytes()
        prima = self.contenuti()
        esiti = set()
        for pagine in range(24):
            (self.supporto / "risultati.json").write_bytes(risultati)
            self.riempi(self.casa)
            with open(self.casa / "zavorra", "r+b") as zavorra:
                zavorra.truncate(max(0, os.path.getsize(zavorra.name) - pagine * 4096))
            stato, risposta = self.prova("/api/trash", {"id": "x"})
            posti = self.contenuti()
            self.assertEqual(set(posti), set(prima))
            mossi = sum(b"/Trash/files/" in p for p in posti.values())
            self.assertEqual(risposta.get("ok", 0), mossi)
            self.assertEqual(stato == 0, "ok" in risposta, risposta)
            esiti.add(risposta.get("err", "ok" if mossi == 6 else "some"))
            self.torna(prima)
        self.assertIn("disco pieno: il registro non è scrivibile e non sposto nulla; libera a mano un "
                      "po' di posto su quel disco, per esempio svuotando il Cestino, e riprova", esiti)
        self.assertIn("ok", esiti)

    def prova(self, rotta, corpo):
        esito = subprocess.run([PROGRAMMA, "api", rotta, json.dumps(corpo)], env=self.ambiente,
                               capture_output=True, timeout=60)
        return esito.returncode, json.loads(esito.stdout)

    def torna(self, prima):
        """With the disk still as full, then with room: in the end all is back."""
        for posto in ("pieno", "spazio"):
            for op in self.operazioni():
                if not all(voce["rip"] for voce in op["items"]):
                    self.prova("/api/restore", {"op": op["id"]})
            self.assertEqual(set(self.contenuti()), set(prima), posto)
            (self.casa / "zavorra").unlink(missing_ok=True)
        self.assertEqual(self.contenuti(), prima)
        self.assertCestinoCoerente()


@unittest.skipUnless(UTENTE == 0, "gives its home to another user, so it needs root")
class SenzaDiritti(ConCestino):
    """The program runs as a user who owns the home but not everything in it."""

    def setUp(self):
        super().setUp()
        self.per_altri()
        self.cosa("a", "a")
        (self.cestino / "files").mkdir(parents=True)
        (self.cestino / "info").mkdir()
        subprocess.run(["chown", "-R", f"{NOBODY}:{NOBODY}", self.casa], check=True)
        self.assertEqual(self.da_nessuno("scan", "sviluppo").returncode, 0)

    def rifiuto(self):
        esito = self.da_nessuno("api", "/api/trash", '{"id":"x"}')
        risposta = json.loads(esito.stdout)
        self.assertTrue((self.casa / "cose/a").exists())
        self.assertEqual((risposta.get("ok"), self.operazioni()), (0, []), risposta)
        self.causa = risposta["failed"][0].get("causa")
        return risposta["failed"][0]["err"]

    def test_a_trash_that_cannot_be_used(self):
        for cartella in (self.cestino, self.cestino / "files", self.cestino / "info"):
            for modo in (0o000, 0o500):
                if (cartella, modo) == (self.cestino, 0o500):
                    continue
                with self.subTest(cartella=cartella.name, modo=oct(modo)):
                    os.chmod(cartella, modo)
                    self.assertEqual(self.rifiuto(), PERMESSO)
                    self.assertRegex(self.causa, "aprire$" if modo == 0 else "^il Cestino .* scrivibile$")
                    os.chmod(cartella, 0o700)
                    self.assertEqual(list(self.cestino.glob("*/*")), [])

    def test_what_keeps_an_item_in_the_trash_is_named(self):
        self.assertEqual(self.da_nessuno("trash", "x", "--yes").returncode, 0)
        corpo = json.dumps({"op": self.operazioni()[0]["id"]})

        def causa():
            return json.loads(self.da_nessuno("api", "/api/restore", corpo).stdout)["failed"][0]["causa"]
        for cartella, modo, attesa in ((self.cestino, 0, "non si può aprire"),
                                       (self.cestino / "files", 0, "non si può aprire"),
                                       (self.cestino / "files", 0o500, "non è scrivibile")):
            self.interrotta()
            os.chown(self.intento, NOBODY, NOBODY)
            os.chmod(cartella, modo)
            self.da_nessuno("log")
            self.assertEqual(self.intento.exists(), modo == 0)
            self.intento.unlink(missing_ok=True)
            self.assertEqual(causa(), f"il Cestino «{cartella}» {attesa}")
            os.chmod(cartella, 0o700)
        (self.casa / "cose").rmdir()
        (self.casa / "cose").touch()
        self.assertEqual(causa(), f"«{self.casa}/cose» non è una cartella")

    def test_a_trash_of_somebody_else_or_reached_through_a_link(self):
        os.chown(self.cestino, 0, 0)
        os.chmod(self.cestino, 0o777)
        self.assertEqual(self.rifiuto(), "il Cestino appartiene a un altro utente")
        altrove = self.casa / "altrove"
        self.cestino.rename(altrove)
        os.symlink(altrove, self.cestino)
        self.assertEqual(self.rifiuto(), "il Cestino è un collegamento simbolico: non lo uso")
        self.assertEqual(list(altrove.glob("*/*")), [])

    def test_a_log_that_cannot_be_written_is_known_before_anything_moves(self):
        altrove = self.casa / "altrove"
        altrove.write_text("di un altro")
        for caso in ("link", "somebody else's"):
            if caso == "link":
                self.registro.symlink_to(altrove)
            else:
                self.registro.unlink()
                self.registro.touch(mode=0o644)
            esito = self.da_nessuno("trash", "x", "--yes")
            self.assertEqual((esito.returncode, esito.stdout), (1, ""))
            motivo = "errore di sistema (è un collegamento" if caso == "link" else "permesso negato"
            self.assertIn(f"non sposto nulla ({self.registro}: {motivo}", esito.stderr)
            self.assertTrue((self.casa / "cose/a").exists())
            self.assertFalse(self.intento.exists())
        self.assertEqual(altrove.read_text(), "di un altro")

    def test_root_leaves_nothing_behind_that_the_user_cannot_write(self):
        shutil.rmtree(self.cestino.parent)
        shutil.rmtree(self.casa / "Library")
        _, errori = self.esegui("scan", "sviluppo")
        self.assertTrue(errori.startswith("attenzione: sei root nella cartella utente di "), errori)
        self.cosa("d/b", "b")
        os.chown(self.casa / "cose/d", NOBODY, NOBODY)
        self.scandisci()
        self.assertEqual(self.cestina(), {"ok": 2, "failed": []})
        self.api("/api/settings", {"dup_min_mb": 9, "login_item": True})
        di_root = [os.path.join(r, n) for r, c, f in os.walk(self.casa) for n in c + f
                   if os.lstat(os.path.join(r, n)).st_uid != NOBODY]
        self.assertEqual(di_root, [str(self.cestino / "files/d/b")])
        esito = self.da_nessuno("restore", self.operazioni()[0]["id"])
        self.assertEqual((esito.returncode, esito.stderr), (0, ""))
        self.assertEqual(sorted(os.listdir(self.casa / "cose")), ["a", "d"])

    def test_a_folder_that_nothing_may_be_taken_out_of(self):
        os.chmod(self.casa / "cose", 0o555)
        self.assertEqual(self.rifiuto(), PERMESSO)
        chiusa = f"la cartella «{self.casa}/cose» non è scrivibile"
        self.assertEqual(self.causa, chiusa)
        self.assertEqual(list(self.cestino.glob("*/*")), [])
        os.chmod(self.casa / "cose", 0o755)
        self.assertEqual(self.da_nessuno("api", "/api/trash", '{"id":"x"}').returncode, 0)
        op = json.loads(self.da_nessuno("api", "/api/log").stdout)["ops"][0]["id"]
        os.chmod(self.casa / "cose", 0o555)
        esito = json.loads(self.da_nessuno("api", "/api/restore", json.dumps({"op": op})).stdout)
        self.assertEqual(esito["errors"], [
            "a: serve il permesso: concedi a PellakCleaner l'Accesso completo al disco "
            "(pannello Permessi)"])
        self.assertEqual(esito["failed"][0]["causa"], chiusa)
        self.assertTrue((self.cestino / "files/a").exists())
        os.chmod(self.casa / "cose", 0o755)
        esito = json.loads(self.da_nessuno("api", "/api/restore", json.dumps({"op": op})).stdout)
        self.assertEqual(esito["items"], 1)


if __name__ == "__main__":
    unittest.main()
