#!/usr/bin/env python3
"""kill_test.py [--synchronous VALUE] PROGRAM DISK_FAULTS KILLS [SEED]: kills linewatch while it changes its state, and
looks for losses.

Favourites, feeds, notifications and mutes are added and removed, feeds are searched in a catalogue on a server of this
machine, and panels save what they show. Half of the kills are at a random moment, half at a random call that writes, so
that in a long run every such call is met. After every second kill the machine "loses power" too: only what had been
synced is left. What a command has confirmed must be there, a command that was killed has done all or nothing, and the
databases are whole.

With --synchronous, e.g. OFF or NORMAL, a copy of the program uses this value of SQLite's PRAGMA synchronous in place of
EXTRA. It syncs too little, so the test has to find a loss: the exit status is 0 when it does.
"""

import argparse
import collections
import contextlib
import http.server
import io
import os
import pathlib
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time
import zipfile

LINES = [f"r{number}" for number in range(12)]
FEEDS = ["spare", "other"]
PATIENCE = 60  # seconds, for a program that hangs
LONGEST_COMMAND = 0.15  # seconds; a kill is at a random moment of these
LONGEST_SEARCH = 0.6  # with the answers of a server
LONGEST_PANEL = 1.5
SAVED_STATE = "Rova.LineWatch.savedUIData"
SYNCHRONOUS = ["OFF", "NORMAL", "FULL"]  # SQLite also takes the position for the word
NEW_START = 25  # kills after which a new machine is taken


ALERTS = b"\x0a\x0d\x0a\x032.0\x10\x00\x18\x80\xea\xe0\xaf\x06"
ROUTES = "route_id,route_short_name,route_type\n" + "".join(f"{line},{line[1:]},3\n" for line in LINES)


class Loss(Exception):
    pass


# Favourites and feeds in their order, and the notifications and mutes of lines, sorted.
Stored = collections.namedtuple("Stored", "favorites feeds notices")


class Agency(http.server.ThreadingHTTPServer):
    """A server with a catalogue, and the timetable and the alerts of the one feed in it."""

    def __init__(self):
        super().__init__(("127.0.0.1", 0), AgencyHandler)
        url = f"http://127.0.0.1:{self.server_address[1]}"
        self.catalogue = url + "/feeds.csv"
        archive = io.BytesIO()
        with zipfile.ZipFile(archive, "w") as timetable:
            timetable.writestr("routes.txt", ROUTES)
        rows = ["id,data_type,entity_type,static_reference,location.municipality,provider,urls.direct_download",
                f"t,gtfs,,,Hilltown,Hilltown Buses,{url}/t.zip",
                f"a,gtfs_rt,sa,t,Hilltown,Hilltown Buses,{url}/alerts"]
        rows += [f"x{number},gtfs,,,Elsewhere,Other Buses,{url}/x" for number in range(2000)]
        self.documents = {"/feeds.csv": "\n".join(rows).encode(), "/t.zip": archive.getvalue(), "/alerts": ALERTS}
        threading.Thread(target=self.serve_forever, daemon=True).start()


class AgencyHandler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        body = self.server.documents[self.path]
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Cache-Control", "max-age=0")
        self.end_headers()
        with contextlib.suppress(OSError):  # the program was killed
            self.wfile.write(body)

    def log_message(self, *_):
        pass


class Disk:
    """A folder whose synced contents are known, see disk_faults.cpp."""

    def __init__(self, folder):
        self.root = folder / "disk"
        self.synced = folder / "synced"
        self.calls = folder / "calls"
        self.root.mkdir()
        self.all_synced()

    def all_synced(self):
        shutil.rmtree(self.synced, ignore_errors=True)
        self.synced.mkdir()
        for path in [self.root, *self.root.rglob("*")]:
            if path.is_dir():
                entries = [f"{'d' if entry.is_dir() else 'f'} {entry.stat().st_ino} {entry.name}\n"
                           for entry in path.iterdir()]
                (self.synced / f"folder-{path.stat().st_ino}").write_text("".join(entries))
            else:
                shutil.copyfile(path, self.synced / f"file-{path.stat().st_ino}")

    def lose_power(self):
        after = self.root.with_name("after")
        self.restore(self.root.stat().st_ino, after)
        shutil.rmtree(self.root)
        after.rename(self.root)
        self.all_synced()

    def restore(self, inode, folder):
        folder.mkdir(mode=0o700)
        entries = self.synced / f"folder-{inode}"
        for line in entries.read_text().splitlines() if entries.exists() else []:
            kind, number, name = line.split(" ", 2)
            kept = self.synced / f"file-{number}"
            if kind == "d":
                self.restore(number, folder / name)
            elif kept.exists():
                shutil.copyfile(kept, folder / name)
            else:
                (folder / name).touch()
            (folder / name).chmod(0o700 if kind == "d" else 0o600)


class Machine:
    """A user's machine and what the user has been told of its state."""

    def __init__(self, program, faults, folder):
        self.program, self.faults, self.folder = program, faults, folder
        self.disk = Disk(folder)
        self.state = self.disk.root / "home" / "state"
        (self.disk.root / "home").mkdir()
        self.disk.all_synced()
        self.known, self.has_saved_state = Stored([], [], []), False
        self.settings, self.next_settings, self.settings_not_synced = None, None, []
        # What a killed program changed without confirming it can be seen before it is synced. A power cut then brings
        # back one of these states.
        self.not_synced_yet = []
        (folder / "gtfs").mkdir()
        (folder / "alerts.pb").write_bytes(ALERTS)
        (folder / "gtfs" / "routes.txt").write_text(ROUTES)

    def start(self, words, kill_at=0, torn=False):
        self.disk.calls.write_bytes(b"")
        environment = dict(os.environ, HOME=str(self.folder), LANG="en_US.UTF-8", LC_ALL="", LD_PRELOAD=self.faults,
                           QT_QPA_PLATFORM="offscreen", XDG_RUNTIME_DIR=str(self.folder),
                           LINEWATCH_DISK=str(self.disk.root), LINEWATCH_CALLS=str(self.disk.calls),
                           LINEWATCH_SYNCED=str(self.disk.synced), LINEWATCH_KILL_AT=str(kill_at),
                           LINEWATCH_TORN="1" if torn else "")
        return subprocess.Popen([self.program, "--state-dir", self.state, *words], env=environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run(self, words, **how):
        process = self.start(words, **how)
        output, errors = process.communicate(timeout=PATIENCE)
        return process.returncode, output, errors

    def must(self, words):
        status, output, errors = self.run(words)
        if status != 0:
            raise Loss(f"{' '.join(words)} fails: {output}{errors}")
        return output

    @staticmethod
    def faults_in(path):
        try:
            with contextlib.closing(sqlite3.connect(path)) as database:
                faults = [row[0] for row in database.execute("PRAGMA integrity_check")]
        except sqlite3.DatabaseError as error:
            return [str(error)]
        return [] if faults == ["ok"] else faults

    def stored(self):
        """Read by the program first, as a user would, which also rolls back what a killed one left half done. A copy is
        then looked at, because nobody knows what this process syncs."""
        self.must(["favorites"])
        if damaged := [path.name for path in self.state.rglob("*.damaged*")]:
            raise Loss(f"set aside: {damaged}")
        copy = self.folder / "copy"
        shutil.rmtree(copy, ignore_errors=True)
        if self.state.exists():
            shutil.copytree(self.state, copy)
        for path in copy.rglob("*.sqlite"):
            if faults := self.faults_in(path):
                raise Loss(f"{path.name} is damaged: {faults}")
        return self.contents_of(copy / "linewatch.sqlite")

    @staticmethod
    def contents_of(file):
        if not file.exists():
            return Stored([], [], []), False
        with contextlib.closing(sqlite3.connect(file)) as database:
            favorites = [f"{feed}:{subject}" for feed, subject in
                         database.execute("SELECT feed, subject FROM favorite ORDER BY position")]
            feeds = [row[0] for row in database.execute("SELECT name FROM feed ORDER BY position")]
            for feed in feeds:
                parts = database.execute("SELECT count(*) FROM feed_part WHERE feed = ?", [feed]).fetchone()[0]
                if parts != 2:
                    raise Loss(f"feed {feed} has {parts} of its 2 locations")
            notices = sorted(f"{word} {route}" for word, table in (("notify", "subscription"), ("mute", "mute"))
                             for (route,) in database.execute(f"SELECT route FROM {table}"))
            saved = database.execute("SELECT length(value) FROM preference WHERE key = ?", [SAVED_STATE]).fetchall()
        return Stored(favorites, feeds, notices), bool(saved) and saved[0][0] > 0

    def check_settings(self, confirmed, power):
        """The settings file is the old or the new one, and a confirmed change stays."""
        file = self.state / "settings.toml"
        stored = file.read_text() if file.exists() else None
        before, after = self.settings, self.next_settings
        wanted = [after] if confirmed else [before, after]
        if power and not (confirmed and before != after):
            wanted = wanted + self.settings_not_synced
        if stored not in wanted:
            raise Loss(f"the settings file holds {stored!r}, not {' or '.join(map(repr, wanted))}")
        if power or confirmed and before != after:
            self.settings_not_synced = []
        elif not confirmed:
            self.settings_not_synced.append(before)
        self.settings = self.next_settings = stored

    def check(self, after, confirmed, power):
        """After a change that should lead to the state `after`, and a kill or a power cut."""
        stored, has_saved_state = self.stored()
        self.check_settings(confirmed, power)
        before = self.known
        changes = after != before
        wanted = [after] if confirmed else [before, after]
        if power and not (confirmed and changes):
            wanted = wanted + self.not_synced_yet
        if stored not in wanted:
            raise Loss(f"there is {stored}, not {' or '.join(map(str, wanted))}")
        if self.has_saved_state and not has_saved_state and not power:
            raise Loss("the saved state is gone")
        if power or confirmed and changes:
            self.not_synced_yet = []
        elif not confirmed:
            self.not_synced_yet.append(before)
        self.known, self.has_saved_state = stored, has_saved_state


class KillTest:
    def __init__(self, program, faults, seed):
        self.program, self.faults = program, faults
        self.dice = random.Random(seed)
        self.counts = collections.Counter()
        self.calls = {}  # the number of calls of each kind of command, and the calls that were met
        self.met = collections.defaultdict(set)
        self.agency = Agency()

    def run(self, kills):
        started = time.monotonic()
        while self.counts["kills"] < kills:
            with tempfile.TemporaryDirectory(prefix="linewatch-kills-") as folder:
                machine = Machine(self.program, self.faults, pathlib.Path(folder).resolve())
                enough = min(kills, self.counts["kills"] + NEW_START)
                while self.counts["kills"] < enough:
                    self.kill_once(machine)
        self.counts["seconds"] = round(time.monotonic() - started)

    # ---- Commands: the words and the state that they lead to ----

    def command(self, machine):
        known = machine.known
        if not known.feeds:
            return "the first feed", self.adding("city", machine), known._replace(feeds=["city"])
        others = [feed for feed in known.feeds if feed != "city"]
        kind = self.dice.choice(["panel", "add", "add", "remove", "add feed", "remove feed", "setting", "find",
                                 "notify", "mute"])
        line = "city:" + self.dice.choice(LINES)
        if kind == "remove" and known.favorites:
            line = self.dice.choice(known.favorites)
            left = [favorite for favorite in known.favorites if favorite != line]
            return kind, ["favorites", "remove", line], known._replace(favorites=left)
        if kind == "setting":
            return kind, self.setting(machine), known
        if kind in ("notify", "mute") and known.favorites:
            return self.notices(kind, self.dice.choice(known.favorites), known)
        if kind == "add feed" and len(others) < len(FEEDS):
            name = next(feed for feed in FEEDS if feed not in others)
            words = self.adding(name, machine)
            if self.dice.random() < 0.5:
                kind, words = "add city", self.searching("add") + ["--name", name]
            return kind, words, known._replace(feeds=known.feeds + [name])
        if kind == "find":
            return kind, self.searching("find"), known
        if kind == "remove feed" and others:
            left = [feed for feed in known.feeds if feed != others[0]]
            return kind, ["feed", "remove", others[0]], known._replace(feeds=left)
        if kind == "panel" and known.favorites:
            return kind, ["panel", "--example"], known
        return "add", ["favorites", "add", line], self.with_favorite(line, known)

    @staticmethod
    def with_favorite(line, known):
        return known if line in known.favorites else known._replace(favorites=known.favorites + [line])

    @staticmethod
    def notices(kind, line, known):
        notice = f"{kind} {line.removeprefix('city:')}"
        after = set(known.notices) ^ {notice}
        word = "off" if notice in known.notices else {"notify": "on", "mute": "2h"}[kind]
        return kind, [kind, line, word], known._replace(notices=sorted(after))

    @staticmethod
    def adding(name, machine):
        return ["feed", "add", name, "--gtfs", str(machine.folder / "gtfs"), "--alerts", str(machine.folder / "alerts.pb")]

    def setting(self, machine):
        """Several settings are written, so that a half of the file would show."""
        if machine.settings is None:
            (machine.state / "settings.toml").write_text("# mine\n")
            machine.settings = "# mine\n"
            machine.disk.all_synced()
        size = self.dice.choice(["S", "M", "XL", "AX1"])
        lines = [line for line in machine.settings.splitlines() if not line.startswith("text-size")]
        machine.next_settings = "\n".join([*lines, f'text-size = "{size}"']) + "\n"
        return ["settings", "text-size", size]

    def searching(self, action):
        return ["feed", action, "hilltown", "--catalogue", self.agency.catalogue]

    # ---- Kills ----

    def kill_once(self, machine):
        kind, words, after = self.command(machine)
        if kind == "panel" and self.dice.random() < 0.5:
            kind, after = self.change_beside_panel(machine, after)
            confirmed = True
        else:
            status, confirmed = self.kill(machine, kind, words)
            if status not in (0, -signal.SIGKILL):
                raise Loss(f"{' '.join(words)} ends with {status}")
        power = self.dice.random() < 0.5
        if power:
            machine.disk.lose_power()
        try:
            machine.check(after, confirmed, power)
            if kind == "find" and "linewatch feed add a" not in machine.must(self.searching("find")):
                raise Loss("the catalogue is lost")
        except Loss as loss:
            raise Loss(f"{kind}: {' '.join(words)}, {'power lost' if power else 'killed'}: {loss}") from None
        self.counts["power cuts"] += power
        self.counts["confirmed changes"] += confirmed

    def kill(self, machine, kind, words):
        """The status, and whether the program has confirmed the change before its end."""
        longest = {"panel": LONGEST_PANEL, "find": LONGEST_SEARCH, "add city": LONGEST_SEARCH}.get(kind, LONGEST_COMMAND)
        kill_at = self.unmet_call(kind) if self.dice.random() < 0.5 else 0
        process = machine.start(words, kill_at=kill_at, torn=self.dice.random() < 0.5)
        patience = PATIENCE if kill_at and kind != "panel" else longest if kill_at else self.dice.uniform(0, longest)
        met = kill_at
        try:
            output, _ = process.communicate(timeout=patience)
        except subprocess.TimeoutExpired:
            process.kill()
            output, _ = process.communicate()
            met = 0
        if met and process.returncode == -signal.SIGKILL:
            self.met[kind].add(met)
            self.count_kill("at a call")
        else:
            self.calls[kind] = max(self.calls.get(kind, 1), machine.disk.calls.stat().st_size)
            if process.returncode:
                self.count_kill("at a moment")
        return process.returncode, kind != "panel" and (process.returncode == 0 or output != "")

    def unmet_call(self, kind):
        calls = range(1, self.calls.get(kind, 1) + 1)
        return self.dice.choice([call for call in calls if call not in self.met[kind]] or calls)

    def count_kill(self, where):
        self.counts["kills"] += 1
        self.counts[f"kills {where}"] += 1

    def change_beside_panel(self, machine, known):
        """A favourite is added while a panel runs, and then the panel is killed."""
        panel = machine.start(["panel", "--example"])
        line = "city:" + self.dice.choice(LINES)
        with contextlib.suppress(subprocess.TimeoutExpired):
            panel.wait(timeout=self.dice.uniform(0, LONGEST_PANEL))
        machine.must(["favorites", "add", line])
        with contextlib.suppress(subprocess.TimeoutExpired):
            panel.wait(timeout=self.dice.uniform(0, LONGEST_COMMAND))
        panel.kill()
        panel.communicate()
        self.count_kill("at a moment")
        return "panel and add", self.with_favorite(line, known)


def careless_copy(program, folder, synchronous):
    """Copies the program with its folders, and replaces the value EXTRA in the copy."""
    build = pathlib.Path(program).resolve().parent.parent
    for part in ("bin", "lib", "share"):
        shutil.copytree(build / part, folder / part, symlinks=True)
    used, wanted = b"\0EXTRA\0", b"\0%-5d\0" % SYNCHRONOUS.index(synchronous)
    for file in (folder / "bin" / "linewatch", folder / "lib" / "linewatch" / "linewatch-screen"):
        code = file.read_bytes()
        if code.count(used) != 1:
            sys.exit(f"kill_test: {file} does not hold the word EXTRA once")
        file.write_bytes(code.replace(used, wanted))
    return str(folder / "bin" / "linewatch")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--synchronous", choices=SYNCHRONOUS)
    parser.add_argument("program")
    parser.add_argument("faults")
    parser.add_argument("kills", type=int)
    parser.add_argument("seed", type=int, nargs="?", default=1)
    given = parser.parse_args()
    print(f"seed {given.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="linewatch-careless-") as folder:
        program = given.program
        if given.synchronous:
            program = careless_copy(program, pathlib.Path(folder), given.synchronous)
        test = KillTest(program, given.faults, given.seed)
        loss = None
        try:
            test.run(given.kills)
        except Loss as found:
            loss = found
            print(f"after {test.counts['kills']} kills, {loss}")
    if loss or given.synchronous:
        return 0 if loss and given.synchronous else 1
    print(", ".join(f"{count} {name}" for name, count in test.counts.items()))
    for kind, calls in sorted(test.calls.items()):
        print(f"{kind}: killed at {len(test.met[kind])} of {calls} calls that write")
    return 0


if __name__ == "__main__":
    sys.exit(main())
