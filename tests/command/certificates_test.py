"""Who may talk to a node at a tls+tcp address, and to whom a node talks."""
import socket
import ssl
import struct
import subprocess
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from console import BIN, ConsoleTest

MAKE_AUTHORITY = Path(__file__).parents[2] / "docs/make-authority"
ASK_TIME = struct.pack(">4sHHIIIIIQI", b"ZBUS", 1, 1, 2, 1, 422, 1, 1, 0, 0)


class Certificates(ConsoleTest):
    def setUp(self):
        super().setUp()
        for folder in (self.root, self.root / "other"):
            subprocess.run([MAKE_AUTHORITY, folder, "1", "2"], check=True)
        subprocess.run("openssl req -new -key node-2.key -subj /CN=node-2 2>&1 | openssl x509 -req -CA ca.pem -CAkey ca.key"
                       " -days -1 -out expired.pem", shell=True, check=True, cwd=self.root, stderr=subprocess.DEVNULL)
        self.host = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(self.host.close)
        with socket.create_server(("127.0.0.1", 0)) as server:
            self.port = server.getsockname()[1]
        (self.root / "nodes").write_text(f"1 tls+tcp://127.0.0.1:{self.port}\n2 ipc://{self.root}/two\n"
                                         f"9 tls+tcp://127.0.0.1:{self.host.getsockname()[1]}\n")

    def ask(self, master, *options):
        words = ["--root", self.root, "--node", "2", "--master", str(master), "--cluster", self.root / "nodes", *options]
        done = subprocess.run([BIN / "zorv-local", *words, "switch", "get"], capture_output=True, text=True, timeout=60)
        return done.returncode, done.stderr

    def test_files(self):
        (self.root / "garbage").write_text("-----BEGIN")
        (self.root / "garbage").chmod(0o600)
        for option, file, complaint in [
                ("ca", "none", "the authority '{}' cannot be read: No such file or directory"),
                ("ca", "garbage", "the authority '{}' holds no certificate in PEM, or a damaged one"),
                ("ca", "other/ca.pem", "not valid for the authority '{}': The certificate is not correctly signed by the trusted CA"),
                ("cert", "key", "the certificate '{}' cannot be read: No such file or directory"),
                ("cert", "expired.pem", "the certificate '{}' is not valid for the authority"),
                ("cert", "expired.pem", ": The certificate validity has expired\n"),
                ("key", "garbage", "the key '{}' holds no private key in PEM, or one with a password"),
                ("key", "other/node-2.key", "the key '{}' is not that of the certificate"),
                ("key", "node-2.pem", "the key '{}' is open to others: chmod 600 it")]:
            status, err = self.ask(1, f"--tls-{option}", self.root / file)
            self.assertEqual((status, err[:12]), (3, "zorv-local: "))
            self.assertIn(complaint.format(self.root / file), err)

    def context(self, side, files):
        context = ssl.SSLContext(side)
        context.check_hostname, context.verify_mode = False, ssl.CERT_NONE  # whom it trusts is not looked at
        if files:
            context.load_cert_chain(*(self.root / file for file in files))
        return context

    def visit(self, files):
        """What the node answers to one who shows such a certificate."""
        with socket.create_connection(("127.0.0.1", self.port), 60) as plain:
            try:
                with self.context(ssl.PROTOCOL_TLS_CLIENT, files).wrap_socket(plain) as guest:
                    guest.sendall(ASK_TIME)
                    return guest.recv(4)
            except (ssl.SSLError, ConnectionError):
                return b""

    def receive(self, files):
        """What a node sends to one who shows such a certificate."""
        self.host.settimeout(60)
        try:
            with self.context(ssl.PROTOCOL_TLS_SERVER, files).wrap_socket(self.host.accept()[0], True) as guest:
                return guest.recv(4)
        except (ssl.SSLError, ConnectionError):
            return b""

    def test_connections(self):
        console = self.start("--master", "1", "--cluster", self.root / "nodes", stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        console.stdin.write(b"help quit\n")
        console.stdin.flush()
        console.stdout.readline()  # so it listens
        with socket.create_connection(("127.0.0.1", self.port), 60) as plain:
            plain.sendall(ASK_TIME)
            self.assertNotIn(b"ZBUS", plain.recv(100))
        for files, heard in [(None, b""), (("other/node-2.pem", "other/node-2.key"), b""), (("expired.pem", "node-2.key"), b""),
                             (("node-2.pem", "node-2.key"), b"ZBUS")]:
            self.assertEqual(self.visit(files), heard, files)
            if files:
                with ThreadPoolExecutor() as pool:
                    sent = pool.submit(self.receive, files)
                    _, err = self.ask(9)
                self.assertEqual(sent.result(), heard, files)
                self.assertEqual("its certificate, or the one of this node, was refused" in err, heard == b"", err)
        self.assertEqual(self.ask(1)[0], 0)
        self.assertIn(b"so far, 4 connections without a valid certificate", console.communicate()[1])


if __name__ == "__main__":
    unittest.main()
