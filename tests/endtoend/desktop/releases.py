"""A maker's server on this machine: messages, the list of updates, who takes usage reports; and signed releases."""

import base64
import collections
import http.server
import json
import pathlib
import plistlib
import subprocess
import threading


class Maker:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(parents=True)
        self.asked = collections.Counter()
        self.key = self.folder / "key.pem"
        self._run("openssl", "genpkey", "-algorithm", "ed25519", "-out", self.key)
        maker = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                maker.asked[self.path] += 1
                kind, body = maker.answers.get(self.path, (None, b""))
                self._answer(kind, body)

            def do_POST(self):
                maker.asked[self.path] += 1
                self.rfile.read(int(self.headers["Content-Length"]))
                self._answer("application/json", b"{}")

            def _answer(self, kind, body):
                self.send_response(200 if kind else 404)
                self.send_header("Content-Type", kind or "text/plain")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_port}"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        # What looks like markup is text, and loads nothing.
        self.link = f'Read <img src="{self.address}/picture.png">more'
        messages = [{"id": "hello", "title": "Spacemint 2 is here", "body": "It draws the history of each folder.",
                     "link": {"title": self.link, "url": "https://spacemint.example/2"}}]
        self.answers = {"/feed/spacemint.json": ("application/json", json.dumps({"messages": messages}).encode())}

    def end(self):
        self.server.shutdown()
        self.server.server_close()

    def _run(self, *command):
        return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE).stdout

    def public_key(self):
        return base64.b64encode(self._run("openssl", "pkey", "-in", self.key, "-pubout", "-outform", "DER")[-32:]).decode()

    def offer(self, version):
        """The first package of that version, signed and in the list."""
        machine = self._run("dpkg", "--print-architecture").decode().strip()
        root = self.folder / "root"
        (root / "DEBIAN").mkdir(parents=True)
        (root / "DEBIAN/control").write_text(
            f"Package: spacemint\nVersion: {version}-1\nArchitecture: {machine}\n"
            "Maintainer: Ann <ann@spacemint.example>\nDescription: x\n")
        name = f"spacemint_{version}_{machine}.deb"
        file = self.folder / name
        self._run("dpkg-deb", "--root-owner-group", "-Zgzip", "--build", root, file)
        signature = self.folder / "signature"
        self._run("openssl", "pkeyutl", "-sign", "-inkey", self.key, "-rawin", "-in", file, "-out", signature)
        signed = base64.b64encode(signature.read_bytes()).decode()
        self.answers["/" + name] = ("application/vnd.debian.binary-package", file.read_bytes())
        self.answers["/updates.xml"] = ("application/rss+xml", (
            '<rss xmlns:s="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><item>'
            f'<enclosure url="{self.address}/{name}" s:version="{version}" length="{file.stat().st_size}" '
            f's:edSignature="{signed}"/></item></channel></rss>').encode())

    def dictionary(self):
        """The file that tells the program of all this."""
        values = {"CFBundleIdentifier": "app.spacemint.Spacemint", "CFBundleDisplayName": "Spacemint",
                  "CFBundleShortVersionString": "1.0", "CFBundleVersion": "1.0", "BrindlefoxSlug": "spacemint",
                  "BrindlefoxSite": self.address + "/feed", "BrindlefoxUsageHost": self.address,
                  "SUFeedURL": self.address + "/updates.xml", "SUPublicEDKey": self.public_key()}
        path = self.folder / "Info.plist"
        path.write_bytes(plistlib.dumps(values))
        return path
