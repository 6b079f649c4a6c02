"""A program of GTK 3 on the Wayland desktop of the tests: a window with its own title bar and shadow,
a button and a field. Its arguments: "fullscreen", if it is to be. It prints what happened to it, a
line each: "clicked", "move X Y", and where its button is, once it has the keyboard: "button X Y W H",
in points of its window with the shadow.
"""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402


def tell(*words):
    print(*words, flush=True)


window = Gtk.Window(title="Stage")
window.set_titlebar(Gtk.HeaderBar(title="Stage", show_close_button=True))
window.set_default_size(500, 300)
column = Gtk.Box(orientation=Gtk.Orientation.VERTICAL, spacing=20, border_width=30)
button = Gtk.Button(label="Save")
button.set_halign(Gtk.Align.START)
button.set_size_request(160, 60)
button.connect("clicked", lambda _: tell("clicked"))
column.pack_start(button, False, False, 0)
column.pack_start(Gtk.Entry(), False, False, 0)
window.add(column)
window.connect("destroy", Gtk.main_quit)


def look():
    if not window.is_active():
        return True
    x, y = button.translate_coordinates(window, 0, 0)
    size = button.get_allocation()
    tell("button", x, y, size.width, size.height)
    return False


def handle(event):
    if event.type in (Gdk.EventType.MOTION_NOTIFY, Gdk.EventType.ENTER_NOTIFY):
        _, x, y = event.get_root_coords()
        tell("move", x, y)
    Gtk.main_do_event(event)


Gdk.Event.handler_set(handle)
if "fullscreen" in sys.argv:
    window.fullscreen()
window.show_all()
GLib.timeout_add(200, look)
Gtk.main()
