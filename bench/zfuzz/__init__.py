"""The differential fuzzer behind bench/fuzz: script generators per logic,
the runs of zenlo and its oracle, and the reducer of failing inputs."""
