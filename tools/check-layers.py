#!/usr/bin/env python3
"""Holds every #include under src/ to Mosswick's layers; prints each one out of place and fails.

The layers (docs/ARCHITECTURE.md draws them):
  logic     model <- ingest <- shelf <- triggers <- interaction <- settings <- app
            each area may include itself and the areas before it; Qt Core and Gui only.
  views     Qt Widgets, in the folder of the logic they show and listed there as
            <AREA>_VIEW_SOURCES: may include any logic and other views, never a backend.
  backends  src/platform/{qt,x11,freedesktop}: implement the logic's interfaces; may include the
            logic below app and their own folder, never a view, another backend or the wiring.
  wiring    app/main.cpp and what app/sources.cmake lists as APP_WIRING_SOURCES: the one place
            that chooses backends; may include anything.

Usage: check-layers.py [SOURCE_ROOT]   (default: the src/ beside this script's folder)
"""
import glob
import os
import re
import sys

LOGIC = ["model", "ingest", "shelf", "triggers", "interaction", "settings", "app"]
BACKENDS = ["platform/qt", "platform/x11", "platform/freedesktop"]

# System headers by the library they belong to; a layer may use a library only where allowed.
SYSTEM_LIBRARIES = {
    "x11": re.compile(r"^(X11/|xcb/|xkbcommon/)"),
    "dbus": re.compile(r"^(QtDBus/|QDBus)"),
    "widgets": re.compile(r"^QtWidgets/"),
    "network": re.compile(r"^(QtNetwork/|QLocalSocket|QLocalServer|QTcp|QUdp|QNetwork|QSsl|QHostAddress)"),
}
ALLOWED_LIBRARIES = {
    "logic": set(),
    "view": {"widgets"},
    "platform/qt": {"network"},
    "platform/x11": {"x11"},
    "platform/freedesktop": {"dbus"},
    "wiring": {"x11", "dbus", "widgets", "network"},
}


def qt_module_headers(module):
    """The class headers a Qt module installs (<QWidget>, <QMenu>, ...), so the plain form of an
    include is told apart as well as <QtWidgets/QWidget>."""
    names = set()
    for folder in glob.glob(f"/usr/include/*/qt6/{module}") + glob.glob(f"/usr/include/qt6/{module}"):
        names.update(n for n in os.listdir(folder) if n.startswith("Q") and "." not in n)
    return names


def listed_sources(cmake_file):
    """{list name: [file names]} for each set(...) / list(APPEND ...) of a sources.cmake."""
    text = open(cmake_file, encoding="utf-8").read()
    text = re.sub(r"#.*", "", text)
    lists = {}
    for match in re.finditer(r"(?:set|list)\s*\(\s*(?:APPEND\s+)?(MOSSWICK_\w+)([^)]*)\)", text, re.S):
        lists.setdefault(match.group(1), []).extend(match.group(2).split())
    return lists


def classify(src):
    """{path relative to src: role}, a role being an area name, 'view', a backend or 'wiring'."""
    roles = {}
    for area in LOGIC:
        folder = os.path.join(src, area)
        if not os.path.isdir(folder):
            continue
        special = {}
        sources = os.path.join(folder, "sources.cmake")
        if os.path.exists(sources):
            for name, files in listed_sources(sources).items():
                if name.endswith("_VIEW_SOURCES"):
                    special.update({f: "view" for f in files})
                elif name.endswith("_WIRING_SOURCES"):
                    special.update({f: "wiring" for f in files})
        for name in os.listdir(folder):
            if name.endswith((".h", ".cpp")):
                roles[f"{area}/{name}"] = special.get(name, area)
        if area == "app":
            roles["app/main.cpp"] = "wiring"
    for backend in BACKENDS:
        folder = os.path.join(src, backend)
        if os.path.isdir(folder):
            for name in os.listdir(folder):
                if name.endswith((".h", ".cpp")):
                    roles[f"{backend}/{name}"] = backend
    return roles


def may_include(role, target_role):
    if role == "wiring":
        return True
    if role in LOGIC:
        return target_role in LOGIC and LOGIC.index(target_role) <= LOGIC.index(role)
    if role == "view":
        return target_role in LOGIC or target_role == "view"
    if role in BACKENDS:
        return target_role == role or (target_role in LOGIC and target_role != "app")
    return False


def describe(role):
    if role in LOGIC:
        below = LOGIC[: LOGIC.index(role) + 1]
        return f"{role} (logic) uses only " + ", ".join(below)
    return {
        "view": "views use the logic and other views, never a backend or the wiring",
        "wiring": "the wiring may use anything",
    }.get(role, f"{role} (backend) uses its own folder and the logic below app")


def library_of(header, widgets, dbus):
    if header in widgets:
        return "widgets"
    if header in dbus:
        return "dbus"
    for library, pattern in SYSTEM_LIBRARIES.items():
        if pattern.search(header):
            return library
    return None


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    src = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "src")
    src = os.path.abspath(src)
    roles = classify(src)
    widgets = qt_module_headers("QtWidgets")
    dbus = qt_module_headers("QtDBus")
    include = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
    problems = []
    for path, role in sorted(roles.items()):
        kind = "logic" if role in LOGIC else ("view" if role == "view" else role)
        allowed = ALLOWED_LIBRARIES["wiring" if role == "wiring" else kind]
        with open(os.path.join(src, path), encoding="utf-8", errors="replace") as source:
            for number, line in enumerate(source, 1):
                found = include.match(line)
                if not found:
                    continue
                quote, header = found.groups()
                if quote == '"':
                    if header.endswith(".moc") or "/" not in header:
                        continue
                    target = roles.get(header)
                    if target is None:
                        problems.append(f"src/{path}:{number}: includes {header}, which is not in src/")
                    elif not may_include(role, target):
                        problems.append(
                            f"src/{path}:{number}: may not include {header} ({target}): {describe(role)}")
                else:
                    library = library_of(header, widgets, dbus)
                    if library and library not in allowed:
                        problems.append(
                            f"src/{path}:{number}: may not include <{header}> ({library}): "
                            f"{describe(role)}; {library} belongs in "
                            + {"x11": "platform/x11", "dbus": "platform/freedesktop",
                               "widgets": "a view", "network": "platform/qt"}[library])
    for problem in problems:
        print(problem)
    print(f"{len(roles)} files checked, {len(problems)} includes out of place.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
