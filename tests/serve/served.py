"""A server to be tested, of the program that is the first argument: started beside pages of the test's own, spoken to over HTTP, ended."""
import http.client
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.parse

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
PATIENCE = 30  # seconds, on a busy machine


class Served:
    """corvalen-sim serve. Pages, scenarios and saved ones stand in a folder of the test's own."""

    def __init__(self, program, *options):
        self.folder = tempfile.TemporaryDirectory(dir=program.parent)
        root = pathlib.Path(self.folder.name)
        self.pages, self.scenarios, self.saved = root / "show", root / "scenarios", root / "saved"
        for folder in (self.pages, self.scenarios, self.saved):
            folder.mkdir()
        # The pages lie beside the program, wherever that is.
        os.link(program, root / program.name)
        self.process = subprocess.Popen(
            [root / program.name, "serve", "--scenarios", self.scenarios, "--saved", self.saved, *options],
            stdout=subprocess.PIPE, text=True, restore_signals=False, env=os.environ | {"CORVALEN_LIBRARY": str(program.parent / "proCorvalen.so")})
        self.url = urllib.parse.urlsplit(self.process.stdout.readline().strip())

    def end(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(PATIENCE)
        self.process.stdout.close()
        self.folder.cleanup()
        return self.process.returncode

    def connect(self):
        return http.client.HTTPConnection("127.0.0.1", self.url.port, timeout=PATIENCE)

    def ask(self, method, path, body=None, headers=None):
        """The response, with `body` read, but for events without an end. `path` begins behind the token unless with /."""
        connection = self.connect()
        connection.request(method, path if path.startswith("/") else self.url.path + path, body, headers or {})
        response = connection.getresponse()
        response.body = b"" if response.headers["Content-Type"] == "text/event-stream" else response.read()
        connection.close()
        return response

    def status(self, *request):
        """Of a request that is refused: its answer says why, as JSON."""
        response = self.ask(*request)
        assert list(json.loads(response.body)) == ["error"], response.body
        return response.status

    def get(self, path):
        return json.loads(self.ask("GET", path).body)

    def raw(self, text):
        """The first line of what is answered to these very bytes; empty if nothing is."""
        connection = self.connect()
        connection.connect()
        connection.sock.sendall(text)
        try:
            return connection.sock.makefile("rb").readline()
        except ConnectionResetError:
            return b""
        finally:
            connection.close()

    def session(self, build="host"):
        return Session(self, build)

    def children(self):
        """Its device processes that run."""
        processes = [int(entry.name) for entry in pathlib.Path("/proc").glob("[0-9]*")]
        return [process for process in processes if parent(process) == self.process.pid]


def parent(process):
    """None if it has ended, be it buried or not."""
    try:
        state, number = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[:2]
    except OSError:
        return None
    return None if state == "Z" else int(number)


class Session:
    """Hears what its device process says, as an EventSource does."""

    def __init__(self, served, build):
        self.served = served
        self.connection = served.connect()
        self.connection.request("GET", f"{served.url.path}sessions?build={build}")
        self.response = self.connection.getresponse()
        self.path = "sessions/" + self.next()["session"]

    def play(self, number, *lines):
        return self.served.ask("POST", self.path, json.dumps({"play": number, "lines": lines})).status

    def next(self):
        """The next event; None at the end."""
        data = ""
        while not data or line != "\n":
            line = self.response.readline().decode()
            if not line:
                return None
            key, _, value = line.rstrip("\n").partition(": ")
            if key == "data":  # (comments are of no use here)
                data = value
        return json.loads(data)

    def until(self, key):
        """Events up to the first one with this key."""
        events = [self.next()]
        while key not in events[-1]:
            events.append(self.next())
        return events

    def close(self):
        self.response.close()
        self.connection.close()


def eventually(what):
    """Whether it comes to be so."""
    end = time.monotonic() + PATIENCE
    while not what():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


class Test(unittest.TestCase):
    """A test with a server of its own, which ends as it should."""
    options = ()

    def setUp(self):
        self.served = Served(PROGRAM, *self.options)

    def tearDown(self):
        self.assertEqual(self.served.end(), 0)

    def refuses(self, status, *request):
        self.assertEqual(self.served.status(*request), status, request)
