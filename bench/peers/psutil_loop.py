#!/usr/bin/python3
"""psutil_loop.py COUNT: lists all processes COUNT times with the library that most monitors in Python use."""

import sys

import psutil

for _ in range(int(sys.argv[1])):
    for _process in psutil.process_iter(["pid", "ppid", "name", "exe", "memory_info", "cpu_times", "create_time"]):
        pass
