// The outside of a run, as the engine sees it: streams, data lines, files, requests, memory.
//
// The engine below never prints, never opens a file and never ends the process: it asks its host.
// Whoever holds a run decides what that means. A console writes to the standard streams and reads
// files; a library that nobody asked anything of is silent and has no files. A host outlives every
// run that was given it, and is used by one run at a time.
//
// The base class is the silent host: nothing is written, no file exists, nothing is asked for.
#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <string>

struct Isolation;
struct Nelder_options;

class Host {
public:
    Host();
    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;
    virtual ~Host();

    // ---- Streams ----

    // What the engine tells of its work: data lines, traces of the reasoning, `show` texts.
    virtual std::ostream& out() { return silence; }
    // Messages for the user.
    virtual std::ostream& err() { return silence; }
    // The same, for a message that begins: something was lost, refused or unreadable. To be asked
    // for once a message, since a host may count them.
    virtual std::ostream& loss() { return err(); }
    // A line for each propagation, and a line for each step of a discrete run.
    virtual std::ostream& propagationLog() { return silence; }
    virtual std::ostream& stepLog() { return silence; }

    // ---- Data lines: each fills *count* values, and leaves what it does not know ----

    virtual void inputs(int count, double* values);
    virtual void measures(int count, double* values);

    // ---- A request for isolation without a run, and what an isolation yields ----

    // Which measures misbehave, and which influences act, by their place in the runtime's lists.
    // False: there is no such request, or it is wrong, which the host has told.
    virtual bool misbehaviours(int count, int* values);
    virtual bool activity(int count, int* values);
    // Takes the alarms of a cycle, an entry per measure.
    virtual void alarms(int count, int const* low, int const* high, int const* misbehaving);
    // Takes the suspects of a candidate's isolation, which may be none, before their text.
    virtual void isolated(Isolation const& found);
    // Takes the text of a diagnosis, which may be empty.
    virtual void diagnosis(std::string const& text);

    // ---- Files ----

    // A text to be read; null when there is none of that name or it cannot be opened.
    virtual std::unique_ptr<std::istream> open(std::string const& path);
    // Puts *text* into the file of that name; false when it could not be written whole.
    virtual bool write(std::string const& path, std::string const& text);

    // ---- The optimiser ----

    // Replaces the defaults in *options* by what the user set. Asked before each search.
    virtual void optimiserOptions(Nelder_options& options);
    // Where the trace of a search goes that the options ask for; null: nowhere. The stream is
    // given back with the pointer.
    virtual std::shared_ptr<std::ostream> optimiserTrace(Nelder_options const& options);

    // ---- Limits ----

    // True once so little memory is left that the run has to stop in order. Cheap: the engine asks
    // wherever candidates, branches and leaves are made.
    virtual bool memoryRunsShort() { return false; }
    // True once whoever holds the run wants it to end. Asked between two steps, where a run can end
    // without losing any.
    virtual bool stopRequested() { return false; }
    // Why, when it cannot wait for the end of the step, which is given up then; null while it can.
    // Cheap, as it is asked where memory is.
    virtual char const* stopOverdue() { return nullptr; }

private:
    std::ostream silence{nullptr};
};
