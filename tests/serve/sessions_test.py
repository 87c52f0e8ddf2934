#!/usr/bin/env python3
"""corvalen-sim serve, over HTTP: what becomes of sessions, their listeners and their device processes. The program is the first argument."""
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
        listener = session.listen()
        self.assertEqual(listener.response.headers["Content-Type"], "text/event-stream")
        self.assertEqual(session.play(7, *START), 202)
        events = listener.until("done")
        self.assertEqual([event["play"] for event in events], 4 * [7])
        self.assertEqual((events[0]["from"], [event["step"] for event in events[1:3]]), (0, [0, 1]))
        self.assertTrue(events[2]["state"]["springBoard"])
        self.assertEqual(session.play(8, *START, "locked yes"), 202)
        events = listener.until("done")
        self.assertEqual((events[0]["from"], events[1]["line"], events[1]["state"]["locked"]), (2, "locked yes", True))
        self.assertEqual(session.play(9, START[0]), 202)
        self.assertEqual(listener.until("done"), [{"play": 9, "from": 1}, {"play": 9, "done": True}])

    def test_a_wrong_scenario_is_told_and_ends_nothing(self):
        session = self.served.session()
        listener = session.listen()
        session.play(1, *START)
        listener.until("done")
        session.play(2, *START, "bot")
        self.assertEqual(listener.until("wrong")[-1]["wrong"]["line"], 2)
        session.play(3, *START, "locked yes")
        self.assertEqual(listener.until("done")[0]["from"], 2)

    def test_texts_of_all_kinds_get_through(self):
        session = self.served.session()
        line = '# "done":true \\ ä \u2028 "wrong" \U0001f600'
        session.play(1, 'app a.b "Ä \U0001f600"', line)
        events = session.listen().until("done")
        self.assertEqual([event["state"]["apps"][-1]["name"] for event in events[1:3]], 2 * ["Ä \U0001f600"])

    def test_plays_that_come_fast_are_played_in_order(self):
        session = self.served.session()
        listener = session.listen()
        for number in range(20):
            self.assertEqual(session.play(number, *START, *(number * ["locked yes"])), 202)
        dones = []
        while len(dones) < 20:
            dones.append(listener.until("done")[-1]["play"])
        self.assertEqual(dones, list(range(20)))

    def test_listeners_come_late_and_come_back(self):
        session = self.served.session()
        first = session.listen()
        session.play(1, *START)
        events = first.until("done")
        late = session.listen()
        self.assertEqual(late.until("done"), events)
        self.assertEqual(session.listen().response.status, 409)
        for listener in (first, late):
            listener.close()
        back = []
        def comes_back():
            back[:] = [session.listen(last=2)]
            return back[0].response.status == 200
        self.assertTrue(eventually(comes_back))
        self.assertEqual(back[0].until("done"), events[2:])

    def test_a_slow_listener_gets_everything_too(self):
        session = self.served.session()
        slow, fast = session.listen(), session.listen()
        apps = [f'app a.b{number} "{number}"' for number in range(20)]
        session.play(1, *apps, *(3000 * [""]))  # more than fits into the connection
        events = fast.until("done")
        session.play(2, *apps)
        self.assertEqual(slow.until("done"), events)
        self.assertEqual(slow.until("done"), fast.until("done"))

    def test_who_has_missed_something_is_told(self):
        session = self.served.session()
        for number in (1, 2):
            session.play(number, *START)
            listener = session.listen()
            listener.until("done")
            listener.close()
            self.assertTrue(eventually(lambda: session.listen(last=100).response.status == 409))
        self.assertEqual(session.listen(last=1).response.status, 409)

    def test_a_device_process_that_dies_is_an_event(self):
        session = self.served.session()
        listener = session.listen()
        for number in range(3):
            session.play(number, *START)
            self.assertEqual(listener.until("done")[0]["from"], 0)
            [device] = self.served.children()
            os.kill(device, signal.SIGSEGV)
            self.assertEqual(listener.until("gone")[-1]["gone"], "signal 11 (Segmentation fault)")

    def test_a_session_that_is_ended(self):
        session = self.served.session()
        listener = session.listen()
        session.play(1, *START)
        listener.until("done")
        self.assertEqual(self.served.ask("DELETE", session.path).status, 200)
        self.assertIsNone(listener.next())
        self.assertTrue(eventually(lambda: not self.served.children()))
        self.refuses(404, "POST", session.path + "/play", '{"play": 2, "lines": []}')

    def test_sessions_know_nothing_of_each_other(self):
        sessions = [self.served.session() for _ in range(2)]
        listeners = [session.listen() for session in sessions]
        for number, session in enumerate(sessions):
            session.play(number, *START)
        for number, listener in enumerate(listeners):
            self.assertEqual({event["play"] for event in listener.until("done")}, {number})
        self.assertEqual(len(self.served.children()), 2)

    def test_there_are_sixteen_sessions_with_two_listeners_each_and_requests_are_answered(self):
        sessions = [self.served.session() for _ in range(16)]
        listeners = [session.listen() for session in sessions for _ in range(2)]
        self.refuses(429, "POST", "sessions", '{"build": "host"}')
        before = time.monotonic()
        for _ in range(20):
            self.served.get("about")
        self.assertLess(time.monotonic() - before, PATIENCE)
        sessions[-1].play(1, *START)
        for listener in listeners[-2:]:
            listener.until("done")
        self.assertEqual(self.served.ask("DELETE", sessions[0].path).status, 200)
        self.served.session()

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
                             for event in session.listen().until("done")[1:-1]])
            self.assertEqual(rows, 3 * [rows[0]])
        finally:
            self.assertEqual(served.end(), 0)


class Limits(Test):
    options = ("--longest-play", "1", "--longest-silence", "2")

    def test_a_device_process_that_does_not_finish_is_ended(self):
        session = self.served.session()
        listener = session.listen()
        session.play(1, *START)
        listener.until("done")
        os.kill(self.served.children()[0], signal.SIGSTOP)
        session.play(2, *START, "locked yes")
        self.assertEqual(listener.until("gone")[-1]["gone"], "it did not finish within 1 s")
        session.play(3, *START)
        self.assertEqual(listener.until("done")[0], {"play": 3, "from": 0})

    def test_much_to_read_does_not_hold_the_server_up(self):
        session = self.served.session()
        listener = session.listen()
        session.play(1, *START)
        listener.until("done")
        os.kill(self.served.children()[0], signal.SIGSTOP)
        self.assertEqual(session.play(2, "#" + 200000 * "x"), 202)
        statuses = {session.play(number, "#" + 200000 * "x") for number in range(40)}
        self.assertEqual(statuses, {202, 429})
        self.assertEqual(listener.until("gone")[-1]["gone"], "it did not finish within 1 s")

    def test_a_session_without_a_listener_ends(self):
        heard, unheard = self.served.session(), self.served.session()
        listener = heard.listen()
        for session in (heard, unheard):
            session.play(1, *START)
        self.assertTrue(eventually(lambda: len(self.served.children()) == 2))
        self.assertTrue(eventually(lambda: len(self.served.children()) == 1))
        self.refuses(404, "GET", unheard.path + "/events")
        self.assertEqual(heard.play(2, *START), 202)
        listener.until("done")
        listener.close()
        self.assertTrue(eventually(lambda: not self.served.children()))


class End(unittest.TestCase):
    def ended_by(self, number):
        served = Served(PROGRAM)
        session = served.session()
        listener = session.listen()
        session.play(1, *START)
        listener.until("done")
        [device] = served.children()
        served.process.send_signal(number)
        served.process.wait(PATIENCE)
        self.assertTrue(eventually(lambda: parent(device) is None))
        return served.end()

    def test_device_processes_end_with_the_server(self):
        self.assertEqual(self.ended_by(signal.SIGINT), 0)
        self.assertEqual(self.ended_by(signal.SIGTERM), 0)
        self.assertEqual(self.ended_by(signal.SIGKILL), -signal.SIGKILL)

    def test_a_server_that_has_just_begun_ends_as_well(self):
        for _ in range(5):
            self.assertEqual(Served(PROGRAM).end(), 0)


unittest.main()
