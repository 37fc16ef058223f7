"""The Trash from outside: whatever happens meanwhile, nothing is lost and all can be put back."""

import json
import os
import random
import shutil
import subprocess
import time
import unittest

from cestino import FINDING, LENTO, ConCestino, json_percorso
from programma import PROGRAMMA

# How many batches are killed, and as many ways back.
UCCISIONI = 20 if LENTO else 200


class Ucciso(ConCestino):
    VOCI = 150  # enough for records to be made ahead of the moves

    def uccidi(self, rotta, corpo, durata):
        processo = subprocess.Popen(
            [PROGRAMMA, "api", rotta, json.dumps(corpo)], env=self.ambiente,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(self.caso.random() * durata)
        processo.kill()
        processo.wait()

    def rimetti(self, ops):
        for op in ops:
            self.api("/api/restore", {"op": op["id"]})

    def cronometro(self, fai):
        inizio = time.monotonic()
        fai()
        return time.monotonic() - inizio

    def test_killed_at_random_moments_nothing_is_lost(self):
        self.caso = random.Random(7)
        for i in range(self.VOCI):
            self.cosa(f"{i}/dato" if i % 2 else f"{i}", f"contenuto {i}")
        self.scandisci()
        attesi = self.contenuti()
        risultati = (self.supporto / "risultati.json").read_bytes()
        durata_via = self.cronometro(self.cestina)
        durata_ritorno = self.cronometro(self.ripristina)
        self.assertEqual(self.contenuti(), attesi)
        a_meta = ripresi = giri = 0
        # Where kills happen to miss the moments that matter, more of them follow.
        while giri < UCCISIONI or (giri < 10 * UCCISIONI and not (a_meta and ripresi)):
            giri += 1
            (self.supporto / "risultati.json").write_bytes(risultati)
            self.uccidi("/api/trash", {"id": FINDING}, durata_via)
            a_meta += self.verifica_a_meta(attesi)
            ops = self.verifica_ripresa(attesi)
            ripresi += any("nota" in op for op in ops)
            for op in ops:
                self.uccidi("/api/restore", {"op": op["id"]}, durata_ritorno)
                a_meta += self.verifica_a_meta(attesi)
            if ops:
                self.rimetti(self.verifica_ripresa(attesi))
            self.assertEqual(self.contenuti(), attesi)
        self.assertGreater(ripresi, 0, "no kill fell between the first move and the record")
        self.assertGreater(a_meta, 0, "no kill fell in the middle of a batch")

    def verifica_a_meta(self, attesi):
        """Right after the kill. Whether it left some items here and some there."""
        posti = self.contenuti()
        self.assertEqual(set(posti), set(attesi))
        via = sum(b"/Trash/files/" in percorso for percorso in posti.values())
        return 0 < via < len(attesi)

    def verifica_ripresa(self, attesi):
        """After the next start; the operations that hold what lies in the Trash then."""
        ops = [op for op in self.operazioni() if not all(voce["rip"] for voce in op["items"])]
        posti = self.contenuti()
        self.assertEqual(set(posti), set(attesi))
        self.assertCestinoCoerente()
        files = self.cestino / "files"
        dentro = {str(files / nome) for nome in os.listdir(files)} if files.exists() else set()
        self.assertEqual({voce["trash"] for op in ops for voce in op["items"] if not voce["rip"]},
                         dentro)
        return ops


class Nomi(ConCestino):
    def test_any_bytes_are_a_name_and_a_taken_one_gets_a_number(self):
        lungo = "l" * 255
        nomi = [b"a\nb", b"\xff\xfe\xc3", "caffè %41 \"q\"".encode(), b"-rf", b" ", b"x.trashinfo",
                lungo.encode(), "\uefff".encode(), b"..."]
        for i, nome in enumerate(nomi):
            self.cosa(nome, f"c{i}")
        (self.cestino / "files").mkdir(parents=True)
        (self.cestino / "info").mkdir()
        (self.cestino / "files/-rf").write_text("senza scheda")
        (self.cestino / "info/....trashinfo").write_text("senza elemento")
        prima = self.contenuti()
        self.scandisci()
        self.assertEqual(self.cestina(), {"ok": len(nomi), "failed": []})
        voci = self.operazioni()[0]["items"]
        self.assertEqual({voce["orig"] for voce in voci},
                         {json_percorso(p) for p in prima.values() if b"/cose/" in p})
        trash = {voce["orig"].rpartition("/")[2]: voce["trash"] for voce in voci}
        self.assertEqual((trash["-rf"][-6:], trash["..."][-6:]), ("/-rf.2", "/....2"))
        self.assertEqual(self.ripristina(), {"ok": True, "items": len(nomi), "errors": []})
        self.assertEqual(self.contenuti(), prima)
        self.assertEqual((self.cestino / "files/-rf").read_text(), "senza scheda")
        self.assertEqual((self.cestino / "info/....trashinfo").read_text(), "senza elemento")

    def test_very_many_items_of_one_name(self):
        quanti = 1_000 if LENTO else 20_000
        for i in range(quanti):
            self.cosa(f"{i}/stesso", str(i))
        self.regola(paths=[f"~/cose/{i}/stesso" for i in range(quanti)])
        prima = self.contenuti()
        self.scandisci()
        self.assertEqual(self.cestina(), {"ok": quanti, "failed": []})
        self.assertCestinoCoerente()
        self.assertEqual(self.contenuti("cose"), {})
        shutil.rmtree(self.casa / "cose")  # lost folders are made again
        self.assertEqual(self.ripristina(), {"ok": True, "items": quanti, "errors": []})
        self.assertEqual(self.contenuti(), prima)
        self.assertCestinoCoerente()


class Meanwhile(ConCestino):
    """Something changes between the scan and the request."""

    def test_what_is_not_as_the_scan_saw_it_stays(self):
        nomi = ("via", "resta", "link", "madre/figlio", "scritto", "cresciuto", "altro", "diritti",
                "cartella/dentro", "piena/dentro", "sfondata")
        for nome in nomi:
            self.cosa(nome, nome)
        altrove = self.file("altrove/prezioso", 5_000)
        self.file("altrove/figlio", 5_001)
        cose = self.casa / "cose"
        self.regola(paths=[f"~/cose/{nome.removesuffix('/dentro')}" for nome in nomi])
        self.scandisci()
        (cose / "via").unlink()
        (cose / "link").unlink()
        (cose / "link").symlink_to(os.fsdecode(altrove))
        os.rename(cose / "madre", cose / "vera")
        os.symlink(self.casa / "altrove", cose / "madre")
        (cose / "scritto").write_bytes(b"y" * 4096)
        prima = (cose / "cresciuto").stat()
        with open(cose / "cresciuto", "ab") as uscita:
            uscita.write(b"ancora")
        os.utime(cose / "cresciuto", ns=(prima.st_atime_ns, prima.st_mtime_ns))
        shutil.copy2(cose / "altro", cose / "nuovo")
        os.replace(cose / "nuovo", cose / "altro")
        (cose / "diritti").chmod(0o600)
        shutil.rmtree(cose / "cartella")
        (cose / "cartella").write_text("un file, ora")
        (cose / "piena/altro").write_text("una cartella resta tale")
        (cose / "sfondata").unlink()
        (cose / "sfondata").mkdir()
        risposta = self.cestina()
        errori = {os.path.basename(v["percorso"]): v["err"] for v in risposta["failed"]}
        figlio = errori.pop("figlio")
        self.assertTrue(figlio)
        self.assertEqual(errori.pop("via"), "non esiste piu': era gia' stato rimosso")
        self.assertEqual(errori, dict.fromkeys(
            ("link", "scritto", "cresciuto", "altro", "cartella", "sfondata"),
            "lo stato è cambiato: ricarica e riprova"))
        self.assertEqual(sorted(os.listdir(self.cestino / "files")), ["diritti", "piena", "resta"])
        self.assertEqual(os.path.getsize(altrove), 5_000)
        self.assertEqual((self.casa / "altrove/figlio").stat().st_size, 5_001)
        elencate = {v["path"] for v in self.api("/api/voci", {"id": FINDING})["items"]}
        self.assertEqual(elencate, {str(cose / nome) for nome in (*errori, "madre/figlio")})
        self.assertEqual(self.ripristina()["items"], 3)

    def test_what_the_trash_holds_now_is_looked_at(self):
        self.cosa("svuotato", "svuotato")
        self.cosa("sostituito", "sostituito")
        self.cosa("senzascheda", "senzascheda")
        self.cosa("suo", "suo")
        self.scandisci()
        self.cestina()
        for nome in ("svuotato", "sostituito"):
            (self.cestino / "files" / nome).unlink()
            (self.cestino / f"info/{nome}.trashinfo").unlink()
        # Another program's item under the same name, from another place.
        (self.cestino / "files/sostituito").write_text("di un altro")
        (self.cestino / "info/sostituito.trashinfo").write_text(
            "[Trash Info]\nPath=/altrove/sostituito\nDeletionDate=2024-01-01T00:00:00\n")
        (self.cestino / "info/senzascheda.trashinfo").unlink()
        esito = self.ripristina()
        self.assertEqual(esito["items"], 1)
        self.assertEqual(sorted(esito["errors"]), [
            f"{nome}: non è più nel Cestino" for nome in ("senzascheda", "sostituito", "svuotato")])
        self.assertEqual(os.listdir(self.casa / "cose"), ["suo"])
        self.assertEqual((self.cestino / "files/sostituito").read_text(), "di un altro")
        self.assertTrue((self.cestino / "info/sostituito.trashinfo").exists())


class Libri(ConCestino):
    """The intent file and the log, broken or large."""

    def test_a_damaged_intent_is_kept_aside_and_stops_nothing(self):
        for testo in ("", "{", "[1]", '{"passi":1}', "\0\xff", '{"id":"A","passi":[7,{"orig":5}]}'):
            with self.subTest(testo):
                shutil.rmtree(self.casa / "cose", ignore_errors=True)
                self.registro.unlink(missing_ok=True)
                self.cosa("a", "a" + testo)
                self.scandisci()
                self.intento.write_text(testo)
                prima = self.contenuti()
                self.assertEqual(self.cestina()["ok"], 1)
                self.assertFalse(self.intento.exists())
                if not testo.startswith('{"id"'):
                    guasto = self.intento.with_name(self.intento.name + ".guasto")
                    self.assertEqual(guasto.read_text(), testo)
                    guasto.unlink()
                self.assertEqual(self.ripristina(0)["items"], 1)
                self.assertEqual(self.contenuti(), prima)

    def voce(self, cestino, nome, orig):
        """What a move of `nome` to that folder would have left, the record too."""
        self.file(f"{cestino}/files/{nome}")
        self.file(f"{cestino}/info/{nome}.trashinfo", 0)
        (self.casa / cestino / f"info/{nome}.trashinfo").write_text(
            f"[Trash Info]\nPath={orig}\nDeletionDate=2024-01-01T00:00:00\n")
        return str(self.casa / cestino / "files" / nome)

    def test_forged_books_move_nothing_and_make_nothing(self):
        """Records and intents that name folders which are no Trash, or no place to go to."""
        orig = str(self.casa / "rimesso/dato")
        uid = os.getuid()
        altrove = self.casa / "altrove"
        altrove.mkdir()
        (self.casa / "via").symlink_to(altrove)
        casi = [(self.voce("x", "a", orig), orig),
                (self.voce(f"sotto/.Trash-{uid}", "b", orig), orig),
                (self.voce(f"sotto/.Trash/{uid}", "c", orig), orig),
                (str(self.casa / "nuova/Trash/files/d"), orig),
                (f"{self.cestino}/files/..", orig),
                (self.voce(".local/share/Trash", "e", orig), str(self.casa / "altra/dato")),
                (self.voce(".local/share/Trash", "f", self.supporto / "nuovo"),
                 str(self.supporto / "nuovo")),
                (self.voce(".local/share/Trash", "g", self.casa / "via/g/h"),
                 str(self.casa / "via/g/h"))]
        self.supporto.mkdir(parents=True)
        self.registro.write_text(json.dumps({"id": "A", "ts": 1, "azione": "x", "tot": 1, "items": [
            {"orig": da, "trash": trash, "rip": False} for trash, da in casi]}) + "\n")
        prima = self.albero()
        esito = self.api("/api/restore", {"op": "A"})
        self.assertEqual((esito["items"], len(esito["errors"])), (0, len(casi)))
        self.assertEqual(self.albero(), prima)
        (self.casa / "x/files/a").unlink()  # its record is now what a killed move leaves
        prima = self.albero()
        for ripristino in ("", "A"):
            self.intento.write_text(json.dumps({
                "id": "B", "ts": 1, "azione": "x", "tot": 1, "ripristino": ripristino, "passi": [
                    {"orig": da, "trash": trash, "dev": "1", "ino": "2", "destinazione": da,
                     "indice": 0, "insieme": 1} for trash, da in casi]}))
            self.operazioni()
            self.assertFalse(self.intento.exists())
            self.assertEqual(self.albero(), prima)

    def albero(self):
        return sorted(str(p) for p in self.casa.rglob("*") if self.supporto not in p.parents)

    def test_the_other_system_s_trash_has_no_records(self):
        self.file(".Trash/dato")
        self.supporto.mkdir(parents=True)
        self.registro.write_text(json.dumps({"id": "A", "ts": 1, "azione": "x", "tot": 1, "items": [
            {"orig": "~/cose/dato", "trash": str(self.casa / ".Trash/dato"), "rip": False}]}) + "\n")
        self.assertEqual(self.ripristina()["items"], 0)
        self.ambiente["PELLAK_TOOLS"] = "macos"
        self.assertEqual(self.ripristina(), {"ok": True, "items": 1, "errors": []})
        self.assertEqual((os.listdir(self.casa / ".Trash"), os.listdir(self.casa / "cose")),
                         ([], ["dato"]))


@unittest.skipUnless(shutil.which("trash-list"), "trash-cli is not installed")
class AltriProgrammi(ConCestino):
    """What other programs of the desktop make of our Trash, and we of what they did."""

    def programma(self, *argomenti, entrata=""):
        return subprocess.run(argomenti, env=self.ambiente, input=entrata, text=True, check=True,
                              capture_output=True, cwd=self.casa, timeout=60).stdout

    def test_trash_cli_lists_and_restores_ours_and_we_ours_after_it(self):
        for nome in ("uno.txt", "due è %.txt", "tre"):
            self.cosa(nome, nome)
        prima = self.contenuti()
        self.scandisci()
        self.cestina()
        elenco = self.programma("trash-list")
        for percorso in prima.values():
            self.assertIn(os.fsdecode(percorso) + "\n", elenco)
        tornato = self.casa / "cose/due è %.txt"
        self.programma("trash-restore", tornato, entrata="0\n")
        self.assertTrue(tornato.exists())
        (self.cestino / "info/tre.trashinfo").rename(self.casa / "scheda-spostata")
        esito = self.ripristina()
        self.assertEqual((esito["items"], esito["errors"]),
                         (1, ["due è %.txt: non è più nel Cestino", "tre: non è più nel Cestino"]))
        self.assertEqual(set(self.contenuti()), set(prima))


if __name__ == "__main__":
    unittest.main()
