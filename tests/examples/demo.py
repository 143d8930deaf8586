"""The demo application runs by itself, says how each showing went, and ends whatever happens.

Arguments: the sandbox ad service, the demo application, and the program that finds out the device's facts.
"""

import http.client
import http.server
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import unittest
import urllib.parse

SERVICE, DEMO, FACTS = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])


class WithoutVast(http.server.BaseHTTPRequestHandler):
    """Passes everything on to the service except what asks for a VAST document, which it refuses."""

    def pass_on(self):
        if self.path.partition("?")[0].endswith("/vast"):
            return self.send_error(503, "Out of order")
        body = self.rfile.read(int(self.headers.get("content-length", 0)))
        behind = http.client.HTTPConnection(self.server.behind, timeout=20)
        behind.request(self.command, self.path, body or None, dict(self.headers))
        answer = behind.getresponse()
        content = answer.read()
        behind.close()
        self.send_response(answer.status)
        for name, value in answer.getheaders():
            if name.lower() not in ("connection", "keep-alive", "transfer-encoding", "content-length"):
                self.send_header(name, value)
        self.send_header("content-length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    do_GET = do_POST = do_PUT = pass_on

    def log_message(self, *_):
        pass


class Demo(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "videos").mkdir()
        command = [SERVICE, "--videos", self.folder / "videos", "--expiring-millis", "15000", "--with-parent"]
        self.service = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.addCleanup(self.service.stdout.close)
        self.addCleanup(self.service.wait)
        self.addCleanup(self.service.terminate)
        self.facts = json.loads(self.service.stdout.readline())

    def stand_between(self):
        """The base of a service that has no VAST documents."""
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), WithoutVast)
        server.behind = urllib.parse.urlsplit(self.facts["inspector"]).netloc
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return f"http://127.0.0.1:{server.server_port}/v2"

    def program(self, script):
        path = self.folder / "program"
        path.write_text("#!/bin/sh\n" + script)
        path.chmod(0o755)
        return path

    def start(self, *arguments):
        variables = os.environ | {
            "VELMORA_API_BASE_URL": self.facts["api"],
            "VELMORA_CA_FILE": self.facts["ca"],
            "XDG_DATA_HOME": str(self.folder),
            "XDG_CONFIG_HOME": str(self.folder),
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/bus",
            "QTWEBENGINE_DISABLE_SANDBOX": "1",
            "QT_QPA_PLATFORM": "offscreen",
            "ALSOFT_DRIVERS": "null",
        }
        command = [DEMO, "--auto", "--json", "--inspector", self.facts["inspector"], "--report", self.folder / "report"]
        demo = subprocess.Popen(
            [*command, *arguments], env=variables, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
        )
        self.addCleanup(demo.kill)
        return demo

    def run_zone(self, zone, *arguments):
        demo = self.start("--zone", zone, *arguments)
        lines, _ = demo.communicate(timeout=60)
        return demo.returncode, [json.loads(line) for line in lines.splitlines()]

    def test_a_page_is_shown_and_put_away_and_every_step_is_in_the_report(self):
        status, events = self.run_zone("banner")
        shown = ["request", "adAvailable", "show", "visited"]
        self.assertEqual([event["event"] for event in events], [*shown, *shown, "vast", "vast", "ended"])
        self.assertEqual([event["deviations"] for event in events if event["event"] == "visited"], [[], []])
        self.assertEqual(events[1]["thread"], "background")
        self.assertEqual(status, 0)

        report = pathlib.Path(events[-1]["report"])
        pictures = re.findall(r"src='([^']+)'", report.read_text())
        self.assertGreater(len(pictures), 8)
        for picture in pictures:
            self.assertGreater((report.parent / picture).stat().st_size, 1000, picture)

    def test_a_pre_roll_is_asked_for_in_both_versions_and_the_device_says_what_it_is(self):
        status, events = self.run_zone("no-fill", "--facts", FACTS)
        answers = [(event["version"], event["ads"], event["deviations"]) for event in events if event["event"] == "vast"]
        self.assertEqual((status, answers), (0, [("2.0", 0, []), ("3.0", 0, [])]))
        device = next(event["userExtraInfo"] for event in events if event["event"] == "device")
        self.assertGreater(device["screenWidth"], 0)
        self.assertNotIn("carrier", device)

        # The pre-roll's file is not fetched: this one is there though the video is not.
        status, events = self.run_zone("broken-video", "--facts", self.folder / "nothing")
        answers = [(event["version"], event["ads"], len(event["mediaFiles"])) for event in events if event["event"] == "vast"]
        self.assertEqual((status, answers), (0, [("2.0", 1, 1), ("3.0", 1, 1)]))
        trouble = next(event["trouble"] for event in events if event["event"] == "device")
        self.assertIn("No such file", trouble)
        # A video that cannot be loaded is told as completed.
        finished = [(event["completed"], event["thread"]) for event in events if event["event"] == "adShowFinished"]
        self.assertEqual(finished, [(True, "main")])

    def test_a_pre_roll_that_does_not_come_is_a_failure(self):
        self.facts["api"] = self.stand_between()
        status, events = self.run_zone("no-fill")
        deviations = {event["event"]: event["deviations"] for event in events if "deviations" in event}
        self.assertEqual(deviations["visited"], [])
        self.assertIn("status 503 Out of order", deviations["vast"][0])
        # It has the access token in it.
        self.assertNotIn("secretKey", "".join(deviations["vast"]))
        self.assertEqual((status, events[-1]["asPlanned"], events[-1]["trouble"]), (1, False, ""))
        self.assertIn("0 of 2 VAST URLs as planned", pathlib.Path(events[-1]["report"]).read_text())

    def test_a_program_for_the_facts_that_misbehaves_harms_nobody(self):
        scripts = {
            'echo \'{"userExtraInfo": {"mcc": 7}}\'; exec sleep 1000': ({"mcc": 7}, "came to no end"),
            "exec yes": ({}, "says too much"),
            "exec cat /dev/zero": ({}, "says too much"),
            "kill -SEGV $$": ({}, "crashed"),
            "echo nonsense": ({}, ""),
        }
        for script, (found, words) in scripts.items():
            with self.subTest(script):
                status, events = self.run_zone("no-fill", "--facts", self.program(script))
                device = next(event for event in events if event["event"] == "device")
                self.assertEqual((status, device["userExtraInfo"]), (0, found))
                self.assertIn(words, device["trouble"])

    def test_a_show_that_ends_otherwise_than_its_zone_says_is_a_failure(self):
        # There is no file for it here.
        status, events = self.run_zone("skippable-video")
        self.assertEqual((status, events[-1]["asPlanned"]), (1, False))
        visited = next(event for event in events if event["event"] == "visited")
        deviations = "\n".join(visited["deviations"])
        self.assertIn("expected not completed; came completed", deviations)
        self.assertIn("trackers: expected start, skip, complete; came none", deviations)

    def test_a_service_that_goes_away_ends_the_run(self):
        demo = self.start("--zone", "expiring")
        while json.loads(demo.stdout.readline())["event"] != "adAvailable":
            pass
        self.service.terminate()
        lines, _ = demo.communicate(timeout=30)
        last = json.loads(lines.splitlines()[-1])
        self.assertEqual((demo.returncode, last["asPlanned"]), (1, False))
        self.assertIn("went away", last["trouble"])


unittest.main(argv=sys.argv[:1])
