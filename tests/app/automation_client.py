#!/usr/bin/python3
# An automation client of the editor on the session bus, written against python3-dbus
# only. Each scenario prints one line per fact it observed; the test compares them.
import os
import sys
import xml.etree.ElementTree as ET

import dbus
import dbus.mainloop.glib
from gi.repository import GLib

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
SERVICE = "com.tolvek.Brix"
APP_IF = "com.tolvek.Brix70.Application"
DOCS_IF = "com.tolvek.Brix70.mvDocuments"
DOC_IF = "com.tolvek.Brix70.mvDocument"
PROPS = "org.freedesktop.DBus.Properties"


def obj(path):
    return bus.get_object(SERVICE, path)


def app():
    return dbus.Interface(obj("/Application"), APP_IF)


def docs():
    return dbus.Interface(obj("/Documents"), DOCS_IF)


def doc(path):
    return dbus.Interface(obj(path), DOC_IF)


def get(path, interface, name):
    return obj(path).Get(interface, name, dbus_interface=PROPS)


def put(path, interface, name, value):
    obj(path).Set(interface, name, value, dbus_interface=PROPS)


def raw(path, interface, method, signature, args):
    # Past the proxy, which would convert the arguments to the introspected types.
    return bus.call_blocking(SERVICE, path, interface, method, signature, args)


def error_of(call):
    try:
        call()
    except dbus.DBusException as e:
        return "%s | %s" % (e.get_dbus_name(), e.get_dbus_message())
    return "no error"


def spin(until, limit_ms=20000):
    # Runs the main loop until `until()` holds, or the limit passes (a fault, not a timing).
    loop = GLib.MainLoop()
    def check():
        if until():
            loop.quit()
            return False
        return True
    GLib.timeout_add(20, check)
    GLib.timeout_add(limit_ms, loop.quit)
    loop.run()
    return until()


def editor_pid():
    return int(bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus")
               .GetConnectionUnixProcessID(SERVICE, dbus_interface="org.freedesktop.DBus"))


def gone(pid):
    try:
        os.kill(pid, 0)
    except ProcessLookupError:
        return True
    # A zombie has ended too.
    with open("/proc/%d/stat" % pid) as f:
        return f.read().split(")")[-1].split()[0] == "Z"


def roundtrip(file_name):
    closes = []
    bus.add_signal_receiver(lambda *a, **k: closes.append(k["path"]), "DocumentClose", DOC_IF,
                            path_keyword="path")
    changes = []
    bus.add_signal_receiver(lambda iface, changed, _, **k: changes.append(
        (k["path"], str(iface), {str(n): v for n, v in changed.items()})),
        "PropertiesChanged", PROPS, path_keyword="path")
    app().Attach()
    path = docs().AddNew()
    print("new", bool(get(path, DOC_IF, "NewItem")), get(path, DOC_IF, "DisplayName"))
    d = doc(path)
    result = d.FileOpen(file_name, False)
    print("open", bool(result[0]), result[1] == file_name, bool(result[2]))
    print("text", repr(str(get(path, DOC_IF, "Text"))))
    print("local", bool(get(path, DOC_IF, "LocalFile")), str(get(path, DOC_IF, "ItemID")))
    put(path, DOC_IF, "Text", "CRT 'changed'\nEND\n")
    print("dirty", bool(get(path, DOC_IF, "IsDirty")))
    print("save", bool(d.FileSave()), bool(get(path, DOC_IF, "IsDirty")))
    # The client hears the changes: the host context moved to the file's folder, and the
    # document went dirty and clean again.
    spin(lambda: [bool(c[2]["IsDirty"]) for c in changes if "IsDirty" in c[2]] == [True, False],
         5000)
    print("heard dirty", [bool(c[2]["IsDirty"]) for c in changes if "IsDirty" in c[2]])
    print("heard provider", [str(c[2]["Provider"]) for c in changes if "Provider" in c[2]])
    print("close", bool(d.FileClose(False)))
    spin(lambda: len(closes) >= 1, 5000)
    print("closed", closes.count(path))
    print("after", error_of(lambda: get(path, DOC_IF, "Text")).split(" | ")[0])
    print("count", int(docs().Count()))
    app().Detach()


def items():
    app().Attach()
    paths = [docs().AddNew() for _ in range(3)]
    numbers = [p.split("/")[-1] for p in paths]
    doc(paths[0]).FileClose(False)
    print("by position", docs().Item(dbus.Int32(1)) == paths[1])
    print("by number", docs().Item(numbers[2]) == paths[2])
    print("closed number", error_of(lambda: docs().Item(numbers[0])))
    print("past end", error_of(lambda: docs().Item(dbus.Int32(3))))
    print("boolean", error_of(lambda: docs().Item(dbus.Boolean(True))))
    print("enum", list(docs().NewEnum()) == paths[1:])
    print("app", get(paths[1], DOC_IF, "Application"), get("/Application", APP_IF, "Documents"))
    print("duplicate tool", error_of(lambda: app().ExtendedCommand("Format", "F", 0)))
    # Prompt may be left out.
    print("close", [bool(raw(p, DOC_IF, "FileClose", "", ())) for p in paths[1:]],
          int(docs().Count()))
    app().Detach()


def host_context():
    app().Attach()
    for name, value in [("ServerName", ""), ("ServerName", "PROD"), ("Provider", ""),
                        ("Database", "SALES"), ("Folder", "BP"), ("Folder", "")]:
        put("/Application", APP_IF, name, value)
        print(name, repr(str(get("/Application", APP_IF, name))))
    # Started for clients, the window shows when one asks.
    print("Visible", bool(get("/Application", APP_IF, "Visible")), end=" ")
    put("/Application", APP_IF, "Visible", True)
    print(bool(get("/Application", APP_IF, "Visible")))
    app().Detach()


def malformed():
    app().Attach()
    path = docs().AddNew()
    print(error_of(lambda: raw("/Documents", DOCS_IF, "Count", "i", (1,))).split(" | ")[0])
    print(error_of(lambda: raw(path, DOC_IF, "FileOpen", "ib", (7, False))).split(" | ")[0])
    print(error_of(lambda: raw(path, DOC_IF, "GotoLine", "s", ("ten",))).split(" | ")[0])
    print(error_of(lambda: put(path, DOC_IF, "Text", dbus.Array([1, 2], signature="i"))).split(" | ")[0])
    print(error_of(lambda: get("/Documents/999", DOC_IF, "Text")).split(" | ")[0])
    print(error_of(lambda: doc("/Documents/999").FileSave()).split(" | ")[0])
    print(error_of(lambda: doc(path).GotoLabel("NOWHERE")))
    print(error_of(lambda: doc("/Documents/999").Compile()).split(" | ")[0])
    doc(path).FileClose(False)
    print(error_of(lambda: doc(path).FileSave()).split(" | ")[0])
    print("still up", int(docs().Count()))
    app().Detach()


def lifetime(*_):
    app().Attach()
    pid = editor_pid()
    app().Detach()
    print("ended", spin(lambda: gone(pid)))


def quits(settings_file):
    quit_seen = []
    bus.add_signal_receiver(lambda: quit_seen.append(os.path.exists(settings_file)), "Quit",
                            APP_IF)
    app().Attach()
    pid = editor_pid()
    docs().AddNew()
    os.kill(pid, 15)
    spin(lambda: quit_seen)
    print("quit", quit_seen)
    print("ended", spin(lambda: gone(pid)))


def opened():
    # An editor started by hand: wait for it on the bus without starting another.
    names = dbus.Interface(bus.get_object("org.freedesktop.DBus", "/org/freedesktop/DBus"),
                           "org.freedesktop.DBus")
    spin(lambda: names.NameHasOwner(SERVICE))
    for path in docs().NewEnum():
        print(str(get(path, DOC_IF, "ItemID")), bool(get(path, DOC_IF, "ReadOnly")))


def introspect():
    for path in ["/Application", "/Documents", "/Documents/" + docs().AddNew().split("/")[-1]]:
        xml = obj(path).Introspect(dbus_interface="org.freedesktop.DBus.Introspectable")
        for interface in ET.fromstring(str(xml)).findall("interface"):
            if not interface.get("name").startswith("com.tolvek."):
                continue
            print(interface.get("name"))
            for member in interface:
                if member.tag not in ("method", "property", "signal"):
                    continue
                ids = [a.get("value") for a in member.findall("annotation")
                       if a.get("name") == "com.tolvek.Brix70.DispId"]
                args = [(a.get("direction") or "") + ":" + a.get("type") + ":" + a.get("name")
                        for a in member.findall("arg")]
                kind = member.tag + ("" if member.tag != "property" else
                                     "(" + member.get("type") + "," + member.get("access") + ")")
                parts = [kind, member.get("name")] + args + [ids[0] if ids else "-"]
                print("  " + " ".join(parts))


if __name__ == "__main__":
    globals()[sys.argv[1]](*sys.argv[2:])
