// The values of the continuous engine: a number, or an interval with open or closed ends.
//
// This header owns the record s_Objet, its in-place arithmetic, its relations and set operations,
// its text forms, and the constant objects that the whole engine shares. It is not
// textbook interval arithmetic: several operations keep or lose bracket flags in their own way, and
// these ways decide when an alarm fires and when a condition holds. What looks wrong and is wanted
// is marked `Required:` where it is done.
//
// Conventions of every operation below:
//   - The first argument is changed in place, the second is only read; both may be one object.
//   - An int result is 1 for success or truth and 0 otherwise.
//   - An operand that is neither a number nor an interval leaves the first argument as it is, and
//     the answer is 0. Nothing here reports an error.
//   - Relations are certain: 1 only when it holds for every point of the operands (equality of
//     intervals: of the sets), so that an answer of 0 means "not known", never "false".
//   - Bounds are ordinary doubles: no rounding outwards, no care for NaN, overflow is silent.
//   - A number keeps the flags of the interval that stood in its place before, for operations and
//     assignments that make a number write the kind and the number alone. When it turns into an
//     interval and nothing tells the flags, these hold; those of a fresh object are open.
#pragma once

#include <cfloat>
#include <optional>

#include "continuous/printer.h"

struct s_engine;

// Truth of the continuous engine: 0 false, 1 true, nothing else.
using boolVal = int;

// Kinds of s_Objet; they tell which field of the shared storage is alive.
enum : int {
    OBJ_UNSET = 0,  // never given a value; its bytes are zero
    OBJ_REAL = 1,
    OBJ_RANGE = 2,
    OBJ_WORD = 3,  // carried by copies, taken by no other operation
};

// An interval. inf <= sup, but for the outcome of a number minus an interval (sn_subObjet).
struct range {
    double inf;               // -DBL_MAX stands for minus infinity
    double sup;               // DBL_MAX stands for plus infinity
    unsigned char infClosed;  // 1 when inf belongs to the interval; any other value means open
    unsigned char supClosed;  // 1 when sup belongs to the interval; any other value means open
};

// A value. It owns nothing, and belongs to the record that holds it. A new one is unset and zero,
// so that nothing ever reads memory without a value.
//
// Required: a copy is a fresh object, and of a number it takes the number without the flags that
// the source remembers (copyObjet); an assignment writes in place, and an assigned number leaves
// the flags of the interval that it takes the place of (sn_putObjet). A moved object is the same
// one. These flags tell the brackets of later hulls, and with them whether a value of one point is
// still in its domain. They outlive the number, so the fields share no storage.
struct s_Objet {
    constexpr s_Objet() = default;
    constexpr s_Objet(s_Objet&&) = default;
    constexpr s_Objet(s_Objet const& o)
        : type(o.type), word(o.word), real(o.real), rng(o.type == OBJ_REAL ? range{} : o.rng) {}
    constexpr s_Objet& operator=(s_Objet const& source) {
        type = source.type;
        if (type == OBJ_REAL)
            real = source.real;
        else if (type == OBJ_RANGE)
            rng = source.rng;
        else if (type == OBJ_WORD)
            word = source.word;
        return *this;
    }

    int type = OBJ_UNSET;
    int word = 0;       // alive when type is OBJ_WORD
    double real = 0.0;  // alive when type is OBJ_REAL
    range rng{};        // alive when type is OBJ_RANGE or OBJ_UNSET; of an OBJ_REAL, the flags are
};

constexpr bool isReal(s_Objet const& o) {
    return o.type == OBJ_REAL;
}

constexpr bool isRange(s_Objet const& o) {
    return o.type == OBJ_RANGE;
}

constexpr bool isValue(s_Objet const& o) {
    return isReal(o) || isRange(o);
}

constexpr bool isInfClosed(range const& r) {
    return r.infClosed == 1;
}

constexpr bool isSupClosed(range const& r) {
    return r.supClosed == 1;
}

// ---- Making and copying ----

constexpr s_Objet makeReal(double value) {
    s_Objet o;
    o.type = OBJ_REAL;
    o.real = value;
    return o;
}

constexpr s_Objet makeRange(double inf, double sup, unsigned char infClosed,
                            unsigned char supClosed) {
    s_Objet o;
    o.type = OBJ_RANGE;
    o.rng = range{inf, sup, infClosed, supClosed};
    return o;
}

// A new number.
s_Objet mkObjReal(double value);

// A new interval ]lo, hi[, open at both ends.
s_Objet sn_mkSpObjet(double lo, double hi);

// A copy of *o, or nothing for null. An unset object is copied with its bounds and flags.
std::optional<s_Objet> copyObjet(s_Objet const* o);

// *destination becomes *source, as by assignment. Of a source that is unset or of unknown type, the
// type alone is taken over, and the destination keeps what it held.
void sn_putObjet(s_Objet const* source, s_Objet* destination);

// ---- Bounds ----

// Lower and upper bound; those of a number are that number twice, those of anything else 0.
double sn_infOf(s_Objet const& o);
double sn_supOf(s_Objet const& o);

// Set one bound of an interval, without a look at the other one or at the flags. A number takes the
// place of a lower bound: setting inf sets it, setting sup leaves it. Anything else stays.
void sn_setInf(s_Objet* o, double inf);
void sn_setSup(s_Objet* o, double sup);

// *o becomes the interval between both bounds, with the flags that it has or remembers.
void sn_setBounds(s_Objet* o, double inf, double sup);

// ---- Arithmetic: *a becomes *a op *b, or f(*a) ----
//
// An interval a keeps its flags; a number that becomes an interval takes the flags of b.

void sn_addObjet(s_Objet* a, s_Objet const* b);
void sn_subObjet(s_Objet* a, s_Objet const* b);
void sn_mulObjet(s_Objet* a, s_Objet const* b);

// 0, with *a as it was, when b is the number 0 or an interval that holds or touches 0: such a
// division is refused, not split in two.
int sn_divObjet(s_Objet* a, s_Objet const* b);

void sn_minusObjet(s_Objet* a);

// The library function of the number or of each bound. No check of the domain: the logarithm or the
// root of a negative bound is NaN and stays so.
void sn_expObjet(s_Objet* a);
void sn_logObjet(s_Objet* a);
void sn_sqrtObjet(s_Objet* a);

// The library function of a number (radians). The bounds over an interval are searched by the
// optimiser, two whole searches each, for the engine's host; the flags stay.
void sn_sinObjet(s_engine& engine, s_Objet* a);
void sn_cosObjet(s_engine& engine, s_Objet* a);

// The costs of these searches: f(x[0]) when p[0] is 0.0, else -f(x[0]), so that a minimum found
// is the minimum or the maximum of f. *status is set to 0; nothing else is written.
double sin_cost(int* n, double* x, double* lower, double* upper, double* p, int* q, int* constraint,
                int* status);
double cos_cost(int* n, double* x, double* lower, double* upper, double* p, int* q, int* constraint,
                int* status);

// ---- Sets ----

// *a becomes the intersection, a number when it is a single point; 0 when empty, *a then as it was.
int sn_interObjet(s_Objet* a, s_Objet const* b);

// *a grows to cover *b, up to the flags: see the rules at the definition.
void sn_uniObjet(s_Objet* a, s_Objet const* b);

// What sn_inSpObjet leaves: nothing (any false), one piece (first) or two (first below second).
struct SpacePieces {
    bool any = false;
    std::optional<s_Objet> first;
    std::optional<s_Objet> second;
};

// What remains of the interval b outside a, as open intervals.
SpacePieces sn_inSpObjet(s_Objet const* a, s_Objet const* b);

// ---- Relations ----

// 1, -1 or 0: the certain sign. An interval that starts at 0 counts as positive and one that ends
// at 0 as negative, whatever the flag there.
int sn_sgnObjet(s_Objet const* a);

int sn_eqObjet(s_Objet const* a, s_Objet const* b);
int sn_diffObjet(s_Objet const* a, s_Objet const* b);
int sn_ltObjet(s_Objet const* a, s_Objet const* b);
int sn_geObjet(s_Objet const* a, s_Objet const* b);

// a inside the interval b, and narrower than it: 0 when both bounds are those of b.
int sn_inObjet(s_Objet const* a, s_Objet const* b);

// ---- Text ----
//
// For people with "-oo" and "+oo" at the ends of the scale and brackets that show the flags; else
// the bare data.

void sn_printReal(s_Printer const& to, double value);
void sn_printRange(s_Printer const& to, range const& r);
void sn_printObjet(s_Printer const& to, s_Objet const* o);

// ---- Constants, never written ----

extern s_Objet const* const objZero;  // the number 0
extern s_Objet const* const objUn;    // the number 1
extern s_Objet const* const objDix;   // the number 10
extern s_Objet const* const objMax;   // ]-DBL_MAX, DBL_MAX[
