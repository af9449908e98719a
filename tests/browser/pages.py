#!/usr/bin/env python3
"""The pages that the host writes, as a browser shows them: sorted, searched, drawn, printed, and without scripts.

  tests/browser/pages.py HOST IMAGE     HOST: the built program; IMAGE: the sample machine

Drives Chromium through its WebDriver with nothing but the standard library. Prints what is wrong, or how much was
right. Every wait has its end.
"""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import urllib.error
import urllib.request

PATIENCE = 60  # seconds that anything may take
ENTER, BACKSPACE, SELECT_ALL = "\ue007", "\ue003", "\ue009a\ue000"
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
HOSTILE = ["</script><img src=x onerror=\"document.title='taken'\">", "</title><script>document.title='taken'</script>",
           "<!-- &lt;b&gt; ' \" ` {{rows}}", "</tbody></table><h1>out</h1>", "javascript:alert(1)"]

checks = 0
failures = []


def check(what, found, expected=True):
    global checks
    checks += 1
    if found != expected:
        failures.append(f"{what}: {found!r} instead of {expected!r}")


class Browser:
    """A browser of its own, which ends with the block that it serves."""

    def __init__(self, folder):
        arguments = ["--headless", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
                     "--disable-component-update", "--disable-sync", "--window-size=1280,900",
                     f"--user-data-dir={folder}/profile"]
        if os.geteuid() == 0:
            arguments.append("--no-sandbox")  # which it cannot have as root
        driver, browser = shutil.which("chromedriver"), shutil.which("chromium")
        if not driver or not browser:
            sys.exit("pages.py: chromium and chromedriver are not installed")
        self.driver = subprocess.Popen([driver, "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                       start_new_session=True)
        # a driver that never says where it listens is ended, and with that the reading of what it says
        impatience = threading.Timer(PATIENCE, self.kill)
        impatience.start()
        ports = (re.search(r"started successfully on port (\d+)", line) for line in self.driver.stdout)
        port = next((found[1] for found in ports if found), None)
        impatience.cancel()
        if port is None:
            self.kill()
            sys.exit("pages.py: chromedriver does not start")
        self.open = urllib.request.build_opener(urllib.request.ProxyHandler({})).open
        self.base = f"http://localhost:{port}/session"
        wanted = {"browserName": "chrome", "goog:loggingPrefs": {"browser": "ALL"},
                  "goog:chromeOptions": {"binary": browser, "args": arguments}}
        try:
            session = self.call("", {"capabilities": {"alwaysMatch": wanted}})
        except BaseException:
            self.kill()
            raise
        self.base += "/" + session["sessionId"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.open(urllib.request.Request(self.base, method="DELETE"), timeout=10).close()
        except OSError:
            pass  # it is ended in any case
        self.kill()

    def kill(self):
        """Ends the driver and what it started, which are a group of their own."""
        try:
            os.killpg(self.driver.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.driver.wait()

    def call(self, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"})
        try:
            with self.open(request, timeout=PATIENCE) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(f"{path}: {error.read().decode()}") from error

    def go(self, path):
        self.call("/url", {"url": path.as_uri()})

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": arguments})

    def devtools(self, command, **parameters):
        return self.call("/goog/cdp/execute", {"cmd": command, "params": parameters})

    def find(self, selector):
        return "/element/" + self.call("/element", {"using": "css selector", "value": selector})[ELEMENT]

    def press(self, selector, keys):
        self.call(self.find(selector) + "/value", {"text": keys})

    def complaints(self):
        return [entry["message"] for entry in self.call("/se/log", {"type": "browser"})]

    def order(self):
        return self.run("return [...document.querySelectorAll('tbody tr')].map(row => Number(row.dataset.number))")

    def style(self, selector, name):
        return self.run("return getComputedStyle(document.querySelector(arguments[0]))[arguments[1]]", selector, name)


def written(host, kind, page, *options):
    """Writes a page; what the list holds."""
    done = subprocess.run([host, kind, "--json", "--html", str(page), *options], check=True, capture_output=True,
                          timeout=PATIENCE)
    return json.loads(done.stdout)[kind]


def check_sorting(browser, programs):
    browser.run("document.querySelectorAll('tbody tr').forEach((row, number) => { row.dataset.number = number; })")
    size = [max(program["estimatedSize"], 0) for program in programs]
    date = [program["installDate"] or "" for program in programs]
    rating = [{"trustworthy": 0, "risky": 2}.get(program["rating"], -1) for program in programs]
    unknown = {"Size": lambda i: size[i] == 0, "Installed": lambda i: date[i] == "", "Rating": lambda i: rating[i] < 0}
    key = {"Size": lambda i: size[i], "Installed": lambda i: date[i], "Rating": lambda i: rating[i]}
    titles = browser.run("return [...document.querySelectorAll('thead th')].map(heading => heading.textContent)")
    order = list(range(len(programs)))
    check("rows as the library lists them", browser.order(), order)
    for title in ("Size", "Installed", "Rating", "Size"):
        button = f"thead th:nth-child({titles.index(title) + 1}) button"
        for direction in ("descending", "ascending"):
            if direction == "descending":
                browser.call(browser.find(button) + "/click", {})
            else:
                browser.press(button, ENTER)
            known = sorted((i for i in order if not unknown[title](i)), key=key[title],
                           reverse=direction == "descending")
            order = known + [i for i in order if unknown[title](i)]
            check(f"rows by {title}, {direction}", browser.order(), order)
            sorted_by = browser.run("return [...document.querySelectorAll('[aria-sort]')]"
                                    ".map(heading => heading.textContent + heading.getAttribute('aria-sort'))")
            check("the heading that tells of the order", sorted_by, [title + direction])
    browser.call(browser.find(f"thead th:nth-child({titles.index('Name') + 1}) button") + "/click", {})
    names = [programs[i]["displayName"] for i in browser.order()]
    plain = [name for name in names if re.fullmatch(r"[A-Za-z ]+", name)]
    check("rows by name", plain, sorted(plain, key=str.lower))


def check_search(browser, programs):
    def shown():
        return browser.run("return [...document.querySelectorAll('tbody tr')].filter(row => row.offsetHeight > 0).length")

    for text in ("kestrel", "TOOLS  archiver", "бЕРЕЖОК", "no such program", "2012-06"):
        words = text.lower().split()
        parts = ("displayName", "version", "publisher", "installDate", "usage", "rating")
        texts = [" ".join(str(program[part])[:10 if part == "installDate" else None] for part in parts).lower()
                 for program in programs]
        expected = sum(all(word in row for word in words) for row in texts)
        browser.press("#search", SELECT_ALL + text)
        check(f"rows that show for {text}", shown(), expected)
        check("the count", browser.run("return document.getElementById('count').value"),
              f"{expected} of {len(programs)} programs")
    browser.press("#search", SELECT_ALL + BACKSPACE)
    check("all rows again", shown(), len(programs))


def check_icons(browser, programs):
    icons = browser.call("/execute/async", {"args": [], "script": """
        const done = arguments[arguments.length - 1];
        Promise.all([...document.querySelectorAll('symbol image')].map(async (picture) => {
          const image = new Image();
          image.src = picture.getAttribute('href');
          await image.decode().catch(() => {});
          return image.naturalWidth;
        })).then(done);"""})
    check("the width of each picture", set(icons), {32})
    check("pictures that differ", len(icons) > 12)
    used = browser.run("return [...document.querySelectorAll('tbody use')].filter("
                       "use => document.querySelector(use.getAttribute('href')) && use.getBBox().width === 32).length")
    check("rows with a picture", used, len(programs))
    row = "return [...document.querySelectorAll('tbody tr')].find(row => row.textContent.includes(arguments[0])).cells[0]"
    shots = {browser.call("/element/" + browser.run(row, name)[ELEMENT] + "/screenshot")
             for name in ("Ember Browser", "Larch Outliner", "Lindqvist Time Sheets")}
    check("icons that look different", len(shots), 3)


def check_looks(browser, page, programs):
    light = browser.style("body", "backgroundColor")
    browser.devtools("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark"}])
    check("another ground in the dark", browser.style("body", "backgroundColor") != light)
    browser.devtools("Emulation.setEmulatedMedia", media="print", features=[])
    check("no search on paper", browser.style("#tools", "display"), "none")
    check("a caption on paper", browser.style("caption", "position"), "static")
    browser.devtools("Emulation.setEmulatedMedia", media="", features=[])
    browser.devtools("Emulation.setScriptExecutionDisabled", value=True)
    browser.go(page)
    check("rows without scripts", len(browser.call("/elements", {"using": "css selector", "value": "tbody tr"})),
          len(programs))
    check("buttons without scripts", browser.call("/elements", {"using": "css selector", "value": "button"}), [])
    browser.devtools("Emulation.setScriptExecutionDisabled", value=False)


def check_hostile(browser, host, folder):
    key = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\{}]"
    text = "Windows Registry Editor Version 5.00\n"
    for number, name in enumerate(HOSTILE):
        quoted = '"' + name.replace("\\", "\\\\").replace('"', '\\"') + '"'
        text += "\n" + key.format(number) + f'\n"DisplayName"={quoted}\n"Publisher"={quoted}\n"UninstallString"="x.exe"\n'
    (folder / "image/registry").mkdir(parents=True)
    (folder / "image/registry/hostile.reg").write_text(text, encoding="utf-8")
    page = folder / "hostile.html"
    written(host, "programs", page, "--machine", str(folder / "image"), "--filter", "")
    browser.go(page)
    shown = browser.run("return [...document.querySelectorAll('tbody th, tbody td:nth-child(4)')].map(cell => cell.innerText)")
    check("hostile names and publishers", sorted(shown), sorted(HOSTILE * 2))
    check("the title", browser.run("return document.title"), "Installed programs")
    check("what the page is made of", browser.run("return [document.images, document.scripts, document.querySelectorAll("
                                                  "'h1, table')].map(found => found.length)"), [0, 1, 2])


def main():
    host, image = sys.argv[1:]
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("pages.py: ended from outside"))  # and the browser with it
    with tempfile.TemporaryDirectory(prefix="varcolin-pages-", ignore_cleanup_errors=True) as name:
        folder = pathlib.Path(name)
        with Browser(folder) as browser:
            page = folder / "programs.html"
            programs = written(host, "programs", page, "--machine", image)
            browser.go(page)
            check_sorting(browser, programs)
            check_search(browser, programs)
            check_icons(browser, programs)
            check_looks(browser, page, programs)
            check_hostile(browser, host, folder)
            page = folder / "updates.html"
            updates = written(host, "updates", page, "--machine", image, "--sort", "date", "--filter", "kb")
            browser.go(page)
            check("updates", browser.run("return document.getElementById('count').value"), f"{len(updates)} updates")
            check("the order of the command line", browser.run("return document.querySelector('[aria-sort]').textContent"),
                  "Installed")
            check("complaints of the browser", browser.complaints(), [])
    for failure in failures:
        print(failure, file=sys.stderr)
    print(f"{checks - len(failures)} of {checks} checks of pages in a browser passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
