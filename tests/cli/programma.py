"""The built program, driven from outside on a made-up home folder."""

import json
import os
import pathlib
import platform
import pty
import re
import select
import shutil
import subprocess
import tempfile
import termios
import time
import unittest

PROGRAMMA = os.environ["PELLAK_PROGRAMMA"]
NOBODY = 65534
# Sanitizers make the program slow; nothing here measures time.
PAZIENZA = 60
# Numbers of system calls as /proc shows them: writing to standard error, waiting for a signal.
WRITE, SIGTIMEDWAIT = {"aarch64": ("64 0x2 ", "137 ")}.get(platform.machine(), ("1 0x2 ", "128 "))


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


def interrompi_alla_prima_riga(figlio, terminale):
    """Ctrl-C while the program waits for its first line to be taken, which it is only when the
    signal has arrived."""
    def attende(compito, chiamata):
        return pathlib.Path(compito, "syscall").read_text().startswith(chiamata)

    def arrivato():
        stato = pathlib.Path(f"/proc/{figlio}/status").read_text()
        return (int(re.search(r"ShdPnd:\s*(\w+)", stato)[1], 16) == 0 and
                any(attende(c, SIGTIMEDWAIT) for c in pathlib.Path(f"/proc/{figlio}/task").iterdir()))

    for condizione, tasto in ((lambda: attende(f"/proc/{figlio}", WRITE), b"\x03"), (arrivato, b"")):
        limite = time.monotonic() + PAZIENZA
        while not condizione() and time.monotonic() < limite:
            time.sleep(0.01)
        os.write(terminale, tasto)
    lato = os.open(f"/proc/{figlio}/fd/0", os.O_RDWR | os.O_NOCTTY)
    termios.tcflow(lato, termios.TCOON)
    os.close(lato)


def su_terminale(argomenti, ambiente, invia=None, dopo=None, guarda=None, interrotto=False):
    """Runs the program on a pseudo-terminal; sends bytes once `dopo` was seen and `guarda` was
    called with the process's number."""
    figlio, terminale = pty.fork()
    if figlio == 0:
        if interrotto:
            modi = termios.tcgetattr(0)
            modi[0] &= ~termios.IXON  # else Ctrl-C would let the output go on
            termios.tcsetattr(0, termios.TCSANOW, modi)
            termios.tcflow(0, termios.TCOOFF)
        os.execve(PROGRAMMA, [PROGRAMMA, *argomenti], dict(ambiente, TERM="xterm"))
    if interrotto:
        interrompi_alla_prima_riga(figlio, terminale)
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
