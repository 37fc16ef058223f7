"""The built program, driven from outside on a made-up home folder."""

import json
import os
import pathlib
import pty
import select
import shutil
import subprocess
import tempfile
import time
import unittest

PROGRAMMA = os.environ["PELLAK_PROGRAMMA"]
NOBODY = 65534
# Sanitizers make the program slow; nothing here measures time.
PAZIENZA = 60


class ConCasa(unittest.TestCase):
    """A temporary home folder and calls of the program on it."""

    def setUp(self):
        self.casa = pathlib.Path(tempfile.mkdtemp(prefix="pellak-casa-"))
        self.addCleanup(self._togli)
        self.ambiente = {
            "HOME": str(self.casa),
            "PATH": os.environ["PATH"],
            "TZ": "UTC",
            "LANG": "C.UTF-8",
        }
        for nome, valore in os.environ.items():
            if nome.endswith("SAN_OPTIONS"):
                self.ambiente[nome] = valore

    def _togli(self):
        for radice, cartelle, _ in os.walk(self.casa):
            for cartella in cartelle:
                percorso = os.path.join(radice, cartella)
                if not os.path.islink(percorso):
                    os.chmod(percorso, 0o700)
        shutil.rmtree(self.casa, ignore_errors=True)

    @property
    def supporto(self):
        return self.casa / "Library/Application Support/PellakCleaner"

    def file(self, percorso, byte=8192):
        """A file below the home folder, with real blocks."""
        intero = os.fsencode(self.casa) + b"/" + (
            percorso if isinstance(percorso, bytes) else percorso.encode())
        os.makedirs(os.path.dirname(intero), exist_ok=True)
        with open(intero, "wb") as uscita:
            uscita.write(b"x" * byte)
        return intero

    def regole(self, categorie):
        percorso = self.casa / "regole.json"
        percorso.write_text(json.dumps({"categories": categorie}))
        self.ambiente["PELLAK_RULES"] = str(percorso)

    def regola(self, **luoghi):
        """One category, "x", of what may be moved: everything in `cose` unless places are given."""
        self.regole([{"id": "x", "name": "X", "section": "sviluppo", "mode": "delete",
                      **(luoghi or {"children_of": "~/cose"})}])

    def per_altri(self):
        """A copy that another user can run: the build folder may be closed to everybody else."""
        copia = self.casa / "programma"
        if not copia.exists():
            copia.mkdir()
            shutil.copy(PROGRAMMA, copia / "pellak-cleaner")
            risorse = os.path.join(os.path.dirname(PROGRAMMA), "resources")
            shutil.copytree(risorse, copia / "resources")
        return str(copia / "pellak-cleaner")

    def da_nessuno(self, *argomenti):
        """A run to its end as a user without rights."""
        return subprocess.run([self.per_altri(), *argomenti], env=self.ambiente, timeout=PAZIENZA,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              user=NOBODY, group=NOBODY, extra_groups=[])

    def riempi(self, cartella):
        """Leaves no room on the volume of a folder."""
        with open(cartella / "zavorra", "wb", buffering=0) as zavorra:
            with self.assertRaises(OSError):
                while True:
                    zavorra.write(b"x" * 4096)

    def avvia(self, *argomenti, **opzioni):
        programma = self.per_altri() if "user" in opzioni else PROGRAMMA
        return subprocess.Popen(
            [programma, *argomenti], env=self.ambiente, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, **opzioni)

    def esegui(self, *argomenti, stato=0, entrata=b"", **opzioni):
        """Runs to the end, wants `stato` unless it is None, returns standard output and error as
        text."""
        processo = self.avvia(*argomenti, **opzioni)
        uscita, errori = processo.communicate(entrata, timeout=PAZIENZA)
        self.assertEqual(processo.returncode, processo.returncode if stato is None else stato, (uscita[-2000:], errori[-2000:]))
        return uscita.decode(), errori.decode()

    def api(self, rotta, corpo=None, stato=0, **opzioni):
        uscita, _ = self.esegui("api", rotta, json.dumps(corpo or {}), stato=stato, **opzioni)
        self.assertEqual(uscita.count("\n"), 1, "one line")
        return json.loads(uscita)

    def ponte(self, righe, **opzioni):
        """Sends lines over the bridge and returns its calls into the page."""
        entrata = b"".join(
            (riga if isinstance(riga, bytes) else json.dumps(riga).encode()) + b"\n"
            for riga in righe)
        uscita, _ = self.esegui("bridge", entrata=entrata, **opzioni)
        return [json.loads(riga) for riga in uscita.splitlines()]


def su_terminale(argomenti, ambiente, invia=None, dopo=None, guarda=None):
    """Runs the program on a pseudo-terminal; sends bytes once `dopo` was seen and `guarda` was
    called with the process's number."""
    figlio, terminale = pty.fork()
    if figlio == 0:
        os.execve(PROGRAMMA, [PROGRAMMA, *argomenti], dict(ambiente, TERM="xterm"))
    uscita = b""
    limite = time.monotonic() + PAZIENZA
    while time.monotonic() < limite:
        pronti, _, _ = select.select([terminale], [], [], 1)
        if not pronti:
            continue
        try:
            parte = os.read(terminale, 65536)
        except OSError:
            break
        if not parte:
            break
        uscita += parte
        if invia and dopo in uscita:
            if guarda:
                guarda(figlio)
            os.write(terminale, invia)
            invia = None
    os.close(terminale)
    _, esito = os.waitpid(figlio, 0)
    return os.waitstatus_to_exitcode(esito), uscita.decode(errors="replace")
