#!/usr/bin/env bash
# The shell scripts hold no known mistake.
set -euo pipefail
exec shellcheck dev .ci/run tests/run/*.sh tests/checks/*.sh
