#!/usr/bin/env python3
"""corvalen-sim serve, over HTTP: what it gives to whom, what it refuses, and what becomes of sessions
and their device processes. The program is the first argument."""
import http.client
import json
import os
import pathlib
import signal
import subprocess
import sys
import time
import unittest
import urllib.parse

from served import PATIENCE, Served, eventually, parent

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
IMAGE = os.environ.get("DEVICE_LIBRARY")
START = ['app com.spotify.client "Spotify"', "boot"]


class Test(unittest.TestCase):
    options = ()

    def setUp(self):
        self.served = Served(PROGRAM, *self.options)

    def tearDown(self):
        self.assertEqual(self.served.end(), 0)

    def refuses(self, status, *request):
        self.assertEqual(self.served.status(*request), status, request)

    def gone(self, listener):
        return listener.until("gone")[-1]["gone"]


class Files(Test):
    def setUp(self):
        super().setUp()
        for name, text in {"index.html": "<p>", "a-b_1.js": "js", "a.css": "", "a.svg": "<svg/>", "secret.json": "{}",
                           "Upper.js": ""}.items():
            (self.served.pages / name).write_text(text)
        (self.served.pages / "folder.js").mkdir()
        (self.served.pages / "folder.js" / "in.js").write_text("x")
        (self.served.pages / "out.txt").symlink_to("/etc/hostname")
        (self.served.pages / "also.js").symlink_to("a-b_1.js")
        (self.served.scenarios / "greeting").mkdir()
        (self.served.scenarios / "greeting" / "first.txt").write_text("boot\n")
        (self.served.scenarios / "a & b.txt").write_bytes(b"# \xff\n")
        (self.served.scenarios / "README.md").write_text("no")
        (self.served.scenarios / "out.txt").symlink_to("/etc/hostname")
        (self.served.scenarios / "long.txt").write_text(256 * 1024 * "#" + "#")

    def test_the_page_and_what_protects_it(self):
        page = self.served.ask("GET", "")
        self.assertEqual((page.status, page.body), (200, b"<p>"))
        self.assertEqual(page.headers["Content-Type"], "text/html; charset=utf-8")
        self.assertEqual(self.served.ask("GET", "?open=scenarios/a.txt#x").body, b"<p>")
        for response in (page, self.served.ask("GET", "nowhere"), self.served.ask("POST", "/", "")):
            self.assertEqual(response.headers["Content-Security-Policy"],
                             "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src "
                             "'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'")
            self.assertEqual([response.headers[name] for name in ("X-Content-Type-Options", "Referrer-Policy",
                                                                  "Cache-Control", "Cross-Origin-Resource-Policy")],
                             ["nosniff", "no-referrer", "no-store", "same-origin"])

    def test_files_of_the_page(self):
        script = self.served.ask("GET", "a-b_1.js", None, {"Accept-Encoding": "gzip, br"})
        self.assertEqual((script.body, script.headers["Content-Type"]), (b"js", "text/javascript; charset=utf-8"))
        self.assertEqual(self.served.ask("GET", "a.css").body, b"")
        self.assertEqual(self.served.ask("GET", "a.svg").headers["Content-Type"], "image/svg+xml")
        self.assertEqual(self.served.ask("GET", "also.js").body, b"js")

    def test_nothing_else_is_of_the_page(self):
        for name in ("secret.json", "Upper.js", "folder.js", "folder.js/in.js", "out.txt", "none.js", ".", "..", "...",
                     "../corvalen-sim", "../scenarios/greeting/first.txt", "%2e%2e/saved", "..%2f..%2fVERSION.txt",
                     "a.css/", "a.css%00.js", "%00", "%ff.js", "%", "%zz", "//etc/hostname", "a.css%0a", "x" * 5000):
            self.refuses(404, "GET", name)
        self.assertIn(b" 414 ", self.served.raw(b"GET /" + 9000 * b"x" + b" HTTP/1.1\r\nHost: x\r\n\r\n"))

    def test_what_there_is(self):
        version = (PROGRAM.parents[2] / "VERSION").read_text().strip()
        self.assertEqual(self.served.get("about"), {"version": version, "builds": ["host"], "saved": [],
                                                    "scenarios": ["a & b.txt", "greeting/first.txt"]})

    def test_a_scenario_is_given_as_it_is(self):
        first = self.served.ask("GET", "scenarios/greeting/first.txt")
        self.assertEqual((first.body, first.headers["Content-Type"]), (b"boot\n", "text/plain; charset=utf-8"))
        self.assertEqual(self.served.ask("GET", "scenarios/greeting%2Ffirst.txt").body, b"boot\n")
        self.assertEqual(self.served.ask("GET", "scenarios/a%20%26%20b.txt").body, b"# \xff\n")
        for path in ("", "/", "greeting", "README.md", "out.txt", "long.txt", "../scenarios/greeting/first.txt",
                     "%2e%2e/scenarios/greeting/first.txt", "greeting/../greeting/first.txt", "/etc/hostname", "./a.txt"):
            self.refuses(404, "GET", f"scenarios/{path}")

    def test_a_scenario_is_saved_and_given_again(self):
        name = "A - b_1.txt"
        for text in (b"boot\n", "# ä\n".encode(), b""):
            self.assertEqual(json.loads(self.served.ask("PUT", "saved/A%20-%20b_1.txt", text).body), {"saved": name})
            self.assertEqual((self.served.saved / name).read_bytes(), text)
            self.assertEqual(self.served.ask("GET", "saved/A%20-%20b_1.txt").body, text)
        self.assertEqual(self.served.get("about")["saved"], [name])
        self.assertEqual(os.listdir(self.served.saved), [name])

    def test_what_is_not_saved(self):
        for name in (".txt", "a.sh", "a", "a.txt.sh", "%C3%A4.txt", "..%2fa.txt", "a/b.txt", "..", "%00.txt", 65 * "a" + ".txt"):
            self.refuses(400, "PUT", f"saved/{name}", b"boot\n")
        self.refuses(400, "PUT", "saved/a.txt", b"\xff")
        self.refuses(413, "PUT", "saved/a.txt", 256 * 1024 * b"#" + b"#")
        self.refuses(405, "POST", "saved/a.txt", b"boot\n")
        self.refuses(405, "DELETE", "saved/a.txt")
        self.refuses(404, "GET", "saved/a.txt")
        self.assertEqual(os.listdir(self.served.saved), [])
        self.assertEqual(self.served.ask("PUT", "saved/" + 64 * "a" + ".txt", 256 * 1024 * b"#").status, 200)

    def test_a_link_among_the_saved_is_replaced_and_not_followed(self):
        target = self.served.scenarios / "greeting" / "first.txt"
        (self.served.saved / "a.txt").symlink_to(target)
        self.refuses(404, "GET", "saved/a.txt")
        self.assertEqual(self.served.ask("PUT", "saved/a.txt", b"lock\n").status, 200)
        self.assertEqual((target.read_text(), (self.served.saved / "a.txt").read_text()), ("boot\n", "lock\n"))

    def test_what_cannot_be_written_is_told(self):
        (self.served.saved / "a.txt").mkdir()
        self.refuses(500, "PUT", "saved/a.txt", b"boot\n")
        self.assertEqual(os.listdir(self.served.saved), ["a.txt"])


class Admission(Test):
    def test_nothing_without_the_token(self):
        token = self.served.url.path.strip("/")
        self.assertRegex(token, "^[0-9a-f]{32}$")
        other = ("0" if token[0] != "0" else "1") + token[1:]
        bodies = set()
        for path in ("/", "/about", f"/{token}", f"/{token[:-1]}/about", f"/{token}0/about", f"/{other}/about",
                     f"//{token}/about", f"/{token.upper()}x/about", "/favicon.ico", f"/x/{token}/about"):
            for method in ("GET", "POST", "PUT", "DELETE", "PATCH"):
                response = self.served.ask(method, path, "{}")
                self.assertEqual(response.status, 404, (method, path))
                bodies.add(response.body)
        self.assertEqual(len(bodies), 1)

    def test_each_server_has_a_token_of_its_own(self):
        other = Served(PROGRAM)
        self.assertNotEqual(other.url.path, self.served.url.path)
        other.end()

    def test_the_host_must_be_ours(self):
        port = self.served.url.port
        self.assertEqual(self.served.ask("GET", "about", None, {"Host": f"localhost:{port}"}).status, 200)
        for host in ("", "127.0.0.1", "localhost", f"example.com:{port}", f"127.0.0.1:{port}0", f"127.0.0.1:{port}.example.com",
                     f"localhost.:{port}", "example.com"):
            self.refuses(403, "GET", "about", None, {"Host": host})
            self.refuses(403, "POST", "sessions", '{"build": "host"}', {"Host": host})
        path = self.served.url.path.encode()
        twice = b"Host: 127.0.0.1:%d\r\nHost: example.com\r\n" % port
        for headers in (b"", twice):
            self.assertIn(b" 403 ", self.served.raw(b"GET " + path + b"about HTTP/1.1\r\n" + headers + b"\r\n"))

    def test_the_origin_must_be_ours_if_there_is_one(self):
        port = self.served.url.port
        for origin in (f"http://127.0.0.1:{port}", f"http://localhost:{port}"):
            self.assertEqual(self.served.ask("POST", "sessions", '{"build": "host"}', {"Origin": origin}).status, 200)
        for origin in ("null", "http://example.com", f"https://127.0.0.1:{port}", f"http://127.0.0.1:{port + 1}",
                       f"http://127.0.0.1:{port}.example.com", "http://"):
            self.refuses(403, "POST", "sessions", '{"build": "host"}', {"Origin": origin})
            self.refuses(403, "GET", "about", None, {"Origin": origin})

    def test_it_listens_on_the_loopback_address_alone(self):
        listening = [line.split()[1] for line in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:]
                     if line.split()[3] == "0A" and line.split()[1].endswith(f":{self.served.url.port:04X}")]
        self.assertEqual(listening, [f"0100007F:{self.served.url.port:04X}"])

    def test_a_port_that_is_taken_is_told(self):
        done = subprocess.run([PROGRAM, "serve", "--port", str(self.served.url.port)], capture_output=True, text=True,
                              timeout=PATIENCE, check=False)
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertIn(f"port {self.served.url.port}", done.stderr)


class Broken(Test):
    def tearDown(self):
        self.assertEqual(self.served.get("about")["builds"], ["host"])
        super().tearDown()

    def test_methods(self):
        session = self.served.session()
        for method, path in (("POST", "about"), ("DELETE", "about"), ("HEAD", ""), ("PUT", "index.html"), ("OPTIONS", ""),
                             ("GET", "sessions"), ("DELETE", "sessions"), ("GET", session.path), ("GET", session.path + "/play"),
                             ("POST", session.path + "/events"), ("PATCH", session.path), ("TRACE", "about")):
            response = self.served.ask(method, path, "" if method in ("POST", "PUT") else None)
            self.assertEqual(response.status, 405, (method, path))

    def test_sessions_that_are_none(self):
        for body in ("", "{", "[]", "1", "null", '"host"', "{}", '{"build": 1}', '{"build": "other"}', '{"build": null}',
                     '{"build": ["host"]}', b"\xff", '{"build": "\xff"}'.encode("latin-1"), 100000 * "[", 40000 * '{"a":'):
            self.refuses(400, "POST", "sessions", body)
        for path in ("sessions/x/play", "sessions//play", "sessions/x", "sessions/../about"):
            self.refuses(404, "POST", path, "{}")
        self.refuses(404, "GET", "sessions/x/events")
        self.refuses(404, "DELETE", "sessions/x")
        self.refuses(404, "GET", self.served.session().path + "/other")

    def test_plays_that_are_none(self):
        session = self.served.session()
        for body in ("", "{", "[]", "{}", '{"play": 1}', '{"lines": []}', '{"play": "1", "lines": []}', '{"play": 1.5, "lines": []}',
                     '{"play": 1, "lines": {}}', '{"play": 1, "lines": [1]}', '{"play": 1, "lines": [["boot"]]}',
                     '{"play": 1, "lines": ["a\\nb"]}', '{"play": 1, "lines": ["\\r"]}', '{"play": 1, "lines": [null]}',
                     b'{"play": 1, "lines": ["\xff"]}', '{"play": 1, "lines": ["\\ud800"]}', '{"play": 1e99, "lines": []}'):
            self.refuses(400, "POST", session.path + "/play", body)
        self.refuses(413, "POST", session.path + "/play", json.dumps({"play": 1, "lines": 5001 * [""]}))
        self.refuses(413, "POST", session.path + "/play", 300 * 1024 * " ")
        self.assertEqual(session.play(2, *(5000 * [""])), 202)
        self.assertEqual(len(session.listen().until("done")), 5002)

    def test_bodies(self):
        headers = b"Host: 127.0.0.1:%d\r\n" % self.served.url.port
        start = b"POST %ssessions HTTP/1.1\r\n" % self.served.url.path.encode() + headers
        for more in (b"", b"Transfer-Encoding: chunked\r\n", b"Content-Length: -1\r\n", b"Content-Length: x\r\n",
                     b"Content-Length: 2\r\nContent-Encoding: gzip\r\n", b"Content-Length: 2\r\nRange: bytes=0-\r\n",
                     b"Content-Length: 2\r\nContent-Type: multipart/form-data; boundary=\r\n",
                     b"Content-Length: 2\r\nContent-Type: application/x-www-form-urlencoded\r\n"):
            self.assertIn(b" 400 ", self.served.raw(start + more + b"\r\n{}"), more)
        # (What is read without a limit, even though a length is named.)
        chunked = b'Content-Length: 16\r\nTransfer-Encoding: chunked\r\n\r\n10\r\n{"build":"host"}\r\n0\r\n\r\n'
        self.assertIn(b" 400 ", self.served.raw(start + chunked))
        self.assertIn(b" 4", self.served.raw(start + b"Range: bytes=" + 2600 * b"0-," + b"\r\n\r\n"))

    def test_what_is_no_http(self):
        for text in (b"\r\n\r\n", b"\0\0\0\0\r\n\r\n", b"GET\r\n\r\n", b"GET / HTTP/9\r\n\r\n", b"GET / HTTP/1.1\r\n:\r\n\r\n",
                     b"\x16\x03\x01\x02\r\n\r\n", b"GET / HTTP/1.1\r\n" + 20000 * b"x" + b"\r\n\r\n", b"POST / HTTP/1.1\r\n\r\n"):
            self.assertNotIn(b" 200 ", self.served.raw(text))

    def test_connections_that_say_nothing_keep_nobody_out(self):
        silent = [self.served.connect() for _ in range(40)]
        for connection in silent:
            connection.connect()
        self.assertEqual(self.served.get("about")["builds"], ["host"])
        for connection in silent:
            connection.close()


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
            self.assertEqual(self.gone(listener), "signal 11 (Segmentation fault)")

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
        self.assertEqual(self.gone(listener), "it did not finish within 1 s")
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
        self.assertEqual(self.gone(listener), "it did not finish within 1 s")

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

    def test_without_a_folder_nothing_is_saved(self):
        with subprocess.Popen([PROGRAM, "serve"], stdout=subprocess.PIPE, text=True) as process:
            url = urllib.parse.urlsplit(process.stdout.readline().strip())
            connection = http.client.HTTPConnection(url.netloc)
            connection.request("PUT", url.path + "saved/a.txt", b"boot")
            response = connection.getresponse()
            said = response.read()
            connection.close()
            process.terminate()
        self.assertEqual((response.status, said), (403, b'{"error":"the server was not told where to save (--saved DIR)"}'))


unittest.main()
