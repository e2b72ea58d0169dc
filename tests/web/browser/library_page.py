#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The application over a catalogue in a real browser.

  library_page.py TOOL FOLDER    writes catalogues and screenshots into the folder
"""
import json
import os
import shutil
import signal
import sqlite3
import struct
import subprocess
import sys
import unittest
import urllib.parse

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

import support

TOOL, FOLDER, MAKER = None, None, None

TRACKS = 100000
SECONDS = 30
HOSTILE = "</script><img src=x onerror='window.hit=1'>"

# When the first row with a name stands in the page, in milliseconds from the beginning.
FIRST_ROW = """
const look = () => {
    const name = document.querySelector('.row .first');
    if (name && name.textContent) requestAnimationFrame(() => { window.firstRow = performance.now(); });
    else requestAnimationFrame(look);
};
requestAnimationFrame(look);
"""

# Scrolls with every picture, first slowly and then by thousands of rows. Yields the times between
# pictures, the first few left out.
SCROLL = """
const done = arguments[arguments.length - 1];
const area = document.querySelector('.rows');
const times = [];
let before = performance.now();
const step = (now) => {
    times.push(now - before);
    before = now;
    if (times.length >= 240) return done(times.slice(5));
    area.scrollTop += times.length < 160 ? 90 : 40000;
    requestAnimationFrame(step);
};
requestAnimationFrame(step);
"""

# The least contrast of any text of the list with what it stands on.
CONTRAST = """
const parse = (color) => {
    const srgb = color.match(/color\\(srgb ([\\d. e-]+)(?:\\/ ([\\d.]+))?\\)/);
    if (srgb) return [...srgb[1].trim().split(' ').map((value) => 255 * value), Number(srgb[2] ?? 1)];
    const [red, green, blue, alpha = 1] = color.match(/[\\d.]+/g).map(Number);
    return [red, green, blue, alpha];
};
const over = (front, back) => back.map((value, i) => front[3] * front[i] + (1 - front[3]) * value);
const ground = (element) => {
    if (!element) return [255, 255, 255];
    return over(parse(getComputedStyle(element).backgroundColor), ground(element.parentElement));
};
const luminance = (color) => {
    const [red, green, blue] = color.map((value) => value / 255)
        .map((value) => value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4);
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
};
let least = [99, ''];
for (const element of document.querySelectorAll('#library *')) {
    const says = [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim());
    if (!says || element.matches(':disabled, option') || !element.checkVisibility()) continue;
    const back = ground(element);
    const front = over(parse(getComputedStyle(element).color), back).slice(0, 3);
    const [bright, dark] = [luminance(front), luminance(back)].sort((a, b) => b - a);
    const contrast = (bright + 0.05) / (dark + 0.05);
    if (contrast < least[0]) least = [contrast, element.className + ': ' + element.textContent];
}
return least;
"""


class Server:
    """The program while it serves a catalogue."""

    def __init__(self, catalogue, port=0):
        self.process = subprocess.Popen(
            [TOOL, "serve", "--catalogue", catalogue, "--port", str(port)],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.address = self.process.stdout.readline().strip()
        self.origin = self.address.split("/?")[0]
        self.port = urllib.parse.urlsplit(self.origin).port

    def stop(self):
        """Ends it as Ctrl-C does. Yields its exit status."""
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGINT)
        self.process.stdout.close()
        return self.process.wait(10)


def make_music(folder, names):
    os.makedirs(folder, exist_ok=True)
    sound = os.path.join(FOLDER, "sound.wav")
    if not os.path.exists(sound):
        support.write_clicks(sound, 44100, SECONDS, 1.0, 0.25)
    for name, title in names:
        support.run("ffmpeg", "-v", "error", "-y", "-i", sound, "-metadata", f"title={title}",
                    "-metadata", f"artist={name}", "-metadata", f"comment={name}",
                    os.path.join(folder, name + ".flac"))


def varint(number):
    return bytes([number]) if number < 128 else bytes([number % 128 + 128]) + varint(number >> 7)


def strip(seed):
    """A loudness wave of 400 points as docs/catalogue.md describes blobs."""
    levels = b"".join(struct.pack("<f", 1000.0 + (i * seed * 7919) % 20000) for i in range(400))
    colors = b"".join(varint(2 * ((i // 9 + seed) % 6)) for i in range(400))
    return b"\x01" + varint(400) + b"\x01" + levels + colors


def make_large_library():
    path = os.path.join(FOLDER, "large.sqlite")
    if os.path.exists(path):
        return path
    support.run(MAKER, path + ".draft", str(TRACKS))
    with sqlite3.connect(path + ".draft") as catalogue:
        catalogue.execute("CREATE TEMP TABLE strips (number INTEGER, loud BLOB)")
        catalogue.executemany("INSERT INTO strips VALUES (?, ?)",
                              [(seed, strip(seed + 1)) for seed in range(40)])
        catalogue.execute("INSERT INTO waves SELECT r.id, s.loud, x'', x'' FROM results r "
                          "JOIN strips s ON s.number = r.id % 40")
    os.rename(path + ".draft", path)
    return path


class Browsing(unittest.TestCase):
    """A browser at the application."""

    def setUp(self):
        self.driver = support.open_browser()
        self.addCleanup(self.driver.quit)

    def serve(self, catalogue, port=0):
        self.server = Server(catalogue, port)
        self.addCleanup(self.server.stop)
        self.driver.get(self.server.address)
        self.wait_for_rows()

    def wait_for_rows(self):
        support.wait_for(self.driver, lambda: any(self.names()))

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return support.wait_for(self.driver, lambda: next(
            (each for each in self.all(selector) if each.is_displayed()), None))

    def button(self, text):
        return support.wait_for(self.driver, lambda: next(
            (each for each in self.all("button") if each.text == text and each.is_displayed()), None))

    def names(self):
        """The first lines of the rows that are in the page, in order."""
        return self.driver.execute_script(
            "return [...document.querySelectorAll('.row:not([hidden])')]"
            ".sort((a, b) => a.getAttribute('aria-rowindex') - b.getAttribute('aria-rowindex'))"
            ".map((row) => row.querySelector('.first').textContent)")

    def count(self):
        return self.one(".count").text

    def wait_for_count(self, text):
        support.wait_for(self.driver, lambda: self.count() == text)

    def open_track(self, name):
        row = next(each for each in self.all(".row .first") if each.text == name)
        row.click()
        self.one(".corrections")

    def wait_for_tempo(self, text):
        support.wait_for(self.driver, lambda: self.driver.execute_script(
            "return document.querySelector('.track-view .head')?.innerText ?? ''")
            .find(text) >= 0)

    def expect_quiet(self):
        """Nothing in the console, and no request to any other place."""
        self.assertEqual(support.console(self.driver), [])
        for address in support.requests(self.driver):
            self.assertRegex(address, rf"^({self.server.origin}/|data:|blob:{self.server.origin}/|"
                                      "about:|chrome:)")

    def type(self, *keys):
        for key in keys:
            ActionChains(self.driver).send_keys(key).perform()
            support.settle(0.1)

    def focused(self):
        return self.driver.execute_script(
            "const e = document.activeElement; return e.getAttribute('aria-label') || e.textContent")

    def focused_class(self):
        return self.driver.execute_script("return document.activeElement.className")


class SmallLibrary(Browsing):
    """Three tracks of two bursts a second, which are found to beat 60 times a minute."""

    def setUp(self):
        super().setUp()
        self.folder = os.path.join(FOLDER, self.id().rpartition(".")[2])
        shutil.rmtree(self.folder, ignore_errors=True)
        self.music = os.path.join(self.folder, "music")
        make_music(self.music, [("one", "First song"), ("two", "Second song"), ("three", HOSTILE)])
        self.catalogue = os.path.join(self.folder, "c.sqlite")
        self.scan()
        self.serve(self.catalogue)

    def scan(self):
        support.run(TOOL, "scan", "--catalogue", self.catalogue, self.music)

    def restart(self):
        # A page that is open would ask a program that has ended.
        self.driver.get("about:blank")
        self.assertEqual(self.server.stop(), 0)
        self.serve(self.catalogue, self.server.port)

    def test_correction_is_there_after_reload_restart_and_rescan(self):
        self.open_track("First song")
        self.wait_for_tempo("60.00")
        self.button("× 2").click()
        self.wait_for_tempo("120.00")
        self.driver.refresh()
        self.wait_for_tempo("120.00")
        self.button("‹ Tracks").click()
        self.wait_for_rows()
        self.restart()
        self.open_track("First song")
        self.wait_for_tempo("120.00")
        os.utime(os.path.join(self.music, "one.flac"))
        self.scan()
        self.driver.refresh()
        self.wait_for_tempo("120.00")
        self.button("Undo").click()
        self.wait_for_tempo("60.00")
        self.expect_quiet()

    def test_every_correction_can_be_made_and_taken_back(self):
        self.open_track("Second song")
        self.wait_for_tempo("60.00")
        made = 0
        for text in ("÷ 2", "3 : 2", "Half a beat later", "+10 ms", "A bar begins here"):
            self.button(text).click()
            made += 1
            support.wait_for(self.driver, lambda: len(self.all(".made li")) == made)
        self.driver.execute_script(
            "const s = document.querySelector('.corrections select'); s.value = '12'")
        self.button("Set the key").click()
        support.wait_for(self.driver, lambda: len(self.all(".made li")) == 6)
        for _ in range(6):
            before = len(self.all(".made li"))
            self.button("Undo").click()
            support.wait_for(self.driver, lambda: len(self.all(".made li")) == before - 1)
        self.assertFalse(self.button("Undo").is_enabled())
        self.expect_quiet()

    def test_sound_plays_and_moves_on(self):
        self.open_track("First song")
        self.one(".transport button[aria-label^='Play'], .transport .play").click()
        position = self.one("[role=slider]")
        support.wait_for(self.driver, lambda: int(position.get_attribute("aria-valuenow")) >= 2)
        self.expect_quiet()

    def test_names_stay_text(self):
        self.assertIn(HOSTILE, self.names())
        self.open_track(HOSTILE)
        support.settle()
        self.assertIsNone(self.driver.execute_script("return window.hit ?? null"))
        self.assertEqual(self.all("#library img, #track img"), [])
        self.expect_quiet()

    def test_list_shows_what_a_scan_adds_meanwhile(self):
        self.wait_for_count("3 tracks")
        make_music(self.music, [("four", "Fourth song")])
        self.scan()
        self.wait_for_count("4 tracks")
        self.assertIn("Fourth song", self.names())
        self.expect_quiet()

    def test_end_of_the_program_is_said(self):
        port = self.server.port
        self.server.stop()
        support.wait_for(self.driver, lambda: "does not answer" in self.one(".notice").text)
        again = Server(self.catalogue, port)
        self.addCleanup(again.stop)
        support.wait_for(self.driver, lambda: "knows this page no longer" in self.one(".notice").text)
        self.driver.get(again.address)
        self.wait_for_rows()
        self.assertFalse(self.driver.find_element(By.ID, "notice").is_displayed())

    def test_keyboard_alone_finds_corrects_and_exports(self):
        self.driver.execute_script("""
            const create = URL.createObjectURL;
            URL.createObjectURL = (blob) => {
                blob.text().then((text) => { window.saved = text; });
                return create.call(URL, blob);
            };""")
        self.type("/", "second")
        support.wait_for(self.driver, lambda: self.names() == ["Second song"])
        for _ in range(30):
            if self.focused() == "Tracks" and self.driver.execute_script(
                    "return document.activeElement.getAttribute('role')") == "grid":
                break
            self.type(Keys.TAB)
        self.type(Keys.SPACE)
        self.wait_for_count("1 chosen of 1 track")
        self.type(Keys.TAB, Keys.TAB, Keys.ENTER)
        saved = support.wait_for(self.driver, lambda: self.driver.execute_script(
            "return window.saved ?? null"))
        self.assertIn(os.path.join(self.music, "two.flac"), saved)
        for _ in range(2):
            ActionChains(self.driver).key_down(Keys.SHIFT).send_keys(Keys.TAB).key_up(
                Keys.SHIFT).perform()
        self.assertEqual(self.focused(), "Tracks")
        self.type(Keys.ENTER)
        self.wait_for_tempo("60.00")
        support.wait_for(self.driver, lambda: self.focused_class() == "track-body")
        # Space plays, and does not press a button.
        self.type(Keys.SPACE)
        support.wait_for(self.driver, lambda: self.driver.execute_script(
            "return document.querySelector('.track-view [aria-label=Pause]') !== null"))
        self.type(Keys.SPACE)
        self.assertIn("#track/", self.driver.current_url)
        for _ in range(60):
            if self.focused() == "× 2":
                break
            self.type(Keys.TAB)
        self.type(Keys.ENTER)
        self.wait_for_tempo("120.00")
        self.expect_quiet()

    def test_mixing_tracks_are_found_from_the_page_of_one(self):
        self.open_track("First song")
        self.button("What mixes with it").click()
        support.wait_for(self.driver, lambda: "Mixes with First song" in self.one(".companion").text)
        support.wait_for(self.driver, lambda: "First song" not in self.names())
        self.one(".companion").click()
        self.wait_for_count("3 tracks")
        self.expect_quiet()


class LargeLibrary(Browsing):
    """A hundred thousand invented tracks."""

    @classmethod
    def setUpClass(cls):
        cls.catalogue = make_large_library()

    def setUp(self):
        super().setUp()
        self.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": FIRST_ROW})
        self.serve(self.catalogue)

    def test_first_row_is_there_within_a_second(self):
        times = []
        for _ in range(5):
            self.driver.get(self.server.origin + "/")
            times.append(support.wait_for(self.driver, lambda: self.driver.execute_script(
                "return window.firstRow ?? null")))
        print("first row after", [round(time) for time in times], "ms")
        self.assertLessEqual(min(times), 1000)
        self.expect_quiet()

    def test_scrolling_takes_no_more_than_50_ms_a_picture(self):
        for size in ((1366, 768), (360, 740)):
            support.show_as(self.driver, size, "light")
            self.driver.get(self.server.origin + "/")
            self.wait_for_rows()
            support.settle(1)
            longest = []
            # Other programs on the machine can only make it longer.
            while len(longest) < 8 and min(longest, default=99) > 50:
                longest.append(max(self.driver.execute_async_script(SCROLL)))
            print(size, "longest time between two pictures", longest, "ms")
            self.assertLessEqual(min(longest), 50.0)
        self.expect_quiet()

    def test_every_row_is_in_its_place_after_a_long_way(self):
        self.one(".rows").click()
        self.type(Keys.END)
        support.wait_for(self.driver, lambda: all(self.names()) and len(self.names()) > 3)
        shown = self.driver.execute_script(
            "return [...document.querySelectorAll('.row:not([hidden])')].map((row) =>"
            "[Number(row.getAttribute('aria-rowindex')), row.querySelector('.first').textContent])")
        total = int(self.one(".rows").get_attribute("aria-rowcount"))
        self.assertEqual(max(index for index, _ in shown), total)
        listed = json.loads(self.driver.execute_async_script(
            "const done = arguments[arguments.length - 1];"
            f"fetch('/api/tracks?offset={total - 100}&limit=100')"
            ".then((answer) => answer.text()).then(done)"))["tracks"]
        for index, name in shown:
            self.assertEqual(name, listed[index - 1 - (total - 100)]["title"])
        self.type(Keys.HOME)
        support.wait_for(self.driver, lambda: self.driver.execute_script(
            "return document.querySelector('.row.active').getAttribute('aria-rowindex')") == "1")
        self.expect_quiet()

    def test_filters_and_order_are_those_of_the_program(self):
        self.one("input[type=search]").send_keys("electric moon")
        support.wait_for(self.driver, lambda: self.count() not in ("", "95,000 tracks"))
        listed = subprocess.run([TOOL, "list", "--catalogue", self.catalogue, "--format", "jsonl",
                                 "--sort", "bpm", "--reverse", "electric moon"],
                                check=True, capture_output=True, text=True).stdout.splitlines()
        for _ in range(2):
            self.one(".headings button[data-order=bpm]").click()
        support.wait_for(self.driver, lambda: self.count() == f"{len(listed):,} tracks")
        titles = [json.loads(line)["title"] for line in listed]
        support.wait_for(self.driver, lambda: self.names() == titles[:len(self.names())])
        self.driver.refresh()
        support.wait_for(self.driver, lambda: self.names() == titles[:len(self.names())] != [])
        self.button("Failed").click()
        support.wait_for(self.driver, lambda: self.count().startswith("10,000"))
        self.expect_quiet()

    def test_it_fits_every_screen_in_both_schemes(self):
        for scheme in support.SCHEMES:
            for size in support.SIZES:
                support.show_as(self.driver, size, scheme)
                self.driver.get(self.server.origin + "/#tracks?low=1")
                self.driver.refresh()
                self.wait_for_rows()
                support.settle(0.6)
                self.driver.save_screenshot(
                    os.path.join(FOLDER, f"library-{size[0]}-{scheme}.png"))
                wide = self.driver.execute_script(
                    "return [document.documentElement.scrollWidth - innerWidth,"
                    "document.documentElement.scrollHeight - innerHeight]")
                self.assertEqual(wide, [0, 0], size)
                self.one(".row .check").click()
                ActionChains(self.driver).move_to_element(self.all(".row .length")[0]).perform() \
                    if size[0] > 1000 else None
                contrast, text = self.driver.execute_script(CONTRAST)
                self.assertGreaterEqual(contrast, 4.5, f"{scheme} {size}: {text}")
        self.expect_quiet()

    def test_screen_readers_are_told_names_and_places(self):
        tree = support.accessibility_tree(self.driver)
        for role, name, _, focusable in tree:
            if focusable and role not in ("RootWebArea",):
                self.assertTrue(name, role)
        roles = {role for role, _, _, _ in tree}
        self.assertTrue({"grid", "row", "gridcell", "searchbox", "combobox"} <= roles, roles)
        cells = [name for role, name, _, _ in tree if role == "gridcell"]
        self.assertTrue(any("BPM" in name for name in cells), cells[:3])


if __name__ == "__main__":
    TOOL, FOLDER = (os.path.abspath(argument) for argument in sys.argv[1:3])
    # Built beside the tool.
    MAKER = os.path.join(os.path.dirname(TOOL), "..", "tests", "app", "beatatlas_make_library")
    os.makedirs(FOLDER, exist_ok=True)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:], verbosity=2)
