"""Uses the mmfs_messages extension module: the library's warnings reach
sys.stderr (here captured in a StringIO) while a Redirect is alive, and the
process's standard error stream otherwise. Exits non-zero if either is wrong."""
import contextlib
import io
import os
import tempfile

import mmfs_messages


def captured_fd2(action):
    """What `action` writes to file descriptor 2, below Python's sys.stderr."""
    with tempfile.TemporaryFile() as sink:
        saved = os.dup(2)
        os.dup2(sink.fileno(), 2)
        try:
            action()
        finally:
            os.dup2(saved, 2)
            os.close(saved)
        sink.seek(0)
        return sink.read().decode()


python_side = io.StringIO()
with contextlib.redirect_stderr(python_side):
    with mmfs_messages.Redirect():
        mmfs_messages.throw(4, "routed to sys.stderr")
        mmfs_messages.throw(2, "below the threshold: dropped")
    c_side = captured_fd2(lambda: mmfs_messages.throw(4, "no redirect: the C stream"))

assert python_side.getvalue() == "WARNING routed to sys.stderr\n", python_side.getvalue()
assert c_side == "WARNING no redirect: the C stream\n", c_side
print("sys.stderr received:", python_side.getvalue().strip())
print("file descriptor 2 received:", c_side.strip())
