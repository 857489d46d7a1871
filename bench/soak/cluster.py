"""orvel-server processes on one store, with nginx in front when there are several.

Everything listens on 127.0.0.1 only. nginx is configured from packaging/nginx/ the way the
group tests do it: the shipped upstream block with its server lines pointed at these processes,
and the shipped proxy settings as the body of a server block on a free port.
"""

import os
import re
import shutil
import signal
import socket
import subprocess
import time

REPO = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
NGINX_CONF = os.path.join(REPO, "packaging", "nginx")


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def wait_for_port(port, deadline, process=None):
    while time.monotonic() < deadline:
        if process is not None and process.poll() is not None:
            return False
        try:
            with socket.create_connection(("127.0.0.1", port), timeout=0.5):
                return True
        except OSError:
            time.sleep(0.05)
    return False


class ServerProcess:
    """One orvel-server on a fixed loopback port, so it can be killed and started again at the
    same address nginx knows it by."""

    def __init__(self, binary, data_dir, log_path, extra):
        self.binary = binary
        self.data_dir = data_dir
        self.log_path = log_path
        self.extra = list(extra)
        self.port = free_port()
        self.process = None
        self.starts = 0

    @property
    def url(self):
        return "http://127.0.0.1:%d" % self.port

    def start(self, timeout=30):
        args = [self.binary, "--listen", "127.0.0.1:%d" % self.port, "--data", self.data_dir,
                "--local", "--writer", "dictionary"] + self.extra
        log = open(self.log_path, "ab")
        self.process = subprocess.Popen(args, stdout=subprocess.PIPE, stderr=log,
                                        stdin=subprocess.DEVNULL)
        log.close()
        self.starts += 1
        deadline = time.monotonic() + timeout
        line = self.process.stdout.readline().decode(errors="replace")
        if "listening on" not in line:
            raise RuntimeError("orvel-server did not start (see %s): %r" % (self.log_path, line))
        if not wait_for_port(self.port, deadline, self.process):
            raise RuntimeError("orvel-server is not answering on %d" % self.port)

    def kill(self):
        """SIGKILL: no clean stop, whatever is in flight is cut."""
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def stop(self):
        if self.process is None or self.process.poll() is not None:
            return
        self.process.terminate()
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


class Nginx:
    def __init__(self, work_dir, backends):
        self.dir = os.path.join(work_dir, "nginx")
        self.backends = backends
        self.port = free_port()
        self.process = None

    @property
    def url(self):
        return "http://127.0.0.1:%d" % self.port

    def _write_configuration(self):
        os.makedirs(self.dir, exist_ok=True)
        for sub in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"):
            os.makedirs(os.path.join(self.dir, sub), exist_ok=True)
        with open(os.path.join(NGINX_CONF, "orvel-upstream.conf")) as f:
            upstream = f.read()
        line = re.compile(r"^([ \t]*)server[ \t]+\S+([^;\n]*);\n", re.M)
        found = list(line.finditer(upstream))
        if not found:
            raise RuntimeError("orvel-upstream.conf has no server line")
        first = found[0]
        servers = "".join("%sserver %s%s;\n" % (first.group(1), b, first.group(2))
                          for b in self.backends)
        upstream = line.sub("", upstream)
        upstream = upstream[:first.start()] + servers + upstream[first.start():]
        with open(os.path.join(self.dir, "orvel-upstream.conf"), "w") as f:
            f.write(upstream)
        d = self.dir
        conf = f"""daemon off;
master_process off;
pid {d}/nginx.pid;
error_log {d}/error.log warn;
worker_rlimit_nofile 4096;
events {{ worker_connections 2048; }}
http {{
    access_log off;
    client_body_temp_path {d}/client_body;
    proxy_temp_path {d}/proxy;
    fastcgi_temp_path {d}/fastcgi;
    uwsgi_temp_path {d}/uwsgi;
    scgi_temp_path {d}/scgi;
    include {d}/orvel-upstream.conf;
    server {{
        listen 127.0.0.1:{self.port};
        include {NGINX_CONF}/orvel-proxy.conf;
    }}
}}
"""
        with open(os.path.join(d, "nginx.conf"), "w") as f:
            f.write(conf)

    def start(self):
        binary = shutil.which("nginx") or shutil.which("nginx", path="/usr/sbin:/usr/local/sbin")
        if not binary:
            raise RuntimeError("nginx is not installed (scripts/install-deps installs it)")
        self._write_configuration()
        self.process = subprocess.Popen(
            [binary, "-p", self.dir, "-e", self.dir + "/error.log", "-c", self.dir + "/nginx.conf"],
            stdin=subprocess.DEVNULL)
        if not wait_for_port(self.port, time.monotonic() + 15, self.process):
            raise RuntimeError("nginx did not start (see %s/error.log)" % self.dir)

    def stop(self):
        if self.process is not None and self.process.poll() is None:
            self.process.terminate()
            self.process.wait(10)


class Cluster:
    """`count` orvel-server processes on one store; nginx in front when count > 1, or when
    `proxied` says so."""

    def __init__(self, binary, work_dir, count, database=None, proxied=None):
        self.work_dir = work_dir
        self.data_dir = os.path.join(work_dir, "data")
        os.makedirs(self.data_dir, exist_ok=True)
        extra = ["--database", database] if database else []
        self.database = database or os.path.join(self.data_dir, "orvel.sqlite")
        self.servers = [ServerProcess(binary, self.data_dir,
                                      os.path.join(work_dir, "server-%d.log" % i), extra)
                        for i in range(count)]
        if proxied is None:
            proxied = count > 1
        self.nginx = Nginx(work_dir, ["127.0.0.1:%d" % s.port for s in self.servers]) \
            if proxied else None

    @property
    def url(self):
        return self.nginx.url if self.nginx else self.servers[0].url

    def start(self):
        for s in self.servers:
            s.start()
        if self.nginx:
            self.nginx.start()

    def stop(self):
        if self.nginx:
            self.nginx.stop()
        for s in self.servers:
            s.stop()
