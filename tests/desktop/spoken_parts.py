"""What an assistive tool finds of a program, and hears of it, over the session's accessibility bus."""

import gi
import tray_parts
from waiting import until

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

LISTENER = """
import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi

def heard(event):
    event.source.clear_cache()
    told = event.any_data if event.type.startswith("object:text") else event.source.get_name()
    print(event.type, event.source.get_role_name(), told, sep="|", flush=True)

listener = Atspi.EventListener.new(heard)
for kind in ("object:property-change:accessible-name", "object:text-changed:insert"):
    listener.register(kind)
print("ready", flush=True)
Atspi.event_main()
"""


class Listener:
    """Another program that listens: "KIND|ROLE|TEXT" for each event."""

    def __init__(self):
        self.program = tray_parts.Process("/usr/bin/python3", "-c", LISTENER)
        self.program.expect("ready", seconds=20)

    def heard(self, kind, role, text):
        return self.program.count(f"{kind}|{role}|{text}") > 0

    def close(self):
        self.program.kill()


class Spoken:
    """The elements that a process shows."""

    def __init__(self, pid):
        self.pid = pid
        self.application = until(self._find, "the program on the accessibility bus", 20)

    def _find(self):
        desktop = Atspi.get_desktop(0)
        desktop.clear_cache()
        children = (desktop.get_child_at_index(i) for i in range(desktop.get_child_count()))
        return next((child for child in children if child and child.get_process_id() == self.pid), None)

    def _showing(self, parent):
        parent.clear_cache()
        for i in range(parent.get_child_count()):
            child = parent.get_child_at_index(i)
            if child and child.get_state_set().contains(Atspi.StateType.SHOWING):
                yield child
                yield from self._showing(child)

    @staticmethod
    def _told(element):
        value = Atspi.Text.get_text(element, 0, -1) if "Text" in element.get_interfaces() else ""
        return element.get_role_name(), element.get_name(), value, element.get_description()

    def elements(self):
        """Role, name, value and description of all that is shown, sorted."""
        try:
            return sorted(self._told(element) for element in self._showing(self.application))
        except GLib.Error:
            return []  # one of them went during the look

    def press(self, role, name):
        """Does what a tool's "press" does."""
        element = next(found for found in self._showing(self.application)
                       if (found.get_role_name(), found.get_name()) == (role, name))
        actions = [Atspi.Action.get_action_name(element, i) for i in range(Atspi.Action.get_n_actions(element))]
        assert Atspi.Action.do_action(element, actions.index("Press"))
