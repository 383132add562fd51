"""The part of the settings portal that tells whether the desktop is dark."""

import threading

from gi.repository import Gio, GLib

INTERFACE = """<node><interface name="org.freedesktop.portal.Settings">
  <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
  <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
</interface></node>"""
PATH = "/org/freedesktop/portal/desktop"
NAME = "org.freedesktop.portal.Settings"
GROUP = "org.freedesktop.appearance"
DARK = 1
LIGHT = 2


class Portal:
    def __init__(self, address, scheme=LIGHT):
        self.scheme = scheme
        self.ready = threading.Event()
        self.context = GLib.MainContext()
        self.loop = GLib.MainLoop(self.context)
        self.address = address
        self.bus = None
        self.thread = threading.Thread(target=self._run, daemon=True)
        self.thread.start()
        self.ready.wait(20)

    def _run(self):
        self.context.push_thread_default()
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(self.address, flags, None, None)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self.bus.register_object(PATH, interface, self._call, None, None)
        self.bus.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "RequestName",
                           GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 4)), None, 0, -1, None)
        self.ready.set()
        self.loop.run()

    def _call(self, _bus, _sender, _path, _interface, _method, arguments, invocation):
        group, key = arguments.unpack()
        if group == GROUP and key == "color-scheme":
            answer = GLib.Variant("v", GLib.Variant("u", self.scheme))
            invocation.return_value(GLib.Variant.new_tuple(answer))
        else:
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")

    def set_scheme(self, scheme):
        self.scheme = scheme
        arguments = GLib.Variant("(ssv)", (GROUP, "color-scheme", GLib.Variant("u", scheme)))
        self.bus.emit_signal(None, PATH, NAME, "SettingChanged", arguments)
        self.bus.flush_sync(None)

    def end(self):
        self.loop.quit()
        self.thread.join(10)
        self.bus.close_sync(None)
