"""A hidden screen with a message bus of its own, and the program's window on it."""

import ctypes
import pathlib
import select
import struct
import subprocess
import tempfile
import time
import zlib

from programma import PROGRAMMA, ConCasa

PAZIENZA = 60
BUS = """<!DOCTYPE busconfig PUBLIC '-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN'
 'http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd'>
<busconfig><type>session</type><listen>unix:path={}</listen><policy context='default'>
<allow send_destination='*'/><allow receive_sender='*'/><allow own='*'/></policy></busconfig>"""


def riga_di(flusso, pazienza=PAZIENZA):
    """The next line of a pipe, without its end; nothing when none comes."""
    pronti, _, _ = select.select([flusso], [], [], pazienza)
    return flusso.readline().decode().rstrip("\n") if pronti else None


class ConSchermo(ConCasa):
    """One screen for all tests, a bus and a home folder for each."""

    LARGO, ALTO = 1280, 900

    @classmethod
    def setUpClass(cls):
        cartella = tempfile.TemporaryDirectory(prefix="pellak-schermo-")
        cls.addClassCleanup(cartella.cleanup)
        cls.immagine = pathlib.Path(cartella.name) / "Xvfb_screen0"
        cls.schermo = subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", f"{cls.LARGO}x{cls.ALTO}x24",
             "-fbdir", cartella.name, "-nolisten", "tcp"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        cls.numero = ":" + riga_di(cls.schermo.stdout)
        cls.addClassCleanup(cls._ferma, cls.schermo)

    @staticmethod
    def _ferma(processo):
        processo.kill()
        processo.wait()
        for flusso in (processo.stdin, processo.stdout, processo.stderr):
            if flusso:
                flusso.close()

    def setUp(self):
        super().setUp()
        altrove = tempfile.TemporaryDirectory(prefix="pellak-bus-")
        self.addCleanup(altrove.cleanup)
        cartella = pathlib.Path(altrove.name)
        indirizzo = cartella / "bus"
        impostazioni = cartella / "bus.conf"
        impostazioni.write_text(BUS.format(indirizzo))
        bus = subprocess.Popen(["dbus-daemon", "--nofork", f"--config-file={impostazioni}"],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(self._ferma, bus)
        self.attendi(indirizzo.exists)
        corrente = cartella / "corrente"
        corrente.mkdir(0o700)
        self.ambiente.update({
            "DISPLAY": self.numero, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={indirizzo}",
            "XDG_RUNTIME_DIR": str(corrente), "LIBGL_ALWAYS_SOFTWARE": "1",
            "NO_AT_BRIDGE": "1", "GDK_BACKEND": "x11"})

    def attendi(self, vero):
        limite = time.monotonic() + PAZIENZA
        while not vero():
            self.assertLess(time.monotonic(), limite, "never happened")
            time.sleep(0.02)

    def apri(self, **variabili):
        """Starts the program in its window."""
        processo = subprocess.Popen([PROGRAMMA], env={**self.ambiente, **variabili},
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(self._ferma, processo)
        return processo

    def pagina(self, script, **variabili):
        """What a script in the page returns, four seconds after the launch."""
        processo = self.apri(PELLAK_JS=script, **variabili)
        return riga_di(processo.stdout)

    def righe(self, **variabili):
        """What a run that ends by itself prints."""
        processo = self.apri(**variabili)
        uscita, _ = processo.communicate(timeout=PAZIENZA)
        self.assertEqual(processo.returncode, 0)
        return uscita.decode().splitlines()

    def ridimensiona(self, largo, alto):
        """Gives the one window on the screen another size, as a window manager would."""
        x11 = ctypes.CDLL("libX11.so.6")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        x11.XDefaultRootWindow.restype = ctypes.c_ulong
        x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        schermo = ctypes.c_void_p(x11.XOpenDisplay(self.numero.encode()))
        finestre, quante = ctypes.POINTER(ctypes.c_ulong)(), ctypes.c_uint()
        altra = ctypes.c_ulong()
        x11.XQueryTree(schermo, ctypes.c_ulong(x11.XDefaultRootWindow(schermo)),
                       ctypes.byref(altra), ctypes.byref(altra),
                       ctypes.byref(finestre), ctypes.byref(quante))
        for finestra in finestre[:quante.value]:
            misure = (ctypes.c_int * 64)()  # XWindowAttributes: x, y, width, height, ...
            x11.XGetWindowAttributes(schermo, ctypes.c_ulong(finestra), misure)
            if misure[2] >= 700:
                x11.XMoveResizeWindow(schermo, ctypes.c_ulong(finestra), 0, 0, largo, alto)
        x11.XCloseDisplay(schermo)

    def fotografa(self, largo, alto):
        """The upper left part of the screen once it stands still, as rows of red, green, blue."""
        prima, limite = None, time.monotonic() + 6
        while (adesso := self.immagine.read_bytes()) != prima and time.monotonic() < limite:
            prima = adesso
            time.sleep(0.4)
        testa = struct.unpack(">25I", adesso[:100])
        dati, riga = testa[0] + testa[19] * 12, testa[12]
        righe = []
        for y in range(alto):
            blu = adesso[dati + y * riga:dati + y * riga + largo * 4]
            pixel = bytearray(largo * 3)
            pixel[0::3], pixel[1::3], pixel[2::3] = blu[2::4], blu[1::4], blu[0::4]
            righe.append(bytes(pixel))
        return righe


def scrivi_png(percorso, righe):
    def pezzo(tipo, dati):
        somma = struct.pack(">I", zlib.crc32(tipo + dati))
        return struct.pack(">I", len(dati)) + tipo + dati + somma
    testa = struct.pack(">IIBBBBB", len(righe[0]) // 3, len(righe), 8, 2, 0, 0, 0)
    corpo = zlib.compress(b"".join(b"\0" + riga for riga in righe), 9)
    percorso.write_bytes(b"\x89PNG\r\n\x1a\n" + pezzo(b"IHDR", testa) + pezzo(b"IDAT", corpo)
                         + pezzo(b"IEND", b""))
