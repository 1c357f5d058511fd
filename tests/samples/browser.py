"""A headless Chromium that is driven through a pair of pipes, with real pointer events and no network."""

import base64
import io
import json
import os
import subprocess
import tempfile

from PIL import Image


class Browser:
    """Shows one page. Everything that it asked for is in `requests`."""

    def __init__(self, width, height):
        self.requests = []
        self._under_way = set()
        self._answers, self._last = {}, 0
        self._profile = tempfile.TemporaryDirectory()
        command_out, self._commands = os.pipe()
        self._replies, reply_in = os.pipe()
        # Chromium reads commands from descriptor 3 and writes to descriptor 4.
        wrapper = f"exec 3<&{command_out} 4>&{reply_in}; exec \"$@\""
        self._program = subprocess.Popen(
            ["bash", "-c", wrapper, "bash", "chromium", "--headless=new", "--no-sandbox", "--disable-gpu",
             "--remote-debugging-pipe", "--host-resolver-rules=MAP * ~NOTFOUND", "--force-device-scale-factor=1",
             "--hide-scrollbars", "--no-first-run", f"--user-data-dir={self._profile.name}", "about:blank"],
            pass_fds=(command_out, reply_in), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(command_out)
        os.close(reply_in)
        self._buffer = b""
        self._session = None
        target = next(each for each in self.call("Target.getTargets")["targetInfos"] if each["type"] == "page")
        self._session = self.call("Target.attachToTarget", targetId=target["targetId"], flatten=True)["sessionId"]
        self.call("Page.enable")
        self.call("Network.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._session = None
        self.call("Browser.close")
        self._program.wait(timeout=30)
        os.close(self._commands)
        os.close(self._replies)
        self._profile.cleanup()

    def _receive(self):
        while b"\0" not in self._buffer:
            part = os.read(self._replies, 1 << 16)
            if not part:
                raise EOFError("the browser has ended")
            self._buffer += part
        text, self._buffer = self._buffer.split(b"\0", 1)
        message = json.loads(text)
        if "id" in message:
            self._answers[message["id"]] = message
        elif message["method"] == "Network.requestWillBeSent":
            self.requests.append(message["params"]["request"]["url"])
            self._under_way.add(message["params"]["requestId"])
        elif message["method"] in ("Network.loadingFinished", "Network.loadingFailed"):
            self._under_way.discard(message["params"]["requestId"])

    def call(self, method, **parameters):
        self._last += 1
        message = {"id": self._last, "method": method, "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        os.write(self._commands, json.dumps(message).encode() + b"\0")
        while self._last not in self._answers:
            self._receive()
        answer = self._answers.pop(self._last)
        if "error" in answer:
            raise RuntimeError(f"{method}: {answer['error']}")
        return answer["result"]

    def evaluate(self, script):
        """What the script (a promise is waited for) gives, as a Python value."""
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"]["exception"]["description"])
        return answer["result"].get("value")

    def open(self, path):
        self.call("Page.navigate", url=path.as_uri())
        self.evaluate("new Promise(go => document.readyState === 'complete' ? go() : addEventListener('load', go))")

    def wait_for_pictures(self):
        """Until two looks in a row, two frames apart, found no further picture asked for and none on its way."""
        quiet = 0
        while quiet < 2:
            before = len(self.requests)
            self.evaluate("new Promise(go => requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(go, 200))))")
            quiet = quiet + 1 if len(self.requests) == before and not self._under_way else 0

    def mouse(self, kind, x, y, button="none"):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button=button,
                  buttons=1 if button == "left" else 0, clickCount=1 if kind != "mouseMoved" else 0)

    def click(self, selector):
        box = self.evaluate(f"(box => [box.x + box.width / 2, box.y + box.height / 2])"
                            f"(document.querySelector({json.dumps(selector)}).getBoundingClientRect())")
        self.mouse("mousePressed", *box, button="left")
        self.mouse("mouseReleased", *box, button="left")

    def drag(self, start, end):
        self.mouse("mousePressed", *start, button="left")
        self.mouse("mouseMoved", *end, button="left")
        self.mouse("mouseReleased", *end, button="left")

    def picture(self, x, y, width, height):
        clip = {"x": x, "y": y, "width": width, "height": height, "scale": 1}
        data = self.call("Page.captureScreenshot", format="png", clip=clip)["data"]
        with Image.open(io.BytesIO(base64.b64decode(data))) as picture:
            return picture.convert("RGB")
