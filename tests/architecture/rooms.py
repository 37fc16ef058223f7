"""Which folder of PellakCleaner/ may include which, and what else may stand where.

The table is the one of docs/architecture.md. A new folder joins by getting a room here.
"""

import re

# Longest prefix first: the room of a file is the first whose prefix its path starts with.
PREFIXES = [
    ("platform/Native.h", "native"),
    ("platform/Desktop.h", "native"),
    ("platform/posix/", "posix"),
    ("platform/linux/", "linux"),
    ("platform/macos/", "macos"),
    ("platform/", "seam"),
    ("PellakCore/base/", "base"),
    ("PellakCore/", "core"),
    ("scanners/walker/", "walker"),
    ("scanners/", "scanners"),
    ("commands/", "commands"),
    ("trash/", "trash"),
    ("tools/", "tools"),
    ("updates/", "updates"),
    ("api/", "api"),
    ("shell/", "shell"),
    ("app/", "app"),
]

# Beside its own files. `native` (the header that names all back ends) is for those who make
# them and for the one place that joins everything.
ARROWS = {
    "seam": set(),
    "native": {"seam"},
    "posix": {"seam"},
    "linux": {"seam", "native", "posix"},
    "macos": {"seam", "native", "posix"},
    "base": set(),
    "walker": {"base", "seam"},
    "core": {"base", "seam", "walker"},
    "commands": {"base", "seam"},
    "tools": {"commands", "base", "seam"},
    "updates": {"commands", "base", "seam"},
    "scanners": {"core", "walker", "commands", "base", "seam"},
    "trash": {"core", "commands", "base", "seam"},
    "api": {"trash", "scanners", "tools", "updates", "core", "walker", "commands", "base", "seam"},
    "shell": {"api", "core", "commands", "tools", "updates", "base", "seam"},
}
BACK_ENDS = {"posix", "linux", "macos"}

# Single arrows beyond the table: (including path, included path).
EXCEPTIONS = [
    # What everything may use.
    (re.compile(r""), re.compile(r"platform/(Result|EntryType)\.h")),
    # The desktop brings the main loop it runs on.
    (re.compile(r"platform/DesktopHost\.h"), re.compile(r"platform/MainLoop\.h")),
    # The version comparison is the one thing tools and updates share.
    (re.compile(r"tools/"), re.compile(r"updates/[A-Za-z]*Version[A-Za-z]*\.h")),
    # The two thin scanners that show rows of a tool as findings.
    (re.compile(r"scanners/avvio/"), re.compile(r"tools/avvio/")),
    (re.compile(r"scanners/aggiornamenti/"), re.compile(r"updates/")),
]

# POSIX headers outside the back ends.
SYSTEM_HEADERS = {
    "walker": {"sys/stat.h"},
    "app": {"poll.h", "sys/ioctl.h", "termios.h", "unistd.h"},
}

# Libraries by the start of the header's name, and the rooms that may use them.
LIBRARIES = [
    ("fmt/", set(ARROWS) - {"seam", "native"} | {"app"}),
    ("boost/json", {"base"}),
    ("CLI/", {"app"}),
    ("zlib.h", {"shell"}),
]

# The standard library's own have neither an ending nor a folder.
STANDARD_HEADER = re.compile(r"[a-z_]+")

OS_MACRO = re.compile(
    r"\b(__APPLE__|__MACH__|__linux(__)?|__gnu_linux__|linux|__unix(__)?|unix|__ANDROID__"
    r"|__\w*BSD__|_WIN32|_WIN64|__CYGWIN__|__has_include|TARGET_OS_\w+|__GLIBC__)\b"
)

# What the oldest C++ library of the systems we build for lacks.
MISSING_ON_MACOS = [
    (re.compile(pattern), name)
    for pattern, name in [
        (r"\bjthread\b", "std::jthread"),
        (r"\bstop_(token|source|callback)\b", "std::stop_token"),
        (r"\bstd::(v?format|format_to(_n)?|formatted_size|make_format_args)\b", "std::format"),
        (r"\bstd::print(ln)?\b", "std::print"),
        (r"\bviews::join(_with)?\b", "views::join"),
        (r"\bosyncstream\b", "std::osyncstream"),
        (r"\bstd::pmr\b|\bpolymorphic_allocator\b", "std::pmr"),
        (r"\batomic\s*<\s*(std::)?(shared|weak)_ptr\b", "atomic<shared_ptr>"),
        (r"\bmake_shared\s*<[^<>;]*\[[^\]]*\]\s*>", "make_shared<T[]>"),
        (r"\bchars_format\b", "from_chars and to_chars of doubles"),
        (r"\b(zoned_time|current_zone|locate_zone|get_tzdb)\b", "chrono time zones"),
        (r"<\s*(stop_token|format|print|syncstream|memory_resource)\s*>", "a missing header"),
    ]
]


def room_of(path):
    """The room of a path below PellakCleaner/, or None."""
    for prefix, room in PREFIXES:
        if path.startswith(prefix):
            return room
    return None


def may_include(including, included):
    """Whether one file may include another, both as paths below PellakCleaner/."""
    if any(a.match(including) and b.match(included) for a, b in EXCEPTIONS):
        return True
    here, there = room_of(including), room_of(included)
    if here == "app":
        return True
    if here == "tools" and there == "tools":
        return _tool_of(included) in (None, _tool_of(including))
    return here == there != "seam" or there in ARROWS[here]


def _tool_of(path):
    """The folder of a tool; None for what all tools share."""
    parts = path.split("/")
    return parts[1] if len(parts) > 2 else None


def may_use_header(room, header):
    """Whether a room may include a header in angle brackets; the reason when not."""
    if STANDARD_HEADER.fullmatch(header) or room in BACK_ENDS:
        return None
    for start, rooms in LIBRARIES:
        if header.startswith(start):
            return None if room in rooms else f"<{header}> does not belong in {room}"
    if header in SYSTEM_HEADERS.get(room, ()):
        return None
    return f"<{header}> is a system header or an unknown library, and {room} is no back end"
