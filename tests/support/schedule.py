"""Who runs when in ./test: builds one after the other, and beside them the lanes whose builds are there.

A build uses all cores, but at a low priority: it fills the time in which the lanes wait for servers, windows and each
other. So two builds at once would win nothing, and a lane is hardly slower for a build beside it.
"""

import dataclasses
import threading
import time
import traceback
from collections.abc import Callable

from lane import Lane, LaneFailure, Programs

STATES = ("passed", "failed", "skipped")
# Of the lanes that mostly wait, and of those that compute all the time (LanePlan.nice).
LANES_AT_ONCE = {False: 2, True: 1}


@dataclasses.dataclass(frozen=True)
class LanePlan:
    """What ./test knows of a lane before it starts it."""

    run: Callable  # its first line of documentation is the lane's
    packages: tuple = ()  # the groups of tools/setup that it needs
    builds: tuple = ()  # names of builds
    nice: bool = False  # it computes all the time, so that other lanes go before it
    turn: str = ""  # lanes of the same turn never run at the same time
    daily: bool = True  # without --all too; else only with it, or by its name


class Schedule:
    """One run of ./test."""

    def __init__(self, plans, builds, say):
        """`plans` and `builds` in the order in which they are started; `builds` are functions of a Programs."""
        self.plans = plans
        self.builds = {name: build for name, build in builds.items()
                       if any(name in plan.builds for plan in plans.values())}
        self.say = say
        self.changed = threading.Condition()
        self.ended = {}  # name of an ended build: None, or the LaneFailure
        self.build_times = {}
        self.lanes = {}  # name of an ended lane: (Lane, seconds)

    def run(self):
        """Returns when all has ended."""
        threading.Thread(target=self._build, daemon=True).start()
        waiting, running = list(self.plans), set()
        with self.changed:
            while len(self.lanes) < len(self.plans):
                running -= set(self.lanes)
                for name in list(waiting):
                    if self._ready(name, running):
                        waiting.remove(name)
                        running.add(name)
                        threading.Thread(target=self._run_lane, args=(name,), daemon=True).start()
                self.changed.wait()

    def _ready(self, name, running):
        plan = self.plans[name]
        alike = [other for other in running if self.plans[other].nice == plan.nice]
        return (len(alike) < LANES_AT_ONCE[plan.nice] and
                all(build in self.ended for build in plan.builds) and
                not (plan.turn and any(self.plans[other].turn == plan.turn for other in running)))

    def _build(self):
        for name, build in self.builds.items():
            programs, started, failure = Programs(f"build-{name}", nice=True), time.monotonic(), None
            try:
                build(programs)
            except LaneFailure as problem:
                failure = problem
            except Exception:  # pylint: disable=broad-except
                failure = LaneFailure(f"building {name} failed\n{traceback.format_exc()}")
            with self.changed:
                self.build_times[name] = (time.monotonic() - started, programs.processor_seconds)
                self.ended[name] = failure
                self.changed.notify()

    def _run_lane(self, name):
        plan, started = self.plans[name], time.monotonic()
        lane = Lane(name, plan.nice)
        try:
            for build in plan.builds:
                if self.ended[build]:
                    raise self.ended[build]
            plan.run(lane)
            if not lane.results:
                raise LaneFailure("the lane tested nothing")
        except LaneFailure as failure:
            lane.add(name, "failed", str(failure))
        except Exception:  # pylint: disable=broad-except
            lane.add(name, "failed", traceback.format_exc())
        lane.end()
        with self.changed:
            self.lanes[name] = (lane, time.monotonic() - started)
            self.say(lane, self.line(name))
            self.changed.notify()

    def line(self, name):
        """The lane's line of the summary."""
        lane, seconds = self.lanes[name]
        counts = "".join(f"{lane.count(state):6} {state}" for state in STATES)
        return f"{name:14}{counts}   {times(seconds, lane.processor_seconds)}"

    def build_line(self, name):
        failed = "   failed" if self.ended[name] else ""
        return f"{name:14}   {times(*self.build_times[name])}{failed}"


def times(seconds, processor_seconds):
    return f"{seconds:6.0f} s, of the processors {processor_seconds:6.0f} s"
