"""A mock of ModemManager for python-dbusmock: one modem with a SIM card in it.

Parameters: "sim", "network" and "modem" replace properties of the interfaces Sim, Modem3gpp and Modem; "until" names
the file without which there is no answer; "objects" is answered in the place of the objects; "endless" is the length of the carrier's name.
"""

import dbus

BUS_NAME = "org.freedesktop.ModemManager1"
MAIN_OBJ = "/org/freedesktop/ModemManager1"
MAIN_IFACE = "org.freedesktop.DBus.ObjectManager"
SYSTEM_BUS = True

SIM = MAIN_OBJ + "/SIM/0"
MODEM = MAIN_OBJ + "/Modem/0"
PROPERTIES = "org.freedesktop.DBus.Properties"


def load(mock, parameters):
    sim = {"Imsi": "432350000000001", "OperatorIdentifier": "43235", "OperatorName": "Sandbox Mobile"}
    network = {"OperatorCode": "43235", "OperatorName": "Sandbox Mobile Network"}
    modem = {"Manufacturer": "Sandbox", "Sim": dbus.ObjectPath(SIM)}
    for properties, name in ((sim, "sim"), (network, "network"), (modem, "modem")):
        properties.update(parameters.get(name, {}))
    if "endless" in parameters:
        sim["OperatorName"] = network["OperatorName"] = "x" * parameters["endless"]

    interfaces = {BUS_NAME + ".Modem": modem, BUS_NAME + ".Modem.Modem3gpp": network}
    signature = "sa{sv}"
    mock.objects_to_tell = {
        dbus.ObjectPath(MODEM): dbus.Dictionary(
            {name: dbus.Dictionary(values, signature="sv") for name, values in interfaces.items()}, signature=signature
        )
    }
    wait = ""
    if "until" in parameters:
        wait = f"import os, time\nwhile not os.path.exists({parameters['until']!r}): time.sleep(0.02)\n"
    if "objects" in parameters:
        mock.AddMethod(MAIN_IFACE, "GetManagedObjects", "", "s", wait + f"ret = {parameters['objects']!r}")
    else:
        mock.AddMethod(MAIN_IFACE, "GetManagedObjects", "", "a{oa{sa{sv}}}", wait + "ret = self.objects_to_tell")
    # As the real service does, it is not among the managed objects.
    mock.AddObject(SIM, BUS_NAME + ".Sim", sim, [])
