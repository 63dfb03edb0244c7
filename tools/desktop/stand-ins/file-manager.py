"""A stand-in file manager on the session bus: it owns org.freedesktop.FileManager1, records each
ShowItems call as a JSON line in the file named on the command line, and prints "ready" once the
name is its own. Run with Debian's /usr/bin/python3, which has GObject's bindings."""

import json
import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

INTERFACE = """<node><interface name="org.freedesktop.FileManager1">
  <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
  <method name="ShowFolders"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
</interface></node>"""

report = sys.argv[1]


def called(connection, sender, path, interface, method, parameters, invocation):
    uris, startup_id = parameters.unpack()
    with open(report, "a", encoding="utf-8") as f:
        f.write(json.dumps({"method": method, "uris": uris}) + "\n")
    invocation.return_value(None)


def acquired(connection, name):
    print("ready", flush=True)


def bus_up(connection, name):
    info = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    connection.register_object("/org/freedesktop/FileManager1", info, called, None, None)


Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.FileManager1", Gio.BusNameOwnerFlags.NONE,
                 bus_up, acquired, lambda *a: sys.exit("lost the name"))
GLib.MainLoop().run()
