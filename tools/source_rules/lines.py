"""Rules about single lines and sizes: coroutines, shared instances, clocks, platform conditions, root-side traps."""

import re

from .layers import MAY_INCLUDE_OS, folder_of

LONGEST_SOURCE = 400
LONGEST_TEST = 600

_CLOCK = re.compile(
    r"\b(?:sleep_for|sleep_until|usleep|nanosleep|clock_nanosleep|clock_gettime|gettimeofday|timerfd_create|"
    r"timer_create|setitimer|QTimer|QBasicTimer|QElapsedTimer|QDeadlineTimer|startTimer|msleep)\b"
    r"|_clock::now\b|\bstd::time\(|(?<![\w:.>])(?:time|sleep|alarm)\((?:nullptr|NULL|0|\d+)\)"
    r"|\bQ(?:Date|Time|DateTime)::current"
)
# Matches the usual spellings of a sleep. Scripts wait with tools/session/waiting.py, which pauses
# between two checks of a condition.
_SLEEP_IN_TEST = {
    (".h", ".cpp", ".mm"): re.compile(
        r"\b(?:sleep_for|sleep_until|usleep|nanosleep|msleep|qWait|qSleep)\b|(?<![\w.>])sleep\("
        r"|\bp?poll\(nullptr\b|\bp?select\(0,"
    ),
    (".py",): re.compile(
        r"\bsleep\(|\btime\.sleep\b|^\s*from time import .*\bsleep\b|\bimport time as\b|\bselect\(\[\], \[\], \[\]"
        r"|\bEvent\(\)\.wait\(|\bsigtimedwait\(|\b(?:run|call|check_call|command|system)\(\[?\"[/a-z]*sleep\b", re.MULTILINE
    ),
    (".sh",): re.compile(r"(?:^|[\s;&|(])sleep\s+[\d$]|\bread\s+-\w*t\b", re.MULTILINE),
}
# These make gaps between calls, and slow work, for the daemon; no test waits in them.
_MAKES_GAPS = "tests/daemon/tools/"
_PLATFORM_IF = re.compile(
    r"^[ \t]*#[ \t]*(?:el)?if[^\n]*\b(?:__linux__|__APPLE__|_WIN32|__unix__|__GLIBC__|__FreeBSD__|Q_OS_\w+|TARGET_OS_\w+)\b",
    re.MULTILINE,
)
# The bus library reads these from /proc by the caller's pid, which may belong to another process by then.
_BY_PID = re.compile(r"\b(?:getCredsUid|getCredsPid|getCredsGid)\b|unix-process")
# Forbidden in the root daemon's sources, except in the places below.
_ROOT_DAEMON = ("daemon/", "posix/daemon/", "linux/daemon/", "macos/daemon/", "main/helper_")
_NOT_AS_ROOT = (
    (re.compile(r"\bGetConnectionUnixProcessID\b|\bGetConnectionCredentials\b|\bsd_bus_(?:query_sender_)?creds\w*|"
                r"\bSO_PEERCRED\b|\bSO_PEERPIDFD\b"), "asks who a caller's process is"),
    (re.compile(r"(?<![\w.>])(?:system|popen|fork|vfork|execl|execle|execlp|execv|execve|execvp|execvpe|posix_spawnp?|"
                r"dlopen)\s*\(|\bQProcess\b"), "starts a program as root"),
    (re.compile(r"\b(?:setuid|seteuid|setreuid|setresuid|setgid|setresgid|setfsuid)\s*\("), "takes a caller's user"),
    (re.compile(r"\bgetenv\s*\(|\bsecure_getenv\s*\(|\benviron\b"), "reads the environment as root"),
)
# One place clears the environment; another holds on to a caller's process, which can only reduce its rights.
_EXCEPT = (("StartContext", "environment"), ("BusCallers", "process"))
_CO_AWAIT = re.compile(r"\bco_await\b[^;]*")
_TASK_LAMBDA = re.compile(r"\]\s*\([^()]*\)\s*(?:mutable\s*)?->\s*(?:\w+::)*Task<")


def _is_clock(path):
    """Whether this is one of the program's clocks: the scheduler, the timer that wakes it, or the calendar."""
    name = path.rsplit("/", 1)[-1].rsplit(".", 1)[0]
    return name.endswith(("Scheduler", "WakeTimer", "CalendarClock"))


def _hits(file, pattern, message, text=None):
    for match in pattern.finditer(file.code if text is None else text):
        yield file.path, file.line_of(match.start()), f"{message}: {match[0].strip()[:60]}"


def check_coroutines(files):
    """GCC 12 destroys what a lambda inside a co_await expression captures twice."""
    for file in files:
        for match in _CO_AWAIT.finditer(file.code):
            start = file.code.rfind("\n", 0, match.start()) + 1
            end = file.code.find("\n", match.end())
            if "[" in file.code[start : end if end >= 0 else None].split(";")[0] or "[" in match[0]:
                yield file.path, file.line_of(match.start()), "a bracket in a co_await expression"
        yield from _hits(file, _TASK_LAMBDA, "a coroutine written as a lambda")


def check_source_lines(sources):
    for source in sources:
        inside = source.path[len("src/") :]
        folder = folder_of(inside) or ""
        if not _is_clock(inside):
            yield from _hits(source, _CLOCK, "a clock, sleep or timer outside Scheduler and CalendarClock")
        if folder not in MAY_INCLUDE_OS and inside != "base/HostSystem.h":
            yield from _hits(source, _PLATFORM_IF, "a condition on the platform outside the platform folders")
        yield from _hits(source, _BY_PID, "judges a caller by its pid", source.text)
        if source.path.endswith(".h"):
            yield from _hits(source, _droppable(source), "returns an error without [[nodiscard]]")
        if inside.startswith(_ROOT_DAEMON):
            yield from _check_root_daemon(source)


def _droppable(source):
    """Matches a function that returns an error which its caller can drop without a word."""
    names = ["std::expected<", r"(?:\w+::)*Attempt<",
             *(rf"{alias}\b" for alias in re.findall(r"\busing (\w+) = std::expected<", source.code))]
    return re.compile(r"^[ \t]*(?:template <[^<>]*> )?(?:(?:static|virtual|inline|constexpr|friend) )*"
                      rf"(?:{'|'.join(names)})[^;{{()=]*\(", re.MULTILINE)


def _check_root_daemon(source):
    for pattern, message in _NOT_AS_ROOT:
        if not any(source.name == name and word in message for name, word in _EXCEPT):
            yield from _hits(source, pattern, message, source.text)


def check_sizes(sources, tests):
    for files, limit in ((sources, LONGEST_SOURCE), (tests, LONGEST_TEST)):
        for file in files:
            length = file.text.count("\n")
            if length > limit:
                yield file.path, limit + 1, f"has {length} lines, {limit} at most"


def check_sleeps(tests):
    for test in tests:
        if test.path.startswith((_MAKES_GAPS, "tests/tools/")):  # the latter plant what is forbidden
            continue
        for suffixes, pattern in _SLEEP_IN_TEST.items():
            if test.path.endswith(suffixes):
                code = test.code if suffixes[0] == ".h" else re.sub(r"#[^\n]*", "", test.text)
                yield from _hits(test, pattern, "a sleep in a test", code)


def check_contract(path, text):
    """Refuses other spellings than these two: the generator ignores them and makes an adaptor that blocks."""
    methods = re.findall(r'<method name="(\w+)">(.*?)</method>', text, re.DOTALL)
    if not methods:
        yield path, 1, "declares no method"
    for name, body in methods:
        how = re.search(r'Method\.Async" value="([^"]*)"', body)
        wanted = "client" if name in ("Ping", "Version") else "clientserver"
        if not how or how[1] != wanted:
            yield path, 1, f'{name} needs the annotation Async "{wanted}"'
