# SPDX-License-Identifier: MIT
"""A real browser for tests, and what it saw. Chromium without a window, driven by Selenium."""
import json
import math
import struct
import subprocess
import time
import wave

from selenium import webdriver
from selenium.webdriver.support.ui import WebDriverWait

SCHEMES = ("light", "dark")
SIZES = ((360, 740), (1366, 768), (3840, 2160))


def open_browser(size=(1366, 768), scheme="light"):
    """A browser that keeps its console and its requests. Sound may begin without a click, as no
    test can make one that the browser takes for a person's in every case."""
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--hide-scrollbars", "--autoplay-policy=no-user-gesture-required"):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    driver = webdriver.Chrome(options=options)
    driver.set_script_timeout(60)
    show_as(driver, size, scheme)
    return driver


def show_as(driver, size, scheme):
    width, height = size
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
        "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": scheme}]})


def console(driver):
    """Everything the console has said since the last call."""
    return [entry["message"] for entry in driver.get_log("browser")]


def requests(driver):
    """The addresses asked for since the last call."""
    messages = [json.loads(entry["message"])["message"] for entry in driver.get_log("performance")]
    return [message["params"]["request"]["url"] for message in messages
            if message["method"] == "Network.requestWillBeSent"]


def wait_for(driver, condition, seconds=20):
    return WebDriverWait(driver, seconds, poll_frequency=0.05).until(lambda _: condition())


def accessibility_tree(driver):
    """What screen readers are told: (role, name, value, focusable) of each node that counts."""
    nodes = driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
    found = []
    for node in nodes:
        if node.get("ignored"):
            continue
        properties = {each["name"]: each["value"].get("value") for each in node["properties"]}
        found.append((node["role"]["value"], node.get("name", {}).get("value", ""),
                      node.get("value", {}).get("value"), properties.get("focusable", False)))
    return found


def write_clicks(path, rate, seconds, interval, first):
    """A stereo WAV file of short bursts at equal distances, the first of every four stronger."""
    frames = int(seconds * rate)
    samples = [0] * frames
    for number in range(int((seconds - first) / interval)):
        begin = round((first + number * interval) * rate)
        height = 26000 if number % 4 == 0 else 18000
        for i in range(min(2000, frames - begin)):
            fall = math.exp(-i / 300)
            samples[begin + i] = round(height * fall * math.cos(2 * math.pi * 110 * i / rate))
    with wave.open(path, "wb") as file:
        file.setnchannels(2)
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(b"".join(struct.pack("<hh", value, value) for value in samples))


def run(*arguments):
    subprocess.run(arguments, check=True, capture_output=True)


def settle(seconds=0.3):
    """Lets the page draw."""
    time.sleep(seconds)
