// The strings and numbers of the discrete side that carry a meaning, each told once.
#pragma once

#include <string>

// Truth of an atom, or of its element at one step: unknown is the initial and the retracted value.
inline constexpr char const* labelTrue = "true";
inline constexpr char const* labelFalse = "false";
inline constexpr char const* labelUnknown = "unknown";

inline bool isLabel(std::string const& text) {
    return text == labelTrue || text == labelFalse || text == labelUnknown;
}

// Kinds of variables. No constructor makes the last two, but the engine tests for them.
inline constexpr char const* typeMode = "Mode";
inline constexpr char const* typeCond = "Cond";
inline constexpr char const* typeCommand = "Command";
inline constexpr char const* typeObservable = "Observable";
inline constexpr char const* typeDependent = "Dependent";

// Kinds of transitions.
inline constexpr char const* transNominal = "Nominal";
inline constexpr char const* transFail = "Fail";

// Domain values that the engine knows by name: an idle command, and a mode that says nothing.
inline constexpr char const* valueNone = "none";
inline constexpr char const* valueUnknown = "unknown";
