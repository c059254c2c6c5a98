// Leaving out: lines of the script, then files and arguments, then words.
//
// Pieces are left out in runs that halve in length, as long as what is left shows the same kind of
// finding; then one by one, until none can go.
#include "fuzz/shrink.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "fuzz/oracles.h"

namespace fuzz {

namespace {

class Shrinking {
public:
    Shrinking(SessionCase session, std::string const& kind)
        : session(std::move(session)), kind(kind) {}

    SessionCase result() {
        for (bool smaller = true; smaller;) {
            smaller = lines(session.script);
            smaller |= dropFiles();
            smaller |= dropArguments();
            for (auto& entry : session.files)
                smaller |= lines(entry.second);
            smaller |= words(session.script);
            for (auto& entry : session.files)
                smaller |= words(entry.second);
        }
        return session;
    }

private:
    bool stillShows() const {
        Findings const found = tryCase(session);
        return found && found->kind == kind;
    }

    // Keeps the change of the case if it still shows the finding.
    template <typename Part, typename Value>
    bool change(Part& part, Value value) {
        Part before = std::exchange(part, std::move(value));
        if (stillShows())
            return true;
        part = std::move(before);
        return false;
    }

    // Pieces that end behind one of the bytes.
    static std::vector<std::string> pieces(std::string const& text, char const* ends) {
        std::vector<std::string> found;
        for (std::size_t start = 0; start < text.size();) {
            std::size_t const end = std::min(text.find_first_of(ends, start), text.size() - 1) + 1;
            found.push_back(text.substr(start, end - start));
            start = end;
        }
        return found;
    }

    bool dropPieces(std::string& text, char const* ends) {
        bool smaller = false;
        std::vector<std::string> left = pieces(text, ends);
        for (std::size_t run = std::max<std::size_t>(left.size() / 2, 1); run > 0; run /= 2)
            for (std::size_t at = 0; at < left.size();) {
                std::vector<std::string> fewer = left;
                fewer.erase(
                    fewer.begin() + static_cast<std::ptrdiff_t>(at),
                    fewer.begin() + static_cast<std::ptrdiff_t>(std::min(at + run, left.size())));
                std::string joined;
                for (std::string const& piece : fewer)
                    joined += piece;
                if (change(text, joined)) {
                    left = fewer;
                    smaller = true;
                } else {
                    at += run;
                }
            }
        return smaller;
    }
    bool lines(std::string& text) { return dropPieces(text, "\n"); }
    bool words(std::string& text) { return dropPieces(text, " \n"); }

    bool dropFiles() {
        bool smaller = false;
        std::vector<std::string> paths;
        for (auto const& entry : session.files)
            paths.push_back(entry.first);
        for (std::string const& path : paths) {
            auto fewer = session.files;
            fewer.erase(path);
            smaller |= change(session.files, fewer);
        }
        return smaller;
    }

    bool dropArguments() {
        bool smaller = false;
        for (std::size_t i = session.args.size(); i-- > 0;) {
            auto fewer = session.args;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
            smaller |= change(session.args, fewer);
        }
        return smaller;
    }

    SessionCase session;
    std::string const kind;
};

}  // namespace

SessionCase shrunk(SessionCase session, std::string const& kind) {
    return Shrinking(std::move(session), kind).result();
}

}  // namespace fuzz
