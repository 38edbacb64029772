"""What the commands of bench/run share."""
