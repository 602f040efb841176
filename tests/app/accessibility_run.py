"""logmgr through the accessibility bus and the keyboard alone: collects the existing logs, views where they went,
then runs and saves an issue reproduction, printing the accessible tree of each state it checks.
  accessibility_run.py LOGMGR CATALOGUE-FOLDER EXISTING-ARCHIVE ISSUE-ARCHIVE"""
import gettext, os, subprocess, sys, time  # noqa: E401

import gi

gi.require_version("Atspi", "2.0")
import pyatspi  # noqa: E402
from gi.repository import GLib  # noqa: E402

logmgr, catalogue, existing_archive, issue_archive = sys.argv[1:5]
_ = gettext.translation("appshelf", catalogue, fallback=True).gettext
START, STOP, SAVE, VIEW, EXISTING = map(_, ["Start collecting logs", "Stop collecting logs", "Save logs",
                                            "View saved logs", "Collect existing logs"])
HINTS = dict(zip([START, STOP, SAVE, VIEW, EXISTING], map(_, [
    'Click "Start collecting logs" and then reproduce the issue. This gathers the most recent logs.',
    'Click "Stop collecting logs" after the issue is reproduced.',
    'Click "Save logs" to save the logs to the desired location.',
    'Click "View saved logs" to view the recently saved logs.',
    'Click "Collect existing logs" to gather the logs that might have captured the issue from previous occurrences.'])))
BUSY, LAST, TITLE = map(_, ["Collecting logs. Reproduce the issue in the client now.", "Last saved log: ",
                            "Norvex Log Collection Utility"])
SPINNER, RULER = "redundant object", "separator"  # unnamed: known by role
TAB, SPACE, RETURN, CONTROL, SHIFT = 0xff09, 0x20, 0xff0d, 4, 1
announced, widths, press = [], set(), pyatspi.Registry.generateKeyboardEvent


def wait_for(what, find, seconds=30):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        while GLib.MainContext.default().iteration(False):  # takes in the bus's events
            pass
        if found := find():
            return found
        time.sleep(0.05)
    sys.exit(f"gave up waiting for {what}")


def has(node, state):
    return node.getState().contains(state)


def nodes(node, depth=0):
    yield depth, node
    for child in node:
        yield from nodes(child, depth + 1)


def toplevel(name, dialog=False):
    return next((top for app in pyatspi.Registry.getDesktop(0) if app and app.name == "logmgr" for top in app
                 if top.name == name and has(top, pyatspi.STATE_SHOWING)
                 and (top.getRole() != pyatspi.ROLE_FRAME) == dialog), None)


def button(window, name):
    return next((node for _d, node in nodes(window)
                 if node.getRole() == pyatspi.ROLE_PUSH_BUTTON and node.name == name), None)


def keys(*symbols, modifiers=0):
    for symbol in symbols:
        press(modifiers, None, pyatspi.KEY_LOCKMODIFIERS)
        press(symbol, None, pyatspi.KEY_SYM)
        press(modifiers, None, pyatspi.KEY_UNLOCKMODIFIERS)
        time.sleep(0.2)


def settled_width(window):  # style transitions resize the window for a moment
    width = window.queryComponent().getSize()[0]
    time.sleep(0.3)
    return width == window.queryComponent().getSize()[0] and width


def check_state(state, window, shown, hidden, focus):
    widths.add(wait_for("a settled width", lambda: settled_width(window)))
    print(f"--- {state}")
    seen, buttons, focused = {}, [], []
    for depth, node in nodes(window):
        showing = has(node, pyatspi.STATE_SHOWING)
        print(f"{'  ' * depth}{node.getRoleName()} | {node.name} | {node.description} | showing={showing}")
        seen[LAST if node.name.startswith(LAST) else node.name or node.getRoleName()] = showing
        buttons += [(node.name, node.description)] if node.getRole() == pyatspi.ROLE_PUSH_BUTTON else []
        focused += [node.name] if has(node, pyatspi.STATE_FOCUSED) else []
    assert len({name for name, _h in buttons}) == len(buttons) and all(HINTS[n] == hint for n, hint in buttons), buttons
    assert all(seen.get(name) == (name in shown) for name in shown + hidden), (shown, hidden, seen)
    assert focused == [focus], focused


def answer(title, typed=None):
    """Answers the dialog coming up; returns its names. A screen reader's focus call stands for the window manager."""
    dialog = wait_for(title, lambda: toplevel(title, dialog=True))
    shown = [node for _d, node in nodes(dialog) if has(node, pyatspi.STATE_SHOWING)]
    field = next(node for role in (pyatspi.ROLE_TEXT, pyatspi.ROLE_PUSH_BUTTON) for node in shown
                 if node.getRole() == role)
    names = [node.name for node in shown]
    field.queryComponent().grabFocus()
    wait_for(f"focus in {title}", lambda: has(field, pyatspi.STATE_FOCUSED))
    if typed:
        keys(ord("a"), modifiers=CONTROL)
        press(0, typed, pyatspi.KEY_STRING)
    keys(RETURN)
    return names


def save_as(path):
    assert _("Save") in answer(_("Save File"), os.path.basename(path))
    wait_for(path, lambda: os.path.exists(path) and os.path.getsize(path))


def run(window):
    button(window, START).queryComponent().grabFocus()  # no window manager here to give the window the keyboard
    wait_for("the window's focus", lambda: has(button(window, START), pyatspi.STATE_FOCUSED))
    check_state("idle", window, [START, HINTS[START], EXISTING, HINTS[EXISTING]], [SAVE, BUSY, SPINNER, RULER, LAST],
                START)
    keys(TAB, SPACE)
    save_as(existing_archive)
    wait_for("the view button", lambda: button(window, VIEW))
    check_state("existing saved", window, [START, VIEW, HINTS[VIEW], EXISTING, RULER, LAST], [HINTS[EXISTING]],
                EXISTING)
    keys(TAB, modifiers=SHIFT)
    keys(SPACE)  # no opener here: it says where the file is
    assert _('Existing logs are saved at "%s".') % existing_archive in answer(TITLE)
    keys(TAB, TAB, SPACE)  # round to the start button
    wait_for("the run", lambda: button(window, STOP))
    wait_for("the run's announcement", lambda: (pyatspi.ROLE_NOTIFICATION, BUSY) in announced, seconds=5)
    check_state("collecting", window, [STOP, HINTS[STOP], BUSY, SPINNER],
                [SAVE, EXISTING, HINTS[EXISTING], RULER, LAST], STOP)
    keys(SPACE)
    wait_for("the archive", lambda: button(window, START) and has(button(window, SAVE), pyatspi.STATE_SHOWING))
    check_state("stopped", window, [START, SAVE, HINTS[SAVE], RULER, LAST],
                [EXISTING, HINTS[EXISTING], BUSY, SPINNER], START)
    time_text = next(node.name for _d, node in nodes(window) if node.name.startswith(LAST))[len(LAST):]
    assert time_text[0] == " " != time_text[1], time_text  # one blank more than the catalogue's
    keys(TAB, SPACE)
    save_as(issue_archive)
    wait_for("the view button", lambda: button(window, VIEW))
    check_state("run saved", window, [START, VIEW, HINTS[VIEW]], [EXISTING], VIEW)
    assert len(widths) == 1, f"the window's width changes between states: {widths}"


def note_shown(event):
    try:
        announced.extend([(event.source.getRole(), event.source.name)] * event.detail1)
    except GLib.Error:  # gone already, as the parts of a closed dialog are
        pass


app = subprocess.Popen([logmgr])  # the private session bus starts the accessibility bus on the first request
try:
    pyatspi.Registry.registerEventListener(note_shown, "object:state-changed:showing")
    run(wait_for("the window", lambda: toplevel(TITLE)))
finally:
    app.terminate()
    app.wait()
