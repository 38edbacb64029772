"""The commands of bench/run, one a file: SUMMARY, and measure(build, quick) which returns a Report."""
