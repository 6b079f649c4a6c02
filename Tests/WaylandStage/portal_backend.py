"""The half of the desktop portal that asks the user, for a headless compositor: it answers for one.

What it answers is set over the bus: see `Control`.
"""

import dbus
import dbus.mainloop.glib
import dbus.service
import time
from gi.repository import GLib

NAME = "org.freedesktop.impl.portal.desktop.stage"
SCREEN_CAST = "org.freedesktop.impl.portal.ScreenCast"
REMOTE_DESKTOP = "org.freedesktop.impl.portal.RemoteDesktop"
SHORTCUTS = "org.freedesktop.impl.portal.GlobalShortcuts"
SCREENSHOT = "org.freedesktop.impl.portal.Screenshot"
ACCESS = "org.freedesktop.impl.portal.Access"
SESSION = "org.freedesktop.impl.portal.Session"
REQUEST = "org.freedesktop.impl.portal.Request"
CONTROL = "dev.halvek.zento.Stage"
PROPERTIES = dbus.PROPERTIES_IFACE
MONITOR = 1  # of a source's types
WINDOW = 2
MUTTER = "org.gnome.Mutter.ScreenCast"
MUTTER_HAND = "org.gnome.Mutter.RemoteDesktop"

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()


def vardict(values):
    return dbus.Dictionary(values, signature="sv")


class State:
    answer = "yes"  # "no", "never"
    cursor_modes = 7
    devices = 7  # that the user lends, of those that are asked for
    sessions = {}
    dialogs = 0  # how often a user would have been asked
    shot = ""


class Session(dbus.service.Object):
    def __init__(self, path):
        super().__init__(bus, path)
        self.path = path
        self.options = {}
        self.stream = None
        self.stream_path = ""
        self.hand = None
        self.shortcuts = []

    @dbus.service.method(SESSION)
    def Close(self):
        self.end()

    @dbus.service.signal(SESSION)
    def Closed(self):
        pass

    def end(self):
        running = self.hand or self.stream
        if running is not None:
            try:
                running.Stop()
            except dbus.DBusException:
                pass
        State.sessions.pop(self.path, None)
        self.remove_from_connection()


class Backend(dbus.service.Object):
    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, interface, name):
        return self.GetAll(interface)[name]

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="s", out_signature="a{sv}")
    def GetAll(self, interface):
        if interface == SCREEN_CAST:
            return vardict({
                "AvailableSourceTypes": dbus.UInt32(3),
                "AvailableCursorModes": dbus.UInt32(State.cursor_modes),
                "version": dbus.UInt32(4)})
        if interface == REMOTE_DESKTOP:
            return vardict({
                "AvailableDeviceTypes": dbus.UInt32(7), "version": dbus.UInt32(1)})
        return vardict({"version": dbus.UInt32({SHORTCUTS: 1, SCREENSHOT: 2}.get(interface, 0))})


class ScreenCast(dbus.service.Object):
    @dbus.service.method(SCREEN_CAST, in_signature="oosa{sv}", out_signature="ua{sv}")
    def CreateSession(self, handle, session, app, options):
        State.sessions[session] = Session(session)
        return 0, vardict({})

    @dbus.service.method(SCREEN_CAST, in_signature="oosa{sv}", out_signature="ua{sv}")
    def SelectSources(self, handle, session, app, options):
        State.sessions[session].options = options
        return 0, vardict({})

    @dbus.service.method(
        SCREEN_CAST, in_signature="oossa{sv}", out_signature="ua{sv}",
        async_callbacks=("reply", "fail"))
    def Start(self, handle, session, app, parent, options, reply, fail):
        show(State.sessions[session], reply, {})


def chosen_window(cast, how):
    """The window that has the keyboard; one that was just painted gets it a moment later."""
    patience = time.monotonic() + 10
    while True:
        try:
            return cast.RecordWindow(how)
        except dbus.DBusException:
            if time.monotonic() > patience:
                raise
            time.sleep(0.01)


def show(session, reply, results):
    """Starts what the user has chosen, and answers with that and the results."""
    wanted = session.options
    if "restore_data" not in wanted:
        State.dialogs += 1
    if State.answer == "never":
        return
    if State.answer == "no":
        reply(dbus.UInt32(1), vardict({}))
        return
    mutter = bus.get_object(MUTTER, "/org/gnome/Mutter/ScreenCast")
    of_hand = {"remote-desktop-session-id": session.hand.id} if session.hand else {}
    path = mutter.CreateSession(vardict(of_hand), dbus_interface=MUTTER)
    session.stream = cast = dbus.Interface(bus.get_object(MUTTER, path), MUTTER + ".Session")
    mode = {1: 0, 2: 1, 4: 2}[int(wanted.get("cursor_mode", 1))]
    how = vardict({"cursor-mode": dbus.UInt32(mode)})
    kind = int(wanted.get("types", MONITOR))
    stream = chosen_window(cast, how) if kind == WINDOW else cast.RecordMonitor("", how)
    session.stream_path = stream
    shown = bus.get_object(MUTTER, stream)
    signals = dbus.Interface(shown, MUTTER + ".Stream")

    def added(node):
        properties = vardict({"source_type": dbus.UInt32(kind)})
        told = shown.Get(MUTTER + ".Stream", "Parameters", dbus_interface=PROPERTIES)
        for name in ("position", "size"):
            if name in told:
                properties[name] = told[name]
        results["streams"] = dbus.Array(
            [dbus.Struct((dbus.UInt32(node), properties), signature="ua{sv}")],
            signature="(ua{sv})")
        if int(wanted.get("persist_mode", 0)) > 0:
            results["persist_mode"] = dbus.UInt32(wanted["persist_mode"])
            results["restore_data"] = dbus.Struct(
                ("stage", dbus.UInt32(1), dbus.String("monitor", variant_level=1)),
                signature="suv")
        reply(dbus.UInt32(0), vardict(results))

    signals.connect_to_signal("PipeWireStreamAdded", added)
    (session.hand or cast).Start()


class Hand:
    """The compositor's side of a session that may move the pointer."""

    def __init__(self):
        mutter = bus.get_object(MUTTER_HAND, "/org/gnome/Mutter/RemoteDesktop")
        path = mutter.CreateSession(dbus_interface=MUTTER_HAND)
        proxy = bus.get_object(MUTTER_HAND, path)
        self.session = dbus.Interface(proxy, MUTTER_HAND + ".Session")
        self.id = proxy.Get(MUTTER_HAND + ".Session", "SessionId", dbus_interface=PROPERTIES)

    def Start(self):
        self.session.Start()

    def Stop(self):
        self.session.Stop()


class RemoteDesktop(dbus.service.Object):
    @dbus.service.method(REMOTE_DESKTOP, in_signature="oosa{sv}", out_signature="ua{sv}")
    def CreateSession(self, handle, session, app, options):
        State.sessions[session] = Session(session)
        return 0, vardict({})

    @dbus.service.method(REMOTE_DESKTOP, in_signature="oosa{sv}", out_signature="ua{sv}")
    def SelectDevices(self, handle, session, app, options):
        State.sessions[session].devices = int(options["types"]) & State.devices
        return 0, vardict({})

    @dbus.service.method(
        REMOTE_DESKTOP, in_signature="oossa{sv}", out_signature="ua{sv}",
        async_callbacks=("reply", "fail"))
    def Start(self, handle, session, app, parent, options, reply, fail):
        chosen = State.sessions[session]
        chosen.hand = Hand()
        show(chosen, reply, {"devices": dbus.UInt32(chosen.devices)})

    @dbus.service.method(REMOTE_DESKTOP, in_signature="oa{sv}udd")
    def NotifyPointerMotionAbsolute(self, session, options, stream, x, y):
        chosen = State.sessions[session]
        chosen.hand.session.NotifyPointerMotionAbsolute(chosen.stream_path, x, y)

    @dbus.service.method(REMOTE_DESKTOP, in_signature="oa{sv}dd")
    def NotifyPointerMotion(self, session, options, dx, dy):
        State.sessions[session].hand.session.NotifyPointerMotionRelative(dx, dy)

    @dbus.service.method(REMOTE_DESKTOP, in_signature="oa{sv}ui")
    def NotifyPointerAxisDiscrete(self, session, options, axis, steps):
        State.sessions[session].hand.session.NotifyPointerAxisDiscrete(axis, steps)


class Shortcuts(dbus.service.Object):
    @dbus.service.method(SHORTCUTS, in_signature="oosa{sv}", out_signature="ua{sv}")
    def CreateSession(self, handle, session, app, options):
        State.sessions[session] = Session(session)
        return 0, vardict({})

    @dbus.service.method(SHORTCUTS, in_signature="ooa(sa{sv})sa{sv}", out_signature="ua{sv}")
    def BindShortcuts(self, handle, session, shortcuts, parent, options):
        State.sessions[session].shortcuts = shortcuts
        bound = dbus.Array(
            [dbus.Struct((name, vardict({
                "description": entry.get("description", ""),
                "trigger_description": entry.get("preferred_trigger", "")})), signature="sa{sv}")
             for name, entry in shortcuts], signature="(sa{sv})")
        return 0, vardict({"shortcuts": bound})

    @dbus.service.method(SHORTCUTS, in_signature="oo", out_signature="ua{sv}")
    def ListShortcuts(self, handle, session):
        return 0, vardict({})

    @dbus.service.signal(SHORTCUTS, signature="osta{sv}")
    def Activated(self, session, shortcut, timestamp, options):
        pass

    @dbus.service.signal(SHORTCUTS, signature="osta{sv}")
    def Deactivated(self, session, shortcut, timestamp, options):
        pass


class Screenshots(dbus.service.Object):
    @dbus.service.method(SCREENSHOT, in_signature="ossa{sv}", out_signature="ua{sv}")
    def Screenshot(self, handle, app, parent, options):
        if State.answer == "no":
            return 1, vardict({})
        return 0, vardict({"uri": State.shot})


class Access(dbus.service.Object):
    @dbus.service.method(ACCESS, in_signature="osssssa{sv}", out_signature="ua{sv}")
    def AccessDialog(self, handle, app, parent, title, subtitle, body, options):
        return (0 if State.answer == "yes" else 1), vardict({})


class Control(dbus.service.Object):
    """What the tests say to it."""

    @dbus.service.method(CONTROL, in_signature="s")
    def SetAnswer(self, answer):
        State.answer = str(answer)

    @dbus.service.method(CONTROL, in_signature="u")
    def SetCursorModes(self, modes):
        State.cursor_modes = int(modes)

    @dbus.service.method(CONTROL, in_signature="u")
    def SetDevices(self, devices):
        State.devices = int(devices)

    @dbus.service.method(CONTROL, in_signature="s")
    def SetShot(self, uri):
        State.shot = str(uri)

    @dbus.service.method(CONTROL, out_signature="u")
    def Dialogs(self):
        return State.dialogs

    @dbus.service.method(CONTROL, out_signature="as")
    def Shortcuts(self):
        return [str(name) + ": " + str(entry.get("description", "")) for session in
                State.sessions.values() for name, entry in session.shortcuts]

    @dbus.service.method(CONTROL)
    def Revoke(self):
        for session in list(State.sessions.values()):
            session.Closed()
            session.end()

    @dbus.service.method(CONTROL, in_signature="s")
    def Press(self, shortcut):
        for session in State.sessions.values():
            if any(name == shortcut for name, _ in session.shortcuts):
                stamp = dbus.UInt64(time.monotonic() * 1000)
                self.Activated(session.path, shortcut, stamp, vardict({}))
                self.Deactivated(session.path, shortcut, stamp, vardict({}))


class Stage(Backend, ScreenCast, RemoteDesktop, Shortcuts, Screenshots, Access, Control):
    pass


if __name__ == "__main__":
    Stage(bus, "/org/freedesktop/portal/desktop")
    own = dbus.service.BusName(NAME, bus)
    GLib.MainLoop().run()
