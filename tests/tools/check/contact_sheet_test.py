#!/usr/bin/env python3
"""zvpush check's outputs read back by the tools that consume them. A folder of payloads (the
bundled carousel, the navy one kept as a bad example, and a file that is not JSON) is checked once
with --format junit and --report: the JUnit XML is well-formed for xmllint and has one test case
per payload x device x style (and one per payload), failed where the findings reach --fail-on; the
contact sheet opens in headless chromium from the file alone with one picture per preview, every
picture decoded, and nothing on the console. The sheet's screenshot is kept as an artefact.
Usage: contact_sheet_test.py ZVPUSH ARTEFACT_DIR"""
import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile
import urllib.request
import xml.etree.ElementTree as ET

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.join(HERE, "..", "..", "..")
sys.path.insert(0, os.path.join(ROOT, "tests", "studio"))
from browser_test import Page, WebSocket  # noqa: E402

DEVICES, STYLES = ["320", "375"], ["light", "dark"]


def check_junit(xml_text, payloads):
    with tempfile.NamedTemporaryFile("w", suffix=".xml") as f:
        f.write(xml_text)
        f.flush()
        subprocess.run(["xmllint", "--noout", f.name], check=True)
    root = ET.fromstring(xml_text)
    assert root.tag == "testsuites", root.tag
    cases = root.findall("./testsuite/testcase")
    # The broken file has only its payload case; the two others one per device and style too.
    expected = 1 + 2 * (1 + len(DEVICES) * len(STYLES))
    assert len(cases) == expected, f"{len(cases)} test cases, not {expected}"
    assert int(root.get("tests")) == expected
    failed = {c.get("classname") for c in cases if c.find("failure") is not None}
    assert failed == {payloads["broken"]}, failed
    print(f"contact-sheet-test: JUnit well-formed, {expected} test cases, the broken file failed")


def open_sheet(sheet, artefacts):
    profile = tempfile.TemporaryDirectory()
    browser = subprocess.Popen(
        ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run",
         "--disable-dev-shm-usage", "--remote-debugging-port=0",
         f"--user-data-dir={profile.name}", "--window-size=1200,1400", "about:blank"],
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    try:
        for line in browser.stderr:
            if line.startswith("DevTools listening on "):
                port = line.split()[-1].split("/")[2].split(":")[1]
                break
        else:
            raise RuntimeError("the browser did not start")
        targets = json.load(urllib.request.urlopen(f"http://127.0.0.1:{port}/json/list"))
        page = Page(WebSocket(next(t for t in targets if t["type"] == "page")["webSocketDebuggerUrl"]))
        page.call("Runtime.enable")
        page.call("Log.enable")
        page.call("Page.enable")
        page.call("Page.navigate", url="file://" + sheet)
        problems = []
        while True:
            event = json.loads(page.ws.receive())
            method, params = event.get("method"), event.get("params", {})
            if method == "Runtime.exceptionThrown" or (
                    method == "Runtime.consoleAPICalled" and params.get("type") == "error") or (
                    method == "Log.entryAdded" and params["entry"]["level"] == "error"):
                problems.append(params)
            if method == "Page.loadEventFired":
                break
        count = page.evaluate("document.querySelectorAll('img.preview').length")
        decoded = page.evaluate("[...document.querySelectorAll('img.preview')]"
                                ".every(i => i.complete && i.naturalWidth > 0)")
        expected = 2 * len(DEVICES) * len(STYLES)
        assert count == expected, f"{count} previews on the sheet, not {expected}"
        assert decoded, "a preview did not decode"
        assert not problems, f"console errors: {problems}"
        height = page.evaluate("document.documentElement.scrollHeight")
        page.call("Emulation.setDeviceMetricsOverride", width=1200, height=min(height, 1400),
                  deviceScaleFactor=1, mobile=False)
        shot = page.call("Page.captureScreenshot", format="png")["data"]
        with open(os.path.join(artefacts, "check-report.png"), "wb") as f:
            f.write(base64.b64decode(shot))
        print(f"contact-sheet-test: {count} previews decoded, no console errors; screenshot in "
              f"{os.path.join(artefacts, 'check-report.png')}")
    finally:
        browser.kill()
        browser.wait()


def main():
    zvpush, artefacts = sys.argv[1], sys.argv[2]
    os.makedirs(artefacts, exist_ok=True)
    with tempfile.TemporaryDirectory() as work:
        folder = os.path.join(work, "payloads")
        os.makedirs(folder)
        shutil.copy(os.path.join(ROOT, "examples", "carousel.json"), folder)
        shutil.copy(os.path.join(ROOT, "examples", "bad", "navy-carousel.json"), folder)
        with open(os.path.join(folder, "broken.json"), "w") as f:
            f.write('{"aps": ')
        payloads = {"broken": os.path.join(folder, "broken.json")}
        report = os.path.join(work, "report")
        run = subprocess.run([zvpush, "check", folder, "--devices", ",".join(DEVICES),
                              "--default-content-hidden", "--format", "junit", "--report", report,
                              "-j", "2"], capture_output=True, text=True)
        assert run.returncode == 1, f"exit {run.returncode}: {run.stderr}"
        check_junit(run.stdout, payloads)
        open_sheet(os.path.join(report, "index.html"), artefacts)


if __name__ == "__main__":
    main()
