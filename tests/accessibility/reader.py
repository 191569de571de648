# SPDX-FileCopyrightText: The Quilvane developers
# SPDX-License-Identifier: GPL-3.0-or-later
"""A program as a screen reader sees it: its windows, texts and actions on the accessibility bus."""

import atexit
import os
import subprocess
import sys
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)  # PyGObject's, of every method of an interface

PATIENCE = 600  # seconds to wait for an event that must come; only a failure takes so long, and it prints what the bus shows
NO_CONTROLS = {"label", "menu bar", "menu item", "notification"}


def keys(*names):
    subprocess.run(["xdotool", "key", *names], check=True)


def has(node, state):
    return node.get_state_set().contains(state)


def isLive(node):
    return has(node, Atspi.StateType.ENABLED) and has(node, Atspi.StateType.SENSITIVE)


def textOf(field):
    return Atspi.Text.get_text(field, 0, Atspi.Text.get_character_count(field))


def childrenOf(node):
    children = [node.get_child_at_index(i) for i in range(node.get_child_count())]
    return [child for child in children if child]  # one may have vanished meanwhile


def below(node):
    """The visible nodes below one, without the rows of lists and the items of menus."""
    for child in childrenOf(node):
        if has(child, Atspi.StateType.SHOWING):
            yield child
            if child.get_role_name() not in ("list", "menu item"):
                yield from below(child)


class Program:
    def __init__(self, path, **environment):
        Atspi.init()
        Atspi.set_timeout(PATIENCE * 1000, PATIENCE * 1000)
        self.heard = []  # (event, role, name or text) of each object that was focused, selected or shown
        self.listener = Atspi.EventListener.new(self.hear)
        for event in ("focused", "selected", "showing"):
            self.listener.register("object:state-changed:" + event)
        self.said = open("said", "w+")
        self.process = subprocess.Popen([path], stdout=self.said, stderr=self.said,
                                        env=dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", **environment))
        atexit.register(self.process.kill)
        self.root = None
        self.waitFor("the program on the bus", self.join)

    def join(self):
        for program in childrenOf(Atspi.get_desktop(0)):
            if program.get_process_id() == self.process.pid:
                self.root = program
                self.root.set_cache_mask(Atspi.Cache.NONE)  # always read the current text of a label
        return self.root

    def hear(self, event):
        try:
            if event.detail1:
                node, role = event.source, event.source.get_role_name()
                # For a notification screen readers speak the labels in it.
                name = " ".join(self.labels(node)) if role == "notification" else node.get_name()
                self.heard.append((event.type.split(":")[-1], role, name))
        except GLib.Error:
            pass  # it has vanished since

    def waitFor(self, what, condition):
        """Waits until `condition` is true and returns its value; nodes may appear and vanish meanwhile."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            while GLib.MainContext.default().iteration(False):
                pass
            try:
                result = condition()
                if result:
                    return result
            except GLib.Error:
                pass
            if self.process.poll() is not None:
                break
            time.sleep(0.02)
        self.fail(f"no sign of {what}")

    def check(self, what, found, expected):
        if found != expected:
            self.fail(f"{what}:\n  expected {expected}\n  found    {found}")

    def fail(self, what):
        print("FAILED:", what)
        print("What the bus shows:")
        if self.process.poll() is None and self.root:
            for window in childrenOf(self.root):
                self.printTree(window, 1)
        self.said.seek(0)
        print(f"Exit status so far: {self.process.poll()}. What the program said:\n{self.said.read()}")
        sys.exit(1)

    def printTree(self, node, depth):
        try:
            states = ["live" if isLive(node) else "grey"]
            states += [state.value_nick for state in node.get_state_set().get_states()
                       if state.value_nick in ("showing", "focused", "checked", "selected", "active")]
            print("  " * depth, node.get_role_name(), repr(node.get_name()), *states)
            for child in childrenOf(node) if node.get_child_count() < 100 else ():
                self.printTree(child, depth + 1)
        except GLib.Error:
            print("  " * depth, "(gone)")

    def windows(self):
        return [child for child in childrenOf(self.root) if has(child, Atspi.StateType.SHOWING)]

    def window(self, title):
        """Waits until the window of that title is active, and returns it."""
        return self.waitFor(f"the window {title}, active", lambda: next(
            (each for each in self.windows() if each.get_name() == title and has(each, Atspi.StateType.ACTIVE)), None))

    def waitForEndOf(self, title):
        self.waitFor(f"the end of the window {title}", lambda: title not in [w.get_name() for w in self.windows()])

    def find(self, window, role, name):
        return self.waitFor(f"{role} {name}", lambda: next(
            (each for each in below(window) if (each.get_role_name(), each.get_name()) == (role, name)), None))

    def controls(self, window):
        """All nodes except labels, menus and plain areas, which have neither a useful role nor a name."""
        return [each for each in below(window) if each.get_role_name() not in NO_CONTROLS
                and (each.get_role_name() != "filler" or each.get_name())]

    def labels(self, window):
        return [each.get_name() for each in below(window) if each.get_role_name() == "label"]

    def actions(self, node):
        return [Atspi.Action.get_action_name(node, i) for i in range(Atspi.Action.get_n_actions(node))]

    def act(self, node, action):
        """Does an action of the control by its name: Press, Toggle, ShowMenu."""
        names = self.actions(node)
        if action not in names:
            self.fail(f"{node.get_role_name()} {node.get_name()} offers {names} and no {action}")
        Atspi.Action.do_action(node, names.index(action))

    def press(self, window, name):
        button = self.find(window, "push button", name)
        self.waitFor(f"{name}, enabled", lambda: isLive(button))
        self.act(button, "Press")

    def drag(self, start, end):
        """Drags by the mouse from one place on the screen to another, slowly like a hand."""
        xdotool = ["xdotool", "mousemove", *start, "mousedown", "1"]
        for part in (0.1, 0.4, 0.7, 0.9, 1, 1):
            xdotool += ["sleep", "0.1", "mousemove", *(a + part * (b - a) for a, b in zip(start, end))]
        subprocess.run([str(int(each)) if isinstance(each, float) else str(each) for each in
                        (*xdotool, "sleep", "0.2", "mouseup", "1")], check=True)

    def toggle(self, window, name):
        box = self.find(window, "check box", name)
        before = has(box, Atspi.StateType.CHECKED)
        self.act(box, "Toggle")
        self.waitFor(f"the change of {name}", lambda: has(box, Atspi.StateType.CHECKED) != before)

    def type(self, window, name, text):
        field = self.find(window, "text", name)
        Atspi.EditableText.set_text_contents(field, text)
        self.waitFor(f"the text of {name}", lambda: textOf(field) == text)

    def answerFileDialog(self, title, path, button):
        dialog = self.window(title)
        field = "Directory:" if os.path.isdir(path) else "File name:"
        self.type(dialog, field, path)
        self.press(dialog, button)
        self.waitForEndOf(title)

    def typeIntoFileDialog(self, title, path):
        """Types the path and presses Return while suggestions for it are shown."""
        self.window(title)
        self.heard.clear()
        subprocess.run(["xdotool", "type", path], check=True)
        self.waitFor("the suggestions", lambda: ("showing", "list", "") in self.heard)
        keys("Return")
        self.waitForEndOf(title)

    def focused(self, window):
        return next((each.get_name() for each in below(window) if has(each, Atspi.StateType.FOCUSED)), None)

    def checkInside(self, window, node):
        place = Atspi.Component.get_extents(node, Atspi.CoordType.SCREEN)
        frame = Atspi.Component.get_extents(window, Atspi.CoordType.SCREEN)
        if not (frame.x <= place.x and place.x + place.width <= frame.x + frame.width
                and frame.y <= place.y and place.y + place.height <= frame.y + frame.height):
            self.fail(f"{node.get_name()} stands outside of its window")

    def checkTabOrder(self, window, names):
        """Presses the Tab key once for each name, starting at the last one. Each control must be inside of the window
        when it has the focus."""
        last = next(each for each in self.controls(window) if each.get_name() == names[-1])
        self.act(last, "SetFocus")
        self.waitFor(f"the keyboard on {names[-1]}", lambda: self.focused(window) == names[-1])
        for name in names:
            keys("Tab")
            self.waitFor(f"the keyboard on {name}", lambda: self.focused(window) == name)
            self.checkInside(window, next(each for each in self.controls(window) if each.get_name() == name))
