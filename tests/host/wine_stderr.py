"""What a program under Wine has said to its standard error stream, which tools/wine-run leads into a file."""
import time


def take(errors, expected):
    """The file's text, after which it is gone. Wine may write a moment after the program's end: what is expected is waited for, 15 s at most."""
    for _ in range(150 if expected else 0):
        if errors.exists() and errors.stat().st_size > 0:
            break
        time.sleep(0.1)
    said = errors.read_text(encoding="utf-8", errors="replace") if errors.exists() else ""
    errors.unlink(missing_ok=True)
    return said
