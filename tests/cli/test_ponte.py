"""One request by the api command, many by the bridge."""

import json
import time
import unittest

from programma import ConCasa


def richiesta(id_, rotta, corpo=None):
    return {"channel": "api", "id": id_, "path": rotta, "body": corpo or {}}


class Api(ConCasa):
    def test_statuses(self):
        self.assertEqual(self.api("/api/scan", {"section": "boh"}, stato=1),
                         {"err": "sezione inesistente"})
        self.assertEqual(self.api("/api/State", stato=1), {"err": "not found"})
        self.assertEqual(self.api("/api/rete", stato=1), {"err": "non disponibile"})
        self.assertEqual(self.api("/api/log"), {"ops": []})
        self.assertFalse(self.api("/api/state")["busy"])
        _, errori = self.esegui("api", "/api/state", "{", stato=2)
        self.assertIn("JSON", errori)
        self.esegui("api", "/api/state", "[" * 10_000 + "]" * 10_000, stato=2)

    def test_a_scan_by_one_request_is_done_and_saved_when_the_process_ends(self):
        self.file(".npm/_cacache/a", 30_000)
        self.assertEqual(self.api("/api/scan", {"section": "sviluppo"}), {"ok": True})
        stato = self.api("/api/state")
        self.assertTrue(stato["sections"][0]["scanned"])
        self.assertEqual(stato["sections"][0]["findings"][0]["id"], "npm-cache")


class Ponte(ConCasa):
    def test_every_request_is_answered_in_order_and_noise_is_dropped(self):
        righe = [richiesta(i, "/api/settings") for i in range(200)]
        righe[50:50] = [b"non json", b"", b"[1,2]", b'{"channel":"altro","id":1}', b"\xff\xfe",
                        {"channel": "api", "id": "testo", "path": "/api/state"},
                        {"channel": "api", "id": 5}, {"channel": "pellak", "body": 7},
                        {"channel": "pellak", "body": "boh"}, b"[" * 20_000,
                        {"channel": "api", "id": 900, "path": "/api/boh", "body": [1]}]
        chiamate = self.ponte(righe)
        self.assertTrue(all(c["call"] == "__apiDone" for c in chiamate))
        numeri = [c["id"] for c in chiamate]
        self.assertEqual([n for n in numeri if n != 900], list(range(200)))
        self.assertEqual([c["status"] for c in chiamate if c["id"] == 900], [404])

    def test_a_last_line_without_newline_counts(self):
        uscita, _ = self.esegui("bridge", entrata=json.dumps(richiesta(1, "/api/stop")).encode())
        self.assertEqual(json.loads(uscita),
                         {"call": "__apiDone", "id": 1, "status": 200, "reply": {"ok": True}})

    def test_quit_ends_after_its_moment_and_ready_prints_the_time(self):
        processo = self.avvia("bridge")
        inizio = time.monotonic()
        processo.stdin.write(b'{"channel":"pellak","body":"quit"}\n')
        processo.stdin.flush()
        self.assertEqual(processo.wait(30), 0)
        self.assertGreaterEqual(time.monotonic() - inizio, 0.6)
        processo.communicate()

        self.ambiente["PELLAK_TIME_START"] = str(time.monotonic_ns())
        processo = self.avvia("bridge")
        processo.stdin.write(b'{"channel":"pellak","body":"ready"}\n')
        processo.stdin.flush()
        self.assertEqual(processo.wait(30), 0)
        self.assertRegex(processo.communicate()[0].decode(), r"^STARTUP: pagina pronta in \d+ ms\n$")

    def test_the_periodic_check_runs_here_too(self):
        self.api("/api/settings", {"auto_days": 1})
        self.ambiente["PELLAK_CHECK_SECONDS"] = "0.05"
        processo = self.avvia("bridge")
        ultima = self.supporto / "ultima-scansione-auto.txt"
        limite = time.monotonic() + 60
        while not ultima.exists() and time.monotonic() < limite:
            time.sleep(0.05)
        self.assertAlmostEqual(float(ultima.read_text()), time.time(), delta=60)
        self.assertEqual(processo.communicate(timeout=60)[0], b"")

    def test_ready_without_a_start_time_does_nothing(self):
        self.assertEqual(self.ponte([{"channel": "pellak", "body": "ready"}]), [])


class Insieme(ConCasa):
    def test_two_processes_on_one_home(self):
        self.file(".npm/_cacache/a", 30_000)
        processi = [self.avvia("scan") for _ in range(2)]
        for numero in range(30):
            self.api("/api/settings", {"dup_min_mb": numero + 1})
        for processo in processi:
            _, errori = processo.communicate(timeout=60)
            self.assertEqual((processo.returncode, errori), (0, b""))
        self.assertEqual(self.api("/api/settings")["valori"]["dup_min_mb"], 30)
        self.assertTrue(self.api("/api/state")["sections"][0]["scanned"])


if __name__ == "__main__":
    unittest.main()
