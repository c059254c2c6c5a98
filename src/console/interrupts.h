// Signals that ask the program to stop.
//
// A run may have taken hours, and its rows are written at its end: so a signal ends the run, not
// the program, and the run is asked whether to go on between two cycles, where it can end without
// losing any. A cycle that then goes on for long, such as a diagnosis of many suspects, is given
// up, and so is the wait for a line of a pipe. An interrupt (SIGINT) asks for no more than that. A
// termination or a hang-up (SIGTERM, SIGHUP) ends the program too, once the run has written
// everything. Who cannot wait sends the same signal again: then the program ends at once, without
// what a run has not written.
// While it waits for a line or for a command of the shell there is nothing to be lost, and one
// signal is enough.
//
// The status of a program that a signal has ended is 128 and the number of the signal.
#pragma once

// To be called by the program alone: a library leaves the signals of its process as they are.
// A signal that is ignored, as for a job in the background, stays so.
void heedInterrupts();

// Why the run should end, in a word or two; null while nothing asks it to.
char const* stopReason();
// Whether the signal came so long ago that the end of a cycle is not waited for any more.
bool stopIsOverdue();
// The run has ended, and all that it had is written: an interrupt asked for no more.
void interruptIsDone();
// The status of the program if a signal wants it to end; 0 while none does.
int statusOfInterrupt();

// While such an object lives, a signal makes a wait for data end, as if it could not be read.
// Others are taken up again, those of the output above all.
class Interruptible {
public:
    Interruptible();
    ~Interruptible();
    Interruptible(Interruptible const&) = delete;
    Interruptible& operator=(Interruptible const&) = delete;
};

// While such an object lives, a signal ends the program at once: nothing may be unwritten.
class Waiting {
public:
    Waiting();
    ~Waiting();
    Waiting(Waiting const&) = delete;
    Waiting& operator=(Waiting const&) = delete;
};
