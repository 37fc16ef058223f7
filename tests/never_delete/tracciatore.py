"""Stands a tracer before the program: a stand-in that runs it under strace wherever a test would
run the program itself."""

import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import time

from tracciato import CHIAMATE, Proprio, Tracciato

PAZIENZA = 20

# The tracer is no parent of the program: who starts the stand-in has the program itself as its
# child, to kill or to wait for, and gets its exit status. PELLAK_GUASTO is a fault that strace
# injects, which it can't where the kernel filters the calls.
SOSTITUTO = """#!/bin/bash
nome={tracce}/$$-$EPOCHREALTIME
printf '%s\\0' "$HOME" "$(realpath -m -- "$HOME")" "$XDG_DATA_HOME" >"$nome.casa"
opzione=--seccomp-bpf
[[ -z $PELLAK_GUASTO ]] || opzione=--inject=$PELLAK_GUASTO
exec {strace} -DDD -f -y -e signal=kill -e trace={chiamate},syncfs "$opzione" \\
  -o "$nome.traccia" -- {vero} "$@"
"""


def possibile():
    """Whether the system lets one process trace another."""
    esito = subprocess.run(["strace", "-f", "-o", "/dev/null", "true"], capture_output=True)
    return esito.returncode == 0


class Tracciatore:
    def __init__(self, programma):
        self.cartella = pathlib.Path(tempfile.mkdtemp(prefix="pellak-tracce-"))
        os.chmod(self.cartella, 0o755)
        self.tracce = self.cartella / "tracce"
        self.tracce.mkdir()
        os.chmod(self.tracce, 0o1777)
        vero = self.cartella / "vero"
        vero.mkdir()
        shutil.copy(programma, vero)
        risorse = os.path.join(os.path.dirname(os.path.abspath(programma)), "resources")
        if os.path.isdir(risorse):
            shutil.copytree(risorse, vero / "resources")
            os.symlink("vero/resources", self.cartella / "resources")
        self.programma = str(self.cartella / "pellak-cleaner")
        with open(self.programma, "w", encoding="utf-8") as uscita:
            uscita.write(SOSTITUTO.format(
                tracce=shlex.quote(str(self.tracce)), strace=shutil.which("strace"),
                chiamate=CHIAMATE, vero=shlex.quote(str(vero / os.path.basename(programma)))))
        os.chmod(self.programma, 0o755)

    def leggi(self):
        """All traces so far, each as it is when its program has ended."""
        limite = time.monotonic() + PAZIENZA
        letti = []
        for casa in sorted(self.tracce.glob("*.casa")):
            home, vera, dati, _ = casa.read_bytes().split(b"\0")
            pid = casa.name.partition("-")[0].encode()
            traccia = casa.with_suffix(".traccia")
            if not traccia.exists():
                continue  # killed before the tracer was there, and so before the program
            while True:
                testo = traccia.read_bytes()
                tracciato = Tracciato(testo, Proprio(home, vera, dati), pid)
                if tracciato.finito or time.monotonic() > limite:
                    break
                if not testo and not self._vivo(pid):
                    break
                time.sleep(0.01)
            if testo:  # otherwise killed while the tracer was about to begin
                letti.append(tracciato)
        return letti

    @staticmethod
    def _vivo(pid):
        return os.path.exists(b"/proc/" + pid)

    def togli(self):
        shutil.rmtree(self.cartella, ignore_errors=True)
