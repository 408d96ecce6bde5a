"""The time that a test may take, so that a wait without an end fails it, with the place that waited."""
import signal


def limit(test, seconds=150):
    def end(*_):
        raise AssertionError(f"{test.id()} did not end within {seconds} s")

    signal.signal(signal.SIGALRM, end)
    signal.alarm(seconds)
    test.addCleanup(signal.alarm, 0)
