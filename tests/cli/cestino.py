"""A home folder with a finding to move to the Trash, and a look at where everything lies."""

import hashlib
import json
import os
import urllib.parse

from programma import ConCasa

FINDING = "x"
# Sanitizers and tracers make every run slow.
LENTO = "PELLAK_LENTO" in os.environ or any(n.endswith("SAN_OPTIONS") for n in os.environ)


class ConCestino(ConCasa):
    """The finding lists everything in the folder `cose` of the home folder."""

    def setUp(self):
        super().setUp()
        self.regola()
        self.cestino = self.casa / ".local/share/Trash"

    @property
    def registro(self):
        return self.supporto / "registro.jsonl"

    @property
    def intento(self):
        return self.supporto / "cestino-intento.json"

    def cosa(self, nome, contenuto):
        """A file in `cose`, large enough to be listed. A name may hold slashes."""
        percorso = os.fsencode(self.casa / "cose") + b"/" + (
            nome if isinstance(nome, bytes) else os.fsencode(nome))
        os.makedirs(os.path.dirname(percorso), exist_ok=True)
        with open(percorso, "wb") as uscita:
            uscita.write(contenuto.encode().ljust(4096, b"."))
        return percorso

    def scandisci(self):
        self.esegui("scan", "sviluppo")

    def cestina(self, stato=0, **corpo):
        """The reply without what differs each time."""
        risposta = self.api("/api/trash", {"id": FINDING, **corpo}, stato=stato)
        return {chiave: risposta[chiave] for chiave in risposta if chiave not in ("op", "tot")}

    def operazioni(self):
        return self.api("/api/log")["ops"]

    def ripristina(self, posto=0):
        risposta = self.api("/api/restore", {"op": self.operazioni()[posto]["id"]})
        return {chiave: risposta[chiave] for chiave in ("ok", "items", "errors")}

    def interrotta(self):
        """Leaves the last operation's intent, as a process does that dies right after its moves."""
        op = self.operazioni()[0]
        visti = [(voce, os.lstat(voce["trash"])) for voce in op["items"]]
        self.intento.write_text(json.dumps({**op, "ripristino": "", "passi": [
            {**voce, "dev": str(v.st_dev), "ino": str(v.st_ino)} for voce, v in visti]}))

    def contenuti(self, *radici):
        """Every file and link below the folders by its content; nothing may be there twice.
        The Trash's own cache of folder sizes is no file of anybody's."""
        posti = {}
        for radice in radici or ("cose", ".local/share/Trash/files"):
            for cartella, cartelle, file in os.walk(os.fsencode(self.casa / radice)):
                link = [c for c in cartelle if os.path.islink(os.path.join(cartella, c))]
                for nome in [n for n in file + link if n != b"directorysizes"]:
                    percorso = os.path.join(cartella, nome)
                    chiave = _contenuto(percorso)
                    self.assertNotIn(chiave, posti, "in two places")
                    posti[chiave] = percorso
        return posti

    def assertCestinoCoerente(self, cestino=None):
        """Every item has its record and every record its item."""
        cestino = cestino or self.cestino
        if not cestino.exists():
            return
        nomi = set(os.listdir(os.fsencode(cestino / "files")))
        schede = set(os.listdir(os.fsencode(cestino / "info")))
        self.assertEqual(schede, {nome + b".trashinfo" for nome in nomi})
        self.assertFalse(self.intento.exists())

    def scheda(self, nome, cestino=None):
        """The path that the record of an item names, decoded."""
        righe = ((cestino or self.cestino) / "info" / (nome + ".trashinfo")).read_text()
        intestazione, percorso, data = righe.splitlines()[:3]
        self.assertEqual((intestazione, percorso[:5], data[:13]),
                         ("[Trash Info]", "Path=", "DeletionDate="))
        return urllib.parse.unquote_to_bytes(percorso[5:])


def _contenuto(percorso):
    if os.path.islink(percorso):
        return b"-> " + os.readlink(percorso)
    with open(percorso, "rb") as aperto:
        return hashlib.sha256(aperto.read()).digest()


def json_percorso(percorso):
    """A path as it stands in JSON: bytes that are no UTF-8, and the characters that stand for
    such bytes, as private characters."""
    testo = ""
    for c in os.fsencode(percorso).decode("utf-8", "surrogateescape"):
        if 0xDC80 <= ord(c) <= 0xDCFF:
            testo += chr(ord(c) - 0xDC00 + 0xEF00)
        elif 0xEF80 <= ord(c) <= 0xEFFF:
            testo += "".join(chr(0xEF00 + byte) for byte in c.encode())
        else:
            testo += c
    return testo
