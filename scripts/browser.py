"""A headless Chromium, driven through Debian's chromedriver; for check-page and make-picture."""
import base64
import contextlib
import json
import shutil
import subprocess
import tempfile
import urllib.request


class Browser:
    def __init__(self, width=1280, height=860, dark=False):
        self.profile = tempfile.mkdtemp()
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            if "started successfully on port" in line:
                self.url = "http://127.0.0.1:" + line.split()[-1].rstrip(".") + "/session"
                break
        options = {
            "args": ["--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--hide-scrollbars",
                     "--force-color-profile=srgb", "--user-data-dir=" + self.profile,
                     f"--window-size={width},{height}"],
            "perfLoggingPrefs": {"enableNetwork": True},
        }
        self.url += "/" + self.call("", {"capabilities": {"alwaysMatch": {
            "browserName": "chrome", "goog:chromeOptions": options,
            "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}}})["sessionId"]
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                      mobile=False)
        self.devtools("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.call("/url", {"url": "about:blank"})  # leaves the page that Chromium starts with
        self.requests()

    def call(self, path, body=None, method="POST"):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.url + path, data, {"Content-Type": "application/json"}, method=method)
        with urllib.request.urlopen(request, timeout=120) as answer:
            return json.load(answer)["value"]

    def devtools(self, command, **parameters):
        return self.call("/goog/cdp/execute", {"cmd": command, "params": parameters})

    def open(self, path):
        self.call("/url", {"url": "file://" + path})

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": list(arguments)})

    def run_async(self, script, *arguments):
        return self.call("/execute/async", {"script": script, "args": list(arguments)})

    def press(self, *keys):
        for key in keys:
            self.call("/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": [
                {"type": "keyDown", "value": key}, {"type": "keyUp", "value": key}]}]})

    def picture(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.call("/screenshot", method="GET")))

    def complaints(self):
        """What the console has shown."""
        return [entry["message"] for entry in self.call("/se/log", {"type": "browser"})]

    def requests(self):
        """Everything that was asked of the network or the disk."""
        events = (json.loads(entry["message"])["message"] for entry in self.call("/se/log", {"type": "performance"}))
        return [e["params"]["request"]["url"] for e in events if e["method"] == "Network.requestWillBeSent"]

    def close(self):
        with contextlib.suppress(OSError):
            self.call("", method="DELETE")
        self.driver.terminate()
        self.driver.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self.close()
