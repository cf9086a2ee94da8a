"""How each server is started: in the foreground, on a port of loopback, sized so that neither its
limits nor its log are what is measured."""

import contextlib
import os
import shutil
import socket
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
NGINX_DAV = Path("/usr/lib/nginx/modules/ngx_http_dav_ext_module.so")
APACHE_MODULES = "/usr/lib/apache2/modules"
APACHE_THREADS = 64

# In the order of the table. Those of CLASSIC make pages and listings of their own.
NAMES = ("quillon", "standard", "before", "nginx", "lighttpd", "apache")
CLASSIC = ("quillon", "before")
OURS = (*CLASSIC, "standard")
# The profile that answers before an upload is on the disk, as the others do.
CACHED = "cached"

# Debian keeps servers where ordinary users' PATH does not look.
PATH = os.environ["PATH"] + os.pathsep + "/usr/sbin"


class Failure(Exception):
    """A measure that came to nothing; says why."""


class Server:
    """A running server; ended at the end of its `with` block."""

    def __init__(self, name, port, tls, command, log, environment):
        self.name = name
        self.address = ("127.0.0.1", port)
        self.url = f"http{'s' if tls else ''}://127.0.0.1:{port}/"
        self.log = log
        with open(log, "wb") as output:
            self.process = subprocess.Popen(command, stdout=output, stderr=output, umask=0o022,
                                            env={**os.environ, **environment})
        self.pid = self.process.pid

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def wait_listening(self, pause=0.01):
        """Returns once the server accepts a connection."""
        give_up = time.monotonic() + 20
        while time.monotonic() < give_up and self.process.poll() is None:
            with contextlib.suppress(OSError):
                socket.create_connection(self.address).close()
                return self
            time.sleep(pause)
        self.end()
        raise Failure(f"{self.name} does not listen: {Path(self.log).read_text()[-400:]}")

    def end(self):
        """Its exit status."""
        if self.process.poll() is None:
            self.process.terminate()
        try:
            return self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.process.kill()
            return self.process.wait()

    def processes(self):
        """The server's own and those that it started."""
        found = [self.pid]
        for pid in found:
            with contextlib.suppress(OSError):
                for children in Path(f"/proc/{pid}/task").glob("*/children"):
                    found += map(int, children.read_text().split())
        return found

    def cpu_seconds(self):
        """Time on a CPU so far, of all its processes. The kernel's clock of another process counts
        nanoseconds and the threads that are gone; its number is the inverted id, see
        clock_getcpuclockid(3)."""
        return sum(time.clock_gettime((~pid << 3) | 2) for pid in self.processes())

    def memory_kib(self, field="VmRSS"):
        """Of all its processes together; VmRSS is what is resident, VmHWM the most that ever was."""
        total = 0
        for pid in self.processes():
            status = Path(f"/proc/{pid}/status").read_text().splitlines()
            total += next(int(line.split()[1]) for line in status if line.startswith(field + ":"))
        return total


class Launcher:
    """Knows the programs and keeps their settings, logs and keys in `folder`."""

    def __init__(self, folder, before=None):
        self.folder = folder
        builds = {"quillon": ROOT / "build", "before": before, "standard": ROOT / "build",
                  "sanitized": ROOT / "build-asan"}
        self.builds = {name: build for name, build in builds.items() if build}
        self.parts = {"nginx": self.nginx, "lighttpd": self.lighttpd, "apache": self.apache}
        (folder / "tmp").mkdir(mode=0o777)
        self.make_keys()

    def make_keys(self):
        quiet = {"check": True, "stdout": subprocess.DEVNULL}
        subprocess.run([ROOT / "scripts/make-keys.sh", self.folder], **quiet)
        self.key, self.certificate = self.folder / "server.key", self.folder / "server.crt"
        for name in self.builds:
            profiles = self.home(name) / ".quillon"
            profiles.mkdir(parents=True)
            for profile in (["tls", "tls", self.key, self.certificate], [CACHED]):
                subprocess.run([ROOT / "build/bin/make-profile", *profile],
                               env={**os.environ, "HOME": self.home(name)}, **quiet)
            (profiles / f"{CACHED}.cnf.ini").write_text("sync = none\n")
        self.pem = self.folder / "server.pem"
        self.pem.write_text(self.certificate.read_text() + self.key.read_text())

    def home(self, name):
        """One a build: they would not trust each other's profiles."""
        return self.folder / "homes" / name

    def available(self):
        """The servers that can be started, in the order of the table."""
        return [name for name in NAMES if shutil.which(self.program(name), path=PATH)
                and (name != "standard" or "--mode" in self.told_by(name, "--help"))]

    def version(self, name):
        return self.told_by(name, "-v").splitlines()[0]

    def told_by(self, name, option):
        environment = {**os.environ, "PATH": PATH, "HOME": str(self.folder)}
        return subprocess.run([self.program(name), option], env=environment, text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout

    def program(self, name):
        """Empty for the build before when there is none."""
        if name in self.builds:
            return str(self.builds[name] / "bin/quillon-serve")
        return {"apache": "apache2", "before": ""}.get(name, name)

    def start(self, name, share, tls=False, connections=2000, profile=None, **environment):
        """A server of `share` that just starts; it is made for `connections` at once. `profile` is
        of ours alone."""
        port = free_port()
        if name in self.builds:
            environment = {"HOME": str(self.home(name)), **environment,
                           "QUILLON_RESDIR": str(self.builds[name] / "res")}
            command = [self.program(name), "--address", "127.0.0.1", "--port", str(port),
                       *(["--profile", profile] if profile else ["--profile", "tls"] if tls else []),
                       *(["--mode", "standard"] if name == "standard" else []), str(share)]
        else:
            config = self.folder / f"{name}.conf"
            text, command = self.parts[name](share, port, tls, connections, config)
            config.write_text(text)
            environment = {"PATH": PATH}
        return Server(name, port, tls, command, self.folder / f"{name}.log", environment)

    def nginx(self, share, port, tls, connections, config):
        temporary = "".join(f"{kind}_temp_path {self.folder}/tmp; " for kind in (
            "client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        extended = NGINX_DAV.exists()
        text = f"""
{f"load_module {NGINX_DAV};" if extended else ""}
daemon off; master_process off; worker_processes 1; pid {self.folder}/nginx.pid;
events {{ worker_connections {2 * connections}; }}
http {{
    access_log off; sendfile on; tcp_nopush on; server_tokens off;
    keepalive_timeout 300; keepalive_requests 1000000000;
    client_max_body_size 0; {temporary}
    ssl_certificate {self.certificate}; ssl_certificate_key {self.key};
    server {{
        listen 127.0.0.1:{port} {"ssl" if tls else ""} backlog=1024; root {share}; autoindex on;
        dav_methods PUT DELETE MKCOL COPY MOVE;
        {"dav_ext_methods PROPFIND OPTIONS;" if extended else ""}
    }}
}}
"""
        return text, ["nginx", "-p", self.folder, "-e", self.folder / "nginx.error", "-c", config]

    def lighttpd(self, share, port, tls, connections, config):
        text = f"""
server.document-root = "{share}"
server.bind = "127.0.0.1"
server.port = {port}
server.modules = ( "mod_webdav", "mod_dirlisting", "mod_openssl" )
server.upload-dirs = ( "{self.folder}/tmp" )
server.max-fds = {connections + 2000}
server.max-connections = {connections}
server.max-keep-alive-requests = 60000
server.max-keep-alive-idle = 300
server.max-request-size = 0
server.listen-backlog = 1024
dir-listing.activate = "enable"
webdav.activate = "enable"
webdav.sqlite-db-name = "{self.folder}/tmp/locks.db"
"""
        if tls:
            text += f'ssl.engine = "enable"\nssl.pemfile = "{self.pem}"\n'
        return text, ["lighttpd", "-D", "-f", config]

    def apache(self, share, port, tls, connections, config):
        """Its event module as a small machine runs it: one process that accepts, with threads that
        work. Started as root it serves as another user, who needs leave to write to the share."""
        names = ("mpm_event", "authz_core", "autoindex", "dav", "dav_fs", "ssl")
        modules = "".join(f"LoadModule {name}_module {APACHE_MODULES}/mod_{name}.so\n"
                          for name in names)
        encryption = (f"SSLEngine on\nSSLCertificateFile {self.certificate}\n"
                      f"SSLCertificateKeyFile {self.key}\n")
        text = f"""{modules}
ServerRoot {self.folder}
ServerName localhost
Listen 127.0.0.1:{port}
ListenBacklog 1024
PidFile {self.folder}/apache.pid
DefaultRuntimeDir {self.folder}/tmp
ErrorLog {self.folder}/apache.error
DavLockDB {self.folder}/tmp/lock
{"User www-data" if os.geteuid() == 0 else ""}
{"Group www-data" if os.geteuid() == 0 else ""}
ServerLimit 1
StartServers 1
ThreadsPerChild {APACHE_THREADS}
MaxRequestWorkers {APACHE_THREADS}
AsyncRequestWorkerFactor {connections // APACHE_THREADS + 1}
MaxConnectionsPerChild 0
KeepAlive On
KeepAliveTimeout 300
MaxKeepAliveRequests 0
EnableSendfile On
LimitRequestBody 0
DocumentRoot {share}
{encryption if tls else ""}
<Directory {share}>
    Dav On
    Options Indexes
    Require all granted
</Directory>
"""
        return text, ["apache2", "-DFOREGROUND", "-f", config]


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]
