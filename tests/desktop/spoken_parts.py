"""Listens to changes on the session's accessibility bus, as another program would."""

from process import Process

LISTENER = """
import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

def heard(event):
    is_text = event.type.startswith(("object:text", "object:announcement"))
    try:
        event.source.clear_cache()
        role, name = event.source.get_role_name(), event.source.get_name()
    except GLib.Error:
        role = name = ""  # the element is destroyed, but its last event counts
    print(event.type, role, event.any_data if is_text else name, sep="|", flush=True)

listener = Atspi.EventListener.new(heard)
for kind in ("object:property-change:accessible-name", "object:text-changed:insert", "object:announcement"):
    listener.register(kind)
print("ready", flush=True)
Atspi.event_main()
"""


class Listener:
    """Another program that listens: "KIND|ROLE|TEXT" for each event."""

    def __init__(self):
        self.program = Process("/usr/bin/python3", "-c", LISTENER)
        self.program.expect("ready", seconds=20)

    def heard(self, kind, role, text):
        return self.program.count(f"{kind}|{role}|{text}") > 0

    def announced(self, text):
        """Whether a program, and not one of its elements, has announced this text."""
        return any(line.startswith("object:announcement|") and line.endswith(f"|{text}") for line in self.program.lines)

    def heard_of(self, kind, role):
        """Events of elements with this role."""
        start = f"{kind}|{role}|"
        return [line.removeprefix(start) for line in self.program.lines if line.startswith(start)]

    def close(self):
        self.program.kill()
