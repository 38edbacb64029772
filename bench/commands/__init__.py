"""The commands of bench/run, one per file, each with a SUMMARY and a measure(build, quick) that returns a Report."""
