"""Prints the accessibility tree of the running orvel window, one "role<TAB>name" line per node
(the description stands in for an empty name, as it does for a screen reader).

With "press NAME" arguments it first presses the push button of that name through the screen
reader's action interface, then prints the tree again after a line "--".
Run with Debian's /usr/bin/python3 (pyatspi)."""
import sys
import time

import pyatspi


def orvel_window():
    desktop = pyatspi.Registry.getDesktop(0)
    for app in desktop:
        if app is None:
            continue
        for window in app:
            if window is not None and window.name == "Orvel":
                return window
    return None


def walk(node, out):
    """What a screen reader can reach: nodes that are not shown (and all under them) are left out."""
    try:
        if not node.getState().contains(pyatspi.STATE_VISIBLE):
            return out
        # A screen reader speaks the description when there is no name (Qt gives password
        # fields none).
        out.append((node.getRoleName(), node.name or node.description or "", node))
        for child in node:
            if child is not None:
                walk(child, out)
    except Exception:
        pass
    return out


def wait_for(predicate, timeout=20):
    end = time.time() + timeout
    while time.time() < end:
        try:
            found = predicate()
            if found:
                return found
        except Exception:
            pass
        time.sleep(0.1)
    return None


def dump(window):
    for role, name, _ in walk(window, []):
        print("%s\t%s" % (role, name.replace("\n", " ")))
    sys.stdout.flush()


window = wait_for(orvel_window)
if window is None:
    print("no window named Orvel", file=sys.stderr)
    sys.exit(2)
# The screen is ready once its email field and its providers are there.
wait_for(lambda: any(n == "Continue with Google" for _, n, _ in walk(window, [])))
dump(window)

if len(sys.argv) > 2 and sys.argv[1] == "press":
    target = sys.argv[2]
    nodes = [node for role, name, node in walk(window, [])
             if name == target and role == "push button"]
    if not nodes:
        print("no push button named %s" % target, file=sys.stderr)
        sys.exit(3)
    action = nodes[0].queryAction()
    action.doAction(0)
    # Pressed, the button's screen changes: the button itself goes from what can be reached.
    wait_for(lambda: not any(n == target and r == "push button" for r, n, _ in walk(window, [])))
    print("--")
    dump(window)
