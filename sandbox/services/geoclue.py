"""A mock of GeoClue for python-dbusmock: one client, which gets one position when it starts.

Parameters: "level" is the accuracy that is to be had, 0 where the user turned it off; "location" replaces properties of the
position; "silent" starts and gives none; "times" is how often the position is told; "error" is the name of the error that
starting ends in; "client" is what it answers in the place of its client; "gone" is that it goes as it starts; "late" is how
many seconds each answer takes, "until" the file without which there is none.
"""

import dbus

BUS_NAME = "org.freedesktop.GeoClue2"
MAIN_OBJ = "/org/freedesktop/GeoClue2/Manager"
MAIN_IFACE = BUS_NAME + ".Manager"
SYSTEM_BUS = True

CLIENT = "/org/freedesktop/GeoClue2/Client/1"
LOCATION = CLIENT + "/Location/0"

# As the real service does it: who asks for little gets little.
START = f"""
if self.props['{BUS_NAME}.Client']['RequestedAccuracyLevel'] < 6:
    objects['{LOCATION}'].UpdateProperties('{BUS_NAME}.Location', {{'Accuracy': dbus.Double(300000.0)}})
self.EmitSignal('{BUS_NAME}.Client', 'LocationUpdated', 'oo', [dbus.ObjectPath('/'), dbus.ObjectPath('{LOCATION}')])
"""


def load(mock, parameters):
    wait = f"import time; time.sleep({float(parameters.get('late', 0))})\n"
    if "until" in parameters:
        wait = f"import os, time\nwhile not os.path.exists({parameters['until']!r}): time.sleep(0.02)\n"
    start = "" if parameters.get("silent") else START * parameters.get("times", 1)
    if parameters.get("gone"):
        start = "import os\nos._exit(0)"
    if "error" in parameters:
        start = f"raise dbus.exceptions.DBusException('not now', name={parameters['error']!r})"
    properties = {"AvailableAccuracyLevel": dbus.UInt32(parameters.get("level", 8)), "InUse": False}
    mock.AddProperties(MAIN_IFACE, dbus.Dictionary(properties, signature="sv"))
    for name in ("GetClient", "CreateClient"):
        if "client" in parameters:
            mock.AddMethod(MAIN_IFACE, name, "", "s", f"ret = {parameters['client']!r}")
        else:
            mock.AddMethod(MAIN_IFACE, name, "", "o", wait + f"ret = dbus.ObjectPath('{CLIENT}')")
    mock.AddMethod(MAIN_IFACE, "DeleteClient", "o", "", "")
    client = {
        "Location": dbus.ObjectPath("/"),
        "DesktopId": "",
        "DistanceThreshold": dbus.UInt32(0),
        "TimeThreshold": dbus.UInt32(0),
        "RequestedAccuracyLevel": dbus.UInt32(0),
        "Active": False,
    }
    mock.AddObject(CLIENT, BUS_NAME + ".Client", client, [("Start", "", "", wait + start), ("Stop", "", "", "")])
    location = {
        "Latitude": 35.6895,
        "Longitude": 51.389,
        "Accuracy": 12.5,
        "Altitude": 1191.0,
        "Speed": -1.0,
        "Heading": -1.0,
        "Description": "",
        "Timestamp": dbus.Struct([dbus.UInt64(1700000000), dbus.UInt64(0)], signature="tt"),
    }
    location.update(parameters.get("location", {}))
    mock.AddObject(LOCATION, BUS_NAME + ".Location", location, [])
