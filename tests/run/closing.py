"""How test programs in Python end."""
import sys


def close(cases):
    """Prints which cases, triples of what is asked, what came and what should have, went wrong, and the line that
    ./dev test reads; and ends the program."""
    failed = [f"{name}: {str(got)[:500]}, not {str(expected)[:500]}"
              for name, got, expected in cases if got != expected]
    print(*failed, f"{len(cases) - len(failed)} passed, {len(failed)} failed", sep="\n")
    sys.exit(bool(failed))
