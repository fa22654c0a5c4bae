# A TLS web server on loopback whose answer depends on the path. Writes its port, then a line for each connection.
import gzip, http.server, itertools, ssl, sys, time

PNG = b"\x89PNG\r\n\x1a\n"
TEXT = b"<html>"


class Handler(http.server.BaseHTTPRequestHandler):
    def answer(self, pieces, status=200, headers=()):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        for piece in pieces:
            self.wfile.write(piece)

    def do_GET(self):
        kind, _, value = self.path[1:].partition("/")
        endless = itertools.repeat(bytes(65536))
        try:
            if kind == "picture":
                self.answer([PNG, bytes(int(value))])
            elif kind == "endless":
                self.answer(itertools.chain([PNG], endless))
            elif kind == "drip":
                self.answer(itertools.chain([PNG], iter(lambda: time.sleep(0.1) or b"x", None)))
            elif kind == "short":
                self.answer([PNG], headers=[("Content-Length", "100")])
            elif kind == "long":
                self.answer([PNG], headers=[("Content-Length", str(1 << 40))])
            elif kind == "bomb":
                bomb = gzip.compress(PNG + bytes(50_000_000))
                self.answer([bomb], headers=[("Content-Encoding", "gzip")])
            elif kind == "headers":
                self.wfile.write(b"HTTP/1.1 200 OK\r\n")
                while True:
                    self.wfile.write(b"X: " + b"x" * 60000 + b"\r\n")
            elif kind == "redirect":
                self.answer([], 302, [("Location", value)])
            elif kind == "status":
                self.answer([PNG], int(value))
            else:
                self.answer([TEXT])
        except (ConnectionError, ssl.SSLError):
            pass

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    def get_request(self):
        print("connected", file=sys.stderr, flush=True)
        return super().get_request()


server = Server(("127.0.0.1", 0), Handler)
server.daemon_threads = True
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(sys.argv[1])
server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
print("port", server.server_port, file=sys.stderr, flush=True)
server.serve_forever()
