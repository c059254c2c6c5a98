#!/usr/bin/env python3
"""A short version of `scripts/quality --plants`: what may never get worse of a plant that is shipped.

    quality_test.py PROGRAM SCRIPT PLANT

One day of each fault and three healthy ones. On a healthy day the sharp rules promise that nothing is
reported and that the truth stays within the bounds: noise and uncertainty are those of the plant. How
many faults are noticed is a floor, one or two below what the days of many seeds gave.
"""

import importlib.machinery
import importlib.util
import sys

# Of how many days, one for each fault, the fault is noticed at least. Rare enough is a loss of one that a
# change of the dice, which moves every onset, need not touch these. What is hidden for good is told where
# it is counted out.
FLOORS = {
    "room": 2,               # of 3
    "room_with_sensor": 5,   # of 7: a sensor may be dead, which looks like a thermostat that is off
    "line": 4,               # of 5: a valve that is never moved again hides that it is stuck
    "c17": 1,                # of 2: what no input makes visible in its day
    "tanks": 4,              # of 7: neither a small leak nor a tank that stays at its level shows
    "motor": 6,              # of 7: an unknown motor that stays at the current that it has
    "building": 7,           # of 8
    "ahu": 14,               # of 15
}

# The run takes what has no first value as 0 at first, and the simulator as what the equations make of
# it: up to these steps the truth may be outside. The room is measured at its rate, and so it is right from
# step 1 on; behind a sensor its temperature is wrong until the thermostat has switched.
STARTS = {
    "room": {"room.xdq": 0},
    "room_with_sensor": {"room.x": 30, "room.xd": 30, "room.xdq": 30},
}

# The search for an explanation refutes a healthy c17 now and then, by what was seen before.
FALSE_ALARMS = {"c17": 1}


def loaded(path):
    loader = importlib.machinery.SourceFileLoader("quality_plants", path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("quality_plants", loader))
    sys.modules["quality_plants"] = module   # where dataclasses look for it
    sys.dont_write_bytecode = True           # the source tree stays as it is
    loader.exec_module(module)
    return module


def complaints(quality, program, name):
    plant = next(plant for plant in quality.PLANTS if plant.name == name)
    healthy, faulty = quality.measure(program, [plant], seeds=1, jobs=2)[name]
    days = [day for _, days in faulty for day in days]

    alarms = sum(day.early for day in healthy + days)
    if alarms > FALSE_ALARMS.get(name, 0):
        yield f"{alarms} false alarms"
    if any(day.status in (3, 6) for day in healthy + days):
        yield "a run has stopped"
    if not plant.discrete and not all(day.samples > plant.steps for day in healthy):
        yield "there are no bounds to compare"
    for day in healthy:
        for variable, step in day.outside.items():
            if step > STARTS.get(name, {}).get(variable, -1):
                yield f"the true {variable} is out of bounds at step {step}"
    noticed = sum(day.found for day in days)
    if noticed < FLOORS[name]:
        yield f"{noticed} faults of {len(days)} noticed, fewer than {FLOORS[name]}"


def main():
    program, script, name = sys.argv[1:]
    found = list(complaints(loaded(script), program, name))
    for complaint in found:
        print(f"{name}: {complaint}")
    return 1 if found else 0


sys.exit(main())
