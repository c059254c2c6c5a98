// The sweep over calls and faults.
#include "fuzz/torture.h"

#include <cerrno>
#include <csignal>
#include <cstdio>

#include "fuzz/oracles.h"

namespace fuzz {

namespace {

// With every command but those that start another program, which nothing of this is about, and
// `debug`, which nothing leaves.
SessionCase wholeSession() {
    SessionCase session;
    session.model = "therm";
    session.args = {"meas", "display", "scn", "modes"};
    session.files = {// With a heater on the rate is 0.8 at 4 degrees, and falls; nothing but a
                     // fault makes it 0.1.
                     {"obs/meas", "0.8\n0.9\n0.9\n0.1\n0.1\n0.1\n"},
                     {"inp/scn", "2 Command room.cmdin=open\n3 Command room.cmdin=close\n"},
                     {"therm.pi", "room.mode=open:room.cmdin=open\n"},
                     // The trace of the optimiser, into a file.
                     {"nelder.dat", "\n\n\n\n\n\n1\n1\nnelder.out\n"}};
    session.script =
        "help\n# comment\nprint comp\np toms\ninit\nprint inf\nsimul 3 multi\ninit noglob 2\n"
        "simul 2 1\ny\ninit\ndetect 5 fault1 1\ninit\ndetect 3 nofault 1 nomerge\nunknown\nquit\n";
    session.check = Check::FAULT;
    return session;
}

// Every nth call of a kind; counts what was tried.
class Sweep {
public:
    void over(Fault fault, long stride) {
        for (fault.nth = 1;; fault.nth += stride) {
            SessionCase session = wholeSession();
            session.fault = fault;
            Outcome outcome;
            Findings const found = tryCase(session, &outcome);
            if (found)
                tell(*found, fault);
            ++tried;
            if (!outcome.usage.faulted)
                return;
        }
    }
    // Once, and from then on.
    void bothWays(Fault::Kind kind, int value, long stride) {
        over({kind, 1, false, value}, stride);
        over({kind, 1, true, value}, stride);
    }
    void tellResult() const { std::printf("%ld sessions, %d findings\n", tried, findings); }
    int result() const { return findings; }

private:
    void tell(Finding const& found, Fault const& fault) {
        ++findings;
        std::printf("%s: %s: %s\n", describe(fault).c_str(), found.kind.c_str(),
                    found.detail.c_str());
        std::fflush(stdout);
    }

    long tried = 0;
    int findings = 0;
};

}  // namespace

int torture(long stride) {
    Sweep sweep;
    for (int const error : {ENOSPC, EIO})
        sweep.bothWays(Fault::WRITE, error, 1);
    sweep.bothWays(Fault::WRITE, 0, 1);
    for (int const error : {EMFILE, ENOSPC})
        sweep.bothWays(Fault::OPEN, error, 1);
    for (int const error : {ENOSPC, EIO})
        sweep.bothWays(Fault::CLOSE, error, 1);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        sweep.over({Fault::SIGNAL_AT_STEP, 1, false, signal}, 1);
        sweep.over({Fault::SIGNAL_AT_ALLOCATION, 1, false, signal}, stride);
    }
    sweep.bothWays(Fault::ALLOCATION, 0, stride);
    sweep.tellResult();
    return sweep.result();
}

}  // namespace fuzz
