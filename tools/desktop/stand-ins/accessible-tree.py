"""Reads a program's accessible objects through the accessibility bus, as a screen reader does,
and prints them as JSON: the first application whose name is the argument, each object with its
name, role name, states and children. Prints {} while that application is not on the bus. Run
with Debian's /usr/bin/python3, which has pyatspi."""

import json
import sys

import pyatspi

# Deep enough for the shelf's window, its panels and its tiles; a guard against cycles.
MAX_DEPTH = 12


def describe(accessible, depth):
    states = sorted(pyatspi.stateToString(s) for s in accessible.getState().getStates())
    node = {"name": accessible.name, "role": accessible.getRoleName(), "states": states, "children": []}
    if depth < MAX_DEPTH:
        for index in range(accessible.childCount):
            child = accessible.getChildAtIndex(index)
            if child is not None:
                node["children"].append(describe(child, depth + 1))
    return node


def main():
    wanted = sys.argv[1].lower()
    desktop = pyatspi.Registry.getDesktop(0)
    for index in range(desktop.childCount):
        app = desktop.getChildAtIndex(index)
        if app is not None and (app.name or "").lower() == wanted:
            print(json.dumps(describe(app, 0)))
            return
    print(json.dumps({}))


main()
