#!/usr/bin/env python3
"""corvalen-sim serve, over HTTP: what becomes of sessions and their device processes. The program is the first argument."""
import json
import os
import signal
import time
import unittest

from served import PATIENCE, PROGRAM, Served, Test, eventually, parent

IMAGE = os.environ.get("DEVICE_LIBRARY")
START = ['app com.spotify.client "Spotify"', "boot"]


class Sessions(Test):
    def test_a_scenario_is_played_and_goes_on(self):
        session = self.served.session()
        self.assertEqual(session.response.headers["Content-Type"], "text/event-stream")
        self.assertEqual(session.play(7, *START), 202)
        events = session.until("done")
        self.assertEqual([event["play"] for event in events], 4 * [7])
        self.assertEqual((events[0]["from"], [event["step"] for event in events[1:3]]), (0, [0, 1]))
        self.assertTrue(events[2]["state"]["springBoard"])
        self.assertEqual(session.play(8, *START, "locked yes"), 202)
        events = session.until("done")
        self.assertEqual((events[0]["from"], events[1]["line"], events[1]["state"]["locked"]), (2, "locked yes", True))
        self.assertEqual(session.play(9, START[0]), 202)
        self.assertEqual(session.until("done"), [{"play": 9, "from": 1}, {"play": 9, "done": True}])

    def test_a_wrong_scenario_is_told_and_ends_nothing(self):
        session = self.served.session()
        session.play(1, *START)
        session.until("done")
        session.play(2, *START, "bot")
        self.assertEqual(session.until("wrong")[-1]["wrong"]["line"], 2)
        session.play(3, *START, "locked yes")
        self.assertEqual(session.until("done")[0]["from"], 2)

    def test_texts_of_all_kinds_get_through(self):
        session = self.served.session()
        line = '# "done":true \\ ä \u2028 "wrong" \U0001f600'
        session.play(1, 'app a.b "Ä \U0001f600"', line)
        events = session.until("done")
        self.assertEqual([event["state"]["apps"][-1]["name"] for event in events[1:3]], 2 * ["Ä \U0001f600"])

    def test_a_play_takes_the_place_of_one_that_waits(self):
        session = self.served.session()
        for number in range(40):
            self.assertEqual(session.play(number, *START, *(number * ["locked yes"])), 202)
        played = [session.until("done")]
        while played[-1][-1]["play"] != 39:
            played.append(session.until("done"))
        numbers = [events[0]["play"] for events in played]
        self.assertEqual(numbers, sorted(set(numbers)))
        for events in played:
            steps = [event["step"] for event in events[1:-1]]
            self.assertEqual(steps, list(range(events[0]["from"], 2 + events[0]["play"])))

    def test_a_slow_listener_gets_everything_too(self):
        session = self.served.session()
        apps = [f'app a.b{number} "{number}"' for number in range(20)]
        session.play(1, *apps, *(3000 * [""]))  # more than fits into the connection
        time.sleep(2)
        session.play(2, *apps)
        self.assertEqual([event.get("step") for event in session.until("done")[1:-1]], list(range(3020)))
        self.assertEqual(session.until("done")[0], {"play": 2, "from": 20})

    def test_a_device_process_that_dies_is_an_event(self):
        session = self.served.session()
        for number in range(3):
            session.play(number, *START)
            self.assertEqual(session.until("done")[0]["from"], 0)
            [device] = self.served.children()
            os.kill(device, signal.SIGABRT)  # which no sanitizer takes for its own
            self.assertEqual(session.until("gone")[-1]["gone"], "signal 6 (Aborted)")

    def test_a_session_ends_with_its_listener(self):
        session, other = self.served.session(), self.served.session()
        for each in (session, other):
            each.play(1, *START)
            each.until("done")
        self.assertEqual(len(self.served.children()), 2)
        session.close()
        self.assertTrue(eventually(lambda: len(self.served.children()) == 1))
        self.refuses(404, "POST", session.path, '{"play": 2, "lines": []}')
        self.assertEqual(other.play(2, *START), 202)
        other.until("done")

    def test_sessions_know_nothing_of_each_other(self):
        sessions = [self.served.session() for _ in range(2)]
        for number, session in enumerate(sessions):
            session.play(number, *START)
        for number, session in enumerate(sessions):
            self.assertEqual({event["play"] for event in session.until("done")}, {number})
        self.assertEqual(len(self.served.children()), 2)

    def test_there_are_sixteen_sessions_and_requests_are_answered(self):
        sessions = [self.served.session() for _ in range(16)]
        self.refuses(429, "GET", "sessions?build=host")
        before = time.monotonic()
        for _ in range(20):
            self.served.get("about")
        self.assertLess(time.monotonic() - before, PATIENCE)
        sessions[-1].play(1, *START)
        sessions[-1].until("done")
        sessions[0].close()
        self.assertTrue(eventually(lambda: self.served.ask("POST", sessions[0].path, '{"play": 1, "lines": []}').status == 404))
        self.served.session().close()

    @unittest.skipUnless(IMAGE, "no device binary")
    def test_a_device_of_each_build(self):
        served = Served(PROGRAM, "--image", IMAGE)
        try:
            self.assertEqual(served.get("about")["builds"], ["host", "arm64", "armv7"])
            rows = []
            for build in ("host", "arm64", "armv7"):
                session = served.session(build)
                session.play(1, *START)
                rows.append([[row["call"] for row in event["rows"] if row["kind"] == "effect"]
                             for event in session.until("done")[1:-1]])
            self.assertEqual(rows, 3 * [rows[0]])
        finally:
            self.assertEqual(served.end(), 0)


class Limits(Test):
    options = ("--longest-play", "1")

    def test_a_device_process_that_does_not_finish_is_ended(self):
        session = self.served.session()
        session.play(1, *START)
        session.until("done")
        os.kill(self.served.children()[0], signal.SIGSTOP)
        session.play(2, *START, "locked yes")
        self.assertEqual(session.until("gone")[-1]["gone"], "it did not finish within 1 s")
        session.play(3, *START)
        self.assertEqual(session.until("done")[0], {"play": 3, "from": 0})

    def test_much_to_read_does_not_hold_the_server_up(self):
        session = self.served.session()
        session.play(1, *START)
        session.until("done")
        os.kill(self.served.children()[0], signal.SIGSTOP)
        self.assertEqual(session.play(2, "#" + 200000 * "x"), 202)
        self.assertEqual({session.play(number, "#" + 200000 * "x") for number in range(40)}, {202})
        self.assertEqual(session.until("gone")[-1]["gone"], "it did not finish within 1 s")


class End(unittest.TestCase):
    def ended_by(self, number, hangs=False):
        served = Served(PROGRAM)
        session = served.session()
        session.play(1, *START)
        session.until("done")
        [device] = served.children()
        if hangs:
            os.kill(device, signal.SIGSTOP)
        served.process.send_signal(number)
        served.process.wait(PATIENCE)
        self.assertTrue(eventually(lambda: parent(device) is None))
        return served.end()

    def test_device_processes_end_with_the_server(self):
        self.assertEqual(self.ended_by(signal.SIGINT), 0)
        self.assertEqual(self.ended_by(signal.SIGTERM), 0)
        self.assertEqual(self.ended_by(signal.SIGKILL), -signal.SIGKILL)

    def test_so_does_one_that_hangs(self):
        self.assertEqual(self.ended_by(signal.SIGTERM, hangs=True), 0)
        self.assertEqual(self.ended_by(signal.SIGKILL, hangs=True), -signal.SIGKILL)

    def test_a_server_that_has_just_begun_ends_as_well(self):
        for _ in range(5):
            self.assertEqual(Served(PROGRAM).end(), 0)


unittest.main()
