#!/usr/bin/env python3
"""corvalen-sim serve, over HTTP: what it gives to whom, and what it refuses. The program is the first argument."""
import http.client
import json
import os
import pathlib
import resource
import subprocess
import unittest
import urllib.parse

from served import PATIENCE, PROGRAM, Served, Test


class Files(Test):
    def setUp(self):
        super().setUp()
        for name, text in {"index.html": "<p>", "a-b_1.js": "js", "a.css": "", "secret.json": "{}"}.items():
            (self.served.pages / name).write_text(text)
        (self.served.pages / "folder.js").mkdir()
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

    def test_nothing_else_is_of_the_page(self):
        for name in ("secret.json", "folder.js", "also.js", "out.txt", "none.js", ".", "..", "...",
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
        self.refuses(404, "POST", "saved/a.txt", b"boot\n")
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

    def test_what_is_saved_can_be_read_as_other_files_can(self):
        self.assertEqual(self.served.ask("PUT", "saved/a.txt", b"boot\n").status, 200)
        self.assertEqual((self.served.saved / "a.txt").stat().st_mode & 0o777, 0o644)

    def test_a_file_that_does_not_fit_leaves_the_one_before_and_says_why(self):
        self.served.ask("PUT", "saved/a.txt", b"boot\n")
        resource.prlimit(self.served.process.pid, resource.RLIMIT_FSIZE, (1024, resource.RLIM_INFINITY))
        refused = self.served.ask("PUT", "saved/a.txt", 5000 * b"#")
        self.assertEqual((refused.status, json.loads(refused.body)), (500, {"error": "cannot write a.txt: File too large"}))
        self.assertEqual((self.served.saved / "a.txt").read_bytes(), b"boot\n")
        self.assertEqual(os.listdir(self.served.saved), ["a.txt"])

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
            self.refuses(403, "GET", "sessions?build=host", None, {"Host": host})
            self.refuses(403, "PUT", "saved/a.txt", b"boot\n", {"Host": host})
        path = self.served.url.path.encode()
        twice = b"Host: 127.0.0.1:%d\r\nHost: example.com\r\n" % port
        for headers in (b"", twice):
            self.assertIn(b" 403 ", self.served.raw(b"GET " + path + b"about HTTP/1.1\r\n" + headers + b"\r\n"))

    def test_the_origin_must_be_ours_if_there_is_one(self):
        port = self.served.url.port
        for host in (f"127.0.0.1:{port}", f"localhost:{port}"):
            headers = {"Host": host, "Origin": f"http://{host}"}
            self.assertEqual(self.served.ask("PUT", "saved/a.txt", b"boot\n", headers).status, 200)
        for origin in ("null", "http://example.com", f"https://127.0.0.1:{port}", f"http://127.0.0.1:{port + 1}",
                       f"http://127.0.0.1:{port}.example.com", "http://", f"http://localhost:{port}"):
            self.refuses(403, "PUT", "saved/a.txt", b"boot\n", {"Origin": origin})
            self.refuses(403, "GET", "sessions?build=host", None, {"Origin": origin})

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
        for method, path in (("DELETE", "about"), ("HEAD", ""), ("OPTIONS", ""), ("PATCH", session.path), ("TRACE", "about")):
            self.assertEqual(self.served.ask(method, path).status, 405, (method, path))
        for method, path in (("POST", "about"), ("PUT", "index.html"), ("POST", "sessions"), ("GET", session.path),
                             ("PUT", session.path), ("POST", "saved/a.txt"), ("PUT", "scenarios/a.txt")):
            self.refuses(404, method, path, "" if method != "GET" else None)

    def test_sessions_that_are_none(self):
        for asked in ("", "?", "?build", "?build=", "?build=other", "?build=host2", "?build=%ff", "?build=%00", "?other=host",
                      "?build=" + 5000 * "x"):
            self.refuses(400, "GET", "sessions" + asked)
        self.refuses(404, "GET", "sessions/")
        for path in ("sessions/x", "sessions/", "sessions/x/play", "sessions/../about", "sessions/" + 300 * "x"):
            self.refuses(404, "POST", path, '{"play": 1, "lines": []}')

    def test_plays_that_are_none(self):
        session = self.served.session()
        for body in ("", "{", "[]", "{}", '{"play": 1}', '{"lines": []}', '{"play": "1", "lines": []}', '{"play": 1.5, "lines": []}',
                     '{"play": 1, "lines": {}}', '{"play": 1, "lines": [1]}', '{"play": 1, "lines": [["boot"]]}',
                     '{"play": 1, "lines": ["a\\nb"]}', '{"play": 1, "lines": ["\\r"]}', '{"play": 1, "lines": [null]}',
                     b'{"play": 1, "lines": ["\xff"]}', '{"play": 1, "lines": ["\\ud800"]}', '{"play": 1e99, "lines": []}'):
            self.refuses(400, "POST", session.path, body)
        self.refuses(413, "POST", session.path, json.dumps({"play": 1, "lines": 5001 * [""]}))
        self.refuses(413, "POST", session.path, 300 * 1024 * " ")
        self.assertEqual(session.play(2, *(5000 * [""])), 202)
        self.assertEqual(len(session.until("done")), 5002)

    def test_bodies(self):
        headers = b"Host: 127.0.0.1:%d\r\n" % self.served.url.port
        start = b"PUT %ssaved/a.txt HTTP/1.1\r\n" % self.served.url.path.encode() + headers
        for more in (b"", b"Transfer-Encoding: chunked\r\n", b"Content-Length: -1\r\n", b"Content-Length: x\r\n",
                     b"Content-Length: 2\r\nContent-Encoding: gzip\r\n", b"Content-Length: 2\r\nRange: bytes=0-\r\n",
                     b"Content-Length: 2\r\nContent-Type: multipart/form-data; boundary=\r\n",
                     b"Content-Length: 2\r\nContent-Type: application/x-www-form-urlencoded\r\n"):
            self.assertIn(b" 400 ", self.served.raw(start + more + b"\r\n{}"), more)
        # (What is read without a limit, even though a length is named.)
        chunked = b"Content-Length: 5\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nboot\n\r\n0\r\n\r\n"
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


unittest.main()
