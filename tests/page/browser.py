"""Headless Chromium for the tests of the page: opens pages from files, reports what they asked the network and the
console for, and sets up media, sizes and scripts by the browser's debugging protocol."""
import os
import pathlib

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service


class Browser:
    """One browser with its own profile in `folder`."""

    def __init__(self, folder):
        options = Options()
        options.binary_location = "/usr/bin/chromium"
        for argument in ("--headless=new", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                         "--disable-background-networking", f"--user-data-dir={folder}/profile"):
            options.add_argument(argument)
        if os.geteuid() == 0:
            options.add_argument("--no-sandbox")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self._folder = pathlib.Path(folder)
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.protocol("Network.enable")

    def close(self):
        self.driver.quit()

    def protocol(self, command, **parameters):
        """Sends a command of the debugging protocol."""
        return self.driver.execute_cdp_cmd(command, parameters)

    def reset(self):
        """Back to a light screen of 1280 pixels with scripts and an empty page."""
        self.set_scripts(True)
        self.set_media()
        self.set_size(1280, 800)
        self.driver.get("about:blank")
        self.driver.get_log("browser")
        self.driver.get_log("performance")

    def set_scripts(self, are_on):
        self.protocol("Emulation.setScriptExecutionDisabled", value=not are_on)

    def set_media(self, media="", scheme="light"):
        # What still scrolls when it is clicked is missed.
        features = [{"name": "prefers-color-scheme", "value": scheme},
                    {"name": "prefers-reduced-motion", "value": "reduce"}]
        self.protocol("Emulation.setEmulatedMedia", media=media, features=features)

    def set_size(self, width, height, is_phone=False):
        self.protocol("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                      mobile=is_phone)

    def open(self, document):
        """Opens the document from a file; gives its address."""
        path = self._folder / "page.html"
        path.write_bytes(document)
        self.driver.get(path.as_uri())
        return path.as_uri()

    def script(self, text, *arguments):
        return self.driver.execute_script(text, *arguments)

    def accessible(self):
        """What assistive software gets: (role, name, properties) of every node that is not ignored."""
        self.protocol("Accessibility.enable")
        nodes = self.protocol("Accessibility.getFullAXTree")["nodes"]
        self.protocol("Accessibility.disable")
        return [(node["role"]["value"], node.get("name", {}).get("value", ""),
                 {each["name"]: each["value"].get("value") for each in node.get("properties", [])})
                for node in nodes if not node["ignored"]]
