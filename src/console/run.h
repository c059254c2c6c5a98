// The handlers behind the run commands, and what a run counts.
//
// The normal order is `init`, then `simul` or `detect`, which end the run; `init` must come again
// before the next one. A parameter error is told, and leaves the run as it was.
#pragma once

extern double simTime;    // current simulated time
extern double totalTime;  // time at which the run stops
extern double precision;  // relative tolerance when a measure is compared with a number
extern int accuTime;      // cycles for which a misbehaviour is remembered
extern int simu_multi;    // the running simulation follows every split
extern int guards_int;    // the model has spontaneous transitions; nothing changes it

int snInit(char const* arg);
int snSimul(char const* arg);
int snDetect(char const* arg);
int snDisc(char const* arg);
int snPrint(char const* arg);
int snGnup(char const* arg);
int snSystem(char const* arg);
int snDebug(char const* arg);
