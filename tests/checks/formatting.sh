#!/usr/bin/env bash
# Every source is as clang-format leaves it.
set -euo pipefail
exec ./dev format --check
