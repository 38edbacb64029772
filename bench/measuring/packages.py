"""The Debian packages that a command needs."""

import os
import subprocess
import sys


def _installed(package):
    done = subprocess.run(["dpkg-query", "-W", "-f", "${db:Status-Abbrev}", package], capture_output=True, text=True,
                          check=False)
    return done.stdout.startswith("ii")


def need(command):
    """Installs the missing packages that bench/packages lists for the command."""
    with open("bench/packages", encoding="utf-8") as file:
        lines = [line.split() for line in file if line.strip() and not line.startswith("#")]
    missing = [package for wanted, package in lines if wanted == command and not _installed(package)]
    if not missing:
        return
    print(f"bench: installing {' '.join(missing)}", flush=True)
    as_root = [] if os.geteuid() == 0 else ["sudo"]
    install = ["env", "DEBIAN_FRONTEND=noninteractive", "apt-get", "install", "-y", "--no-install-recommends", *missing]
    subprocess.run([*as_root, "apt-get", "update", "-qq"], check=False, stdout=subprocess.DEVNULL)
    done = subprocess.run([*as_root, *install], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit("bench: apt-get install failed\n" + done.stderr[-2000:])
