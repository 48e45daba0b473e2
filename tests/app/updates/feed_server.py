"""A local web server with update feeds of every kind, good and bad."""

import gzip
import http.server
import pathlib
import ssl
import subprocess
import threading

SPARKLE = "http://www.andymatuschak.org/xml-namespaces/sparkle"


def feed(*items: str) -> str:
    return f'<?xml version="1.0"?><rss version="2.0" xmlns:sparkle="{SPARKLE}"><channel>{"".join(items)}</channel></rss>'


def item(version: str, short: str = "", rest: str = "") -> str:
    text = f"<sparkle:version>{version}</sparkle:version>"
    if short:
        text += f"<sparkle:shortVersionString>{short}</sparkle:shortVersionString>"
    return f"<item>{text}{rest}</item>"


ENTITY_BOMB = (
    '<?xml version="1.0"?><!DOCTYPE lolz [<!ENTITY a "' + "x" * 1000 + '">'
    + "".join(f'<!ENTITY a{n + 1} "{f"&a{n or str()};" * 10}">' for n in range(9))
    + "]><rss><channel><item><title>&a9;</title></item></channel></rss>"
)

PAGES = {
    "/update.xml": feed(item("41", "1.1"), item("57", "1.3"), item("43", "1.2.1")),
    "/none.xml": feed(item("42", "1.2")),
    "/older.xml": feed(item("41", "1.1"), item("7", "9.9")),
    "/other-systems.xml": feed(item("57", "1.3", '<enclosure url="k.dmg" sparkle:os="macos"/>')),
    "/malformed.xml": "<rss><channel><item>",
    "/page.html": "<html><body>Please log in to this network.</body></html>",
    "/empty.xml": "",
    "/bomb.xml": ENTITY_BOMB,
}
REDIRECTS = {
    "/moved.xml": "/update.xml",
    "/loop.xml": "/loop.xml",
    "/to-file.xml": "file:///etc/passwd",
}
MEBIBYTE = b" " * (1 << 20)


class Server(http.server.ThreadingHTTPServer):
    """Records the requested paths, in order. A client that closes the connection early is no error."""

    daemon_threads = True

    def __init__(self, plain_address: str) -> None:
        super().__init__(("127.0.0.1", 0), Handler)
        self.asked: list[str] = []
        self.closing = threading.Event()
        self.plain_address = plain_address

    def handle_error(self, *_: object) -> None:
        pass


class Handler(http.server.BaseHTTPRequestHandler):
    """Each path has its own behaviour."""

    server: Server

    def do_GET(self):
        self.server.asked.append(self.path)
        story = getattr(self, "story_" + self.path.strip("/").replace("-", "_"), None)
        try:
            if story:
                story()
            elif self.path in REDIRECTS or self.path == "/to-http.xml":
                self.send_response(302)
                self.send_header("Location", REDIRECTS.get(self.path) or self.server.plain_address + "/update.xml")
                self.end_headers()
            elif self.path in PAGES:
                self.answer(PAGES[self.path].encode())
            else:
                self.send_error(404)
        except OSError:
            pass  # the program closed the connection

    def answer(self, body: bytes, **headers: str):
        self.send_response(200)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def story_broken(self):
        self.send_error(500)

    def story_silent(self):
        self.server.closing.wait(30)

    def story_dripping(self):
        self.send_response(200)
        self.end_headers()
        while not self.server.closing.wait(0.1):
            self.wfile.write(b" ")

    def story_announced_oversized(self):
        self.answer(5 * MEBIBYTE)

    def story_endless(self):
        self.send_response(200)
        self.end_headers()
        while not self.server.closing.is_set():
            self.wfile.write(MEBIBYTE)

    def story_packed_oversized(self):
        self.answer(gzip.compress(64 * MEBIBYTE, 1), Content_Encoding="gzip")

    def story_cut_off(self):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(PAGES["/update.xml"].encode()[:100])

    def log_message(self, *_):
        pass


class FeedServer:
    """Serves as a context manager; with a certificate, over HTTPS."""

    def __init__(self, certificate: pathlib.Path | None = None, plain_address: str = ""):
        self.server = Server(plain_address)
        self.asked = self.server.asked
        scheme = "http"
        if certificate:
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(certificate)
            self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
            scheme = "https"
        self.port = self.server.server_address[1]
        self.address = f"{scheme}://127.0.0.1:{self.port}"

    def __enter__(self):
        threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.05}, daemon=True).start()
        return self

    def __exit__(self, *_):
        self.server.closing.set()
        self.server.shutdown()
        self.server.server_close()


def make_certificate(file: pathlib.Path, address: str) -> pathlib.Path:
    """A self-signed certificate for an IP address, with its key in the same file."""
    key = file.with_suffix(".key")
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2",
         "-subj", "/CN=keyvora test", "-addext", f"subjectAltName=IP:{address}", "-keyout", key, "-out", file],
        check=True, capture_output=True)
    with file.open("a", encoding="ascii") as chain:
        chain.write(key.read_text(encoding="ascii"))
    return file
