"""A private source tree for the test of a check."""

import os
import shutil
import tempfile
import unittest


class PlantedTree(unittest.TestCase):
    def setUp(self):
        self.root = tempfile.mkdtemp(prefix="vorli-check-")
        self.addCleanup(shutil.rmtree, self.root)

    def plant(self, path, text):
        full = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(text)
