#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The page of a track in a real browser, opened from disk.

  track_page.py TOOL FOLDER    writes pages and screenshots into the folder
"""
import base64
import functools
import http.server
import os
import pathlib
import sys
import threading
import unittest

from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

import support

TOOL, FOLDER = None, None
WEB = pathlib.Path(__file__).resolve().parents[3] / "web"

RATE = 44100
INTERVAL = 0.5
FIRST = 0.25
SECONDS = 40
TITLE = "</script><img src=x onerror='window.hit=1'>"

# Notes when each sound is started: the music by its length, the clicks by theirs.
SPY = """
window.started = [];
const start = AudioBufferSourceNode.prototype.start;
AudioBufferSourceNode.prototype.start = function (when, offset) {
    const entry = { when, offset, seconds: this.buffer.duration, first: this.buffer.getChannelData(0)[0] };
    window.started.push(entry);
    const stop = this.stop;
    this.stop = function (...rest) { entry.stopped = true; return stop.apply(this, rest); };
    return start.apply(this, arguments);
};
"""

BEATS = """
const { track } = JSON.parse(document.getElementById('data').textContent);
const bytes = (text) => Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
const frames = new DataView(bytes(track.beats.frames).buffer);
return Array.from({ length: frames.byteLength / 4 }, (_, i) =>
    frames.getInt32(4 * i, true) / track.sampleRate);
"""


def make_page(track, name, *options):
    page = os.path.join(FOLDER, name)
    support.run(TOOL, "report", *options, "-o", page, track)
    return page


class TrackPage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.makedirs(FOLDER, exist_ok=True)
        sound = os.path.join(FOLDER, "sound.wav")
        support.write_clicks(sound, RATE, SECONDS, INTERVAL, FIRST)
        cls.track = os.path.join(FOLDER, "a <b>&amp; #1.flac")
        support.run("ffmpeg", "-v", "error", "-y", "-i", sound, "-metadata", f"title={TITLE}",
                    "-metadata", "artist=Somebody & <i>friends</i>", cls.track)
        cls.page = make_page(cls.track, "page.html")
        cls.driver = support.open_browser()
        cls.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": SPY})

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()

    def setUp(self):
        support.show_as(self.driver, (1366, 768), "light")
        self.open(self.page)

    def tearDown(self):
        self.assertEqual(support.console(self.driver), [])

    def open(self, page):
        self.driver.get("about:blank")
        support.requests(self.driver)
        self.driver.get(pathlib.Path(page).as_uri())
        support.wait_for(self.driver, lambda: self.find(".play"))

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def script(self, text, *arguments):
        return self.driver.execute_script(text, *arguments)

    def position(self):
        clock = self.find(".clock .now").text.split(" / ")[0]
        minutes, seconds = clock.split(":")
        return 60 * int(minutes) + float(seconds)

    def is_playing(self):
        return self.find(".play").accessible_name == "Pause"

    def play(self):
        self.find(".play").click()
        support.wait_for(self.driver, self.is_playing)

    def type(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()
        support.settle()

    def clicks(self):
        """When the clicks come that were started and not taken back, in seconds of the track."""
        started = self.script("return window.started")
        music = [each for each in started if each["seconds"] > 1][-1]
        return [each["when"] - music["when"] + music["offset"] for each in started
                if each["seconds"] < 1 and not each.get("stopped")]

    def test_shows_names_as_text_and_asks_for_nothing_else(self):
        support.settle()
        self.assertEqual(self.find("h1").text, TITLE)
        self.assertEqual(self.find(".artist").text, "Somebody & <i>friends</i>")
        self.assertIn("a <b>&amp; #1.flac", self.find(".file").text)
        self.assertIsNone(self.script("return window.hit ?? null"))
        self.assertEqual(self.all("img, iframe, object, embed, base"), [])
        asked = [url for url in support.requests(self.driver) if not url.startswith("data:")]
        self.assertEqual(asked, [pathlib.Path(self.page).as_uri()])

    def test_plays_and_pauses(self):
        self.play()
        first = self.position()
        support.wait_for(self.driver, lambda: self.position() > first + 0.5)
        self.find(".play").click()
        support.settle()
        self.assertFalse(self.is_playing())
        stopped = self.position()
        support.settle(0.4)
        self.assertEqual(self.position(), stopped)

    def test_clicks_are_started_on_the_beats(self):
        beats = self.script(BEATS)
        self.assertGreater(len(beats), 30)
        self.play()
        support.wait_for(self.driver, lambda: len(self.clicks()) >= 6)
        for click in self.clicks():
            self.assertLess(min(abs(click - beat) for beat in beats), 0.001)
        downbeats = [each for each in self.script("return window.started")
                     if each["seconds"] < 1 and each["first"] == 1]
        self.assertGreaterEqual(len(downbeats), 1)
        self.find(".play").click()

    def test_sound_in_the_page_begins_with_the_music(self):
        """Every burst of the track is where it was written, to a millisecond, when the browser has
        decoded the page's sound: at the rate of the sound and at another."""
        expected = [FIRST + INTERVAL * i for i in range(int((SECONDS - FIRST) / INTERVAL))]
        for rate in (48000, 44100):
            found = self.driver.execute_async_script("""
                const [rate, places, done] = arguments;
                const text = document.getElementById('sound').textContent;
                const bytes = Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
                new OfflineAudioContext(2, 1, rate).decodeAudioData(bytes.buffer).then((sound) => {
                    const samples = sound.getChannelData(0);
                    const onset = (place) => {
                        for (let i = Math.round((place - 0.05) * rate); ; ++i)
                            if (Math.abs(samples[i]) > 0.2) return i / rate;
                    };
                    done({ seconds: sound.duration, onsets: places.map(onset) });
                });""", rate, expected)
            self.assertAlmostEqual(found["seconds"], SECONDS, delta=0.0005)
            for place, onset in zip(expected, found["onsets"]):
                self.assertLess(abs(onset - place), 0.001, f"at {rate} Hz")

    def open_modules(self):
        """The modules as they are, by a server that ends with the test."""
        serve = functools.partial(Quiet, directory=str(WEB))
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), serve)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.driver.get(f"http://127.0.0.1:{server.server_port}/empty.html")

    def test_metronome_renders_on_the_beats(self):
        """The audio graph itself, rendered: the onsets of its sound are those of the beats."""
        self.open_modules()
        beats = [0.0, 0.31, 0.6237, 1.0001, 2.499]
        onsets = self.driver.execute_async_script("""
            const [beats, done] = arguments;
            import('/track/Metronome.js').then(async ({ Metronome }) => {
                const rate = 48000;
                const context = new OfflineAudioContext(1, 3 * rate, rate);
                const metronome = new Metronome(context, context.destination);
                const grid = beats.map((seconds, i) => ({ seconds, number: (i % 4) + 1, bpm: 120 }));
                metronome.schedule(grid, 0, 3, (seconds) => seconds);
                const samples = (await context.startRendering()).getChannelData(0);
                const onsets = [];
                for (let i = 0; i < samples.length; ++i) {
                    if (Math.abs(samples[i]) < 0.05) continue;
                    onsets.push(i / rate);
                    i += 0.06 * rate;
                }
                done(onsets);
            });""", beats)
        self.assertEqual(len(onsets), len(beats))
        for onset, beat in zip(onsets, beats):
            self.assertLess(abs(onset - beat), 0.001)

    def test_another_reading_is_one_click_away(self):
        name, tempo = self.all(".choice")[1].text.split("\n")[:2]
        self.assertNotEqual(float(tempo), float(self.all(".choice .tempo")[0].text))
        self.play()
        support.wait_for(self.driver, lambda: len(self.clicks()) >= 4)
        self.all(".choice")[1].click()
        now = self.position()

        def later():
            return [click for click in self.clicks() if click > now + 0.5]
        support.wait_for(self.driver, lambda: len(later()) >= 4)
        for one, other in zip(later(), later()[1:]):
            self.assertAlmostEqual(other - one, 60 / float(tempo), delta=0.01)
        self.find(".play").click()
        self.assertIn(name, self.find(".status").text)

    def test_is_used_by_keys_alone(self):
        beats = self.script(BEATS)
        self.type(Keys.ARROW_RIGHT)
        self.assertAlmostEqual(self.position(), beats[0], delta=0.011)
        self.type(Keys.ARROW_RIGHT)
        self.assertAlmostEqual(self.position(), beats[1], delta=0.011)
        self.type(Keys.ARROW_LEFT)
        self.assertAlmostEqual(self.position(), beats[0], delta=0.011)
        self.type(Keys.END)
        self.assertAlmostEqual(self.position(), SECONDS, delta=0.011)
        self.type(Keys.HOME)
        self.assertEqual(self.position(), 0)
        self.type("m")
        self.assertEqual(self.find("button[aria-pressed]").get_attribute("aria-pressed"), "false")
        self.type("2")
        self.assertTrue(self.all(".choice input")[1].is_selected())
        self.type(Keys.SPACE)
        support.wait_for(self.driver, self.is_playing)
        self.type(Keys.SPACE)
        self.assertFalse(self.is_playing())

    def test_letters_can_be_switched_off(self):
        self.find(".keys-help summary").click()
        self.find(".keys-help input").click()
        self.script("document.activeElement.blur()")
        self.type("m")
        self.assertEqual(self.find("button[aria-pressed]").get_attribute("aria-pressed"), "true")

    def test_every_control_is_reached_by_tab_and_is_seen(self):
        reached = set()
        for _ in range(60):
            ActionChains(self.driver).send_keys(Keys.TAB).perform()
            state = self.script("""
                const now = document.activeElement;
                const style = getComputedStyle(now);
                return [now.outerHTML.slice(0, 90), style.outlineStyle, parseFloat(style.outlineWidth),
                    now === document.body]""")
            if state[3]:
                break
            reached.add(state[0])
            self.assertNotEqual(state[1], "none", state[0])
            self.assertGreaterEqual(state[2], 2, state[0])
        expected = self.script("""
            return [...document.querySelectorAll(
                'button:enabled, summary, [role=slider], input:not([type=radio])')]
                .filter((each) => each.checkVisibility()).map((each) => each.outerHTML.slice(0, 90))""")
        self.assertLessEqual(set(expected), reached)

    def test_seeks_by_clicks_and_by_the_slider(self):
        slider = self.find("[role=slider]")
        ActionChains(self.driver).move_to_element_with_offset(slider, 0, 0).click().perform()
        support.settle()
        self.assertAlmostEqual(self.position(), SECONDS / 2, delta=0.2)
        # Both are rounded, one to seconds and the other to hundredths.
        self.assertAlmostEqual(int(slider.get_attribute("aria-valuenow")), self.position(),
                               delta=0.51)
        slider.send_keys(Keys.ARROW_LEFT)
        support.settle()
        self.assertAlmostEqual(self.position(), int(SECONDS / 2) - 5, delta=1.1)
        zoom = self.find("canvas.zoom")
        before = self.position()
        ActionChains(self.driver).drag_and_drop_by_offset(zoom, -200, 0).perform()
        support.settle()
        self.assertAlmostEqual(self.position(), before + 200 * 8 / zoom.size["width"], delta=0.1)

    def test_magnifies(self):
        def seconds():
            return int(self.find("canvas.zoom").get_attribute("aria-label").split()[1])
        before = seconds()
        self.find("[aria-label='See less, larger']").click()
        support.settle()
        self.assertEqual(seconds(), before // 2)
        self.type("-")
        self.assertEqual(seconds(), before)
        for _ in range(8):
            self.type("+")
        self.assertEqual(seconds(), 1)
        self.assertFalse(self.find("[aria-label='See less, larger']").is_enabled())

    def test_screen_readers_are_given_names_and_values(self):
        self.find(".numbers summary").click()
        support.settle()
        tree = support.accessibility_tree(self.driver)
        for role, name, _, focusable in tree:
            if focusable and role not in ("RootWebArea", "generic"):
                self.assertNotEqual(name, "", role)
        roles = {}
        for role, name, value, _ in tree:
            roles.setdefault(role, []).append((name, value))
        self.assertIn(("Play", None), roles["button"])
        self.assertIn("Position in the track", [name for name, _ in roles["slider"]])
        self.assertIn("Volume of the click", [name for name, _ in roles["slider"]])
        self.assertEqual(len(roles["radio"]), len(self.all(".choice")))
        self.assertTrue(roles["radio"][0][0].startswith("As found"))
        self.assertEqual(len(roles["meter"]), len(self.all(".confidence li")))
        self.assertEqual(len(roles["table"]), len(self.all("table")))
        self.assertTrue(any(name.startswith("Wheel of keys") or name.startswith("Waveform")
                            for name, _ in roles["image"]))
        captions = [caption.text for caption in self.all("caption")]
        for caption in ("Track", "Tempo", "Beats"):
            self.assertIn(caption, captions)
        beats = self.script("""
            const tables = [...document.querySelectorAll('table')];
            const beats = tables.find((table) => table.caption.textContent === 'Beats');
            return [...beats.tBodies[0].rows].map((row) => Number(row.cells[3].textContent))""")
        for shown, beat in zip(beats, self.script(BEATS), strict=True):
            self.assertAlmostEqual(shown, beat, delta=0.00051)

    def test_hands_corrections_on_and_shows_what_comes_back(self):
        data = self.script("return document.getElementById('data').textContent")
        self.open_modules()
        self.driver.execute_async_script("""
            const [text, done] = arguments;
            const { track } = JSON.parse(text);
            window.asked = [];
            const answer = (corrections, bpm) =>
                ({ ...track, corrections, tempo: { ...track.tempo, bpm } });
            const corrections = {
                apply: async (kind, value) => {
                    window.asked.push([kind, value]);
                    if (kind === 'halve') throw new Error('would get a tempo beyond 20 to 1000 BPM');
                    return answer([{ kind, value, text: `${kind} by hand` }], 99);
                },
                undo: async () => { window.asked.push(['undo']); return answer([], 98); },
            };
            import('/track/trackView.js').then(({ showTrack }) => {
                window.view = showTrack(document.getElementById('view'), track, { corrections });
                done();
            });""", data)
        panel = self.find(".corrections")
        buttons = {each.accessible_name: each for each in panel.find_elements(By.TAG_NAME, "button")}
        self.assertFalse(buttons["Undo"].is_enabled())
        self.assertFalse(buttons["Keep it"].is_enabled())
        buttons["× 2"].click()
        support.settle()
        self.assertEqual(self.find(".answer strong").text, "99.00")
        self.assertEqual(self.find(".made").text, "double by hand")
        buttons["+10 ms"].click()
        buttons["−1 ms"].click()
        self.type(Keys.HOME, Keys.ARROW_RIGHT)
        position = self.position()
        buttons["A bar begins here"].click()
        for _ in range(5):
            buttons["Tap the beat"].click()
            support.settle(0.4)
        self.assertIn("BPM", self.find(".tapped").text)
        buttons["Keep it"].click()
        buttons["Set the key"].click()
        support.settle()
        buttons["Undo"].click()
        support.settle()
        self.assertEqual(self.find(".answer strong").text, "98.00")
        buttons["÷ 2"].click()
        support.settle()
        self.assertIn("Would get a tempo beyond 20 to 1000 BPM", panel.find_element(By.CSS_SELECTOR, ".problem").text)
        asked = self.script("return window.asked")
        kinds = ["double", "shift-ms", "shift-ms", "downbeat", "bpm", "key", "undo", "halve"]
        self.assertEqual([each[0] for each in asked], kinds)
        self.assertEqual([asked[1][1], asked[2][1]], [10, -1])
        self.assertAlmostEqual(asked[3][1], position, delta=0.011)
        self.assertTrue(80 < asked[4][1] < 160, asked[4])
        for size in support.SIZES:
            support.show_as(self.driver, size, "dark")
            support.settle()
            self.script("arguments[0].scrollIntoView({block: 'center'})", panel)
            self.driver.save_screenshot(os.path.join(FOLDER, f"corrections-{size[0]}.png"))
        self.driver.execute_async_script("window.view.destroy().then(arguments[0])")
        self.assertEqual(self.all("#view > *"), [])

    def test_fits_every_screen_in_both_schemes(self):
        for size in support.SIZES:
            for scheme in support.SCHEMES:
                support.show_as(self.driver, size, scheme)
                support.settle()
                width = self.script("return document.documentElement.scrollWidth")
                self.assertLessEqual(width, size[0])
                name = f"{size[0]}-{scheme}.png"
                shot = self.driver.execute_cdp_cmd("Page.captureScreenshot", {"format": "png"})
                with open(os.path.join(FOLDER, name), "wb") as file:
                    file.write(base64.b64decode(shot["data"]))

    def test_refers_to_the_file_and_plays_it(self):
        self.open(make_page(self.track, "beside.html", "--no-embed"))
        self.play()
        first = self.position()
        support.wait_for(self.driver, lambda: self.position() > first + 0.5)
        self.assertIn("off by some milliseconds", self.find(".status").text)
        self.find(".play").click()
        support.settle()
        self.assertFalse(self.is_playing())
        asked = {url for url in support.requests(self.driver) if not url.startswith("data:")}
        self.assertEqual(asked, {pathlib.Path(FOLDER, "beside.html").as_uri(),
                                 pathlib.Path(self.track).as_uri()})

    def test_shows_a_track_in_which_nothing_was_found(self):
        silence = os.path.join(FOLDER, "silence.wav")
        support.run("ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i", "anullsrc=r=44100", "-t", "6",
                    silence)
        self.open(make_page(silence, "silence.html"))
        support.settle()
        self.assertEqual([each.text for each in self.all(".answer strong")],
                         ["none found", "none found", "none found"])
        self.play()
        support.wait_for(self.driver, lambda: self.position() > 0.5)
        self.find(".play").click()

    def test_stays_small_without_its_sound(self):
        """Five minutes take less than a megabyte, sound aside."""
        long = os.path.join(FOLDER, "long.wav")
        support.run("ffmpeg", "-v", "error", "-y", "-stream_loop", "7", "-i",
                    os.path.join(FOLDER, "sound.wav"), "-t", "300", long)
        page = make_page(long, "long.html", "--no-embed")
        self.assertLess(os.path.getsize(page), 1_000_000)
        os.remove(long)


class Quiet(http.server.SimpleHTTPRequestHandler):
    extensions_map = {".js": "text/javascript", ".css": "text/css"}

    def do_GET(self):
        if self.path == "/empty.html":
            body = (b'<!DOCTYPE html><html lang="en"><meta charset="utf-8"><title>View</title>'
                    b'<meta name="viewport" content="width=device-width">'
                    b'<link rel="stylesheet" href="track/track.css"><link rel="icon" href="data:,">'
                    b'<main id="view"></main></html>')
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)
        else:
            super().do_GET()

    def log_message(self, *_):
        pass


if __name__ == "__main__":
    TOOL, FOLDER = os.path.abspath(sys.argv.pop(1)), os.path.abspath(sys.argv.pop(1))
    unittest.main()
