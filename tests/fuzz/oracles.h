// What must hold of every session, without knowing what is right for it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "fuzz/outcome.h"
#include "fuzz/session_case.h"

namespace fuzz {

// What does not hold. The kind is what a smaller case must share.
struct Finding {
    std::string kind, detail;
};
using Findings = std::optional<Finding>;

// Of one outcome alone:
//
//   crash      no signal ends a session, but for those that it was sent
//   time       it ends in time
//   sanitizer  no sanitizer has anything to say
//   status     the status is a documented one, and its reason is told
//   strict     a strict session ends with 3 if a loss is told, and only then
//   rows       the display file has a row for each step of its last run, and each row has all
//   values candidates no more are left than the option allows
Findings judge(SessionCase const& session, Outcome const& outcome);

// Runs the case, and where it asks for it another session beside it:
//
//   comment    comments in a script change nothing
//   line ends  carriage returns in a data file change nothing
//   renaming   other names of files give the same texts under other names
//   split      a session that begins anew at an `init` does what a program begun anew would do
//   strict     --strict changes nothing but the status
//   loss       what fails without a message changes nothing
Findings tryCase(SessionCase const& session, Outcome* kept = nullptr);

// Runs the case with the executive of a build too: nothing differs.
Findings tryProgram(SessionCase const& session, std::filesystem::path const& build);

// Whether the texts of the error stream tell that something was lost, refused or unreadable.
bool tellsLoss(std::string const& err);

}  // namespace fuzz
