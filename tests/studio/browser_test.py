#!/usr/bin/env python3
"""The studio page in a real browser. Starts `zvpush studio` on the examples and Debian's chromium
headless, and drives the page over the DevTools protocol (a small WebSocket client below, standard
library only): the carousel example renders; a request without the token gets 403 and an injected
inline handler does not run; editing the payload (a new title, no "mutable-content") changes the
preview image, the collapsed title and brings the warning; a payload that is not JSON shows the
CLI's one-line error. The page's screenshot is kept as an artefact.
Every wait is for a condition in the page, with a deadline.
Usage: browser_test.py ZVPUSH ARTEFACT_DIR"""
import base64
import json
import os
import socket
import subprocess
import sys
import tempfile
import urllib.request

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
DEADLINE_MS = 60000


class WebSocket:
    """A client of one WebSocket (RFC 6455): text frames out (masked), whole messages in."""

    def __init__(self, url):
        rest = url[len("ws://"):]
        host, _, path = rest.partition("/")
        name, _, port = host.partition(":")
        self.sock = socket.create_connection((name, int(port)))
        key = base64.b64encode(os.urandom(16)).decode()
        self.sock.sendall((f"GET /{path} HTTP/1.1\r\nHost: {host}\r\nUpgrade: websocket\r\n"
                           f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\n"
                           "Sec-WebSocket-Version: 13\r\n\r\n").encode())
        head = b""
        while b"\r\n\r\n" not in head:
            head += self.sock.recv(1)
        if b" 101 " not in head.split(b"\r\n")[0]:
            raise RuntimeError(f"no WebSocket: {head!r}")

    def _exact(self, n):
        data = b""
        while len(data) < n:
            chunk = self.sock.recv(n - len(data))
            if not chunk:
                raise RuntimeError("the browser closed the connection")
            data += chunk
        return data

    def send(self, text):
        payload = text.encode()
        header = bytes([0x81])
        n = len(payload)
        if n < 126:
            header += bytes([0x80 | n])
        elif n < 65536:
            header += bytes([0x80 | 126]) + n.to_bytes(2, "big")
        else:
            header += bytes([0x80 | 127]) + n.to_bytes(8, "big")
        mask = os.urandom(4)
        self.sock.sendall(header + mask + bytes(b ^ mask[i % 4] for i, b in enumerate(payload)))

    def receive(self):
        message = b""
        while True:
            first, second = self._exact(2)
            n = second & 0x7F
            if n == 126:
                n = int.from_bytes(self._exact(2), "big")
            elif n == 127:
                n = int.from_bytes(self._exact(8), "big")
            data = self._exact(n)
            if first & 0x0F in (0x1, 0x0):
                message += data
                if first & 0x80:
                    return message.decode()


class Page:
    """One page of the browser, spoken to over the DevTools protocol."""

    def __init__(self, ws):
        self.ws, self.next_id = ws, 0

    def call(self, method, **params):
        self.next_id += 1
        self.ws.send(json.dumps({"id": self.next_id, "method": method, "params": params}))
        while True:
            answer = json.loads(self.ws.receive())
            if answer.get("id") == self.next_id:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def open(self, url):
        """Loads url and waits for its load event."""
        self.call("Page.enable")
        self.call("Page.navigate", url=url)
        while json.loads(self.ws.receive()).get("method") != "Page.loadEventFired":
            pass

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, awaitPromise=True,
                           returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def wait_for(self, condition, what):
        """Waits until the page's condition holds (checked as the page changes), or fails."""
        ok = self.evaluate(f"""new Promise((resolve) => {{
            const holds = () => {{ try {{ return Boolean({condition}); }} catch (e) {{ return false; }} }};
            if (holds()) return resolve(true);
            const observer = new MutationObserver(() => {{
              if (holds()) {{ observer.disconnect(); resolve(true); }}
            }});
            observer.observe(document, {{subtree: true, childList: true, attributes: true,
                                         characterData: true}});
            setTimeout(() => {{ observer.disconnect(); resolve(holds()); }}, {DEADLINE_MS});
          }})""")
        if not ok:
            raise AssertionError(f"the page never showed {what}")


def main():
    zvpush, artefacts = sys.argv[1], sys.argv[2]
    os.makedirs(artefacts, exist_ok=True)
    studio = subprocess.Popen([zvpush, "studio", "--port", "0", "--root",
                               os.path.join(ROOT, "examples")],
                              stdout=subprocess.PIPE, text=True)
    profile = tempfile.TemporaryDirectory()
    browser = None
    try:
        url = studio.stdout.readline().split()[-1]
        browser = subprocess.Popen(
            ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
             "--disable-dev-shm-usage",
             "--remote-debugging-port=0", f"--user-data-dir={profile.name}",
             "--window-size=1400,1600", "about:blank"],
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        for line in browser.stderr:
            if line.startswith("DevTools listening on "):
                devtools = line.split()[-1]
                break
        else:
            raise RuntimeError("the browser did not start")
        port = devtools.split("/")[2].split(":")[1]
        targets = json.load(urllib.request.urlopen(f"http://127.0.0.1:{port}/json/list"))
        page = Page(WebSocket(next(t for t in targets if t["type"] == "page")["webSocketDebuggerUrl"]))
        page.open(url)

        page.wait_for("document.getElementById('light').src.startsWith('data:image/png')",
                      "the first preview")
        first = page.evaluate("document.getElementById('light').src")
        title = page.evaluate("document.getElementById('title').textContent")
        print(f"browser-test: the carousel example rendered ({title!r})")

        # Without the token of the page's URL the studio answers nothing; an injected inline
        # handler does not run (the page's Content-Security-Policy).
        status = page.evaluate("fetch('/api/examples', {headers: {'Content-Type': "
                               "'application/json'}}).then((r) => r.status)")
        assert status == 403, f"a request without the token got {status}"
        inline = page.evaluate("""new Promise((resolve) => {
            const holder = document.createElement('div');
            holder.innerHTML = '<img src="/nothing" onerror="window.injected = true">';
            holder.firstChild.addEventListener('error', () => resolve(window.injected === true));
            document.body.appendChild(holder); })""")
        assert inline is False, "an inline handler ran"
        print("browser-test: no answer without the token, no inline script")

        edited = json.loads(page.evaluate("document.getElementById('payload').value"))
        del edited["aps"]["mutable-content"]
        edited["zovFeatures"]["richPush"]["title"] = "Edited in a browser"
        page.evaluate(f"""(() => {{ const t = document.getElementById('payload');
            t.value = {json.dumps(json.dumps(edited, indent=2))};
            t.dispatchEvent(new Event('input')); }})()""")
        page.wait_for(f"document.getElementById('light').src !== {json.dumps(first)} && "
                      "document.getElementById('title').textContent === 'Edited in a browser' && "
                      "document.getElementById('warnings').textContent"
                      ".includes('mutable-content-missing')",
                      "the edit's preview, title and warning")
        print("browser-test: the edit changed the preview and brought the warning")
        shot = page.call("Page.captureScreenshot", format="png")["data"]
        with open(os.path.join(artefacts, "studio.png"), "wb") as f:
            f.write(base64.b64decode(shot))

        page.evaluate("""(() => { const t = document.getElementById('payload');
            t.value = '{"aps": '; t.dispatchEvent(new Event('input')); })()""")
        page.wait_for("document.getElementById('error').style.display === 'block' && "
                      "document.getElementById('error').textContent === "
                      "'zvpush: payload: invalid JSON at line 1, column 9: incomplete JSON'",
                      "the one-line error")
        print(f"browser-test: a broken payload shows the CLI's line; screenshot in "
              f"{os.path.join(artefacts, 'studio.png')}")
    finally:
        if browser:
            browser.kill()
            browser.wait()
        studio.terminate()
        studio.wait()


if __name__ == "__main__":
    main()
