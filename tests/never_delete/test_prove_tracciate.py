"""The other tests of the program once more, every run of it under the tracer."""

import os
import pathlib
import subprocess
import sys
import unittest

from tracciatore import Tracciatore, possibile

SENZA_TRACCE = 77
PROVE = pathlib.Path(__file__).resolve().parent.parent / "cli"


class ProveTracciate(unittest.TestCase):
    def test_no_run_destroys_anything(self):
        tracciatore = Tracciatore(os.environ["PELLAK_PROGRAMMA"])
        self.addCleanup(tracciatore.togli)
        ambiente = dict(os.environ, PELLAK_PROGRAMMA=tracciatore.programma, PELLAK_LENTO="1")
        for prova in sorted(PROVE.glob("test_*.py")):
            with self.subTest(prova.name):
                esito = subprocess.run([sys.executable, prova], env=ambiente, cwd=PROVE, text=True,
                                       capture_output=True)
                self.assertEqual(esito.returncode, 0, esito.stderr[-3000:])
        tracce = tracciatore.leggi()
        self.assertEqual([riga for t in tracce for riga in t.lamentele], [])
        self.assertEqual([t.finito for t in tracce], [True] * len(tracce))
        self.assertGreater(len(tracce), 200)
        self.assertGreater(sum(t.mosse for t in tracce), 1_000)


if __name__ == "__main__":
    if not possibile():
        print("no process may be traced here")
        sys.exit(SENZA_TRACCE)
    unittest.main()
