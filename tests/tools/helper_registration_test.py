#!/usr/bin/env python3
"""Tests when ./run registers the helper: at first, and whenever its script says that something else is registered."""

import os
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
QUESTION = f"""
. {ROOT}/tools/running/helper.sh
prefix=$1 others=$2
somebody_else_brings_the_helper() {{ "$others"; }}
if helper_needs_registration; then echo yes; else echo no; fi
"""

# Prints what would run as root.
REGISTRATION = f"""
. {ROOT}/tools/running/helper.sh
prefix=$1 service_manager=$2
somebody_else_brings_the_helper() {{ false; }}
has_system_bus() {{ true; }}
has_service_manager() {{ "$service_manager"; }}
may_become_root() {{ true; }}
as_root() {{ echo "root: $*"; }}
register_helper
"""
RELOAD_BUS = ("root: dbus-send --system --type=method_call --dest=org.freedesktop.DBus / "
              "org.freedesktop.DBus.ReloadConfig")


def registration(prefix, service_manager="true"):
    done = subprocess.run(["bash", "-c", REGISTRATION, "bash", prefix, service_manager], capture_output=True, text=True,
                          check=True)
    assert not done.stderr, done.stderr
    return done.stdout.splitlines()


def needs_registration(prefix, others="false"):
    done = subprocess.run(["bash", "-c", QUESTION, "bash", prefix, others], capture_output=True, text=True, check=True)
    assert not done.stderr, done.stderr
    return done.stdout == "yes\n"


class HelperRegistrationTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.prefix = folder.name

    def install_script(self, body):
        os.makedirs(f"{self.prefix}/libexec/vorli", exist_ok=True)
        path = f"{self.prefix}/libexec/vorli/vorli-helper-install"
        with open(path, "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\n{body}\n")
        os.chmod(path, 0o755)

    def test_what_was_never_installed_needs_it(self):
        self.assertTrue(needs_registration(self.prefix))

    def test_the_script_is_asked_and_no_file_is_compared_beside_it(self):
        self.install_script('[ "$*" = --is-current ]')
        self.assertFalse(needs_registration(self.prefix))
        self.install_script('[ "$*" != --is-current ]')
        self.assertTrue(needs_registration(self.prefix))

    def test_a_script_that_fails_with_a_word_needs_it(self):
        self.install_script("echo 'vorli-helper is missing' >&2; exit 1")
        self.assertTrue(needs_registration(self.prefix))

    def test_an_installation_for_the_system_needs_none(self):
        self.assertFalse(needs_registration("/usr"))
        self.assertFalse(needs_registration("/usr/local"))

    def test_another_installation_of_the_system_takes_precedence(self):
        self.install_script("exit 1")
        self.assertFalse(needs_registration(self.prefix, others="true"))

    def test_another_prefix_is_registered_by_its_script_whoever_installs(self):
        self.install_script("exit 1")
        script = f"{self.prefix}/libexec/vorli/vorli-helper-install"
        self.assertEqual(registration(self.prefix), ["run: registering the helper", f"root: {script}"])
        self.install_script("exit 0")
        self.assertEqual(registration(self.prefix), [])

    def test_an_installation_for_the_system_is_read_anew_and_its_unit_is_in_force_at_once(self):
        for prefix in ("/usr", "/usr/local"):
            self.assertEqual(registration(prefix), ["root: systemctl daemon-reload", RELOAD_BUS,
                                                    "root: systemctl try-restart vorli-helper.service"])

    def test_without_a_service_manager_only_the_bus_reads_it_anew(self):
        self.assertEqual(registration("/usr/local", service_manager="false"), [RELOAD_BUS])


if __name__ == "__main__":
    unittest.main()
