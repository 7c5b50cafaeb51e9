#!/usr/bin/python3
"""Installs, upgrades and removes Quillmere under Wine, and looks at the registry and the files before and after.

    setup_test.py PACKAGE QCALC

PACKAGE is the folder with zip, setup program and files, QCALC the Windows calculator. WINEPREFIX is the test's alone: an
Excel of another test would be found running.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import zipfile

sys.dont_write_bytecode = True
sys.path.append(str(pathlib.Path(__file__).parents[1] / "run"))

from closing import close

PACKAGE, QCALC = map(pathlib.Path, sys.argv[1:])
SETUP, = PACKAGE.glob("*-setup.exe")
DRIVE = pathlib.Path(os.environ["WINEPREFIX"], "drive_c")
OFFICE = r"HKEY_CURRENT_USER\Software\Microsoft\Office"
LISTS = OFFICE + r"\{}\Excel\Options"
CLICK = r"HKEY_LOCAL_MACHINE\Software\Microsoft\Office\ClickToRun\Configuration"
PATHS = r"HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\App Paths\excel.exe"
OTHERS = ['/R "C:\\Others\\first.xll"', '"C:\\Others\\MyQuillmere4.xll"']


def wine(*command):
    """Runs a Windows program: its status, and what it printed."""
    with tempfile.TemporaryFile("w+") as output:
        status = subprocess.run(["wine", *command], stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                timeout=120).returncode
        output.seek(0)
        return status, output.read().replace("\r", "")


scratch = tempfile.TemporaryDirectory()
FOLDER = wine("cmd", "/c", "echo %LOCALAPPDATA%")[1].strip() + r"\Programs\Quillmere"
OURS = [rf'/R "{FOLDER}\Quillmere4.xll"', rf'"{FOLDER}\QuillmereVba.xlam"']


def setup():
    return wine(str(SETUP), "/S")[0]


def remove():
    """As Windows' settings do: the program goes on from a copy of itself, and all is gone when that has gone too."""
    wine(rf"{FOLDER}\Uninstall.exe", "/S")
    for _ in range(100):
        if not (DRIVE / FOLDER[3:].replace("\\", "/")).exists() and not copies():
            break
        time.sleep(0.1)


def copies():
    """What uninstallers left of themselves."""
    return [str(path) for path in DRIVE.rglob("~nsu*")]


def change(key, **values):
    """Writes texts to a key of the registry; what is None goes, and without values the key."""
    quote = lambda text: "-" if text is None else '"' + text.replace("\\", r"\\").replace('"', r'\"') + '"'
    lines = [f"[{key}]" if values else f"[-{key}]"]
    lines += [f"{name if name == '@' else quote(name)}={quote(text)}" for name, text in values.items()]
    path = pathlib.Path(scratch.name, "change.reg")
    path.write_text("Windows Registry Editor Version 5.00\n\n" + "\n".join(lines) + "\n", encoding="utf-16")
    assert wine("regedit", "/S", f"Z:{path}")[0] == 0


def state():
    """Office's part of the registry and that of installed programs, and all files but what Windows keeps for itself."""
    wine("reg", "export", r"HKCU\Software\Microsoft", f"Z:{scratch.name}/now.reg", "/y")
    keys = pathlib.Path(scratch.name, "now.reg").read_text(encoding="utf-16").split("\n\n")
    registry = "\n\n".join(key for key in keys if re.match(r"\[.*\\(Office|CurrentVersion\\Uninstall)[]\\]", key))
    return registry, sorted(str(path) for path in DRIVE.rglob("*") if not {"windows", "Temp"} & set(path.parts))


def opened(version="16.0"):
    """Excel's list, OPEN, OPEN1 and so on, with None for a gap."""
    key = state()[0].partition(f"[{LISTS.format(version)}]\n")[2].partition("\n\n")[0]
    values = {int(number or 0): re.sub(r"\\(.)", r"\1", text)
              for number, text in re.findall(r'^"OPEN(\d*)"="(.*)"$', key, re.M)}
    return list(map(values.get, range(max(values, default=-1) + 1)))


def cases():
    """Of each case what it is, what was found and what was expected."""
    archive, = PACKAGE.glob("*.zip")
    with zipfile.ZipFile(archive) as package:
        files = {name: package.read(name) for name in package.namelist()}
    folder = PACKAGE / "files"
    held = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
    yield "the zip has the files", files == held, True
    yield "texts for Windows", [name for name in held if name[-4:] == ".txt" and re.search(rb"(?<!\r)\n", held[name])], []

    change(OFFICE)
    before = state()
    yield "installed where Excel never started", (setup(), opened()), (0, OURS)
    remove()
    yield "nothing is left", (state(), copies()), (before, [])

    change(LISTS.format("16.0"), OPEN=OTHERS[0], OPEN1=OTHERS[1], Font="Calibri,11")
    change(LISTS.format("15.0"), Font="Calibri,11")
    before = state()
    yield "installed beside others", (setup(), opened(), opened("15.0")), (0, OTHERS + OURS, OURS)
    qcalc = str(QCALC), "--addin", FOLDER + r"\Quillmere4.xll"
    yield "a formula", wine(*qcalc, "eval", '=REVERSE.TEXT("Excel")'), (0, '"lecxE"\n')
    sample = min((PACKAGE / "files/samples").iterdir(), key=lambda path: path.stat().st_size).name
    checked = wine(*qcalc, "calc", rf"{FOLDER}\samples\{sample}", "--check")
    yield "a sample", (checked[0], re.findall(r"(?<!\d)0 different", checked[1])), (0, ["0 different"])
    remove()
    yield "others are as before", state(), before

    change(LISTS.format("16.0"), OPEN1="/R quillmere4.XLL", OPEN2=OTHERS[1], OPEN4=r'"D:\Old\QuillmereVba.xlam"',
           OPEN7="last")
    change(OFFICE + r"\16.0\Excel\Add-in Manager", **{r"D:\Old\Quillmere4.xll": "", r"D:\Others\a.xll": ""})
    yield "installed over ours of elsewhere", (setup(), opened()), (0, OTHERS + ["last"] + OURS)
    yield "upgraded", (setup(), opened(), "Old" in state()[0]), (0, OTHERS + ["last"] + OURS, False)

    running = pathlib.Path(scratch.name, "running.calc")
    running.write_text("recalc 1000000000 =1\n")
    excel = subprocess.Popen(["wine", str(QCALC), "--addin", f"Z:{folder.resolve()}/Quillmere4.xll", "run", f"Z:{running}"],
                             stdout=subprocess.DEVNULL)
    for _ in range(20):  # until its window is there
        status = setup()
        if status != 0:
            break
    removing = wine(rf"{FOLDER}\Uninstall.exe", "/S", f"_?={FOLDER}")[0]
    yield "while Excel runs", (status, removing, opened()), (4, 4, OTHERS + ["last"] + OURS)
    excel.kill()
    excel.wait()
    remove()
    yield "removed, gaps and all", opened(), OTHERS + ["last"]

    before = state()
    change(CLICK, Platform="x86")
    yield "32-bit Excel", (setup(), state()), (3, before)
    change(PATHS, **{"@": f"Z:{QCALC.resolve()}"})
    yield "a 64-bit program says more", setup(), 0
    change(PATHS, **{"@": "Z:/usr/share/nsis/Stubs/zlib-x86-unicode"})
    change(CLICK, Platform="x64")
    yield "a 32-bit program too", setup(), 3


close(list(cases()))
