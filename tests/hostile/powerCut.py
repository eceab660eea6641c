#!/usr/bin/env python3
"""Cuts the power while models are saved, and looks at what the disk then holds.

A file system on a loop device stands for the disk: a copy of the file behind it, taken at any
moment, is what a machine finds that lost its power then. The copy is mounted, which replays its
journal, and the model in it must be the former or the new one, whole; the new one when the save
had said that it was done. Two careless savers must be found out, or nothing was tried.

  powerCut.py BUILD [ROUNDS]    ROUNDS cuts of each saver, 10 by default

Exit status 77: this machine does not let us (root, loop devices and mkfs.ext4 are wanted).
"""

import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SKIPPED = 77
IMAGE_BYTES = 16 << 20
# No flushing behind our back: only what a program asks for reaches the disk soon.
OPTIONS = "loop,noatime,commit=300,noauto_da_alloc"
AT_ONCE = "loop,noatime,sync"  # a disk that keeps nothing back: who writes in place is found out


def quiet(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                   timeout=60)


class Disk:
    """A mounted file system in a file."""

    def __init__(self, image, folder, options=OPTIONS):
        self.image, self.folder, self.options = image, folder, options
        folder.mkdir(exist_ok=True)

    def __enter__(self):
        quiet("mount", "-t", "ext4", "-o", self.options, self.image, self.folder)
        return self

    def __exit__(self, *_):
        quiet("umount", self.folder)


def is_possible(folder):
    if os.geteuid() != 0 or not shutil.which("mkfs.ext4"):
        return False
    image = folder / "probe.img"
    with open(image, "wb") as file:
        file.truncate(IMAGE_BYTES)
    try:
        quiet("mkfs.ext4", "-q", image)
        with Disk(image, folder / "probe"):
            return True
    except (subprocess.CalledProcessError, OSError):
        return False


def after_cut(image, folder):
    """The model that is found, or None."""
    with Disk(image, folder / "found") as disk:
        try:
            return (disk.folder / "model").read_bytes()
        except FileNotFoundError:
            return None


def cut(folder, save, options, contents, seed, length):
    """One save and one cut: "old", "new" or what is wrong."""
    chance = random.Random(seed)
    image, snapshot = folder / "disk.img", folder / "cut.img"
    shutil.copyfile(folder / "formatted.img", image)
    with Disk(image, folder / "disk", options) as disk:
        model = disk.folder / "model"
        model.write_bytes(contents["old"])
        quiet("sync", "--file-system", model)
        process = subprocess.Popen(save(model), stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        if chance.random() < 0.2:
            process.wait(60)
        else:
            time.sleep(chance.random() * length)
        process.send_signal(signal.SIGSTOP)
        is_done = process.poll() == 0
        shutil.copyfile(image, snapshot)
        process.kill()
        process.wait(60)
    found = after_cut(snapshot, folder)
    for name in ("old", "new"):
        if found == contents[name]:
            return "a save that was done is lost" if is_done and name == "old" else name
    return "the model is gone" if found is None else f"a torn model of {len(found)} bytes"


def undisturbed(save, options, folder):
    """What is saved when nobody disturbs it, and the seconds that it takes."""
    with Disk(folder / "formatted.img", folder / "disk", options) as disk:
        begin = time.monotonic()
        subprocess.run(save(disk.folder / "undisturbed"), check=True, timeout=60)
        seconds = time.monotonic() - begin
        saved = (disk.folder / "undisturbed").read_bytes()
        (disk.folder / "undisturbed").unlink()
    return saved, seconds


def main(arguments):
    build = pathlib.Path(arguments[0]).resolve()
    rounds = int(arguments[1]) if len(arguments) > 1 else 10
    program, careless = build / "orbseq", build / "tests" / "orbseq_careless_saver"
    with tempfile.TemporaryDirectory(prefix="orbseq-power-") as name:
        folder = pathlib.Path(name)
        if not is_possible(folder):
            print("SKIPPED: no root, no loop device or no mkfs.ext4 here", file=sys.stderr)
            return SKIPPED
        with open(folder / "formatted.img", "wb") as file:
            file.truncate(IMAGE_BYTES)
        quiet("mkfs.ext4", "-q", folder / "formatted.img")

        log = folder / "log.csv"
        quiet(program, "generate", "--customers", "3000", "--seed", "1", "--output", log)
        for which, support in (("old", "40"), ("new", "8")):
            quiet(program, "train", "--input", log, "--min-support", support, "--to", "binary",
                  "--output", folder / which)
        savers = {
            "orbseq": (OPTIONS, lambda to: [program, "convert", "--quiet", "--to", "binary",
                                            "--model", folder / "new", "--output", to]),
            "unsynced": (OPTIONS, lambda to: [careless, "unsynced", folder / "new", to]),
            "in-place": (AT_ONCE, lambda to: [careless, "in-place", folder / "new", to]),
        }
        status = 0
        for saver, (options, save) in savers.items():
            saved, seconds = undisturbed(save, options, folder)
            contents = {"old": (folder / "old").read_bytes(), "new": saved}
            results = [cut(folder, save, options, contents, seed, 1.2 * seconds)
                       for seed in range(rounds)]
            wrong = [result for result in results if result not in ("old", "new")]
            print(f"{saver}: {rounds} cuts, {results.count('old')} times the former model, "
                  f"{results.count('new')} times the new one, {len(wrong)} times wrong"
                  + (f": {wrong[0]}" if wrong else ""))
            if saver == "orbseq" and wrong:
                status = 1
            if saver != "orbseq" and not wrong:
                print(f"{saver}: should have been found out")
                status = 1
        return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]) if len(sys.argv) > 1 else 1)
