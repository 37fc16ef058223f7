"""Reads what strace noted of runs of the program and complains about every system call that could
have deleted, emptied or overwritten something that is not the program's own.

Allowed everywhere: a rename that can't replace anything, into a Trash or out of one. Everything
else that removes or writes must be about our own files or the Trash's books. A file of ours must be
on the disk before it takes its name, and that name before an item moves. What can't be understood
is a complaint, unless the thread was killed while it stood before that call: the tracer finds
nothing left to read then, and the kernel never makes the call.
"""

import os
import re

CHIAMATE = ("open,openat,openat2,creat,truncate,ftruncate,fallocate,unlink,unlinkat,rmdir,rename,"
            "renameat,renameat2,open_by_handle_at,io_uring_setup,fsync")

RIGA = re.compile(rb"^\d+ +(?:(\w+)\((.*)|\+\+\+ .*|--- .*|<\.\.\. [\w?]+ resumed>.*)$",
                  re.DOTALL)
UCCISA = re.compile(rb"\d+ +\+\+\+ killed by SIGKILL \+\+\+")
RIPRESA = re.compile(rb"\d+ +<\.\.\. .*")
SENZA_ESITO = re.compile(rb".*(?:= \?(?: <unavailable>)?|<unfinished \.\.\.>)", re.DOTALL)
ARGOMENTO = re.compile(
    rb'\s*(?:"((?:[^"\\]|\\.)*)"|(AT_FDCWD|-?\d+)(?:<((?:[^>\\]|\\.)*)>)?|([^,()"<>]*?))'
    rb'\s*(,|\)|<unfinished \.\.\.>)', re.DOTALL)
FUGA = re.compile(rb"\\(?:x([0-9a-fA-F]{2})|([0-7]{1,3})|(.))", re.DOTALL)
SEMPLICI = {b"n": b"\n", b"t": b"\t", b"r": b"\r", b"v": b"\v", b"f": b"\f"}
LIBRI = re.compile(rb"(?:info/[^/]+\.trashinfo|directorysizes(?:\.\d+)?)", re.DOTALL)
CESTINO_DI_VOLUME = re.compile(rb".*/\.Trash(?:-\d+|/\d+)", re.DOTALL)
DISPOSITIVI = re.compile(rb"/dev/(?:null|tty|full|pts/\d+)|/proc/.*")


def _testo(grezzo):
    def carattere(trovato):
        esadecimale, ottale, semplice = trovato.groups()
        if esadecimale:
            return bytes([int(esadecimale, 16)])
        if ottale:
            return bytes([int(ottale, 8)])
        return SEMPLICI.get(semplice, semplice)
    return FUGA.sub(carattere, grezzo)


class Proprio:
    """What is the program's own, for one home folder and what it really is behind links."""

    def __init__(self, home, vera=b"", dati=b""):
        case = {home, vera or home}
        self.cestini = {(dati or casa + b"/.local/share") + b"/Trash" for casa in case}
        self.senza_schede = {casa + b"/.Trash" for casa in case}
        self.supporti = tuple(casa + b"/Library/Application Support/PellakCleaner/"
                              for casa in case)
        accesso = (b"/Library/LaunchAgents/com.pellaklab.cleaner.plist",
                   b"/.config/autostart/com.pellaklab.cleaner.desktop")
        self.accesso = {casa + voce + fine for casa in case for voce in accesso
                        for fine in (b"", b".nuovo")}

    def cestino_di(self, percorso, parte):
        """Whether the path is `parte`, a pattern, below a Trash folder."""
        for trovato in re.finditer(rb"/(?=%b$)" % parte.pattern, percorso, re.DOTALL):
            sopra = percorso[:trovato.start()]
            if sopra in self.cestini or CESTINO_DI_VOLUME.fullmatch(sopra):
                return True
        return False

    def e(self, percorso):
        return (percorso.startswith(self.supporti) or percorso in self.accesso or
                self.cestino_di(percorso, LIBRI))

    def elemento(self, percorso):
        return (self.cestino_di(percorso, re.compile(rb"files/[^/]+")) or
                os.path.dirname(percorso) in self.senza_schede)


class Chiamata:
    def __init__(self, nome, resto):
        self.nome = nome
        self.testi, self.file, self.altri = [], [], []
        posto, separa = 0, b","
        while separa == b",":
            parte = ARGOMENTO.match(resto, posto)
            if not parte:
                raise ValueError("an argument of no known form")
            testo, numero, cartella, altro, separa = parte.groups()
            if testo is not None:
                self.testi.append(self._assoluto(_testo(testo)))
                self.file = []
            elif cartella is not None or numero == b"AT_FDCWD":
                self.file.append(_testo(cartella or b""))
            else:
                self.altri.append(altro or numero or b"")
            posto = parte.end()
        self.riuscita = re.fullmatch(rb" += 0(?:<.*)?", resto[posto:], re.DOTALL) is not None

    def _assoluto(self, percorso):
        if not percorso.startswith(b"/") and self.file:
            percorso = self.file[-1] + b"/" + percorso
        if not percorso.startswith(b"/"):
            raise ValueError("a path of unknown place")
        return os.path.normpath(percorso)

    def percorso(self):
        """Of a call that takes a path, or an open file."""
        trovati = self.testi or self.file
        if len(trovati) != 1 or not trovati[0].startswith(b"/"):
            raise ValueError("no path")
        return trovati[0]

    def dice(self, parola):
        return any(parola in re.split(rb"[|=, {}]+", altro) for altro in self.altri)


def _lamentela(chiamata, proprio):
    """Why the call must not be; nothing when it may."""
    nome = chiamata.nome
    if nome in (b"open", b"openat", b"openat2", b"creat"):
        scrive = nome == b"creat" or any(chiamata.dice(p) for p in (
            b"O_WRONLY", b"O_RDWR", b"O_TRUNC", b"O_CREAT", b"O_TMPFILE"))
        if not scrive:
            return None
        percorso = chiamata.percorso()
        return None if proprio.e(percorso) or DISPOSITIVI.fullmatch(percorso) else "writes"
    if nome in (b"truncate", b"ftruncate", b"fallocate"):
        return None if proprio.e(chiamata.percorso()) else "empties"
    if nome in (b"unlink", b"unlinkat", b"rmdir"):
        cartella = nome == b"rmdir" or chiamata.dice(b"AT_REMOVEDIR")
        return None if proprio.e(chiamata.percorso()) and not cartella else "deletes"
    if nome in (b"rename", b"renameat", b"renameat2"):
        da, a = chiamata.testi
        if chiamata.dice(b"RENAME_NOREPLACE") and not chiamata.dice(b"RENAME_EXCHANGE"):
            moto = proprio.elemento(da) or proprio.elemento(a)
            return None if moto else "moves, but neither into a Trash nor out of one"
        return None if proprio.e(da) and proprio.e(a) else "may overwrite"
    return None if nome in (b"syncfs", b"fsync") else "can't be judged"


class Ordine:
    """What is on the disk when: a new file before it is renamed, its name before an item moves."""

    NUOVO = b".nuovo"

    def __init__(self, proprio):
        self.proprio = proprio
        self.sincroni = set()
        self.rinominati = set()  # folders with a name that is not on the disk yet

    def lamentela(self, chiamata):
        nome = chiamata.nome
        if nome == b"fsync":
            percorso = chiamata.percorso()
            self.sincroni.add(percorso)
            self.rinominati.discard(percorso)
        elif nome == b"openat" and chiamata.dice(b"O_CREAT"):
            self.sincroni.discard(chiamata.percorso())
        elif nome == b"rename" and chiamata.testi[0].endswith(self.NUOVO):
            if chiamata.testi[0] not in self.sincroni:
                return "renames before it is on the disk"
            self.rinominati.add(os.path.dirname(chiamata.testi[1]))
        elif nome == b"renameat2" and self.proprio.elemento(chiamata.testi[1]):
            if any(s.rstrip(b"/") in self.rinominati for s in self.proprio.supporti):
                return "moves before the intent is on the disk"
        return None


def _mai_fatte(righe):
    """The places of the lines of calls before which their thread was killed."""
    trovate, uccise = set(), set()
    for posto in range(len(righe) - 1, -1, -1):
        riga = righe[posto]
        filo = riga.partition(b" ")[0]
        if UCCISA.fullmatch(riga):
            uccise.add(filo)
        elif filo in uccise and not (RIPRESA.fullmatch(riga) and SENZA_ESITO.fullmatch(riga)):
            uccise.remove(filo)
            if SENZA_ESITO.fullmatch(riga):
                trovate.add(posto)
    return trovate


class Tracciato:
    """The complaints about one trace, and how much it shows."""

    def __init__(self, testo, proprio, pid=b"1"):
        self.lamentele = []
        self.mosse = self.ritorni = self.tolti = 0
        fine = re.search(rb"^%b +\+\+\+ (.*) \+\+\+$" % pid, testo, re.MULTILINE)
        self.finito = fine is not None
        self.ucciso = self.finito and fine.group(1).startswith(b"killed by SIGKILL")
        ordine = Ordine(proprio)
        righe = testo.splitlines()
        mai_fatte = _mai_fatte(righe)
        for posto, riga in enumerate(righe):
            self._giudica(riga, proprio, ordine, posto in mai_fatte)

    def _giudica(self, riga, proprio, ordine, mai_fatta):
        trovata = RIGA.match(riga)
        if trovata and trovata.group(1) is None:
            return
        try:
            chiamata = Chiamata(*trovata.groups())
            perche = _lamentela(chiamata, proprio) or ordine.lamentela(chiamata)
        except (AttributeError, ValueError) as errore:
            if mai_fatta:
                return
            perche, chiamata = f"can't be understood ({errore})", None
        if perche:
            self.lamentele.append(f"{perche}: {os.fsdecode(riga)}")
        elif chiamata.nome == b"renameat2" and chiamata.riuscita:
            self.mosse += proprio.elemento(chiamata.testi[1])
            self.ritorni += proprio.elemento(chiamata.testi[0])
        elif chiamata.nome in (b"unlink", b"unlinkat"):
            self.tolti += 1
