"""Finds the elements of a program on the session's accessibility bus, as assistive tools do, and moves its focus."""

import gi
from process import run
from waiting import Missing, wait_for

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

CONTROLS = ("push button", "check box", "radio button", "page tab", "link")


class Spoken:
    """The elements that a process shows."""

    def __init__(self, pid):
        self.pid = pid
        self.application = wait_for(self._find, "the program on the accessibility bus", 20)

    def _find(self):
        try:
            desktop = Atspi.get_desktop(0)
            desktop.clear_cache()
            children = (desktop.get_child_at_index(i) for i in range(desktop.get_child_count()))
            return next((child for child in children if child and child.get_process_id() == self.pid), None)
        except GLib.Error:
            return None  # another program ended during the search

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
        """Role, name, value and description of all shown elements, sorted."""
        try:
            return sorted(self._told(element) for element in self._showing(self.application))
        except GLib.Error:
            return []  # an element was destroyed during the search

    def shown(self):
        """Role and name of all shown elements, sorted."""
        return [element[:2] for element in self.elements()]

    def find(self, *wanted):
        """Waits until all of these elements are shown, given by role and name, or with value and description too.

        Every control must have a name."""
        found = [[]]

        def are_found():
            found[0] = self.elements() or found[0]
            return all(any(element[:len(each)] == each for element in found[0]) for each in wanted)

        try:
            wait_for(are_found, "all of these elements")
        except Missing:
            raise Missing(f"{sorted(wanted)} are not all in {found[0]}") from None
        nameless = [element for element in found[0] if element[0] in CONTROLS and not element[1]]
        assert not nameless, f"controls without a name: {nameless}"

    def find_only(self, *wanted, seconds=20):
        """Waits until exactly these elements are shown, each with value and description."""
        found = [[]]

        def are_found():
            found[0] = self.elements() or found[0]
            return found[0] == sorted(wanted)

        try:
            wait_for(are_found, "all of these elements", seconds)
        except Missing:
            raise Missing(f"{found[0]} is shown, not {sorted(wanted)}") from None

    def places(self, *roles):
        """Names of the shown elements with these roles, and their places on the screen: left, top, width, height."""
        found = []
        try:
            for element in self._showing(self.application):
                if element.get_role_name() in roles:
                    area = Atspi.Component.get_extents(element, Atspi.CoordType.SCREEN)
                    found.append((element.get_name(), area.x, area.y, area.width, area.height))
        except GLib.Error:
            return []  # an element was destroyed during the search
        return found

    def focused(self):
        """The name of the element that has the keyboard, or None."""

        def has_keyboard(element):
            element.clear_cache()
            return element.get_state_set().contains(Atspi.StateType.FOCUSED)

        def look():
            elements = self._showing(self.application)
            try:
                return (next((element.get_name() for element in elements if has_keyboard(element)), None),)
            except GLib.Error:
                return None  # an element was destroyed during the search

        return wait_for(look, "a look at all elements")[0]

    def _element(self, role, name):
        """Waits for the element: it may be about to be shown, or another one may be destroyed during the search."""

        def look():
            try:
                return next((found for found in self._showing(self.application)
                             if (found.get_role_name(), found.get_name()) == (role, name)), None)
            except GLib.Error:
                return None

        return wait_for(look, f"the {role} {name}")

    def press(self, role, name, action="Press"):
        """Invokes the action "press" as a tool does, or another one."""

        def look():
            element = self._element(role, name)
            try:
                actions = [Atspi.Action.get_action_name(element, i) for i in range(Atspi.Action.get_n_actions(element))]
            except GLib.Error:
                return None  # the element was destroyed after the search
            return (element, actions.index(action)) if action in actions else None

        element, number = wait_for(look, f"the action {action} of the {role} {name}")
        assert Atspi.Action.do_action(element, number)

    def write(self, role, name, text):
        """Replaces the text of the field."""
        assert Atspi.EditableText.set_text_contents(self._element(role, name), text)

    def states(self, role, name):
        """The element's current states, as in {"enabled", "checked"}."""

        def look():
            try:
                return (self._states(self._element(role, name)),)
            except GLib.Error:
                return None  # the element was destroyed after the search

        return wait_for(look, f"the states of the {role} {name}")[0]

    @staticmethod
    def _states(element):
        element.clear_cache()
        return {state.value_nick for state in element.get_state_set().get_states()}

    def is_checked(self, role, name):
        return "checked" in self.states(role, name)

    def _scroll_bars(self):
        """The vertical ones first."""
        def is_wide(bar):
            area = Atspi.Component.get_extents(bar, Atspi.CoordType.SCREEN)
            return area.width > area.height

        return sorted((found for found in self._showing(self.application) if found.get_role_name() == "scroll bar"),
                      key=is_wide)

    def scrolled(self):
        """Position of each scroll bar between its ends, from 0 to 1; the vertical ones first."""
        return [Atspi.Value.get_current_value(bar) / Atspi.Value.get_maximum_value(bar) for bar in self._scroll_bars()]

    def scroll_to(self, part):
        """Moves the first vertical scroll bar to a place between its ends, from 0 to 1."""
        bar = self._scroll_bars()[0]
        assert Atspi.Value.set_current_value(bar, part * Atspi.Value.get_maximum_value(bar))


class Keyboard:
    """Uses the program by the keyboard alone, in the window that has the focus."""

    def __init__(self, spoken):
        self._spoken = spoken

    @staticmethod
    def press(*keys):
        run("xdotool", "key", "--delay", "60", *keys)

    def is_on(self, name):
        """Waits until the element has the focus."""
        wait_for(lambda: self._spoken.focused() == name, f"the focus on {name}")

    def tab(self, key="Tab"):
        """Presses the key and returns the name of the element that then has the focus."""
        before = self._spoken.focused()
        self.press(key)
        return wait_for(lambda: next((name for name in [self._spoken.focused()] if name not in (None, before)), None),
                        f"the focus behind {before}")

    def go_to(self, name):
        passed = []
        while self._spoken.focused() != name:
            passed.append(self.tab())
            assert len(passed) < 40, f"Tab does not come to {name} but to {passed}"

    def walk(self, first):
        """Names of all elements that Tab reaches, beginning with `first`."""
        self.go_to(first)
        names = [first]
        while (name := self.tab()) != first:
            assert name not in names, f"{name} comes twice after {names}"
            names.append(name)
        return names
