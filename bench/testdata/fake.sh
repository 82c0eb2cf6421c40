#!/bin/sh
# Called through a link named fake_MODE; see fake_solver.py.
exec "${ZENLO_FAKE_PYTHON:-python3}" -S "$(dirname "$0")/fake_solver.py" \
  "${0##*/fake_}" "$@"
