"""A LibreOffice without a window and with a profile of its own, asked over its own interface."""
import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile
import time

import uno

BUILD = pathlib.Path(__file__).parents[2] / "build"


@contextlib.contextmanager
def desktop_of_office(settings):
    """LibreOffice's desktop, until the end of the block, with settings as (path of the configuration below
    org.openoffice.Office, property, value)."""
    items = "".join(f'<item oor:path="/org.openoffice.Office.{path}"><prop oor:name="{name}"><value>{value}</value>'
                    "</prop></item>" for path, name, value in settings)
    BUILD.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory(dir=BUILD, ignore_cleanup_errors=True) as name:
        profile = pathlib.Path(name).resolve()
        (profile / "user").mkdir()
        (profile / "user/registrymodifications.xcu").write_text(
            '<?xml version="1.0" encoding="UTF-8"?>\n'
            f'<oor:items xmlns:oor="http://openoffice.org/2001/registry">{items}</oor:items>')
        office = subprocess.Popen(["soffice", f"-env:UserInstallation={profile.as_uri()}", "--headless", "--norestore",
                                   f"--accept=pipe,name={profile.name};urp;"],
                                  stderr=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})
        try:
            desktop = connect(f"uno:pipe,name={profile.name};urp;StarOffice.ComponentContext")
            try:
                yield desktop
            finally:
                desktop.terminate()
        finally:
            office.wait(60)


def connect(address):
    local = uno.getComponentContext()
    resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
    for _ in range(600):
        try:
            context = resolver.resolve(address)
            return context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
        except uno.getClass("com.sun.star.connection.NoConnectException"):
            time.sleep(0.1)
    sys.exit("LibreOffice does not answer")


def open_book(desktop, url, **properties):
    """The book, loaded with these properties. It has no window: the LibreOffice that is installed may be unable to make
    one."""
    given = {"Hidden": True, **properties}
    return desktop.loadComponentFromURL(url, "_blank", 0, tuple(
        uno.createUnoStruct("com.sun.star.beans.PropertyValue", name, 0, value, 0) for name, value in given.items()))
