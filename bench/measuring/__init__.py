"""Modules that the commands of bench/run share."""
